// The projection command's registry entry, and the sketches' projection hook.
#include "geometry/projection/ProjectionCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/projection/ProjectCommand.h"
#include "geometry/projection/ProjectionRefresher.h"

namespace cad {

void registerProjectionCommands(CommandRegistry& registry) {
    geometry::installProjectionRefresher();
    registry.add("project",
                 "Project existing geometry straight onto a sketch's plane as linked geometry: "
                 "body edges, faces (their edges), vertices, other sketches' curves and points. "
                 "It follows its source when that changes; constrain to it to line up with the "
                 "part. Projected geometry isn't moved by the solver (delete it to unlink).",
                 ProjectCommand::arguments(), &ProjectCommand::create);
}

} // namespace cad
