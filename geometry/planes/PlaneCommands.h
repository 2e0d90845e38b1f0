// The reference plane and section analysis commands: add_plane, edit_plane,
// add_section and edit_section.
#pragma once

namespace cad {

class CommandRegistry;

void registerPlaneCommands(CommandRegistry& registry);

} // namespace cad
