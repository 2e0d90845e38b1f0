// What a sketch pattern is made from: its kind, the entities it copies and the
// layout values, read from a command's arguments with the commands' own sentences.
#pragma once

#include "core/CommandRecord.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

enum class PatternKind { Rectangular, Circular, Path };

// "sketch_pattern_rectangular", "sketch_pattern_circular", "sketch_pattern_path".
std::string_view patternCommandName(PatternKind kind);
std::optional<PatternKind> patternKindOf(std::string_view commandName);

struct PatternRecipe {
    PatternKind kind = PatternKind::Rectangular;
    std::vector<std::string> entities; // the selection, copy 0
    int count = 2;
    double spacing = 10; // rectangular; along the path when `spacingGiven`
    bool spacingGiven = false;
    double angle = 0; // rectangular: first direction; circular: the spread
    int count2 = 1;
    double spacing2 = 10;
    double angle2 = 90;
    std::string center = "Origin";
    std::vector<std::string> path;
    bool follow = true;
};

// The declared arguments of one pattern command, as agents read them.
std::vector<ArgSpec> patternArguments(PatternKind kind);

// Reads everything but the sketch; messages begin with the record's name.
Result<PatternRecipe> readPatternRecipe(PatternKind kind, const CommandRecord& record);

} // namespace cad
