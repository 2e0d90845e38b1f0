// Entity freedom from null-space directions. The directions a shape can still move
// in are the principal directions of its parameters' part of the null space, so they
// do not depend on which basis of the null space the decomposition happened to give.
#include "sketch/solver/FreedomAnalysis.h"

#include <Eigen/Dense>
#include <Eigen/Eigenvalues>

#include <algorithm>

namespace cad::solver {

namespace {

constexpr double kDeterminedRowNorm = 1e-6;
constexpr double kDisplacement = 0.001;

bool showsDisplacement(EntityKind kind) {
    return kind == EntityKind::Rectangle || kind == EntityKind::Polygon || kind == EntityKind::Slot;
}

} // namespace

FreedomAnalysis::FreedomAnalysis(const SolverSystem& system,
                                 const std::vector<SketchEntity>& entities)
    : system_(system), entities_(entities),
      rowNorm2_(static_cast<std::size_t>(system.parameterCount()), 0.0), gram_(entities.size()) {}

void FreedomAnalysis::addToShape(int entity, const Eigen::VectorXd& part) {
    Eigen::MatrixXd& g = gram_[static_cast<std::size_t>(entity)];
    if (g.size() == 0) g = Eigen::MatrixXd::Zero(part.size(), part.size());
    g.noalias() += part * part.transpose();
}

void FreedomAnalysis::addNullSpace(const Eigen::SparseMatrix<double>& basis,
                                   const std::vector<int>& params) {
    Eigen::VectorXd part;
    for (Eigen::Index k = 0; k < basis.outerSize(); ++k) {
        // Entries come by ascending parameter, so one entity's are consecutive.
        int shape = -1;
        for (Eigen::SparseMatrix<double>::InnerIterator it(basis, k); it; ++it) {
            const int param = params[static_cast<std::size_t>(it.row())];
            rowNorm2_[static_cast<std::size_t>(param)] += it.value() * it.value();
            const int e = system_.owner[static_cast<std::size_t>(param)];
            if (!showsDisplacement(entities_[static_cast<std::size_t>(e)].kind())) continue;
            const int offset = system_.layout.offset[static_cast<std::size_t>(e)];
            if (e != shape) {
                if (shape >= 0) addToShape(shape, part);
                shape = e;
                part.setZero(system_.layout.offset[static_cast<std::size_t>(e) + 1] - offset);
            }
            part(param - offset) += it.value();
        }
        if (shape >= 0) addToShape(shape, part);
    }
}

void FreedomAnalysis::addFreeParameter(int param) {
    rowNorm2_[static_cast<std::size_t>(param)] += 1.0;
    const int e = system_.owner[static_cast<std::size_t>(param)];
    if (!showsDisplacement(entities_[static_cast<std::size_t>(e)].kind())) return;
    const int offset = system_.layout.offset[static_cast<std::size_t>(e)];
    Eigen::VectorXd part =
        Eigen::VectorXd::Zero(system_.layout.offset[static_cast<std::size_t>(e) + 1] - offset);
    part(param - offset) = 1.0;
    addToShape(e, part);
}

SketchAnalysis FreedomAnalysis::finish(int degreesOfFreedom) const {
    SketchAnalysis out;
    out.degreesOfFreedom = degreesOfFreedom;
    out.determined.assign(entities_.size(), true);
    const double limit = kDeterminedRowNorm * kDeterminedRowNorm;
    for (std::size_t e = 0; e < entities_.size(); ++e) {
        for (int p = system_.layout.offset[e]; p < system_.layout.offset[e + 1]; ++p)
            if (rowNorm2_[static_cast<std::size_t>(p)] >= limit) out.determined[e] = false;
        if (out.determined[e] || !showsDisplacement(entities_[e].kind()) || gram_[e].size() == 0)
            continue;
        Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> eigen(gram_[e]);
        SketchAnalysis::Displacement shown;
        shown.entity = static_cast<int>(e);
        const std::vector<double> now = entityParameters(entities_[e]);
        // Largest freedom first; each direction signed so its largest component is positive.
        for (Eigen::Index k = eigen.eigenvalues().size() - 1; k >= 0; --k) {
            if (eigen.eigenvalues()(k) < limit) break;
            Eigen::VectorXd u = eigen.eigenvectors().col(k);
            Eigen::Index big = 0;
            u.cwiseAbs().maxCoeff(&big);
            if (u(big) < 0) u = -u;
            std::vector<double> moved = now;
            for (std::size_t i = 0; i < moved.size(); ++i)
                moved[i] += kDisplacement * u(static_cast<Eigen::Index>(i));
            SketchEntity shape = entities_[e];
            setEntityParameters(shape, moved);
            shown.shapes.push_back(std::move(shape));
        }
        if (!shown.shapes.empty()) out.displacements.push_back(std::move(shown));
    }
    return out;
}

} // namespace cad::solver
