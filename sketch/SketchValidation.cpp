// Checks that an entity's values describe real geometry, with one sentence per
// way they can be wrong. Every entity passes here before it enters a sketch and
// after every solve.
#include "sketch/SketchCurves.h"
#include "sketch/SketchEntity.h"

#include <cmath>
#include <initializer_list>

namespace cad {

namespace {

constexpr double kZero = 1e-7;

bool finite(std::initializer_list<double> values) {
    for (double v : values)
        if (!std::isfinite(v)) return false;
    return true;
}

double distance(Point2 a, Point2 b) { return std::hypot(b.x - a.x, b.y - a.y); }

struct Validator {
    Result<void> operator()(const SketchLine& l) const {
        if (!finite({l.start.x, l.start.y, l.end.x, l.end.y}))
            return fail("A line needs finite coordinates.");
        if (distance(l.start, l.end) < kZero) return fail("A line needs two distinct end points.");
        return {};
    }
    Result<void> operator()(const SketchRectangle& r) const {
        if (!finite({r.corner.x, r.corner.y, r.width, r.height}))
            return fail("A rectangle needs finite values.");
        if (r.width <= kZero || r.height <= kZero)
            return fail("A rectangle needs a non-zero width and height.");
        return {};
    }
    Result<void> operator()(const SketchCircle& c) const {
        if (!finite({c.center.x, c.center.y, c.radius}))
            return fail("A circle needs finite values.");
        if (c.radius <= kZero) return fail("A circle's radius must be greater than zero.");
        return {};
    }
    Result<void> operator()(const SketchPoint& p) const {
        if (!finite({p.position.x, p.position.y})) return fail("A point needs finite coordinates.");
        return {};
    }
    Result<void> operator()(const SketchArc& a) const {
        if (!finite({a.center.x, a.center.y, a.radius, a.startAngle, a.sweepAngle}))
            return fail("An arc needs finite values.");
        if (a.radius <= kZero) return fail("An arc's radius must be greater than zero.");
        if (std::fabs(a.sweepAngle) < 1e-6 || std::fabs(a.sweepAngle) >= 359.999999)
            return fail("An arc's sweep must be between 0 and 360 degrees (use a circle for a full "
                        "turn).");
        return {};
    }
    Result<void> operator()(const SketchPolygon& p) const {
        if (!finite({p.center.x, p.center.y, p.radius, p.rotation}))
            return fail("A polygon needs finite values.");
        if (p.sides < 3 || p.sides > 1000) return fail("A polygon needs between 3 and 1000 sides.");
        if (p.radius <= kZero) return fail("A polygon's size must be greater than zero.");
        return {};
    }
    Result<void> operator()(const SketchSpline& s) const {
        if (s.closed && s.points.size() < 3)
            return fail("A closed spline needs at least 3 points.");
        if (s.points.size() < 2) return fail("A spline needs at least 2 points.");
        for (const Point2& p : s.points)
            if (!finite({p.x, p.y})) return fail("A spline needs finite coordinates.");
        for (std::size_t i = 1; i < s.points.size(); ++i)
            if (distance(s.points[i - 1], s.points[i]) < kZero)
                return fail("A spline's consecutive points must be distinct.");
        if (interpolateSpline(s).IsNull()) return fail("These points don't make a valid spline.");
        return {};
    }
    Result<void> operator()(const SketchSlot& s) const {
        if (!finite({s.start.x, s.start.y, s.end.x, s.end.y, s.width}))
            return fail("A slot needs finite values.");
        if (distance(s.start, s.end) < kZero)
            return fail("A slot needs distinct center points (use a circle for a round hole).");
        if (s.width <= kZero) return fail("A slot's width must be greater than zero.");
        return {};
    }
    Result<void> operator()(const SketchText& t) const {
        if (!finite({t.position.x, t.position.y, t.height, t.angle, t.lineSpacing, t.tracking,
                     t.widthScale, t.heightScale, t.baselineShift, t.charRotation, t.pathOffset}))
            return fail("Text needs finite values.");
        if (t.height <= 0) return fail("The text height must be greater than zero.");
        if (t.widthScale <= 0 || t.heightScale <= 0 || t.lineSpacing <= 0)
            return fail("The text's scales and line spacing must be greater than zero.");
        if (t.text.find_first_not_of(" \t\r\n") == std::string::npos)
            return fail("The text is empty.");
        return {};
    }
};

} // namespace

Result<void> validateEntity(const SketchEntity& entity) {
    return std::visit(Validator{}, entity.geometry);
}

} // namespace cad
