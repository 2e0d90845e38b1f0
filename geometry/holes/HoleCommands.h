// The hole and thread commands: hole, edit_hole, thread and edit_thread.
#pragma once

namespace cad {

class CommandRegistry;

void registerHoleCommands(CommandRegistry& registry);

} // namespace cad
