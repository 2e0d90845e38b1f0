// The block engine: the sketch's equations split into independent blocks, each
// solved, rank-tested and analysed alone with exact Jacobian rows. A block whose
// residuals already hold costs one residual evaluation; parameters of projected and
// held entities are constants here rather than extra rows (the same solutions, held
// exactly). Blocks larger than the dense limit take sparse steps and the sparse rank
// test.
#include "sketch/solver/BlockPartition.h"
#include "sketch/solver/DampedNewton.h"
#include "sketch/solver/FreedomAnalysis.h"
#include "sketch/solver/JacobianRank.h"
#include "sketch/solver/SolveEngines.h"

#include <algorithm>
#include <cmath>

namespace cad::solver {

namespace {

// Local column of each global parameter while one block is worked on.
class ColumnMap {
public:
    ColumnMap(std::vector<int>& columns, const std::vector<int>& params)
        : columns_(columns), params_(params) {
        for (std::size_t i = 0; i < params.size(); ++i)
            columns_[static_cast<std::size_t>(params[i])] = static_cast<int>(i);
    }
    ~ColumnMap() {
        for (int p : params_) columns_[static_cast<std::size_t>(p)] = -1;
    }
    ColumnMap(const ColumnMap&) = delete;
    ColumnMap& operator=(const ColumnMap&) = delete;
    int operator()(int param) const { return columns_[static_cast<std::size_t>(param)]; }

private:
    std::vector<int>& columns_;
    const std::vector<int>& params_;
};

// Calls sink(row, column, derivative) for the block's rows (constraint `skip` left
// out), parameters outside the block being constants.
template <class Sink>
int assemble(const SolverSystem& system, const std::vector<double>& x, const Block& block,
             const ColumnMap& column, int skip, Sink&& sink) {
    int row = 0;
    double residuals[64];
    std::vector<double> many;
    for (int c : block.constraints) {
        if (c == skip) continue;
        const CompiledConstraint& compiled = system.constraints[static_cast<std::size_t>(c)];
        double* out = residuals;
        if (compiled.rows > 64) {
            many.resize(static_cast<std::size_t>(compiled.rows));
            out = many.data();
        }
        jacobianEntries(system, compiled, x.data(), out, [&](int r, int param, double value) {
            const int col = column(param);
            if (col >= 0) sink(row + r, col, value);
        });
        row += compiled.rows;
    }
    return row;
}

SparseJacobian sparseJacobian(const SolverSystem& system, const std::vector<double>& x,
                              const Block& block, const ColumnMap& column, int skip) {
    std::vector<Eigen::Triplet<double>> entries;
    entries.reserve(static_cast<std::size_t>(block.rows) * 4);
    const int rows = assemble(system, x, block, column, skip,
                              [&](int r, int c, double v) { entries.emplace_back(r, c, v); });
    SparseJacobian j(rows, static_cast<Eigen::Index>(block.params.size()));
    j.setFromTriplets(entries.begin(), entries.end());
    return j;
}

Eigen::MatrixXd denseJacobian(const SolverSystem& system, const std::vector<double>& x,
                              const Block& block, const ColumnMap& column, int skip) {
    int rows = block.rows;
    if (skip >= 0) rows -= system.constraints[static_cast<std::size_t>(skip)].rows;
    Eigen::MatrixXd j = Eigen::MatrixXd::Zero(rows, static_cast<Eigen::Index>(block.params.size()));
    assemble(system, x, block, column, skip, [&](int r, int c, double v) { j(r, c) += v; });
    return j;
}

double largestResidual(const SolverSystem& system, const std::vector<double>& x,
                       const std::vector<int>& constraints) {
    double worst = 0;
    double out[64];
    std::vector<double> many;
    for (int c : constraints) {
        const CompiledConstraint& compiled = system.constraints[static_cast<std::size_t>(c)];
        double* rows = out;
        if (compiled.rows > 64) {
            many.resize(static_cast<std::size_t>(compiled.rows));
            rows = many.data();
        }
        evaluateRows(system, compiled, x.data(), rows);
        for (int r = 0; r < compiled.rows; ++r) {
            const double v = std::fabs(rows[r]);
            if (!(v <= worst)) worst = v; // NaN wins, so it never passes for solved
        }
    }
    return worst;
}

class BlockProblem : public NewtonProblem {
public:
    BlockProblem(const SolverSystem& system, std::vector<double>& x, const Block& block,
                 const ColumnMap& column, bool sparse)
        : system_(system), x_(x), block_(block), column_(column), sparse_(sparse) {}

    void residuals(const Eigen::VectorXd& u, Eigen::VectorXd& r) override {
        place(u);
        r.resize(block_.rows);
        double* out = r.data();
        for (int c : block_.constraints) {
            const CompiledConstraint& compiled = system_.constraints[static_cast<std::size_t>(c)];
            evaluateRows(system_, compiled, x_.data(), out);
            out += compiled.rows;
        }
    }
    void linearise(const Eigen::VectorXd& u) override {
        place(u);
        if (sparse_) {
            sparse_step_.jacobian = sparseJacobian(system_, x_, block_, column_, -1);
            sparse_step_.prepare();
        } else {
            dense_step_.jacobian = denseJacobian(system_, x_, block_, column_, -1);
            dense_step_.prepare();
        }
    }
    bool step(double lambda, const Eigen::VectorXd& r, Eigen::VectorXd& du) override {
        return sparse_ ? sparse_step_.step(lambda, r, du) : dense_step_.step(lambda, r, du);
    }
    void place(const Eigen::VectorXd& u) {
        for (std::size_t i = 0; i < block_.params.size(); ++i)
            x_[static_cast<std::size_t>(block_.params[i])] = u(static_cast<Eigen::Index>(i));
    }

private:
    const SolverSystem& system_;
    std::vector<double>& x_;
    const Block& block_;
    const ColumnMap& column_;
    bool sparse_;
    DenseStep dense_step_;
    SparseStep sparse_step_;
};

std::vector<char> freeParameters(const SolverSystem& system, bool fixedHeld) {
    std::vector<char> free(system.fixed.size(), 1);
    if (fixedHeld)
        for (std::size_t p = 0; p < free.size(); ++p) free[p] = system.fixed[p] ? 0 : 1;
    return free;
}

int blockRank(const SolverSystem& system, const std::vector<double>& x, const Block& block,
              const ColumnMap& column, int skip, int denseLimit) {
    return jacobianRank(sparseJacobian(system, x, block, column, skip), false, denseLimit).rank;
}

} // namespace

bool solveByBlocks(const SolverSystem& system, std::vector<double>& x, int denseLimit) {
    const Partition partition = partitionSystem(system, freeParameters(system, true));
    if (largestResidual(system, x, partition.pinned) > system.tolerance) return false;
    std::vector<int> columns(x.size(), -1);
    for (const Block& block : partition.blocks) {
        if (largestResidual(system, x, block.constraints) <= system.tolerance) continue;
        ColumnMap column(columns, block.params);
        BlockProblem problem(system, x, block, column, block.rows > denseLimit);
        Eigen::VectorXd u(static_cast<Eigen::Index>(block.params.size()));
        for (std::size_t i = 0; i < block.params.size(); ++i)
            u(static_cast<Eigen::Index>(i)) = x[static_cast<std::size_t>(block.params[i])];
        const bool solved = dampedNewton(problem, u, system.tolerance);
        problem.place(u);
        if (!solved) return false;
    }
    return true;
}

int rankGainByBlocks(const SolverSystem& system, const std::vector<double>& x, int added,
                     int denseLimit) {
    const Partition partition = partitionSystem(system, freeParameters(system, false));
    for (const Block& block : partition.blocks) {
        if (!std::binary_search(block.constraints.begin(), block.constraints.end(), added))
            continue;
        std::vector<int> columns(x.size(), -1);
        ColumnMap column(columns, block.params);
        return blockRank(system, x, block, column, -1, denseLimit) -
               blockRank(system, x, block, column, added, denseLimit);
    }
    return 0; // it depends on no parameter at all: it adds nothing
}

SketchAnalysis analyseByBlocks(const SolverSystem& system,
                               const std::vector<SketchEntity>& entities, int denseLimit) {
    const std::vector<char> free = freeParameters(system, true);
    const Partition partition = partitionSystem(system, free);
    FreedomAnalysis freedom(system, entities);
    std::vector<int> columns(system.x0.size(), -1);
    std::vector<char> inBlock(system.x0.size(), 0);
    int freeCount = 0, rank = 0;
    for (const Block& block : partition.blocks) {
        ColumnMap column(columns, block.params);
        JacobianRank r =
            jacobianRank(sparseJacobian(system, system.x0, block, column, -1), true, denseLimit);
        rank += r.rank;
        freedom.addNullSpace(r.nullBasis, block.params);
        for (int p : block.params) inBlock[static_cast<std::size_t>(p)] = 1;
    }
    for (int p = 0; p < system.parameterCount(); ++p) {
        if (!free[static_cast<std::size_t>(p)]) continue;
        ++freeCount;
        if (!inBlock[static_cast<std::size_t>(p)]) freedom.addFreeParameter(p);
    }
    return freedom.finish(freeCount - rank);
}

} // namespace cad::solver
