// Numerical rank and null space of a constraint Jacobian. The rank counts singular
// values greater than 1e-7 · max(1, largest singular value); the null space is
// spanned by the right singular vectors of the others. Small matrices go through a
// dense singular value decomposition; large sparse ones through a sparse QR of the
// transpose with the same threshold, checked before it is trusted.
#pragma once

#include <Eigen/Dense>
#include <Eigen/SparseCore>

namespace cad::solver {

using SparseJacobian = Eigen::SparseMatrix<double, Eigen::RowMajor>;

// The relative threshold below which a singular value counts as zero.
constexpr double kRankTolerance = 1e-7;
inline double rankThreshold(double largestSingularValue) {
    return kRankTolerance * (largestSingularValue > 1 ? largestSingularValue : 1.0);
}

struct RankResult {
    int rank = 0;
    Eigen::MatrixXd nullBasis; // columns: an orthonormal basis of the null space (when asked)
};

// `threshold`: the absolute singular-value threshold; negative for the matrix's own
// 1e-7 · max(1, largest singular value).
RankResult denseRank(const Eigen::MatrixXd& jacobian, bool withNullSpace, double threshold = -1);
RankResult sparseRank(const SparseJacobian& jacobian, bool withNullSpace, double threshold = -1);

// Largest singular value, by power iteration on JᵀJ.
double largestSingularValue(const SparseJacobian& jacobian);

} // namespace cad::solver
