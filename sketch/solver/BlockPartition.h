// Splitting a sketch's equations into independent blocks: parameters are linked when
// one constraint depends on both, and each connected group of parameters with its
// constraints is solved, rank-tested and analysed on its own.
#pragma once

#include "sketch/solver/SolverSystem.h"

#include <vector>

namespace cad::solver {

struct Block {
    std::vector<int> constraints; // indices into the system's compiled constraints, ascending
    std::vector<int> params;      // the free parameters they depend on, ascending
    int rows = 0;
};

struct Partition {
    std::vector<Block> blocks;
    // Constraints that depend on no free parameter: they hold or they don't.
    std::vector<int> pinned;
};

// The global parameters constraint c depends on (its slots, or a fixed entity's range).
template <class Visit> void forEachParameter(const CompiledConstraint& c, Visit&& visit) {
    if (c.shape == CompiledConstraint::Shape::FixEntity) {
        for (int i = 0; i < c.fixCount; ++i) visit(c.fixOffset + i);
        return;
    }
    for (int k = 0; k < c.slots; ++k) visit(c.params[static_cast<std::size_t>(k)]);
}

// Partitions the constraints selected by `include` (all when empty) over the
// parameters marked free.
Partition partitionSystem(const SolverSystem& system, const std::vector<char>& free,
                          const std::vector<char>& include = {});

} // namespace cad::solver
