// The part of a sketch a new constraint reaches: the entities it references and
// every entity linked to them through chains of constraints, with those
// constraints. Adding the constraint can move nothing outside it, so only this
// part is solved again.
#pragma once

#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"

#include <cstddef>
#include <vector>

namespace cad::solver {

struct TouchedPart {
    std::vector<std::size_t> entities;    // indices into the sketch's entities, in order
    std::vector<std::size_t> constraints; // indices into its constraints, in order
};

TouchedPart touchedPart(const std::vector<SketchEntity>& entities,
                        const std::vector<SketchConstraint>& constraints,
                        const SketchConstraint& added);

} // namespace cad::solver
