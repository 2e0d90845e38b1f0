// Corner lookup and the corner tools' value rule. The fit test is the one the fillet
// and chamfer commands make, so a value chosen here is one the command accepts.
#include "ui/sketch/SketchCorners.h"
#include "ui/sketch/Planar.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad::ui {

namespace {

using namespace planar;

constexpr double kSame = 1e-7;    // ends this close are one corner
constexpr double kMargin = 1e-6;  // a setback must stop this short of a far end
constexpr double kStraight = 1e-6; // corner angles this close to 0 or pi are no corner

struct End {
    const SketchEntity* entity;
    bool isEnd; // the line's end rather than its start
    Point2 position, far;
};

} // namespace

std::optional<LineCorner> lineCornerAt(const std::vector<SketchEntity>& entities, Point2 at) {
    std::vector<End> ends;
    for (const SketchEntity& e : entities) {
        if (const auto* line = std::get_if<SketchLine>(&e.geometry)) {
            ends.push_back({&e, false, line->start, line->end});
            ends.push_back({&e, true, line->end, line->start});
        } else if (const auto* arc = std::get_if<SketchArc>(&e.geometry)) {
            const double toRad = std::numbers::pi / 180;
            const Point2 start = polar(arc->center, arc->radius, arc->startAngle * toRad);
            const Point2 end =
                polar(arc->center, arc->radius, (arc->startAngle + arc->sweepAngle) * toRad);
            ends.push_back({&e, false, start, end});
            ends.push_back({&e, true, end, start});
        }
    }
    std::erase_if(ends, [&](const End& e) { return length(e.position - at) > kSame; });
    if (ends.size() != 2 || ends[0].entity == ends[1].entity) return std::nullopt;
    for (const End& e : ends)
        if (e.entity->kind() != EntityKind::Line) return std::nullopt;

    LineCorner corner;
    corner.end = ends[0].entity->id + (ends[0].isEnd ? ".end" : ".start");
    corner.vertex = ends[0].position;
    const Point2 d1 = ends[0].far - corner.vertex, d2 = ends[1].far - corner.vertex;
    corner.first = length(d1);
    corner.second = length(d2);
    if (corner.first <= 0 || corner.second <= 0) return corner; // no angle: nothing fits
    const double cosine = dot(d1, d2) / (corner.first * corner.second);
    corner.angle = std::acos(std::clamp(cosine, -1.0, 1.0));
    return corner;
}

bool cornerFits(const LineCorner& corner, bool fillet, double value) {
    if (!(value > 0)) return false;
    if (corner.angle < kStraight || corner.angle > std::numbers::pi - kStraight) return false;
    const double setback = fillet ? value / std::tan(corner.angle / 2) : value;
    return setback < corner.first - kMargin && setback < corner.second - kMargin;
}

double cornerValue(const LineCorner& corner, bool fillet, double last, double gridStep) {
    if (cornerFits(corner, fillet, last)) return last;
    const double fifth = 0.2 * std::min(corner.first, corner.second);
    // Whole grid steps, cleaned of the last bits (5 × 1.27 is 6.35).
    const double steps = std::max(1.0, std::round(fifth / gridStep));
    const double rounded = std::round(steps * gridStep * 1e9) / 1e9;
    return cornerFits(corner, fillet, rounded) ? rounded : fifth;
}

} // namespace cad::ui
