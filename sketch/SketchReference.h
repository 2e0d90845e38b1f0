// References inside a sketch ("Line1.end", "Rectangle1.top", "Polygon1.corner2",
// "Origin", "XAxis") and their resolution against the sketch's entities.
#pragma once

#include "core/Result.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cad {

// What a reference stands for. A whole line, circle or arc resolves to Line or
// Circle, a whole point or text to Point (its position); a whole rectangle, polygon,
// slot or spline to Entity.
//
// Sub-indices: line start 0, end 1; circle centre 0; arc centre 0, start 1, end 2;
// point 0; text position 0; rectangle points bottom_left 0, bottom_right 1,
// top_right 2, top_left 3, center 4 and lines bottom 0, right 1, top 2, left 3;
// polygon corner k and edge k are k, its centre is kPolygonCenter; slot start 0,
// end 1; spline point k is k.
struct ResolvedRef {
    enum Kind { Point, Line, Circle, Entity };
    Kind kind = Point;
    // Index into the sketch's entity list; -1 the origin, -2 the x axis, -3 the y axis.
    int entity = 0;
    int sub = 0; // the part's sub-index (corner k, edge k, spline point k...)
};

constexpr int kOriginIndex = -1;
constexpr int kXAxisIndex = -2;
constexpr int kYAxisIndex = -3;
constexpr int kPolygonCenter = -1;

// Trims spaces and splits at the first '.'; empty text is no reference.
std::optional<SketchRef> parseReference(std::string_view text);
Result<ResolvedRef> resolveReference(const SketchRef& ref,
                                     const std::vector<SketchEntity>& entities);

// Where a resolved reference is now. pointAt needs a Point reference, lineAt a Line
// (start and end as the reference runs), circleAt a Circle (centre and radius).
Point2 pointAt(const ResolvedRef& ref, const std::vector<SketchEntity>& entities);
std::pair<Point2, Point2> lineAt(const ResolvedRef& ref, const std::vector<SketchEntity>& entities);
std::pair<Point2, double> circleAt(const ResolvedRef& ref,
                                   const std::vector<SketchEntity>& entities);

struct NamedPoint {
    std::string reference; // "Line1.end", "Polygon1.corner2"
    Point2 position;
};

// Every named point of every entity, in entity order and each kind's part order:
// what agents read to build references and what the sketch session snaps to.
std::vector<NamedPoint> namedPoints(const std::vector<SketchEntity>& entities);

} // namespace cad
