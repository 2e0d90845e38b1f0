// Where each copy of a sketch pattern goes: one rigid motion per copy, the
// selection itself (copy 0) left out.
#pragma once

#include "core/Result.h"
#include "sketch/SketchEntity.h"
#include "sketch/patterns/EntityMotion.h"
#include "sketch/patterns/PatternArguments.h"

#include <vector>

namespace cad {

// The motions in copy order: rectangular row by row (the first direction inside the
// second), circular and path by copy number. The centre and the path are looked up
// in the entities.
Result<std::vector<RigidMotion>> patternMotions(const PatternRecipe& recipe,
                                                const std::vector<SketchEntity>& entities);

} // namespace cad
