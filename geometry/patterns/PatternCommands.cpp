// Registers the body-pattern commands, the combine command and the pattern set's
// project-file record.
#include "geometry/patterns/PatternCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/param/ParamFeatureType.h"
#include "geometry/patterns/CombineCommand.h"
#include "geometry/patterns/PatternKinds.h"
#include "geometry/patterns/PatternSetCommands.h"
#include "geometry/patterns/PatternSetObject.h"

namespace cad {

void registerPatternCommands(CommandRegistry& registry) {
    addPatternKinds();
    registry.add("pattern_bodies",
                 "Pattern whole bodies: each copy a body of its own (named after the original, "
                 "\"Bracket (2)\"), which follows the original as it changes. The pattern "
                 "(PatternSetN) edits them all together (edit_pattern). (To repeat features "
                 "inside a body, use pattern_rectangular / pattern_circular / pattern_path.)",
                 PatternCopiesCommand::arguments(), PatternCopiesCommand::create);
    registry.add("edit_pattern",
                 "Change a pattern of bodies or components (only the arguments given change): "
                 "copies are added or removed to match the count, and all of them move to the "
                 "new layout.",
                 EditPatternCommand::arguments(), EditPatternCommand::create);
    const ParamFeatureType* combine = paramFeatureTypes().find("Combine");
    if (combine && !registry.find("combine"))
        registry.add("combine", combine->description, toArgSpecs(commandArguments(*combine)),
                     CombineCommand::create);
}

void registerPatternTypes(ObjectTypes& types) {
    addPatternKinds();
    registerPatternSetType(types);
}

} // namespace cad
