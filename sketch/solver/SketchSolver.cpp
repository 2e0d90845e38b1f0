// The constraint solver's entry points: solving (with held entities and drags),
// adding a constraint with its conflict and redundancy tests, and the freedom
// analysis, each on copies that the caller keeps only on success.
#include "sketch/SketchSolver.h"

#include "sketch/solver/SolveEngines.h"
#include "sketch/solver/SolverOptions.h"

#include "sketch/solver/TouchedPart.h"

#include <charconv>
#include <string_view>

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

// The type's prefix and the smallest number no constraint uses with it.
std::string freeConstraintId(const std::vector<SketchConstraint>& constraints,
                             ConstraintType type) {
    const std::string_view prefix = constraintPrefix(type);
    // Among n constraints one of the numbers 1 … n + 1 is free.
    std::vector<char> used(constraints.size() + 2, 0);
    for (const SketchConstraint& c : constraints) {
        std::string_view id = c.id;
        if (id.size() <= prefix.size() || id.substr(0, prefix.size()) != prefix) continue;
        id.remove_prefix(prefix.size());
        if (id.front() == '0' || id.size() > 18) continue; // "Length01" is not number 1
        std::size_t n = 0;
        const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), n);
        if (error == std::errc() && end == id.data() + id.size() && n < used.size()) used[n] = 1;
    }
    std::size_t n = 1;
    while (used[n]) ++n;
    return std::string(prefix) + std::to_string(n);
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

Result<ConstraintAddition> addConstraint(const std::vector<SketchEntity>& entities,
                                         const std::vector<SketchConstraint>& constraints,
                                         SketchConstraint prepared, const SolverOptions& options) {
    if (prepared.id.empty()) prepared.id = freeConstraintId(constraints, prepared.type);
    const std::string keyword(constraintKeyword(prepared.type));

    // Only the part the constraint reaches is solved, at the whole sketch's scale so
    // that its tolerances are the ones a whole solve would use.
    const solver::TouchedPart part = solver::touchedPart(entities, constraints, prepared);
    std::vector<SketchEntity> local;
    local.reserve(part.entities.size());
    for (std::size_t i : part.entities) local.push_back(entities[i]);
    std::vector<SketchConstraint> localConstraints;
    localConstraints.reserve(part.constraints.size() + 1);
    for (std::size_t i : part.constraints) localConstraints.push_back(constraints[i]);
    localConstraints.push_back(prepared);
    const int added = static_cast<int>(part.constraints.size());

    solver::SystemOptions request;
    request.scale = solver::sketchScale(entities);
    Result<SolverSystem> system = solver::buildSystem(local, localConstraints, request);
    if (!system) return Error{system.error()};
    // A solution that breaks an entity (a horizontal line made vertical collapses)
    // is no solution either: the constraint conflicts.
    const std::string conflict =
        "That " + keyword + " conflicts with the sketch's other constraints.";
    std::vector<double> x = system->x0;
    if (!solve(*system, x, options)) return fail(conflict);
    std::vector<SketchEntity> solved = solver::writeBack(*system, local, x);
    if (!validateSolution(*system, solved, x, options)) return fail(conflict);

    const int gain = options.method == SolverMethod::Dense
                         ? solver::rankGainWhole(*system, x, added)
                         : solver::rankGainByBlocks(*system, x, added, options.denseLimit);
    if (gain < system->constraints[static_cast<std::size_t>(added)].rows)
        return fail("That " + keyword +
                    " is redundant: the sketch's other constraints already determine it.");

    ConstraintAddition out;
    out.constraint = std::move(prepared);
    for (std::size_t k = 0; k < local.size(); ++k) {
        const int begin = system->layout.offset[k], end = system->layout.offset[k + 1];
        bool moved = false;
        for (int j = begin; j < end && !moved; ++j)
            moved = x[static_cast<std::size_t>(j)] != system->x0[static_cast<std::size_t>(j)];
        if (moved) out.moved.emplace_back(part.entities[k], std::move(solved[k]));
    }
    return out;
}

Result<ConstraintAddition> addConstraint(const std::vector<SketchEntity>& entities,
                                         const std::vector<SketchConstraint>& constraints,
                                         SketchConstraint prepared) {
    return addConstraint(entities, constraints, std::move(prepared), SolverOptions{});
}

void ConstraintAddition::applyTo(std::vector<SketchEntity>& entities,
                                 std::vector<SketchConstraint>& constraints) && {
    for (auto& [index, entity] : moved) entities[index] = std::move(entity);
    constraints.push_back(std::move(constraint));
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
