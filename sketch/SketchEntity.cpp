// Entity kinds: their names, the parameters the solver works on, and the IDs
// new entities get.
#include "sketch/SketchEntity.h"

#include <algorithm>
#include <array>
#include <numbers>
#include <set>

namespace cad {

namespace {

double toRadians(double degrees) { return degrees * std::numbers::pi / 180.0; }

// Radians back to degrees. A value the solver did not move keeps its degrees
// exactly, so solving never makes a drawn 90 into 90.00000000000001.
double toDegrees(double radians, double previousDegrees) {
    if (radians == toRadians(previousDegrees)) return previousDegrees;
    return radians * 180.0 / std::numbers::pi;
}

struct ParameterWriter {
    const std::vector<double>& v;
    void operator()(SketchLine& l) const { l = {{v[0], v[1]}, {v[2], v[3]}}; }
    void operator()(SketchCircle& c) const { c = {{v[0], v[1]}, v[2]}; }
    void operator()(SketchRectangle& r) const { r = {{v[0], v[1]}, v[2], v[3]}; }
    void operator()(SketchPoint& p) const { p.position = {v[0], v[1]}; }
    void operator()(SketchArc& a) const {
        a = {{v[0], v[1]}, v[2], toDegrees(v[3], a.startAngle), toDegrees(v[4], a.sweepAngle)};
    }
    void operator()(SketchPolygon& p) const {
        p = {{v[0], v[1]}, v[2], p.sides, toDegrees(v[3], p.rotation)};
    }
    void operator()(SketchSpline& s) const {
        for (std::size_t i = 0; i < s.points.size(); ++i) s.points[i] = {v[2 * i], v[2 * i + 1]};
    }
    void operator()(SketchSlot& s) const { s = {{v[0], v[1]}, {v[2], v[3]}, v[4]}; }
    void operator()(SketchText& t) const { t.position = {v[0], v[1]}; }
};

} // namespace

std::string_view entityKindName(EntityKind kind) {
    static constexpr std::array<std::string_view, 9> names{
        "Line", "Circle", "Rectangle", "Point", "Arc", "Polygon", "Spline", "Slot", "Text"};
    auto i = static_cast<std::size_t>(kind);
    return i < names.size() ? names[i] : std::string_view("Entity");
}

std::vector<double> entityParameters(const SketchEntity& entity) {
    struct Reader {
        std::vector<double> operator()(const SketchLine& l) const {
            return {l.start.x, l.start.y, l.end.x, l.end.y};
        }
        std::vector<double> operator()(const SketchCircle& c) const {
            return {c.center.x, c.center.y, c.radius};
        }
        std::vector<double> operator()(const SketchRectangle& r) const {
            return {r.corner.x, r.corner.y, r.width, r.height};
        }
        std::vector<double> operator()(const SketchPoint& p) const {
            return {p.position.x, p.position.y};
        }
        std::vector<double> operator()(const SketchArc& a) const {
            return {a.center.x, a.center.y, a.radius, toRadians(a.startAngle),
                    toRadians(a.sweepAngle)};
        }
        std::vector<double> operator()(const SketchPolygon& p) const {
            return {p.center.x, p.center.y, p.radius, toRadians(p.rotation)};
        }
        std::vector<double> operator()(const SketchSpline& s) const {
            std::vector<double> out;
            out.reserve(2 * s.points.size());
            for (const Point2& p : s.points) {
                out.push_back(p.x);
                out.push_back(p.y);
            }
            return out;
        }
        std::vector<double> operator()(const SketchSlot& s) const {
            return {s.start.x, s.start.y, s.end.x, s.end.y, s.width};
        }
        std::vector<double> operator()(const SketchText& t) const {
            return {t.position.x, t.position.y};
        }
    };
    return std::visit(Reader{}, entity.geometry);
}

void setEntityParameters(SketchEntity& entity, const std::vector<double>& values) {
    // A list of the wrong length is a caller's slip; writing part of it would tear the entity.
    if (values.size() != entityParameters(entity).size()) return;
    std::visit(ParameterWriter{values}, entity.geometry);
}

std::string nextEntityId(const std::vector<SketchEntity>& entities, std::string_view prefix) {
    std::set<std::string, std::less<>> used;
    for (const SketchEntity& e : entities) used.insert(e.id);
    for (long long n = 1;; ++n) {
        std::string id = std::string(prefix) + std::to_string(n);
        if (!used.count(id)) return id;
    }
}

const SketchEntity* findEntity(const std::vector<SketchEntity>& entities, std::string_view id) {
    auto it = std::find_if(entities.begin(), entities.end(),
                           [&](const SketchEntity& e) { return e.id == id; });
    return it == entities.end() ? nullptr : &*it;
}

} // namespace cad
