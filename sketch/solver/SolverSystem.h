// One solve's system of equations, built from copies of a sketch's entities and
// constraints: the parameter vector with each entity's offset, the sketch's scale
// and tolerance, the compiled constraints (a drag last), and which parameters are
// held where they are (projected and held entities).
#pragma once

#include "core/Result.h"
#include "sketch/SketchSolver.h"
#include "sketch/solver/CompiledConstraint.h"

#include <optional>
#include <string>
#include <vector>

namespace cad::solver {

struct SolverSystem {
    ParameterLayout layout;
    std::vector<int> owner;  // the entity of each parameter
    std::vector<double> x0;  // the parameters as drawn
    std::vector<char> fixed; // held where they are: projected and held entities
    double scale = 1;        // max(1, diagonal of the key points' box with the origin)
    double tolerance = 1e-9; // 1e-9 · scale
    std::vector<CompiledConstraint> constraints; // the caller's order; a drag last
    bool dragging = false;
    std::vector<double> fixPool; // targets and weights of fixes on whole entities

    int parameterCount() const { return layout.count(); }
};

struct SystemOptions {
    std::vector<std::string> held;
    std::optional<SketchDrag> drag;
    // Leave out constraints whose references no longer resolve instead of failing
    // (analysis colours what it can).
    bool skipBroken = false;
    // The size the tolerances scale with, when the system is part of a larger sketch
    // (default: the size of the entities given).
    std::optional<double> scale;
};

// Builds the system. Fails with the constraint's ID and the resolution message when
// a reference doesn't resolve, and with the drag's messages.
Result<SolverSystem> buildSystem(const std::vector<SketchEntity>& entities,
                                 const std::vector<SketchConstraint>& constraints,
                                 const SystemOptions& options = {});

// Scale of a sketch: max(1, diagonal of the bounding box of every entity's named
// points together with the origin).
double sketchScale(const std::vector<SketchEntity>& entities);

// Writes the constraint's residuals at x (global parameters) to out.
void evaluateRows(const SolverSystem& system, const CompiledConstraint& c, const double* x,
                  double* out);

// Residuals and their exact derivatives with respect to the constraint's local slots,
// row-major (rows × slots). Not for fix on a whole entity.
void differentiate(const CompiledConstraint& c, const double* x, double scale, double* residuals,
                   double* derivatives);

// Calls emit(row, parameter, derivative) for every parameter each row depends on
// (including derivatives that happen to be zero, so the pattern stays the same),
// after writing the residuals to `residuals`.
template <class Emit>
void jacobianEntries(const SolverSystem& system, const CompiledConstraint& c, const double* x,
                     double* residuals, Emit&& emit) {
    if (c.shape == CompiledConstraint::Shape::FixEntity) {
        evaluateRows(system, c, x, residuals);
        for (int i = 0; i < c.fixCount; ++i)
            emit(i, c.fixOffset + i,
                 system.fixPool[static_cast<std::size_t>(c.poolOffset + 2 * i + 1)]);
        return;
    }
    double derivatives[4 * kMaxSlots];
    differentiate(c, x, system.scale, residuals, derivatives);
    for (int r = 0; r < c.rows; ++r)
        for (int k = 0; k < c.slots; ++k)
            emit(r, c.params[static_cast<std::size_t>(k)], derivatives[r * c.slots + k]);
}

// Writes the solved parameters back to copies of the entities (radians to degrees).
std::vector<SketchEntity> writeBack(const SolverSystem& system,
                                    const std::vector<SketchEntity>& entities,
                                    const std::vector<double>& x);

} // namespace cad::solver
