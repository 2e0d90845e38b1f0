// Registers the solid-modeling commands with their catalogue descriptions.
#include "geometry/GeometryCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/CreateBoxCommand.h"
#include "geometry/EditFeatureCommand.h"
#include "geometry/ExtrudeCommand.h"
#include "geometry/FacePlaneResolver.h"

namespace cad {

void registerGeometryCommands(CommandRegistry& registry) {
    geometry::installFacePlaneResolver();
    registry.add("create_box", "Create a solid box body.", CreateBoxCommand::arguments(),
                 &CreateBoxCommand::create);
    registry.add("extrude",
                 "Extrude a sketch's closed regions along its normal (negative distance: the other "
                 "way) into a new body, or join/cut an existing body. Regions fill even-odd: a "
                 "shape inside another is a hole.",
                 ExtrudeCommand::arguments(), &ExtrudeCommand::create);
    registry.add("edit_feature",
                 "Change a feature's values: an extrude's distance (or swap join and cut), a "
                 "fillet's radius, a chamfer's distance, a shell's thickness or direction. The "
                 "body rebuilds.",
                 EditFeatureCommand::arguments(), &EditFeatureCommand::create);
}

} // namespace cad
