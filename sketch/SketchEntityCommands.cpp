// Deleting an entity together with every constraint that names it, and switching
// an entity between construction and normal geometry.
#include "sketch/SketchEntityCommands.h"

#include "core/ArgReader.h"

#include <algorithm>

namespace cad {

namespace {

ArgSpec sketchArg() {
    return {"sketch", ArgType::String, true, "The sketch's ID or name.", {}, "sketch"};
}

Error noEntity(const SketchObject& sketch, const std::string& entity) {
    return fail(sketch.id + " has no entity named '" + entity + "'.");
}

} // namespace

std::vector<ArgSpec> DeleteSketchEntityCommand::arguments() {
    return {sketchArg(), {"entity", ArgType::String, true, "The entity, e.g. \"Line3\".", {}, ""}};
}

Result<std::unique_ptr<Command>> DeleteSketchEntityCommand::create(const CommandRecord& record) {
    Result<SketchItem> names = readSketchItem(record, arguments(), "entity");
    if (!names) return Error(names);
    return std::unique_ptr<Command>(
        std::make_unique<DeleteSketchEntityCommand>(record, names->sketch, names->item));
}

Result<std::string> DeleteSketchEntityCommand::edit(const SketchObject& sketch, Lists& lists) {
    auto it = std::find_if(lists.entities.begin(), lists.entities.end(),
                           [&](const SketchEntity& e) { return e.id == entity_; });
    if (it == lists.entities.end()) return noEntity(sketch, entity_);
    lists.entities.erase(it);

    const std::size_t before = lists.constraints.size();
    std::erase_if(lists.constraints, [&](const SketchConstraint& c) {
        return std::any_of(c.refs.begin(), c.refs.end(),
                           [&](const SketchRef& ref) { return ref.entity == entity_; });
    });
    const std::size_t removed = before - lists.constraints.size();
    std::string message = "Deleted " + entity_ + " from " + sketch.id;
    if (removed > 0) message += " and " + std::to_string(removed) + " constraint(s) on it";
    return message + ".";
}

std::vector<ArgSpec> SetConstructionCommand::arguments() {
    return {sketchArg(),
            {"entity", ArgType::String, true, "The entity, e.g. \"Circle2\".", {}, ""},
            {"construction",
             ArgType::Boolean,
             true,
             "True: construction (reference) geometry; false: normal geometry.",
             {},
             ""}};
}

Result<std::unique_ptr<Command>> SetConstructionCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    Result<SketchItem> names = readSketchItem(record, arguments(), "entity");
    if (!names) return Error(names);
    if (!reader.has("construction"))
        return fail("set_construction: missing argument 'construction'.");
    Result<bool> construction = reader.boolean("construction");
    if (!construction) return Error(construction);
    return std::unique_ptr<Command>(std::make_unique<SetConstructionCommand>(
        record, names->sketch, names->item, *construction));
}

Result<std::string> SetConstructionCommand::edit(const SketchObject& sketch, Lists& lists) {
    auto it = std::find_if(lists.entities.begin(), lists.entities.end(),
                           [&](const SketchEntity& e) { return e.id == entity_; });
    if (it == lists.entities.end()) return noEntity(sketch, entity_);
    it->construction = construction_;
    return it->id + (construction_ ? " is now construction geometry." : " is now normal geometry.");
}

} // namespace cad
