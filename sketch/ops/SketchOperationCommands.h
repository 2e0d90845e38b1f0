// Registers the sketch operations (trim, extend, offset, mirror, move_entities,
// group, ungroup, explode) and the corner commands (sketch_fillet, sketch_chamfer).
#pragma once

namespace cad {

class CommandRegistry;

void registerSketchOperationCommands(CommandRegistry& registry);

} // namespace cad
