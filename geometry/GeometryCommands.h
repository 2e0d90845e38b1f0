// The solid-modeling commands: create_box, extrude, edit_feature, fillet, chamfer,
// shell, and the reference plane and section commands. Registering them also lets
// sketches find the planes of reference planes and flat faces.
#pragma once

namespace cad {

class CommandRegistry;

void registerGeometryCommands(CommandRegistry& registry);

} // namespace cad
