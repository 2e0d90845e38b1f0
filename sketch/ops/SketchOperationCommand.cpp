// Reading the sketch operations' arguments, and running the operation named by the
// command on the working copies of the sketch.
#include "sketch/ops/SketchOperationCommand.h"

#include "core/ArgReader.h"
#include "sketch/ops/SketchOperations.h"

namespace cad {

namespace {

using T = ArgType;

ArgSpec sketchArg() {
    return {"sketch", T::String, true, "The sketch's ID or name.", {}, "sketch"};
}
ArgSpec entityArg(const char* description) {
    return {"entity", T::String, true, description, {}, ""};
}
ArgSpec entitiesArg(const char* description = "Separated by ';', e.g. \"Line1; Circle2\".") {
    return {"entities", T::String, true, description, {}, ""};
}
ArgSpec lengthArg(const char* name, bool required, const char* description) {
    return {name, T::Length, required, description, {}, ""};
}

bool takesOneEntity(std::string_view operation) {
    return operation == "trim" || operation == "extend" || operation == "explode" ||
           operation == "text_to_outlines";
}

} // namespace

std::vector<ArgSpec> SketchOperationCommand::arguments(std::string_view operation) {
    if (operation == "trim")
        return {sketchArg(), entityArg("The curve, e.g. \"Line2\"."),
                lengthArg("x", true, "A point on the piece to remove."),
                lengthArg("y", true, "A point on the piece to remove.")};
    if (operation == "extend")
        return {sketchArg(), entityArg("The line or arc."),
                lengthArg("x", true, "Near the end to extend."),
                lengthArg("y", true, "Near the end to extend.")};
    if (operation == "offset")
        return {sketchArg(), entitiesArg(),
                lengthArg("distance", true, "How far the copies go (negative: to the other side)."),
                lengthArg("x", false, "A point on the side to offset toward."),
                lengthArg("y", false, "A point on the side to offset toward.")};
    if (operation == "mirror")
        return {sketchArg(),
                entitiesArg(),
                {"line",
                 T::SketchReference,
                 true,
                 "The mirror line: \"Line3\", \"Rectangle1.left\", \"XAxis\" or \"YAxis\".",
                 {},
                 ""}};
    if (operation == "move_entities")
        return {sketchArg(), entitiesArg(), lengthArg("x", true, "How far along the sketch's x."),
                lengthArg("y", true, "How far along the sketch's y.")};
    if (operation == "ungroup")
        return {sketchArg(), entitiesArg("Separated by ';' (one member is enough).")};
    if (operation == "group") return {sketchArg(), entitiesArg()};
    if (operation == "explode") return {sketchArg(), entityArg("e.g. \"Rectangle1\"")};
    if (operation == "text_to_outlines")
        return {sketchArg(), entityArg("The text, e.g. \"Text1\".")};
    return {};
}

Result<std::unique_ptr<Command>> SketchOperationCommand::create(const CommandRecord& record) {
    const std::string& op = record.name;
    const std::vector<ArgSpec> declared = arguments(op);
    if (declared.empty()) return fail("Unknown command '" + op + "'.");
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(declared); !ok) return Error(ok);
    Result<std::string> sketch = reader.string("sketch");
    if (!sketch) return Error(sketch);

    Arguments args;
    if (takesOneEntity(op)) {
        Result<std::string> entity = reader.string("entity", "");
        if (!entity) return Error(entity);
        const std::size_t first = entity->find_first_not_of(" \t\r\n");
        if (first == std::string::npos) return fail(op + ": say which entity.");
        args.entities = {entity->substr(first, entity->find_last_not_of(" \t\r\n") - first + 1)};
    } else {
        if (!reader.has("entities")) return fail(op + ": say which entities.");
        Result<std::string> list = reader.string("entities");
        if (!list) return Error(list);
        args.entities = ops::splitEntityList(*list);
    }

    auto readPoint = [&]() -> Result<void> {
        Result<double> x = reader.length("x");
        if (!x) return Error(x);
        Result<double> y = reader.length("y");
        if (!y) return Error(y);
        args.point = Point2{*x, *y};
        return {};
    };
    const bool both = reader.has("x") && reader.has("y");
    Result<void> read;
    if (op == "trim") {
        if (!both) return fail("trim: give x and y: the spot on the curve that was clicked.");
        read = readPoint();
    } else if (op == "extend") {
        read = readPoint();
    } else if (op == "move_entities") {
        if (!both) return fail("move_entities: give x and y: how far to move.");
        read = readPoint();
    } else if (op == "offset") {
        Result<double> distance = reader.length("distance");
        if (!distance) return Error(distance);
        args.distance = *distance;
        if (reader.has("x") != reader.has("y"))
            return fail("offset: give both x and y (a point in the sketch).");
        if (both) read = readPoint();
    } else if (op == "mirror") {
        Result<std::string> line = reader.string("line", "");
        if (!line) return Error(line);
        if (line->find_first_not_of(" \t\r\n") == std::string::npos)
            return fail("mirror: give the mirror line, e.g. \"Line3\" or \"YAxis\".");
        args.line = *line;
    }
    if (!read) return Error(read);
    return std::unique_ptr<Command>(
        std::make_unique<SketchOperationCommand>(record, *sketch, std::move(args)));
}

Result<std::string> SketchOperationCommand::edit(const SketchObject& sketch, Lists& lists) {
    Result<std::string> done = run(lists);
    if (!done) return done;
    if (Result<void> valid = ops::validateChanged(sketch.entities, lists.entities); !valid)
        return Error(valid);
    return done;
}

Result<std::string> SketchOperationCommand::run(Lists& lists) const {
    const std::string& op = record_.name;
    ops::SketchWork work(lists.entities, lists.constraints);
    const Arguments& a = arguments_;
    if (op == "group") return ops::groupEntities(work, a.entities);
    if (op == "ungroup") return ops::ungroupEntities(work, a.entities);

    // Everything else solves: a constraint whose reference has gone stops it first.
    if (auto refs = checkConstraintReferences(lists.entities, lists.constraints); !refs)
        return Error(refs);
    if (op == "trim") return ops::trimCurve(work, a.entities.front(), *a.point);
    if (op == "extend") return ops::extendCurve(work, a.entities.front(), *a.point);
    if (op == "explode") return ops::explodeEntity(work, a.entities.front());
    if (op == "text_to_outlines") return ops::textToOutlines(work, a.entities.front());
    if (op == "offset") return ops::offsetEntities(work, a.entities, a.distance, a.point);
    if (op == "mirror") return ops::mirrorEntities(work, a.entities, a.line);
    if (op == "move_entities") return ops::moveEntities(work, a.entities, *a.point);
    return fail("Unknown command '" + op + "'.");
}

} // namespace cad
