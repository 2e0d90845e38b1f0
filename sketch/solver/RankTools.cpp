// Rank and null space: dense SVD for small Jacobians; for large ones a sparse QR of
// Jᵀ whose pivot threshold is the singular-value threshold (a row of J whose distance
// from the span of the rows kept before it is below the threshold is dependent),
// with the kept rows' smallest singular value checked by inverse iteration. When
// that check cannot confirm the threshold, the dense SVD decides.
#include "sketch/solver/RankTools.h"

#include <Eigen/OrderingMethods>
#include <Eigen/SVD>
#include <Eigen/SparseQR>

#include <cmath>

namespace cad::solver {

namespace {

// A fixed, irregular start vector (iterations must be repeatable).
Eigen::VectorXd startVector(Eigen::Index n) {
    Eigen::VectorXd v(n);
    for (Eigen::Index i = 0; i < n; ++i)
        v(i) = 1.0 + 0.5 * std::sin(1.7 * static_cast<double>(i) + 0.3);
    return v.normalized();
}

// Smallest singular value of the upper triangular R by inverse iteration on RᵀR;
// an estimate from above that converges quickly when the smallest is well separated.
double smallestSingularValue(const Eigen::SparseMatrix<double>& r) {
    const Eigen::Index n = r.cols();
    if (n == 0) return INFINITY;
    for (Eigen::Index i = 0; i < n; ++i)
        if (r.coeff(i, i) == 0) return 0;
    Eigen::VectorXd y = startVector(n);
    double estimate = INFINITY;
    for (int it = 0; it < 40; ++it) {
        Eigen::VectorXd w = r.transpose().triangularView<Eigen::Lower>().solve(y);
        Eigen::VectorXd z = r.triangularView<Eigen::Upper>().solve(w);
        const double norm = z.norm();
        if (!std::isfinite(norm) || norm == 0) return 0;
        const double next = std::sqrt(1.0 / norm);
        y = z / norm;
        if (std::fabs(next - estimate) <= 1e-3 * next) return next;
        estimate = next;
    }
    return estimate;
}

} // namespace

RankResult denseRank(const Eigen::MatrixXd& jacobian, bool withNullSpace, double threshold) {
    RankResult out;
    const Eigen::Index cols = jacobian.cols();
    if (jacobian.rows() == 0 || cols == 0) {
        if (withNullSpace) out.nullBasis = Eigen::MatrixXd::Identity(cols, cols);
        return out;
    }
    Eigen::BDCSVD<Eigen::MatrixXd> svd(jacobian, withNullSpace ? Eigen::ComputeFullV : 0);
    const Eigen::VectorXd& sigma = svd.singularValues();
    if (threshold < 0) threshold = rankThreshold(sigma.size() ? sigma(0) : 0.0);
    for (Eigen::Index i = 0; i < sigma.size(); ++i)
        if (sigma(i) > threshold) ++out.rank;
    if (withNullSpace) out.nullBasis = svd.matrixV().rightCols(cols - out.rank);
    return out;
}

double largestSingularValue(const SparseJacobian& jacobian) {
    if (jacobian.nonZeros() == 0) return 0;
    Eigen::VectorXd v = startVector(jacobian.cols());
    double estimate = 0;
    for (int it = 0; it < 100; ++it) {
        Eigen::VectorXd w = jacobian.transpose() * (jacobian * v);
        const double norm = w.norm();
        if (norm == 0) return 0;
        const double next = std::sqrt(norm);
        v = w / norm;
        if (std::fabs(next - estimate) <= 1e-6 * next) return next;
        estimate = next;
    }
    return estimate;
}

RankResult sparseRank(const SparseJacobian& jacobian, bool withNullSpace, double threshold) {
    const Eigen::Index n = jacobian.cols();
    Eigen::SparseMatrix<double> transposed = jacobian.transpose();
    transposed.makeCompressed();
    // Parameters no equation touches are free directions of their own; the QR needs
    // every row of Jᵀ to hold something.
    std::vector<Eigen::Index> used, unused;
    {
        Eigen::VectorXi count = Eigen::VectorXi::Zero(n);
        for (Eigen::Index k = 0; k < jacobian.outerSize(); ++k)
            for (SparseJacobian::InnerIterator it(jacobian, k); it; ++it) ++count(it.col());
        for (Eigen::Index i = 0; i < n; ++i) (count(i) ? used : unused).push_back(i);
    }
    if (!unused.empty()) {
        std::vector<Eigen::Triplet<double>> t;
        std::vector<Eigen::Index> row(static_cast<std::size_t>(n), -1);
        for (std::size_t i = 0; i < used.size(); ++i)
            row[static_cast<std::size_t>(used[i])] = static_cast<Eigen::Index>(i);
        for (Eigen::Index k = 0; k < jacobian.outerSize(); ++k)
            for (SparseJacobian::InnerIterator it(jacobian, k); it; ++it)
                t.emplace_back(row[static_cast<std::size_t>(it.col())], k, it.value());
        transposed.resize(static_cast<Eigen::Index>(used.size()), jacobian.rows());
        transposed.setFromTriplets(t.begin(), t.end());
        transposed.makeCompressed();
    }

    if (threshold < 0) threshold = rankThreshold(largestSingularValue(jacobian));
    Eigen::SparseQR<Eigen::SparseMatrix<double>, Eigen::COLAMDOrdering<int>> qr;
    qr.setPivotThreshold(threshold);
    qr.compute(transposed);
    bool trusted = qr.info() == Eigen::Success;
    RankResult out;
    if (trusted) {
        out.rank = static_cast<int>(qr.rank());
        Eigen::SparseMatrix<double> kept = qr.matrixR().topLeftCorner(out.rank, out.rank);
        trusted = smallestSingularValue(kept) > 2 * threshold;
    }
    if (!trusted) return denseRank(Eigen::MatrixXd(jacobian), withNullSpace, threshold);
    if (!withNullSpace) return out;

    // Null space of J: the columns of Q past the rank (Q spans the parameters used),
    // and a unit direction for each unused parameter.
    const Eigen::Index m = static_cast<Eigen::Index>(used.size());
    out.nullBasis.setZero(n, n - out.rank);
    Eigen::Index column = 0;
    for (Eigen::Index j = out.rank; j < m; ++j, ++column) {
        Eigen::VectorXd e = Eigen::VectorXd::Unit(m, j);
        Eigen::VectorXd q = qr.matrixQ() * e;
        for (Eigen::Index i = 0; i < m; ++i)
            out.nullBasis(used[static_cast<std::size_t>(i)], column) = q(i);
    }
    for (Eigen::Index i : unused) out.nullBasis(i, column++) = 1;
    return out;
}

} // namespace cad::solver
