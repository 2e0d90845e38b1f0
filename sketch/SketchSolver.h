// The constraint solver's interface for the rest of the sketch code: preparing and
// adding constraints, solving (with held entities and drags), measuring dimensions
// and analysing degrees of freedom. It never changes a sketch in place: it works
// on copies and the caller keeps the result only when everything succeeded.
#pragma once

#include "core/Result.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cad {

// Resolves and checks the references, fills the value with the current size when a
// dimension is given none (`hasValue` false), checks the value, and fixes the
// orientation data from the geometry as drawn.
Result<SketchConstraint> prepareConstraint(const std::vector<SketchEntity>& entities,
                                           SketchConstraint constraint, bool hasValue);

// What adding a constraint changes: the constraint as added (with its ID) and the
// entities it moved, each with its index in the sketch's list. Only the part of
// the sketch the constraint reaches through other constraints is solved again;
// everything else stays exactly as it was.
struct ConstraintAddition {
    SketchConstraint constraint;
    std::vector<std::pair<std::size_t, SketchEntity>> moved;

    // Puts the moved entities in place and appends the constraint.
    void applyTo(std::vector<SketchEntity>& entities,
                 std::vector<SketchConstraint>& constraints) &&;
};

// Gives the constraint an ID when it has none, solves with it, and refuses it when
// it conflicts with the others or adds nothing.
Result<ConstraintAddition> addConstraint(const std::vector<SketchEntity>& entities,
                                         const std::vector<SketchConstraint>& constraints,
                                         SketchConstraint prepared);

struct SketchDrag {
    SketchRef point;
    Point2 target;
};

// Moves the entities' parameters so that every constraint holds. Held entities
// (and projected ones) stay exactly where they are; a drag pulls one point.
Result<std::vector<SketchEntity>> solveSketch(const std::vector<SketchEntity>& entities,
                                              const std::vector<SketchConstraint>& constraints,
                                              const std::vector<std::string>& held = {},
                                              const std::optional<SketchDrag>& drag = {});

// The current value of a dimension of this type between these references.
Result<double> measureDimension(ConstraintType type, const std::vector<SketchRef>& refs,
                                const std::vector<SketchEntity>& entities);

struct SketchAnalysis {
    int degreesOfFreedom = 0;
    std::vector<bool> determined; // per entity, in entity order
    // For each rectangle, polygon or slot that is not fully determined: its entity
    // index and the shape displaced by 0.001 along each direction it can still move.
    struct Displacement {
        int entity = 0;
        std::vector<SketchEntity> shapes;
    };
    std::vector<Displacement> displacements;
};

SketchAnalysis analyseSketch(const std::vector<SketchEntity>& entities,
                             const std::vector<SketchConstraint>& constraints);

} // namespace cad
