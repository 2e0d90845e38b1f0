// Offset copies for the preview: lines shift along their normal toward the side
// point, circles, arcs, polygons and slots grow or shrink about their centres, and
// rectangles grow or shrink about their middle.
#include "ui/sketch/OffsetPreview.h"
#include "ui/sketch/Planar.h"
#include "ui/sketch/SketchScene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad::ui {

namespace {

using namespace planar;

constexpr double kCollapsed = 1e-7;

double segmentDistance(Point2 a, Point2 b, Point2 p) {
    const Point2 d = b - a;
    const double dd = dot(d, d);
    const double t = dd > 0 ? std::clamp(dot(p - a, d) / dd, 0.0, 1.0) : 0.0;
    return length(a + d * t - p);
}

} // namespace

std::optional<double> distanceToCurves(const std::vector<SketchEntity>& entities, Point2 p) {
    std::optional<double> best;
    for (const SketchEntity& e : entities)
        for (const CurvePiece& piece : entityPieces(e, -1, 1e-3)) {
            const double d = length(nearestOnPiece(piece, p) - p);
            if (!best || d < *best) best = d;
        }
    return best;
}

std::vector<SketchEntity> offsetCopies(const std::vector<SketchEntity>& entities, double distance,
                                       Point2 side) {
    std::vector<SketchEntity> out;
    // `outward`: whether the side point lies outside the closed shape; the copy grows
    // by the distance toward the side point.
    auto grow = [&](bool outward) { return (outward ? 1.0 : -1.0) * distance; };
    for (const SketchEntity& e : entities) {
        SketchEntity copy;
        copy.construction = e.construction;
        bool made = true;
        if (const auto* line = std::get_if<SketchLine>(&e.geometry)) {
            const Point2 along = line->end - line->start;
            if (length(along) <= kCollapsed) continue;
            Point2 normal = direction({-along.y, along.x});
            if (cross(along, side - line->start) < 0) normal = normal * -1.0;
            const Point2 shift = normal * distance;
            copy.geometry = SketchLine{line->start + shift, line->end + shift};
        } else if (const auto* circle = std::get_if<SketchCircle>(&e.geometry)) {
            const double r = circle->radius + grow(length(side - circle->center) > circle->radius);
            made = r > kCollapsed;
            copy.geometry = SketchCircle{circle->center, r};
        } else if (const auto* arc = std::get_if<SketchArc>(&e.geometry)) {
            const double r = arc->radius + grow(length(side - arc->center) > arc->radius);
            made = r > kCollapsed;
            copy.geometry = SketchArc{arc->center, r, arc->startAngle, arc->sweepAngle};
        } else if (const auto* polygon = std::get_if<SketchPolygon>(&e.geometry)) {
            if (polygon->sides < 3) continue;
            const double half = std::numbers::pi / polygon->sides;
            const double apothem = polygon->radius * std::cos(half);
            const double r =
                polygon->radius + grow(length(side - polygon->center) > apothem) / std::cos(half);
            made = r > kCollapsed;
            copy.geometry = SketchPolygon{polygon->center, r, polygon->sides, polygon->rotation};
        } else if (const auto* slot = std::get_if<SketchSlot>(&e.geometry)) {
            const double w =
                slot->width +
                2 * grow(segmentDistance(slot->start, slot->end, side) > slot->width / 2);
            made = w > kCollapsed;
            copy.geometry = SketchSlot{slot->start, slot->end, w};
        } else if (const auto* rectangle = std::get_if<SketchRectangle>(&e.geometry)) {
            const Point2 low = rectangle->corner;
            const Point2 high{low.x + rectangle->width, low.y + rectangle->height};
            const bool outside = side.x < low.x || side.x > high.x || side.y < low.y ||
                                 side.y > high.y;
            const double g = grow(outside);
            copy.geometry = SketchRectangle{{low.x - g, low.y - g},
                                            rectangle->width + 2 * g,
                                            rectangle->height + 2 * g};
            made = rectangle->width + 2 * g > kCollapsed && rectangle->height + 2 * g > kCollapsed;
        } else {
            continue;
        }
        if (made) out.push_back(std::move(copy));
    }
    return out;
}

} // namespace cad::ui
