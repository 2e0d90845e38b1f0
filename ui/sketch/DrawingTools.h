// The geometry of the drawing tools: from the points clicked so far, the cursor and
// the typed sizes, what the next click places, what would be drawn with its live
// sizes and caption, and the constraints and dimensions that hold the new shape.
#pragma once

#include "core/units/Length.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace cad::ui {

enum class DrawKind {
    Line,
    Rectangle,
    CenterRectangle,
    Circle,
    Point,
    Arc,
    CenterArc,
    Polygon,
    Spline,
    Slot
};

// An inline value field: its key, its label and whether it holds a length (else a
// plain number: degrees, a count).
struct InlineField {
    std::string key;
    std::string label;
    bool length = true;
};

// The fields a tool offers while it waits for the click after `step` clicks.
std::vector<InlineField> inlineFields(DrawKind kind, int step);
// Clicks that complete the tool's shape; 0 for the spline, which Enter finishes.
int clicksNeeded(DrawKind kind);
// "Line", "Rectangle", ...: the word captions start with.
std::string drawKindName(DrawKind kind);

// A typed size: its value (millimetres for lengths) and the text as typed.
struct TypedValue {
    double value = 0;
    std::string text;
};
using TypedValues = std::map<std::string, TypedValue>;

// A part of one of the new entities, by the entity's place in the step's list.
struct NewRef {
    int entity = 0;
    std::string part; // empty for the whole entity
};
struct PlannedConstraint {
    ConstraintType type = ConstraintType::Coincident;
    std::vector<NewRef> refs;
};
// A size the user typed, kept as a dimension on the new shape.
struct PlannedDimension {
    ConstraintType type = ConstraintType::Length;
    NewRef ref;
    TypedValue value;
};

struct DrawOptions {
    units::Length unit = units::Length::Millimeters;
    bool construction = false;
    double arcSweep = 0; // the center arc's sweep as followed around its centre, degrees
    int polygonSides = 6;
};

struct DrawStep {
    Point2 point;                       // what a click now adds to the picks
    std::vector<SketchEntity> entities; // the shape as it would be made now (no IDs yet)
    std::vector<PlannedConstraint> constraints;
    std::vector<PlannedDimension> dimensions;
    std::vector<std::pair<std::string, double>> live; // field key -> live size
    std::string caption;                              // "Line   25 mm  ·  0°"; may be empty
    bool valid = true; // false when the typed sizes can't be met here
};

DrawStep drawStep(DrawKind kind, const std::vector<Point2>& picks, Point2 cursor,
                  const TypedValues& typed, const DrawOptions& options);

// The arc from `start` through `through` to `end`; none when the three are in a line.
std::optional<SketchArc> arcThrough(Point2 start, Point2 through, Point2 end);

// An angle in degrees for captions: one decimal at most ("33.7", "90").
std::string angleText(double degrees);

} // namespace cad::ui
