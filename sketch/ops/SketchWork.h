// The working copies a sketch operation changes: lookups that answer in the
// operations' words, new entities with the next free IDs, constraints added through
// the same checks as add_constraint, and rewriting the references constraints keep.
#pragma once

#include "core/Result.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad::ops {

// "Line1; Circle2" as IDs, spaces trimmed and empty items left out.
std::vector<std::string> splitEntityList(std::string_view text);

// "1 entity", "3 entities".
std::string countOf(std::size_t n, std::string_view one, std::string_view many);

class SketchWork {
public:
    SketchWork(std::vector<SketchEntity>& entityList, std::vector<SketchConstraint>& constraintList)
        : entities(entityList), constraints(constraintList) {}

    SketchEntity* find(std::string_view id);
    // The entity, or "No entity named 'X'."
    Result<SketchEntity*> require(std::string_view id);
    // As require, refusing projected geometry ("X is projected; it follows its source.").
    Result<SketchEntity*> requireEditable(std::string_view id);
    std::size_t indexOf(std::string_view id) const;

    // Adds the entity under the next free ID of its kind, at position `at` of the list
    // (at the end when `at` is past it); returns the ID.
    std::string add(SketchEntity entity, std::size_t at = static_cast<std::size_t>(-1));
    // Removes the entity and every constraint that names it.
    void remove(std::string_view id);

    // Prepares the constraint, adds it and solves, as add_constraint does: refused
    // when it conflicts with the others or adds nothing. A dimension without a value
    // takes the current size. Returns the new constraint's ID.
    Result<std::string> constrain(ConstraintType type, std::vector<SketchRef> refs,
                                  std::optional<double> value = std::nullopt);

    // Rewrites every reference the function maps to something else.
    void redirect(const std::function<std::optional<SketchRef>(const SketchRef&)>& map);
    // Removes the constraints the predicate picks; returns how many went.
    std::size_t drop(const std::function<bool(const SketchConstraint&)>& which);

    // Solves the sketch as it now stands (held entities stay where they are).
    Result<void> solve(const std::vector<std::string>& held = {});

    std::vector<SketchEntity>& entities;
    std::vector<SketchConstraint>& constraints;
};

// Checks every entity that is new or changed since `before`, as every entity is
// checked before it enters a sketch: ok, or the first one's validation message.
Result<void> validateChanged(const std::vector<SketchEntity>& before,
                             const std::vector<SketchEntity>& after);

// Whether a constraint names the entity (any part of it, or the whole).
bool refersTo(const SketchConstraint& constraint, std::string_view entity);
// Whether any reference of the constraint is the entity's part (empty: the whole).
bool refersTo(const SketchConstraint& constraint, std::string_view entity, std::string_view part);
// Whether the constraint holds the entity's extent as a whole (length, equal,
// midpoint, fix on the whole entity): what no longer holds once its ends move.
bool holdsExtent(const SketchConstraint& constraint, std::string_view entity);
// Whether the constraint is a tangency that meets the arc at this end of it ("start"
// or "end"): a line tangent where it joins the arc holds that end, not the arc.
bool tangentAtEnd(const SketchConstraint& constraint, std::string_view arc, std::string_view part);

} // namespace cad::ops
