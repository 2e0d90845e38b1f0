// The geometry a sketch holds: one plain structure per entity, its kind a tagged
// union. Coordinates are millimetres in the sketch plane; entity angles are degrees.
#pragma once

#include "core/Result.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace cad {

struct Point2 {
    double x = 0;
    double y = 0;
    bool operator==(const Point2&) const = default;
};

struct SketchLine {
    Point2 start, end;
};
struct SketchCircle {
    Point2 center;
    double radius = 0;
};
// Axis-aligned in sketch coordinates, kept normalised (width and height positive).
struct SketchRectangle {
    Point2 corner; // bottom-left
    double width = 0, height = 0;
};
struct SketchPoint {
    Point2 position;
};
struct SketchArc {
    Point2 center;
    double radius = 0;
    double startAngle = 0; // degrees from the sketch x axis
    double sweepAngle = 0; // degrees, counter-clockwise positive
};
struct SketchPolygon {
    Point2 center;
    double radius = 0; // to the corners
    int sides = 0;
    double rotation = 0; // degrees; direction of corner 0
};
struct SketchSpline {
    std::vector<Point2> points; // fit points
    bool closed = false;        // periodic
};
// A straight slot: two end-arc centres and the full width.
struct SketchSlot {
    Point2 start, end;
    double width = 0;
};

// The alternative index is the kind's tag value, stored in project files.
// (Text, tag 8, joins when text layout is built.)
using SketchGeometry = std::variant<SketchLine, SketchCircle, SketchRectangle, SketchPoint,
                                    SketchArc, SketchPolygon, SketchSpline, SketchSlot>;

enum class EntityKind { Line = 0, Circle, Rectangle, Point, Arc, Polygon, Spline, Slot };

struct SketchEntity {
    std::string id; // kind word + number, unique within the sketch
    SketchGeometry geometry;
    bool construction = false; // reference geometry: dashed, not in profiles or exports
    std::string group;         // "Group" + number, or empty
    std::string source;        // for projected geometry: what it follows; the solver never moves it

    EntityKind kind() const { return static_cast<EntityKind>(geometry.index()); }
    bool isProjected() const { return !source.empty(); }
};

// The solver's parameters of an entity, in the documented order (angles in radians),
// and writing them back (radians to degrees).
std::vector<double> entityParameters(const SketchEntity& entity);
void setEntityParameters(SketchEntity& entity, const std::vector<double>& values);

// "Line", "Circle", ...: the ID prefix and the word used in messages.
std::string_view entityKindName(EntityKind kind);
inline std::string_view entityKindName(const SketchEntity& e) { return entityKindName(e.kind()); }

// The prefix followed by the smallest N >= 1 that no entity uses ("Line3"); the
// numbers of deleted entities come back into use.
std::string nextEntityId(const std::vector<SketchEntity>& entities, std::string_view prefix);
const SketchEntity* findEntity(const std::vector<SketchEntity>& entities, std::string_view id);

// Whether the entity's values make sense: ok, or the sentence saying what is wrong
// ("A line needs two distinct end points."). Zero means within 1e-7.
Result<void> validateEntity(const SketchEntity& entity);

} // namespace cad
