// The damped least-squares Newton iteration shared by every way of solving: from
// the residuals r and Jacobian J, the trial x' = x − Jᵀ(JJᵀ + λ·max(1, max diag)·I)⁻¹r
// (the smallest move that satisfies the linearised equations), accepted when it
// lowers the largest residual; λ starts at 1e-9, drops tenfold (to 1e-12) on
// acceptance, rises tenfold on rejection, and the solve fails at 1e12 or after 200
// accepted steps that did not reach the tolerance.
#pragma once

#include "sketch/solver/RankTools.h"

#include <Eigen/Dense>
#include <Eigen/SparseCholesky>

namespace cad::solver {

class NewtonProblem {
public:
    virtual ~NewtonProblem() = default;
    virtual void residuals(const Eigen::VectorXd& u, Eigen::VectorXd& r) = 0;
    // Linearises at u (whose residuals are r) for the steps that follow.
    virtual void linearise(const Eigen::VectorXd& u) = 0;
    // du = Jᵀ(JJᵀ + λ·max(1, max diag)·I)⁻¹r; false when that system can't be solved.
    virtual bool step(double lambda, const Eigen::VectorXd& r, Eigen::VectorXd& du) = 0;
};

// Iterates from u; true when every residual is within the tolerance.
bool dampedNewton(NewtonProblem& problem, Eigen::VectorXd& u, double tolerance);

// The step with a dense J: JJᵀ formed once per linearisation, LU with partial
// pivoting per trial.
class DenseStep {
public:
    Eigen::MatrixXd jacobian;
    void prepare();
    bool step(double lambda, const Eigen::VectorXd& r, Eigen::VectorXd& du);

private:
    Eigen::MatrixXd normal_;
    double largestDiagonal_ = 0;
};

// The step with a sparse J: sparse JJᵀ, factorised by a sparse Cholesky (LDLᵀ with
// a fill-reducing ordering found once per pattern) per trial. JJᵀ + λ'I is symmetric
// positive definite for λ' > 0.
class SparseStep {
public:
    SparseJacobian jacobian;
    void prepare(); // after the Jacobian changed; the pattern may stay the same
    bool step(double lambda, const Eigen::VectorXd& r, Eigen::VectorXd& du);

private:
    Eigen::SparseMatrix<double> normal_;
    std::vector<double*> diagonal_;
    std::vector<double> plain_;
    double largestDiagonal_ = 0;
    Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>, Eigen::Lower> factor_;
    bool analysed_ = false;
    Eigen::Index analysedRows_ = 0, analysedNonZeros_ = 0;
};

} // namespace cad::solver
