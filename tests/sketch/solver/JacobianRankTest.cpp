// The rank and null space found by taking exact equality rows out first agree with a
// dense SVD of the whole Jacobian, on the sparse and the dense path for what remains.
#include "sketch/solver/JacobianRank.h"

#include <gtest/gtest.h>

#include <random>

namespace cad::solver {
namespace {

// A Jacobian made the way sketches make them: equality rows xᵢ − xⱼ (some repeating
// what others say), pins, general rows, and rows that are combinations of others.
SparseJacobian sketchLikeJacobian(std::mt19937& rng, int n) {
    std::uniform_int_distribution<int> param(0, n - 1);
    std::uniform_real_distribution<double> value(-2, 2);
    std::vector<Eigen::VectorXd> rows;
    auto unit = [&](int i) { return Eigen::VectorXd::Unit(n, i); };
    for (int k = 0; k < n / 2; ++k) {
        const int i = param(rng), j = param(rng);
        if (i != j) rows.push_back(unit(i) - unit(j));
    }
    for (int k = 0; k < 2; ++k) rows.push_back(3.0 * unit(param(rng)));
    for (int k = 0; k < n / 4; ++k) {
        Eigen::VectorXd r = Eigen::VectorXd::Zero(n);
        for (int t = 0; t < 3; ++t) r(param(rng)) = value(rng);
        rows.push_back(r);
    }
    const std::size_t made = rows.size();
    for (int k = 0; k < 3; ++k) // dependent rows
        rows.push_back(rows[static_cast<std::size_t>(k) % made] * 0.5 -
                       rows[made - 1 - static_cast<std::size_t>(k)]);
    std::shuffle(rows.begin(), rows.end(), rng);
    SparseJacobian j(static_cast<Eigen::Index>(rows.size()), n);
    std::vector<Eigen::Triplet<double>> t;
    for (std::size_t r = 0; r < rows.size(); ++r)
        for (int c = 0; c < n; ++c)
            if (rows[r](c) != 0) t.emplace_back(static_cast<Eigen::Index>(r), c, rows[r](c));
    j.setFromTriplets(t.begin(), t.end());
    return j;
}

TEST(JacobianRank, AgreesWithADenseDecompositionOfTheWhole) {
    std::mt19937 rng(7);
    for (int trial = 0; trial < 40; ++trial) {
        const int n = 6 + trial % 30;
        const SparseJacobian j = sketchLikeJacobian(rng, n);
        const Eigen::MatrixXd dense(j);
        const RankResult reference = denseRank(dense, true);
        const Eigen::MatrixXd projector = reference.nullBasis * reference.nullBasis.transpose();
        for (int limit : {1000, 0}) { // the remaining rows dense, then sparse
            SCOPED_TRACE("trial " + std::to_string(trial) + " dense limit " +
                         std::to_string(limit));
            const JacobianRank r = jacobianRank(j, true, limit);
            EXPECT_EQ(r.rank, reference.rank);
            const Eigen::MatrixXd basis(r.nullBasis);
            ASSERT_EQ(basis.cols(), n - r.rank);
            if (basis.cols() == 0) continue;
            EXPECT_LT(
                (basis.transpose() * basis - Eigen::MatrixXd::Identity(basis.cols(), basis.cols()))
                    .cwiseAbs()
                    .maxCoeff(),
                1e-9);
            EXPECT_LT((basis * basis.transpose() - projector).cwiseAbs().maxCoeff(), 1e-8);
            EXPECT_LT((dense * basis).cwiseAbs().maxCoeff(), 1e-9);
        }
    }
}

TEST(JacobianRank, NearlyDependentRowsFollowTheSingularValueThreshold) {
    // Two rows 1e-9 apart are one equation; 1e-3 apart, two.
    for (double gap : {1e-9, 1e-3}) {
        SparseJacobian j(3, 3);
        std::vector<Eigen::Triplet<double>> t{{0, 0, 1},   {0, 1, -1}, {1, 1, 1},
                                              {1, 2, 0.5}, {2, 1, 1},  {2, 2, 0.5 + gap}};
        j.setFromTriplets(t.begin(), t.end());
        EXPECT_EQ(jacobianRank(j, false, 100).rank, gap < 1e-6 ? 2 : 3) << gap;
        EXPECT_EQ(jacobianRank(j, false, 0).rank, gap < 1e-6 ? 2 : 3) << gap;
    }
}

} // namespace
} // namespace cad::solver
