// Rank and null space of a block's constraint Jacobian, with the rows that are exact
// equalities taken out first. Most sketch equations are rows xᵢ − xⱼ (coincident
// points, horizontal and vertical) or pins a·xᵢ; by union-find each such row either
// merges two classes of parameters (rank one) or repeats what the others say (rank
// zero), exactly. The remaining rows are then ranked on the merged parameters — each
// class one orthonormal direction — against the threshold of the whole Jacobian,
// and the null space is put back together from the classes.
#pragma once

#include "sketch/solver/RankTools.h"

#include <Eigen/SparseCore>

namespace cad::solver {

struct JacobianRank {
    int rank = 0;
    // n × (n − rank), orthonormal columns spanning the null space (when asked).
    Eigen::SparseMatrix<double> nullBasis;
};

// `denseLimit`: remaining systems with more columns than this use the sparse test.
JacobianRank jacobianRank(const SparseJacobian& jacobian, bool withNullSpace, int denseLimit);

} // namespace cad::solver
