// sketch_pattern_rectangular, sketch_pattern_circular and sketch_pattern_path: copies
// of sketch entities in a grid, around a centre or along a path, remembered in the
// sketch's patterns so that an edit can make them again.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/patterns/PatternArguments.h"
#include "sketch/patterns/SketchSnapshotCommand.h"

#include <memory>
#include <string>
#include <vector>

namespace cad {

class SketchPatternCommand : public SketchSnapshotCommand {
public:
    static std::vector<ArgSpec> arguments(PatternKind kind) { return patternArguments(kind); }
    static Result<std::unique_ptr<Command>> create(PatternKind kind, const CommandRecord& record);

    SketchPatternCommand(CommandRecord record, std::string sketch, PatternRecipe recipe)
        : SketchSnapshotCommand(std::move(record), std::move(sketch)), spec_(std::move(recipe)) {}

protected:
    Result<std::string> change(const Document& document, const SketchObject& sketch,
                               Lists& lists) override;

private:
    PatternRecipe spec_;
};

// The copies of a pattern appended to the entities (new IDs, same kinds, the
// construction flag kept); the IDs of the copies in the order made.
Result<std::vector<std::string>> makePatternCopies(const PatternRecipe& recipe,
                                                   std::vector<SketchEntity>& entities);

// "2 entities into 6 copies": what a pattern made, its selection included.
std::string patternSummary(const PatternRecipe& recipe);

// "Pattern" followed by the smallest number no pattern of the sketch uses.
std::string nextPatternId(const std::vector<SketchPattern>& patterns);

} // namespace cad
