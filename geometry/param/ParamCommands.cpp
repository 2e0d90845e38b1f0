// Registers a command and an editor for every parametric kind known so far.
#include "geometry/param/ParamCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/param/EditParamFeatureCommand.h"
#include "geometry/param/FeatureCommand.h"
#include "geometry/param/ParamFeatureType.h"

namespace cad {

void registerParamCommands(CommandRegistry& registry) {
    for (const ParamFeatureType& type : paramFeatureTypes().all()) {
        // A kind made by another command (PatternBody, by pattern_bodies) has none of its own.
        if (type.command.empty()) continue;
        const std::string typeId = type.typeId;
        if (!registry.find(type.command))
            registry.add(type.command, type.description, toArgSpecs(commandArguments(type)),
                         [typeId](const CommandRecord& record) {
                             return FeatureCommand::create(typeId, record);
                         });
        const std::string editor = "edit_" + type.command;
        if (!registry.find(editor))
            registry.add(editor,
                         "Change a " + type.label + " feature (only the arguments given change).",
                         toArgSpecs(editArguments(type)), [typeId](const CommandRecord& record) {
                             return EditParamFeatureCommand::create(typeId, record);
                         });
    }
}

} // namespace cad
