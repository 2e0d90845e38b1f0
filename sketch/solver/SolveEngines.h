// The two engines behind the solver's interface. The whole-sketch engine follows the
// method literally (one system, central-difference Jacobian, fixed-parameter rows,
// dense LU and SVD) and is the reference the block engine is measured and tested
// against; the block engine gives the same answers block by block.
#pragma once

#include "sketch/SketchSolver.h"
#include "sketch/solver/SolverSystem.h"

#include <vector>

namespace cad::solver {

// Moves x (starting at the drawing) until every residual holds; false when it can't.
bool solveWhole(const SolverSystem& system, std::vector<double>& x);
bool solveByBlocks(const SolverSystem& system, std::vector<double>& x, int denseLimit);

// How much constraint `added` raises the rank of the constraints' Jacobian at x
// (constraint rows only: no fixed-parameter or drag rows).
int rankGainWhole(const SolverSystem& system, const std::vector<double>& x, int added);
int rankGainByBlocks(const SolverSystem& system, const std::vector<double>& x, int added,
                     int denseLimit);

// Degrees of freedom and free entities at the drawing, projected entities held.
SketchAnalysis analyseWhole(const SolverSystem& system, const std::vector<SketchEntity>& entities);
SketchAnalysis analyseByBlocks(const SolverSystem& system,
                               const std::vector<SketchEntity>& entities, int denseLimit);

} // namespace cad::solver
