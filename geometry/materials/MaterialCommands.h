// The commands on what things are made of and how they look: set_material and
// set_appearance.
#pragma once

namespace cad {

class CommandRegistry;

void registerMaterialCommands(CommandRegistry& registry);

} // namespace cad
