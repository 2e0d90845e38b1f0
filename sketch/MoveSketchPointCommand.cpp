// move_sketch_point: a solve with the drag target as the extra condition.
#include "sketch/MoveSketchPointCommand.h"

#include "core/ArgReader.h"
#include "sketch/SketchReference.h"
#include "sketch/SketchSolver.h"

namespace cad {

std::vector<ArgSpec> MoveSketchPointCommand::arguments() {
    return {{"sketch", ArgType::String, true, "The sketch's ID or name.", {}, "sketch"},
            {"point", ArgType::SketchReference, true, "The point, e.g. \"Line2.start\".", {}, ""},
            {"x", ArgType::Length, true, "New position x.", {}, ""},
            {"y", ArgType::Length, true, "New position y.", {}, ""}};
}

Result<std::unique_ptr<Command>> MoveSketchPointCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    Result<std::string> sketch = reader.string("sketch");
    if (!sketch) return Error(sketch);
    Result<std::string> text = reader.string("point");
    if (!text && reader.has("point"))
        return fail("move_sketch_point: 'point' must be a reference like \"Line1.end\".");
    if (!text) return Error(text);
    std::optional<SketchRef> point = parseReference(*text);
    if (!point) return fail("move_sketch_point: 'point' must be a reference like \"Line1.end\".");
    if (!reader.has("x") || !reader.has("y"))
        return fail("move_sketch_point: give the new position in 'x' and 'y'.");
    Result<double> x = reader.length("x");
    if (!x) return Error(x);
    Result<double> y = reader.length("y");
    if (!y) return Error(y);
    return std::unique_ptr<Command>(
        std::make_unique<MoveSketchPointCommand>(record, *sketch, *point, Point2{*x, *y}));
}

Result<std::string> MoveSketchPointCommand::edit(const SketchObject&, Lists& lists) {
    if (auto refs = checkConstraintReferences(lists.entities, lists.constraints); !refs)
        return Error(refs);
    Result<std::vector<SketchEntity>> solved =
        solveSketch(lists.entities, lists.constraints, {}, SketchDrag{point_, target_});
    if (!solved) return Error(solved);
    lists.entities = std::move(solved).value();
    return "Moved " + point_.text() + ".";
}

} // namespace cad
