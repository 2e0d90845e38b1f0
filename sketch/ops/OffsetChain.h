// Lines and arcs selected together that join end to end, and their offset as one
// chain: copies trimmed or extended to meet at the joints, joined there.
#pragma once

#include "sketch/ops/SketchWork.h"

#include <optional>
#include <string>
#include <vector>

namespace cad::ops {

struct ChainPiece {
    std::string id;
    bool reversed = false; // the chain runs from the entity's end to its start
};

struct Chain {
    std::vector<ChainPiece> pieces;
    bool closed = false;
};

// The chains the lines and arcs among `ids` make, in the order their first member
// was listed; an open chain runs the way its first listed member is drawn. Ends
// where three or more curves meet end a chain. A curve alone is a chain of one.
std::vector<Chain> findChains(const std::vector<SketchEntity>& entities,
                              const std::vector<std::string>& ids);

// Offsets a chain of two or more curves by `distance`, toward `side` when given,
// else outward when closed and to the left of the chain's direction when open.
Result<void> offsetChain(SketchWork& sketch, const Chain& chain, double distance,
                         std::optional<Point2> side);

} // namespace cad::ops
