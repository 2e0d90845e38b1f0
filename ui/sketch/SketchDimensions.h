// Sketch dimensions as the session draws them: the anchor a label's offset is measured
// from, the extension and dimension lines, the value text, and the type that a label's
// placement gives a dimension between two points.
//
// Anchors: between two points their midpoint; from a point to a line the midpoint of
// the point and its foot on the line; between two lines the midpoint of the second
// line's start and its foot on the first; a line's length its midpoint; a radius or
// diameter the centre; an angle the crossing of the two lines (the midpoint of their
// midpoints when they run parallel).
#pragma once

#include "core/units/Length.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchReference.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cad::ui {

// What a reference is now: a point (a), a line (a to b) or a circle (centre a, radius r).
struct RefShape {
    ResolvedRef::Kind kind = ResolvedRef::Point;
    Point2 a, b;
    double r = 0;
};
std::optional<RefShape> refShape(const SketchRef& ref, const std::vector<SketchEntity>& entities);

std::optional<Point2> dimensionAnchor(ConstraintType type, const std::vector<SketchRef>& refs,
                                      const std::vector<SketchEntity>& entities);

struct DimensionShape {
    Point2 anchor;
    Point2 label;                                 // where the value is drawn
    std::vector<std::pair<Point2, Point2>> lines; // extension, dimension and leader lines
    std::vector<Point2> arc;                      // an angle's arc, as a polyline
};

// The drawing of a dimension with its label at anchor + `label`, or, without one, at a
// default place about 18 pixels off the geometry (`pixel`: model length of a pixel).
std::optional<DimensionShape> dimensionShape(ConstraintType type,
                                             const std::vector<SketchRef>& refs,
                                             const std::vector<SketchEntity>& entities,
                                             std::optional<Point2> label, double pixel);

// A dimension between two points by where its label goes: above or below their box
// horizontal, left or right of it vertical, anywhere else (or for a box too thin that
// way) the aligned distance.
ConstraintType pointPairType(Point2 p, Point2 q, Point2 label);

// "25 mm", "Ø 10 mm", "R 5 mm", "30°".
std::string dimensionValueText(ConstraintType type, double value, units::Length unit);
// What a constraint works on: "Line1", "Line1.start, Line2.end".
std::string measuredText(const std::vector<SketchRef>& refs);

} // namespace cad::ui
