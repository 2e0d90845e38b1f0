// What is still free in a sketch: from null-space directions of the constraint
// Jacobian, which entities are fully determined (every parameter's row of the
// null-space basis shorter than 1e-6) and, for rectangles, polygons and slots that
// are not, the shape displaced by 0.001 along each way it can still move.
#pragma once

#include "sketch/SketchSolver.h"
#include "sketch/solver/SolverSystem.h"

#include <Eigen/SparseCore>

#include <vector>

namespace cad::solver {

class FreedomAnalysis {
public:
    FreedomAnalysis(const SolverSystem& system, const std::vector<SketchEntity>& entities);

    // Null-space directions over the given parameters: column j of `basis` is one
    // direction, its row i the component along parameter params[i].
    void addNullSpace(const Eigen::SparseMatrix<double>& basis, const std::vector<int>& params);
    // A parameter that no constraint touches moves freely on its own.
    void addFreeParameter(int param);

    SketchAnalysis finish(int degreesOfFreedom) const;

private:
    const SolverSystem& system_;
    const std::vector<SketchEntity>& entities_;
    std::vector<double> rowNorm2_;      // per parameter: squared norm of its null-space row
    std::vector<Eigen::MatrixXd> gram_; // per shape entity: Σ v_e v_eᵀ over the directions
    void addToShape(int entity, const Eigen::VectorXd& part);
};

} // namespace cad::solver
