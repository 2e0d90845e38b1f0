// Remaking a pattern: the record's arguments take the given ones, the copies that are
// still there go (with the constraints on them), and the copies are made again from
// the merged arguments. A copy deleted meanwhile comes back.
#include "sketch/patterns/EditSketchPatternCommand.h"

#include "core/ArgReader.h"
#include "core/TextCase.h"
#include "sketch/patterns/PatternArguments.h"
#include "sketch/patterns/SketchPatternCommand.h"

#include <algorithm>
#include <set>

namespace cad {

namespace {

constexpr const char* kName = "edit_sketch_pattern";

// The arguments a pattern can change, whichever kind it is; each applies to the
// kinds that take it.
std::vector<ArgSpec> changeableArguments() {
    using T = ArgType;
    return {
        {"entities", T::String, false, "What is copied, separated by ';'.", {}, ""},
        {"count", T::Integer, false, "Copies, the original included (1 to 1000).", {}, ""},
        {"spacing", T::Length, false, "Rectangular and path: between copies.", {}, ""},
        {"angle",
         T::Angle,
         false,
         "Rectangular: the first direction; circular: the spread, degrees.",
         {},
         ""},
        {"count2", T::Integer, false, "Rectangular: copies along the second direction.", {}, ""},
        {"spacing2", T::Length, false, "Rectangular: spacing along the second direction.", {}, ""},
        {"angle2", T::Angle, false, "Rectangular: the second direction, degrees.", {}, ""},
        {"center", T::SketchReference, false, "Circular: the center point.", {}, ""},
        {"path", T::String, false, "Path: the path's curves, separated by ';'.", {}, ""},
        {"follow", T::Boolean, false, "Path: copies turn with the path.", {}, ""},
    };
}

} // namespace

std::vector<ArgSpec> EditSketchPatternCommand::arguments() {
    std::vector<ArgSpec> declared{
        {"sketch", ArgType::String, true, "The sketch's ID or name.", {}, "sketch"},
        {"pattern", ArgType::String, true, "The pattern, e.g. \"Pattern1\".", {}, ""}};
    for (ArgSpec& arg : changeableArguments()) declared.push_back(std::move(arg));
    return declared;
}

Result<std::unique_ptr<Command>> EditSketchPatternCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    const auto* sketch = std::get_if<std::string>(record.find("sketch"));
    const auto* pattern = std::get_if<std::string>(record.find("pattern"));
    if (!sketch || !pattern || trimmed(*sketch).empty() || trimmed(*pattern).empty())
        return fail(std::string(kName) + ": give the sketch and the pattern (e.g. \"Pattern1\").");
    return std::unique_ptr<Command>(std::make_unique<EditSketchPatternCommand>(
        record, std::string(trimmed(*sketch)), std::string(trimmed(*pattern))));
}

Result<std::string> EditSketchPatternCommand::change(const Document&, const SketchObject& sketch,
                                                     Lists& lists) {
    if (lists.patterns.empty()) return fail(std::string(kName) + ": no patterns here.");
    auto pattern = std::find_if(lists.patterns.begin(), lists.patterns.end(),
                                [&](const SketchPattern& p) { return p.id == pattern_; });
    if (pattern == lists.patterns.end())
        return fail("No pattern named '" + pattern_ + "' in " + sketch.id + ".");
    const std::optional<PatternKind> kind = patternKindOf(pattern->record.name);
    if (!kind)
        return fail(pattern_ + " was made by '" + pattern->record.name +
                    "', which can't make it again.");

    CommandRecord merged = pattern->record;
    for (const auto& [key, value] : record_.arguments)
        if (key != "sketch" && key != "pattern") merged.set(key, value);
    merged.set("sketch", sketch.id);

    // Read as this command, so a problem with the merged arguments names it.
    CommandRecord asEdit = merged;
    asEdit.name = kName;
    ArgReader reader(asEdit);
    if (Result<void> ok = reader.allowDeclared(patternArguments(*kind)); !ok) return Error(ok);
    Result<PatternRecipe> recipe = readPatternRecipe(*kind, asEdit);
    if (!recipe) return Error(recipe);

    const std::set<std::string, std::less<>> old(pattern->copies.begin(), pattern->copies.end());
    auto isOld = [&](const std::string& id) { return old.count(id) > 0; };
    std::erase_if(lists.entities, [&](const SketchEntity& e) { return isOld(e.id); });
    std::erase_if(lists.constraints, [&](const SketchConstraint& c) {
        return std::any_of(c.refs.begin(), c.refs.end(),
                           [&](const SketchRef& ref) { return isOld(ref.entity); });
    });

    Result<std::vector<std::string>> copies = makePatternCopies(*recipe, lists.entities);
    if (!copies) return Error(copies);
    pattern->record = std::move(merged);
    pattern->copies = std::move(copies).value();
    return "Remade " + pattern_ + ": " + patternSummary(*recipe) + ".";
}

} // namespace cad
