// A sketch as a flat drawing for laser and CNC software: geometry on CUT, text as
// its glyph outlines on ENGRAVE, construction geometry on CONSTRUCTION when asked.
#pragma once

#include "core/units/Length.h"
#include "sketch/SketchEntity.h"
#include "sketch/drawing/Drawing.h"

#include <vector>

namespace cad::drawing {

// How far a polyline written for a curve may stray from it, in millimetres.
inline constexpr double kExportTolerance = 0.001;

// Circles and arcs stay circles and arcs, points points; every other curve becomes a
// polyline within kExportTolerance (a two-point one a line), closed where its ends
// meet. Numbers are in `unit`.
Drawing sketchDrawing(const std::vector<SketchEntity>& entities, units::Length unit,
                      bool includeConstruction);

} // namespace cad::drawing
