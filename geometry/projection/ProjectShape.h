// One edge or vertex projected straight along a sketch's normal onto its plane, as
// sketch geometry: a point, a line, a circle or arc when the circle faces the
// plane squarely, otherwise a spline through points sampled along the projection.
#pragma once

#include "core/OriginPlanes.h"
#include "core/Result.h"
#include "sketch/SketchEntity.h"

#include <TopoDS_Shape.hxx>

#include <string_view>

namespace cad::geometry {

inline constexpr std::string_view kEdgeEndOn = "The edge is seen end-on: it projects to a point.";
inline constexpr std::string_view kEdgeNoLength = "The edge has no length.";

struct ShapeProjection {
    // Made: `geometry` holds the result. EndOn and NoLength: nothing to draw, and
    // the sentences above say why.
    enum Outcome { Made, EndOn, NoLength };
    Outcome outcome = Made;
    SketchGeometry geometry;
};

// Fails with "Nothing to project." for a null shape and "Only edges and points can be
// projected one at a time." for anything but an edge or a vertex.
Result<ShapeProjection> projectShape(const PlaneFrame& plane, const TopoDS_Shape& shape);

// The sentence of an outcome that made nothing; empty for Made.
std::string_view outcomeSentence(ShapeProjection::Outcome outcome);

} // namespace cad::geometry
