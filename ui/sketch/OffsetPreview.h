// What the Offset tool draws before it runs: each picked curve's copy at the distance,
// on the cursor's side. Joints of a chain are left as they fall; the command trims
// and extends them when it runs.
#pragma once

#include "sketch/SketchEntity.h"

#include <optional>
#include <vector>

namespace cad::ui {

// How far p is from the nearest curve of the entities; none when they have no curves.
std::optional<double> distanceToCurves(const std::vector<SketchEntity>& entities, Point2 p);

// The copies an offset by `distance` makes toward `side` (a negative distance: away
// from it). A copy that would collapse is left out; points, splines and text make none.
std::vector<SketchEntity> offsetCopies(const std::vector<SketchEntity>& entities, double distance,
                                       Point2 side);

} // namespace cad::ui
