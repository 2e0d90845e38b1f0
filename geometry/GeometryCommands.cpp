// Registers the solid-modeling, reference plane and section commands with their
// catalogue descriptions.
#include "geometry/GeometryCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/CreateBoxCommand.h"
#include "geometry/EditFeatureCommand.h"
#include "geometry/ExtrudeCommand.h"
#include "geometry/FacePlaneResolver.h"
#include "geometry/FilletCommand.h"
#include "geometry/planes/PlaneCommands.h"

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

    using Kind = FilletCommand::Kind;
    const auto addDressUp = [&](const char* name, const char* description, Kind kind) {
        registry.add(
            name, description, FilletCommand::arguments(kind),
            [kind](const CommandRecord& record) { return FilletCommand::create(kind, record); });
    };
    addDressUp("fillet",
               "Round edges of a body (added to the end of its history). Edges are the persistent "
               "names get_body lists, separated by ';', e.g. \"Edge(Extrude1.end, "
               "Extrude1.side.Line1); Edge(Extrude1.end, Extrude1.side.Line2)\". The fillet "
               "follows those edges through later edits.",
               Kind::Fillet);
    addDressUp("chamfer",
               "Bevel edges of a body by an equal distance on both faces (added to the end of its "
               "history). Edges as for fillet: persistent names from get_body, separated by ';'.",
               Kind::Chamfer);
    addDressUp("shell",
               "Hollow a body into walls of one thickness, open where the given faces were (at "
               "least one), e.g. a box open at the top. Faces are persistent names from get_body, "
               "separated by ';'.",
               Kind::Shell);
    registerPlaneCommands(registry);
}

} // namespace cad
