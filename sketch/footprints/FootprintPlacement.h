// Placing a footprint's copy in a sketch: a construction anchor point at the
// reference point's place, the entities turned and moved, their constraints
// rewritten to the copy's IDs, and the sketch solved.
#pragma once

#include "core/Result.h"
#include "sketch/footprints/Footprint.h"

#include <string>
#include <vector>

namespace cad {

struct FootprintPlacement {
    std::string anchor; // the construction point standing for the reference point
    int leftOut = 0;    // horizontal/vertical constraints that couldn't follow the angle
};

// Adds the copy to the lists and solves them. On failure the lists may be partly
// changed: callers work on copies.
Result<FootprintPlacement> placeFootprint(const Footprint& footprint, Point2 at,
                                          double angleDegrees, std::vector<SketchEntity>& entities,
                                          std::vector<SketchConstraint>& constraints);

// The prefix followed by the smallest number no constraint uses ("Coincident4").
std::string nextConstraintId(const std::vector<SketchConstraint>& constraints,
                             std::string_view prefix);

} // namespace cad
