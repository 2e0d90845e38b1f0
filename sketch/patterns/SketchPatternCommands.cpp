// The sketch pattern commands' registry entries; the descriptions are what agents
// read as the tools' descriptions.
#include "sketch/patterns/SketchPatternCommands.h"

#include "core/CommandRegistry.h"
#include "sketch/patterns/EditSketchPatternCommand.h"
#include "sketch/patterns/SketchPatternCommand.h"

namespace cad {

void registerSketchPatternCommands(CommandRegistry& registry) {
    auto addPattern = [&](PatternKind kind, const char* description) {
        registry.add(std::string(patternCommandName(kind)), description,
                     SketchPatternCommand::arguments(kind), [kind](const CommandRecord& record) {
                         return SketchPatternCommand::create(kind, record);
                     });
    };
    addPattern(PatternKind::Rectangular,
               "Copy sketch entities in a row, or a grid with a second direction.");
    addPattern(PatternKind::Circular, "Copy sketch entities around a center.");
    addPattern(PatternKind::Path, "Copy sketch entities along a path of the sketch's own curves.");
    registry.add("edit_sketch_pattern",
                 "Change a sketch pattern (get_sketch lists them, e.g. \"Pattern1\"): any of the "
                 "arguments it was made with (entities, count, spacing, angle, count2, spacing2, "
                 "angle2, center, path, follow). Its copies are made again.",
                 EditSketchPatternCommand::arguments(), &EditSketchPatternCommand::create);
}

} // namespace cad
