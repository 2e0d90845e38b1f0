// Rigid motions of sketch geometry: a turn about a pivot, then a shift. Patterns
// place their copies with them.
#pragma once

#include "core/Result.h"
#include "sketch/SketchEntity.h"

namespace cad {

struct RigidMotion {
    Point2 pivot;           // what the turn is about
    double turnDegrees = 0; // counter-clockwise
    Point2 shift;           // applied after the turn

    Point2 apply(Point2 p) const;
};

// The geometry moved. A rectangle stays square to the sketch axes, so it only turns
// by whole quarter turns; any other turn is refused with a sentence naming it.
Result<SketchGeometry> moveGeometry(const SketchGeometry& geometry, const RigidMotion& motion);

// An angle in degrees brought into [0, 360).
double normalizedDegrees(double degrees);

} // namespace cad
