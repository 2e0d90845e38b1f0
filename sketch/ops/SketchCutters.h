// The curves of a sketch that trim and extend cut against: every line, circle and
// arc, every side of a rectangle, polygon and slot, and splines; each with the
// reference a new end is put on when the cutter is a line, circle or arc as a whole
// or a side of a rectangle or polygon.
#pragma once

#include "sketch/SketchConstraint.h"
#include "sketch/ops/OpsGeometry.h"

#include <Geom2d_Curve.hxx>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad::ops {

struct Cutter {
    std::string entity;
    Bounded shape;               // lines, circles, arcs and sides
    Handle(Geom2d_Curve) spline; // set for splines, crossed numerically instead
    std::optional<SketchRef> on; // where a coincidence puts a new end, when one counts
};

// Every curve of the sketch except those of `except`.
std::vector<Cutter> sketchCutters(const std::vector<SketchEntity>& entities,
                                  std::string_view except);

// Where the carrier crosses the cutter.
std::vector<Point2> crossings(const Carrier& carrier, const Cutter& cutter);

// The arc's circle as a counter-clockwise span: from its lower end over |sweep|.
Bounded arcSpan(const SketchArc& arc);

} // namespace cad::ops
