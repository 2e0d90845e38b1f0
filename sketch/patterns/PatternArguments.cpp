// Reading the pattern commands' arguments: defaults, counts from 1 to 1000, angles in
// degrees, and the entity and path lists separated by ';'.
#include "sketch/patterns/PatternArguments.h"

#include "core/ArgReader.h"
#include "core/TextCase.h"

#include <cmath>
#include <tuple>

namespace cad {

namespace {

using T = ArgType;

ArgSpec sketchArg() {
    return {"sketch", T::String, true, "The sketch's ID or name.", {}, "sketch"};
}

ArgSpec entitiesArg() {
    return {"entities", T::String,
            true,       "The entities to copy, separated by ';', e.g. \"Line1; Circle2\".",
            {},         ""};
}

ArgSpec countArg(const char* description) {
    return {"count", T::Integer, false, description, {}, ""};
}

Result<int> readCount(const ArgReader& reader, const CommandRecord& record, const char* key,
                      int fallback) {
    if (!reader.has(key)) return fallback;
    Result<std::int64_t> count = reader.integer(key);
    if (!count || *count < 1 || *count > 1000)
        return fail(record.name + ": counts must be whole numbers from 1 to 1000.");
    return static_cast<int>(*count);
}

// Lengths and angles: a missing one takes its default.
Result<void> readValue(Result<double> value, double& into) {
    if (!value) return Error(value);
    into = *value;
    return {};
}

} // namespace

std::string_view patternCommandName(PatternKind kind) {
    switch (kind) {
    case PatternKind::Rectangular:
        return "sketch_pattern_rectangular";
    case PatternKind::Circular:
        return "sketch_pattern_circular";
    case PatternKind::Path:
        return "sketch_pattern_path";
    }
    return {};
}

std::optional<PatternKind> patternKindOf(std::string_view commandName) {
    for (PatternKind kind : {PatternKind::Rectangular, PatternKind::Circular, PatternKind::Path})
        if (patternCommandName(kind) == commandName) return kind;
    return std::nullopt;
}

std::vector<ArgSpec> patternArguments(PatternKind kind) {
    switch (kind) {
    case PatternKind::Rectangular:
        return {
            sketchArg(),
            entitiesArg(),
            countArg("Copies along the first direction, the original included (default 2)."),
            {"spacing",
             T::Length,
             false,
             "Between copies (default 10 mm; negative: the other way).",
             {},
             ""},
            {"angle",
             T::Angle,
             false,
             "First direction, degrees from the sketch's x axis (default 0).",
             {},
             ""},
            {"count2", T::Integer, false, "Copies along the second direction (default 1).", {}, ""},
            {"spacing2", T::Length, false, "Default 10 mm.", {}, ""},
            {"angle2", T::Angle, false, "Second direction (default 90).", {}, ""}};
    case PatternKind::Circular:
        return {sketchArg(),
                entitiesArg(),
                countArg("Copies, the original included (default 2)."),
                {"angle",
                 T::Angle,
                 false,
                 "Spread over this many degrees (default 360: evenly all the way).",
                 {},
                 ""},
                {"center",
                 T::SketchReference,
                 false,
                 "The center: \"Origin\" (default) or a point such as \"Circle1.center\".",
                 {},
                 ""}};
    case PatternKind::Path:
        return {sketchArg(),
                entitiesArg(),
                {"path", T::String, true, "The path's curves, separated by ';'.", {}, ""},
                countArg("Copies, the original included (default 2)."),
                {"spacing",
                 T::Length,
                 false,
                 "Between copies along the path (default: spread over the whole path).",
                 {},
                 ""},
                {"follow", T::Boolean, false, "Copies turn with the path (default true).", {}, ""}};
    }
    return {};
}

Result<PatternRecipe> readPatternRecipe(PatternKind kind, const CommandRecord& record) {
    ArgReader reader(record);
    const std::string& command = record.name;
    PatternRecipe recipe;
    recipe.kind = kind;

    const auto* entities = std::get_if<std::string>(record.find("entities"));
    if (!entities || trimmed(*entities).empty())
        return fail(command + ": say which entities, separated by ';'.");
    recipe.entities = splitList(*entities);
    if (recipe.entities.empty()) return fail("Choose what to pattern.");

    if (kind == PatternKind::Path) {
        const auto* path = std::get_if<std::string>(record.find("path"));
        recipe.path = path ? splitList(*path) : std::vector<std::string>{};
        if (recipe.path.empty()) return fail(command + ": give the path's curves, separated by ';'.");
    }

    Result<int> count = readCount(reader, record, "count", 2);
    if (!count) return Error(count);
    recipe.count = *count;

    switch (kind) {
    case PatternKind::Rectangular: {
        Result<int> count2 = readCount(reader, record, "count2", 1);
        if (!count2) return Error(count2);
        recipe.count2 = *count2;
        for (auto [key, into] : {std::pair{"spacing", &recipe.spacing}, {"spacing2", &recipe.spacing2}})
            if (Result<void> ok = readValue(reader.length(key, 10.0), *into); !ok) return Error(ok);
        for (auto [key, into, fallback] :
             {std::tuple{"angle", &recipe.angle, 0.0}, {"angle2", &recipe.angle2, 90.0}})
            if (Result<void> ok = readValue(reader.angle(key, fallback), *into); !ok)
                return Error(ok);
        // Copies on top of each other are no pattern.
        if (recipe.count > 1 && std::fabs(recipe.spacing) <= 1e-7)
            return fail(command + ": 'spacing' can't be zero.");
        if (recipe.count2 > 1 && std::fabs(recipe.spacing2) <= 1e-7)
            return fail(command + ": 'spacing2' can't be zero.");
        break;
    }
    case PatternKind::Circular: {
        if (Result<void> ok = readValue(reader.angle("angle", 360.0), recipe.angle); !ok)
            return Error(ok);
        if (std::fabs(recipe.angle) <= 1e-9) return fail(command + ": 'angle' can't be zero.");
        Result<std::string> center = reader.string("center", "Origin");
        if (!center) return Error(center);
        recipe.center = std::string(trimmed(*center));
        if (recipe.center.empty()) recipe.center = "Origin";
        break;
    }
    case PatternKind::Path: {
        recipe.spacingGiven = reader.has("spacing");
        if (recipe.spacingGiven) {
            if (Result<void> ok = readValue(reader.length("spacing"), recipe.spacing); !ok)
                return Error(ok);
            if (!(recipe.spacing > 1e-7))
                return fail(command + ": 'spacing' along a path must be greater than zero.");
        }
        Result<bool> follow = reader.boolean("follow", true);
        if (!follow) return Error(follow);
        recipe.follow = *follow;
        break;
    }
    }
    if (recipe.count * recipe.count2 < 2) return fail("A pattern needs at least two copies.");
    return recipe;
}

} // namespace cad
