// The whole-sketch engine: every residual of the sketch in one vector (constraint
// rows, then one row per fixed parameter), its Jacobian by central differences with
// h = 1e-6·max(1, |xⱼ|), dense LU steps and a dense SVD for rank and null space.
// Simple and slow on purpose: it is the reference for the block engine.
#include "sketch/solver/DampedNewton.h"
#include "sketch/solver/FreedomAnalysis.h"
#include "sketch/solver/SolveEngines.h"

#include <algorithm>
#include <cmath>

namespace cad::solver {

namespace {

class WholeSystem {
public:
    // fixedRows: one row xᵢ − xᵢ⁽⁰⁾ per fixed parameter. skip: a constraint left out.
    WholeSystem(const SolverSystem& system, bool fixedRows, int skip = -1)
        : system_(system), skip_(skip) {
        for (int c = 0; c < static_cast<int>(system.constraints.size()); ++c)
            if (c != skip) rows_ += system.constraints[static_cast<std::size_t>(c)].rows;
        if (fixedRows)
            for (int p = 0; p < system.parameterCount(); ++p)
                if (system.fixed[static_cast<std::size_t>(p)]) fixed_.push_back(p);
        rows_ += static_cast<int>(fixed_.size());
    }

    int rows() const { return rows_; }

    void residuals(const double* x, double* out) const {
        for (int c = 0; c < static_cast<int>(system_.constraints.size()); ++c) {
            if (c == skip_) continue;
            const CompiledConstraint& compiled = system_.constraints[static_cast<std::size_t>(c)];
            evaluateRows(system_, compiled, x, out);
            out += compiled.rows;
        }
        for (int p : fixed_) *out++ = x[p] - system_.x0[static_cast<std::size_t>(p)];
    }

    Eigen::MatrixXd jacobian(std::vector<double> x) const {
        const Eigen::Index n = static_cast<Eigen::Index>(x.size());
        Eigen::MatrixXd j(rows_, n);
        Eigen::VectorXd plus(rows_), minus(rows_);
        for (Eigen::Index col = 0; col < n; ++col) {
            double& xj = x[static_cast<std::size_t>(col)];
            const double keep = xj;
            const double h = 1e-6 * std::max(1.0, std::fabs(keep));
            xj = keep + h;
            residuals(x.data(), plus.data());
            xj = keep - h;
            residuals(x.data(), minus.data());
            xj = keep;
            j.col(col) = (plus - minus) / (2 * h);
        }
        return j;
    }

private:
    const SolverSystem& system_;
    int skip_ = -1;
    int rows_ = 0;
    std::vector<int> fixed_;
};

class WholeProblem : public NewtonProblem {
public:
    explicit WholeProblem(const SolverSystem& system) : whole_(system, true) {}

    void residuals(const Eigen::VectorXd& u, Eigen::VectorXd& r) override {
        r.resize(whole_.rows());
        whole_.residuals(u.data(), r.data());
    }
    void linearise(const Eigen::VectorXd& u) override {
        step_.jacobian = whole_.jacobian(std::vector<double>(u.data(), u.data() + u.size()));
        step_.prepare();
    }
    bool step(double lambda, const Eigen::VectorXd& r, Eigen::VectorXd& du) override {
        return step_.step(lambda, r, du);
    }

private:
    WholeSystem whole_;
    DenseStep step_;
};

} // namespace

bool solveWhole(const SolverSystem& system, std::vector<double>& x) {
    WholeProblem problem(system);
    Eigen::VectorXd u =
        Eigen::Map<const Eigen::VectorXd>(x.data(), static_cast<Eigen::Index>(x.size()));
    const bool solved = dampedNewton(problem, u, system.tolerance);
    std::copy(u.data(), u.data() + u.size(), x.begin());
    // The fixed rows hold projected and held parameters to within rounding; they are
    // given back exactly, since linked geometry never moves.
    for (std::size_t p = 0; p < x.size(); ++p)
        if (system.fixed[p]) x[p] = system.x0[p];
    return solved;
}

int rankGainWhole(const SolverSystem& system, const std::vector<double>& x, int added) {
    const int before = denseRank(WholeSystem(system, false, added).jacobian(x), false).rank;
    const int after = denseRank(WholeSystem(system, false).jacobian(x), false).rank;
    return after - before;
}

SketchAnalysis analyseWhole(const SolverSystem& system, const std::vector<SketchEntity>& entities) {
    const int n = system.parameterCount();
    RankResult rank = denseRank(WholeSystem(system, true).jacobian(system.x0), true);
    FreedomAnalysis freedom(system, entities);
    std::vector<int> all(static_cast<std::size_t>(n));
    for (int p = 0; p < n; ++p) all[static_cast<std::size_t>(p)] = p;
    freedom.addNullSpace(rank.nullBasis.sparseView(), all);
    return freedom.finish(n - rank.rank);
}

} // namespace cad::solver
