// The constraint solver's entry points: solving (with held entities and drags),
// adding a constraint with its conflict and redundancy tests, and the freedom
// analysis, each on copies that the caller keeps only on success.
#include "sketch/SketchSolver.h"

#include "sketch/solver/SolveEngines.h"
#include "sketch/solver/SolverOptions.h"

#include <set>

namespace cad {

namespace {

using solver::SolverSystem;

bool solve(const SolverSystem& system, std::vector<double>& x, const SolverOptions& options) {
    return options.method == SolverMethod::Dense
               ? solver::solveWhole(system, x)
               : solver::solveByBlocks(system, x, options.denseLimit);
}

// The first entity the solution breaks. The whole-sketch engine checks every entity;
// the block engine those it moved (the others are as they were when they entered
// the sketch, checked then).
Result<void> validateSolution(const SolverSystem& system, const std::vector<SketchEntity>& solved,
                              const std::vector<double>& x, const SolverOptions& options) {
    for (std::size_t i = 0; i < solved.size(); ++i) {
        if (options.method == SolverMethod::Blocks) {
            bool moved = false;
            for (int p = system.layout.offset[i]; p < system.layout.offset[i + 1] && !moved; ++p)
                moved = x[static_cast<std::size_t>(p)] != system.x0[static_cast<std::size_t>(p)];
            if (!moved) continue;
        }
        Result<void> valid = validateEntity(solved[i]);
        if (!valid)
            return fail("The constraints would make " + solved[i].id +
                        " invalid: " + valid.error());
    }
    return {};
}

std::string freeConstraintId(const std::vector<SketchConstraint>& constraints,
                             ConstraintType type) {
    std::set<std::string, std::less<>> used;
    for (const SketchConstraint& c : constraints) used.insert(c.id);
    const std::string prefix(constraintPrefix(type));
    for (long long n = 1;; ++n) {
        std::string id = prefix + std::to_string(n);
        if (!used.count(id)) return id;
    }
}

} // namespace

Result<std::vector<SketchEntity>> solveSketch(const std::vector<SketchEntity>& entities,
                                              const std::vector<SketchConstraint>& constraints,
                                              const std::vector<std::string>& held,
                                              const std::optional<SketchDrag>& drag,
                                              const SolverOptions& options) {
    solver::SystemOptions request;
    request.held = held;
    request.drag = drag;
    Result<SolverSystem> system = solver::buildSystem(entities, constraints, request);
    if (!system) return Error{system.error()};
    std::vector<double> x = system->x0;
    if (!solve(*system, x, options))
        return fail(system->dragging ? "The constraints don't allow that position."
                                     : "The constraints conflict: they can't all hold at once.");
    std::vector<SketchEntity> solved = solver::writeBack(*system, entities, x);
    if (Result<void> valid = validateSolution(*system, solved, x, options); !valid)
        return Error{valid.error()};
    return solved;
}

Result<std::vector<SketchEntity>> solveSketch(const std::vector<SketchEntity>& entities,
                                              const std::vector<SketchConstraint>& constraints,
                                              const std::vector<std::string>& held,
                                              const std::optional<SketchDrag>& drag) {
    return solveSketch(entities, constraints, held, drag, SolverOptions{});
}

Result<SketchSolution> addConstraint(const std::vector<SketchEntity>& entities,
                                     const std::vector<SketchConstraint>& constraints,
                                     SketchConstraint prepared, const SolverOptions& options) {
    if (prepared.id.empty()) prepared.id = freeConstraintId(constraints, prepared.type);
    const std::string keyword(constraintKeyword(prepared.type));
    SketchSolution out;
    out.constraints = constraints;
    out.constraints.push_back(std::move(prepared));
    const int added = static_cast<int>(constraints.size());

    Result<SolverSystem> system = solver::buildSystem(entities, out.constraints);
    if (!system) return Error{system.error()};
    // A solution that breaks an entity (a horizontal line made vertical collapses)
    // is no solution either: the constraint conflicts.
    const std::string conflict =
        "That " + keyword + " conflicts with the sketch's other constraints.";
    std::vector<double> x = system->x0;
    if (!solve(*system, x, options)) return fail(conflict);
    out.entities = solver::writeBack(*system, entities, x);
    if (!validateSolution(*system, out.entities, x, options)) return fail(conflict);

    const int gain = options.method == SolverMethod::Dense
                         ? solver::rankGainWhole(*system, x, added)
                         : solver::rankGainByBlocks(*system, x, added, options.denseLimit);
    if (gain < system->constraints[static_cast<std::size_t>(added)].rows)
        return fail("That " + keyword +
                    " is redundant: the sketch's other constraints already determine it.");
    return out;
}

Result<SketchSolution> addConstraint(const std::vector<SketchEntity>& entities,
                                     const std::vector<SketchConstraint>& constraints,
                                     SketchConstraint prepared) {
    return addConstraint(entities, constraints, std::move(prepared), SolverOptions{});
}

SketchAnalysis analyseSketch(const std::vector<SketchEntity>& entities,
                             const std::vector<SketchConstraint>& constraints,
                             const SolverOptions& options) {
    solver::SystemOptions request;
    request.skipBroken = true; // analysis colours what it can
    Result<SolverSystem> system = solver::buildSystem(entities, constraints, request);
    if (!system) return {};
    return options.method == SolverMethod::Dense
               ? solver::analyseWhole(*system, entities)
               : solver::analyseByBlocks(*system, entities, options.denseLimit);
}

SketchAnalysis analyseSketch(const std::vector<SketchEntity>& entities,
                             const std::vector<SketchConstraint>& constraints) {
    return analyseSketch(entities, constraints, SolverOptions{});
}

} // namespace cad
