// Registers the sketch pattern commands (sketch_pattern_rectangular,
// sketch_pattern_circular, sketch_pattern_path) and edit_sketch_pattern.
#pragma once

namespace cad {

class CommandRegistry;

void registerSketchPatternCommands(CommandRegistry& registry);

} // namespace cad
