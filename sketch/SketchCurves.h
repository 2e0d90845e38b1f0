// A sketch's entities as OpenCASCADE 2D curves, for profiles and exports: lines and
// polygon sides as segments, circles, arcs as trimmed circles, slots as two sides
// and two half-circle ends, splines as interpolating B-splines, text as the pieces
// of its glyph outlines.
#pragma once

#include "sketch/SketchEntity.h"

#include <Geom2d_BSplineCurve.hxx>
#include <Geom2d_Curve.hxx>

#include <string>
#include <vector>

namespace cad {

struct SketchCurve {
    std::string entity; // the entity that made the curve
    int piece = 0; // which of its curves, in drawing order (rectangle: bottom, right, top, left)
    Handle(Geom2d_Curve) curve;
};

// The curves of one entity; points make none. Text laid on a path needs the sketch
// it belongs to (without it, the text is laid out straight at its position).
std::vector<SketchCurve> entityCurves(const SketchEntity& entity);
std::vector<SketchCurve> entityCurves(const SketchEntity& entity,
                                      const std::vector<SketchEntity>& sketch);
// The curves of every entity, in entity order; construction geometry only when asked.
std::vector<SketchCurve> sketchCurves(const std::vector<SketchEntity>& entities,
                                      bool withConstruction = false);

// The B-spline through the fit points (periodic when closed, tolerance 1e-7), or a
// null handle when the points don't make one.
Handle(Geom2d_BSplineCurve) interpolateSpline(const SketchSpline& spline);

} // namespace cad
