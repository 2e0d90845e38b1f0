// The working copies of a sketch operation: lookups, new entities, constraints
// added with add_constraint's checks, and rewritten references.
#include "sketch/ops/SketchWork.h"

#include "core/TextCase.h"
#include "sketch/SketchSolver.h"

#include <algorithm>

namespace cad::ops {

std::vector<std::string> splitEntityList(std::string_view text) {
    std::vector<std::string> ids;
    for (std::string& id : splitList(text))
        if (std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(std::move(id));
    return ids;
}

std::string countOf(std::size_t n, std::string_view one, std::string_view many) {
    return std::to_string(n) + " " + std::string(n == 1 ? one : many);
}

SketchEntity* SketchWork::find(std::string_view id) {
    auto it = std::find_if(entities.begin(), entities.end(),
                           [&](const SketchEntity& e) { return e.id == id; });
    return it == entities.end() ? nullptr : &*it;
}

Result<SketchEntity*> SketchWork::require(std::string_view id) {
    if (SketchEntity* e = find(id)) return e;
    return fail("No entity named '" + std::string(id) + "'.");
}

Result<SketchEntity*> SketchWork::requireEditable(std::string_view id) {
    Result<SketchEntity*> e = require(id);
    if (e && (*e)->isProjected()) return fail((*e)->id + " is projected; it follows its source.");
    return e;
}

std::size_t SketchWork::indexOf(std::string_view id) const {
    for (std::size_t i = 0; i < entities.size(); ++i)
        if (entities[i].id == id) return i;
    return entities.size();
}

std::string SketchWork::add(SketchEntity entity, std::size_t at) {
    entity.id = nextEntityId(entities, entityKindName(entity));
    std::string id = entity.id;
    if (at >= entities.size())
        entities.push_back(std::move(entity));
    else
        entities.insert(entities.begin() + static_cast<std::ptrdiff_t>(at), std::move(entity));
    return id;
}

void SketchWork::remove(std::string_view id) {
    std::erase_if(entities, [&](const SketchEntity& e) { return e.id == id; });
    std::erase_if(constraints, [&](const SketchConstraint& c) { return refersTo(c, id); });
}

Result<std::string> SketchWork::constrain(ConstraintType type, std::vector<SketchRef> refs,
                                          std::optional<double> value) {
    SketchConstraint constraint;
    constraint.type = type;
    constraint.refs = std::move(refs);
    constraint.value = value.value_or(0);
    Result<SketchConstraint> prepared =
        prepareConstraint(entities, std::move(constraint), value.has_value());
    if (!prepared) return Error(prepared);
    Result<ConstraintAddition> addition = addConstraint(entities, constraints, *prepared);
    if (!addition) return Error(addition);
    std::move(addition).value().applyTo(entities, constraints);
    return constraints.back().id;
}

void SketchWork::redirect(const std::function<std::optional<SketchRef>(const SketchRef&)>& map) {
    for (SketchConstraint& c : constraints)
        for (SketchRef& ref : c.refs)
            if (std::optional<SketchRef> to = map(ref)) ref = std::move(*to);
}

std::size_t SketchWork::drop(const std::function<bool(const SketchConstraint&)>& which) {
    return std::erase_if(constraints, which);
}

Result<void> SketchWork::solve(const std::vector<std::string>& held) {
    Result<std::vector<SketchEntity>> solved = solveSketch(entities, constraints, held);
    if (!solved) return Error(solved);
    entities = std::move(solved).value();
    return {};
}

Result<void> validateChanged(const std::vector<SketchEntity>& before,
                             const std::vector<SketchEntity>& after) {
    for (const SketchEntity& e : after) {
        const SketchEntity* was = findEntity(before, e.id);
        if (was && was->kind() == e.kind() && entityParameters(*was) == entityParameters(e))
            continue;
        if (Result<void> valid = validateEntity(e); !valid) return valid;
    }
    return {};
}

bool refersTo(const SketchConstraint& constraint, std::string_view entity) {
    return std::any_of(constraint.refs.begin(), constraint.refs.end(),
                       [&](const SketchRef& ref) { return ref.entity == entity; });
}

bool refersTo(const SketchConstraint& constraint, std::string_view entity, std::string_view part) {
    return std::any_of(constraint.refs.begin(), constraint.refs.end(), [&](const SketchRef& ref) {
        return ref.entity == entity && ref.part == part;
    });
}

bool holdsExtent(const SketchConstraint& constraint, std::string_view entity) {
    switch (constraint.type) {
    case ConstraintType::Length:
    case ConstraintType::Equal:
    case ConstraintType::Midpoint:
    case ConstraintType::Fix:
        return refersTo(constraint, entity, "");
    default:
        return false;
    }
}

bool tangentAtEnd(const SketchConstraint& constraint, std::string_view arc, std::string_view part) {
    if (constraint.type != ConstraintType::Tangent || constraint.data.size() < 2) return false;
    const double end = part == "start" ? 1 : part == "end" ? 2 : 0;
    return constraint.data[1] == end && refersTo(constraint, arc, "");
}

} // namespace cad::ops
