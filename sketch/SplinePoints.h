// Reading fit points written as text: "x,y; x,y; ..." with each coordinate a length
// expression ("0,0; 10mm,5; 1in,0").
#pragma once

#include "core/Result.h"
#include "sketch/SketchEntity.h"

#include <string_view>
#include <vector>

namespace cad {

// The points, or "points: expected ... but found ..." naming the pair that is wrong.
Result<std::vector<Point2>> parseSplinePoints(std::string_view text);

} // namespace cad
