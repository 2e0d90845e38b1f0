// The damped least-squares Newton iteration and its dense and sparse linear steps.
#include "sketch/solver/DampedNewton.h"

#include <algorithm>
#include <cmath>

namespace cad::solver {

namespace {

constexpr double kFirstDamping = 1e-9;
constexpr double kSmallestDamping = 1e-12;
constexpr double kFailingDamping = 1e12;
constexpr int kMaxIterations = 200;

double largest(const Eigen::VectorXd& r) { return r.size() ? r.lpNorm<Eigen::Infinity>() : 0.0; }

} // namespace

bool dampedNewton(NewtonProblem& problem, Eigen::VectorXd& u, double tolerance) {
    Eigen::VectorXd r, trialR, du, trial;
    problem.residuals(u, r);
    double lambda = kFirstDamping;
    int accepted = 0;
    for (;;) {
        const double now = largest(r);
        if (now <= tolerance) return true;
        if (accepted >= kMaxIterations || !std::isfinite(now)) return false;
        problem.linearise(u);
        for (;;) {
            bool better = false;
            if (problem.step(lambda, r, du)) {
                trial = u - du;
                if (trial.allFinite()) {
                    problem.residuals(trial, trialR);
                    better = largest(trialR) < now; // NaN never counts as better
                }
            }
            if (better) {
                u.swap(trial);
                r.swap(trialR);
                lambda = std::max(lambda / 10, kSmallestDamping);
                ++accepted;
                break;
            }
            lambda *= 10;
            if (lambda >= kFailingDamping) return false;
        }
    }
}

void DenseStep::prepare() {
    normal_.noalias() = jacobian * jacobian.transpose();
    largestDiagonal_ = normal_.rows() ? normal_.diagonal().maxCoeff() : 0.0;
}

bool DenseStep::step(double lambda, const Eigen::VectorXd& r, Eigen::VectorXd& du) {
    Eigen::MatrixXd m = normal_;
    m.diagonal().array() += lambda * std::max(1.0, largestDiagonal_);
    Eigen::VectorXd y = m.partialPivLu().solve(r);
    du.noalias() = jacobian.transpose() * y;
    return y.allFinite();
}

void SparseStep::prepare() {
    const Eigen::Index rows = jacobian.rows();
    Eigen::SparseMatrix<double> identity(rows, rows);
    identity.setIdentity();
    // The zero identity keeps every diagonal entry in the pattern.
    Eigen::SparseMatrix<double> product = jacobian * jacobian.transpose();
    normal_ = product + 0.0 * identity;
    normal_.makeCompressed();
    // A block keeps its pattern from one linearisation to the next (every parameter a
    // row depends on is entered, even at a zero derivative): order it once.
    const bool samePattern =
        analysed_ && normal_.rows() == analysedRows_ && normal_.nonZeros() == analysedNonZeros_;
    diagonal_.assign(static_cast<std::size_t>(rows), nullptr);
    largestDiagonal_ = 0;
    for (Eigen::Index k = 0; k < normal_.outerSize(); ++k)
        for (Eigen::SparseMatrix<double>::InnerIterator it(normal_, k); it; ++it)
            if (it.row() == it.col()) {
                diagonal_[static_cast<std::size_t>(k)] = &it.valueRef();
                largestDiagonal_ = std::max(largestDiagonal_, it.value());
            }
    plain_.resize(diagonal_.size());
    for (std::size_t i = 0; i < diagonal_.size(); ++i) plain_[i] = *diagonal_[i];
    if (!samePattern) {
        factor_.analyzePattern(normal_);
        analysed_ = true;
        analysedRows_ = normal_.rows();
        analysedNonZeros_ = normal_.nonZeros();
    }
}

bool SparseStep::step(double lambda, const Eigen::VectorXd& r, Eigen::VectorXd& du) {
    const double shift = lambda * std::max(1.0, largestDiagonal_);
    for (std::size_t i = 0; i < diagonal_.size(); ++i) *diagonal_[i] = plain_[i] + shift;
    factor_.factorize(normal_);
    for (std::size_t i = 0; i < diagonal_.size(); ++i) *diagonal_[i] = plain_[i];
    if (factor_.info() != Eigen::Success) return false;
    Eigen::VectorXd y = factor_.solve(r);
    du.noalias() = jacobian.transpose() * y;
    return y.allFinite();
}

} // namespace cad::solver
