// The solid-modeling commands: create_box, extrude and edit_feature. Registering
// them also lets sketches find the planes of reference planes and flat faces.
#pragma once

namespace cad {

class CommandRegistry;

void registerGeometryCommands(CommandRegistry& registry);

} // namespace cad
