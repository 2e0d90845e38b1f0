// Rank and null space through the exact elimination of equality and pin rows.
#include "sketch/solver/JacobianRank.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace cad::solver {

namespace {

// Rows eliminated exactly must stand well clear of the singular-value threshold.
constexpr double kEliminationMargin = 1e3;

// An upper bound of the largest singular value: sqrt(‖J‖₁ · ‖J‖∞).
double singularValueBound(const SparseJacobian& j) {
    std::vector<double> columns(static_cast<std::size_t>(j.cols()), 0.0);
    double rowMax = 0;
    for (Eigen::Index r = 0; r < j.outerSize(); ++r) {
        double row = 0;
        for (SparseJacobian::InnerIterator it(j, r); it; ++it) {
            row += std::fabs(it.value());
            columns[static_cast<std::size_t>(it.col())] += std::fabs(it.value());
        }
        rowMax = std::max(rowMax, row);
    }
    const double columnMax =
        columns.empty() ? 0.0 : *std::max_element(columns.begin(), columns.end());
    return std::sqrt(columnMax * rowMax);
}

class Classes {
public:
    explicit Classes(Eigen::Index n)
        : parent_(static_cast<std::size_t>(n)), pinned_(parent_.size(), 0) {
        std::iota(parent_.begin(), parent_.end(), 0);
    }
    int find(int i) {
        while (parent_[static_cast<std::size_t>(i)] != i) {
            int& p = parent_[static_cast<std::size_t>(i)];
            p = parent_[static_cast<std::size_t>(p)];
            i = p;
        }
        return i;
    }
    // True when the pin says something new.
    bool pin(int i) {
        char& p = pinned_[static_cast<std::size_t>(find(i))];
        if (p) return false;
        p = 1;
        return true;
    }
    // True when the equality says something new.
    bool join(int a, int b) {
        a = find(a);
        b = find(b);
        if (a == b) return false;
        const bool pa = pinned_[static_cast<std::size_t>(a)],
                   pb = pinned_[static_cast<std::size_t>(b)];
        if (pa && pb) return false;
        parent_[static_cast<std::size_t>(b)] = a;
        pinned_[static_cast<std::size_t>(a)] = pa || pb;
        return true;
    }
    bool pinned(int root) const { return pinned_[static_cast<std::size_t>(root)] != 0; }

private:
    std::vector<int> parent_;
    std::vector<char> pinned_;
};

} // namespace

JacobianRank jacobianRank(const SparseJacobian& j, bool withNullSpace, int denseLimit) {
    const Eigen::Index n = j.cols();
    const double eliminable = kEliminationMargin * rankThreshold(singularValueBound(j));

    Classes classes(n);
    JacobianRank out;
    std::vector<Eigen::Index> rest;
    for (Eigen::Index r = 0; r < j.outerSize(); ++r) {
        int count = 0, first = -1, second = -1;
        double a = 0, b = 0;
        for (SparseJacobian::InnerIterator it(j, r); it; ++it) {
            if (it.value() == 0) continue;
            if (++count == 1) {
                first = static_cast<int>(it.col());
                a = it.value();
            } else if (count == 2) {
                second = static_cast<int>(it.col());
                b = it.value();
            }
        }
        if (count == 0) continue; // says nothing at all here
        if (count == 1 && std::fabs(a) >= eliminable) {
            out.rank += classes.pin(first) ? 1 : 0;
        } else if (count == 2 && a == -b && std::fabs(a) >= eliminable) {
            out.rank += classes.join(first, second) ? 1 : 0;
        } else {
            rest.push_back(r);
        }
    }

    // Each free class is one orthonormal direction: its members' unit vectors / √size.
    std::vector<int> root(static_cast<std::size_t>(n));
    std::vector<int> size(static_cast<std::size_t>(n), 0);
    for (Eigen::Index i = 0; i < n; ++i) {
        root[static_cast<std::size_t>(i)] = classes.find(static_cast<int>(i));
        ++size[static_cast<std::size_t>(root[static_cast<std::size_t>(i)])];
    }
    std::vector<int> column(static_cast<std::size_t>(n), -1); // rest column of a touched free class
    std::vector<int> touched;
    std::vector<Eigen::Triplet<double>> entries;
    for (std::size_t k = 0; k < rest.size(); ++k)
        for (SparseJacobian::InnerIterator it(j, rest[k]); it; ++it) {
            const int c = root[static_cast<std::size_t>(it.col())];
            if (classes.pinned(c)) continue;
            int& col = column[static_cast<std::size_t>(c)];
            if (col < 0) {
                col = static_cast<int>(touched.size());
                touched.push_back(c);
            }
            entries.emplace_back(static_cast<Eigen::Index>(k), col,
                                 it.value() / std::sqrt(size[static_cast<std::size_t>(c)]));
        }

    RankResult remaining;
    if (!touched.empty()) {
        SparseJacobian reduced(static_cast<Eigen::Index>(rest.size()),
                               static_cast<Eigen::Index>(touched.size()));
        reduced.setFromTriplets(entries.begin(), entries.end());
        // The threshold of the whole Jacobian, not of what is left of it.
        const double threshold = rankThreshold(largestSingularValue(j));
        remaining = static_cast<int>(touched.size()) <= denseLimit
                        ? denseRank(Eigen::MatrixXd(reduced), withNullSpace, threshold)
                        : sparseRank(reduced, withNullSpace, threshold);
        out.rank += remaining.rank;
    }
    if (!withNullSpace) return out;

    // Members of each class, for spreading class directions back onto parameters.
    std::vector<int> start(static_cast<std::size_t>(n) + 1, 0),
        members(static_cast<std::size_t>(n));
    for (Eigen::Index i = 0; i < n; ++i)
        ++start[static_cast<std::size_t>(root[static_cast<std::size_t>(i)]) + 1];
    std::partial_sum(start.begin(), start.end(), start.begin());
    {
        std::vector<int> fill(start.begin(), start.end() - 1);
        for (Eigen::Index i = 0; i < n; ++i)
            members[static_cast<std::size_t>(
                fill[static_cast<std::size_t>(root[static_cast<std::size_t>(i)])]++)] =
                static_cast<int>(i);
    }
    auto spread = [&](int c, double weight, Eigen::Index nullColumn) {
        const double w = weight / std::sqrt(size[static_cast<std::size_t>(c)]);
        for (int k = start[static_cast<std::size_t>(c)]; k < start[static_cast<std::size_t>(c) + 1];
             ++k)
            entries.emplace_back(members[static_cast<std::size_t>(k)], nullColumn, w);
    };
    entries.clear();
    Eigen::Index nullColumn = 0;
    for (Eigen::Index v = 0; v < remaining.nullBasis.cols(); ++v, ++nullColumn)
        for (std::size_t col = 0; col < touched.size(); ++col) {
            const double z = remaining.nullBasis(static_cast<Eigen::Index>(col), v);
            if (z != 0) spread(touched[col], z, nullColumn);
        }
    for (Eigen::Index i = 0; i < n; ++i) {
        const int c = static_cast<int>(i);
        if (root[static_cast<std::size_t>(i)] != c || classes.pinned(c) ||
            column[static_cast<std::size_t>(i)] >= 0)
            continue;
        spread(c, 1.0, nullColumn++);
    }
    out.nullBasis.resize(n, nullColumn);
    out.nullBasis.setFromTriplets(entries.begin(), entries.end());
    return out;
}

} // namespace cad::solver
