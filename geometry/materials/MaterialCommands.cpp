// Registers set_material and set_appearance with their descriptions. Both read their
// own arguments, so that a missing one gets its own sentence.
#include "geometry/materials/MaterialCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/materials/SetAppearanceCommand.h"
#include "geometry/materials/SetMaterialCommand.h"

namespace cad {

void registerMaterialCommands(CommandRegistry& registry) {
    registry.add("set_material",
                 "Set what bodies or components are made of: a physical material "
                 "(list_materials), which gives them a mass (get_body) and a look unless an "
                 "appearance is painted over it. A component's material covers all its bodies.",
                 SetMaterialCommand::arguments(), &SetMaterialCommand::create);
    registry.add("set_appearance",
                 "Paint faces, whole bodies or components with an appearance (list_materials), "
                 "or a custom color. A body or component gets it on every face (face appearances "
                 "it had are cleared); faces keep theirs through later edits.",
                 SetAppearanceCommand::arguments(), &SetAppearanceCommand::create);
}

} // namespace cad
