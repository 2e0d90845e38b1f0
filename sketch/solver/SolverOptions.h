// The two ways the constraint solver can work, for the benchmarks and for tests that
// check one against the other. Everything else in the application uses the plain
// functions of sketch/SketchSolver.h, which work by blocks.
#pragma once

#include "sketch/SketchSolver.h"

namespace cad {

enum class SolverMethod {
    // The whole sketch as one system: Jacobian by central differences, dense LU steps,
    // dense singular value decompositions for rank and freedom.
    Dense,
    // Independent blocks solved, rank-tested and analysed on their own, with exact
    // Jacobian rows; large blocks use sparse factorisations.
    Blocks,
};

struct SolverOptions {
    SolverMethod method = SolverMethod::Blocks;
    // Blocks with more equations than this take sparse steps; blocks with more
    // parameters than this take the sparse rank test.
    int denseLimit = 200;
};

Result<ConstraintAddition> addConstraint(const std::vector<SketchEntity>& entities,
                                         const std::vector<SketchConstraint>& constraints,
                                         SketchConstraint prepared, const SolverOptions& options);

Result<std::vector<SketchEntity>> solveSketch(const std::vector<SketchEntity>& entities,
                                              const std::vector<SketchConstraint>& constraints,
                                              const std::vector<std::string>& held,
                                              const std::optional<SketchDrag>& drag,
                                              const SolverOptions& options);

SketchAnalysis analyseSketch(const std::vector<SketchEntity>& entities,
                             const std::vector<SketchConstraint>& constraints,
                             const SolverOptions& options);

} // namespace cad
