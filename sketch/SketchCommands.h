// Registers the sketch commands (create_sketch, the add commands, entity edits,
// constraints and dimensions) with their descriptions and declared arguments.
#pragma once

namespace cad {

class CommandRegistry;

void registerSketchCommands(CommandRegistry& registry);

} // namespace cad
