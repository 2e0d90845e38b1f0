// Registers the plane and section commands with their catalogue descriptions.
#include "geometry/planes/PlaneCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/planes/PlaneCommand.h"
#include "geometry/planes/SectionCommand.h"

namespace cad {

void registerPlaneCommands(CommandRegistry& registry) {
    using Plane = PlaneCommand::Mode;
    using Section = SectionCommand::Mode;
    const auto plane = [&](const char* name, const char* description, Plane mode) {
        registry.add(name, description, PlaneCommand::arguments(mode),
                     [mode](const CommandRecord& r) { return PlaneCommand::create(mode, r); });
    };
    const auto section = [&](const char* name, const char* description, Section mode) {
        registry.add(name, description, SectionCommand::arguments(mode),
                     [mode](const CommandRecord& r) { return SectionCommand::create(mode, r); });
    };
    plane("add_plane",
          "Add a reference plane defined from existing geometry; it follows that geometry when "
          "it moves, and sketches on it follow the plane. References: origin planes XY/XZ/YZ, "
          "axes X/Y/Z, Origin, PlaneN, SketchN/Line3, SketchN/Point2, SketchN/Line3.start, "
          "BodyN/<face, edge or vertex name from get_body>.",
          Plane::Add);
    plane("edit_plane", "Change a reference plane's definition (only the arguments given change).",
          Plane::Edit);
    section("add_section",
            "Add a section analysis: the view cut open along a plane (the side its normal points "
            "to cut away), the cut faces capped and hatched. It changes nothing in the model; "
            "hide it with set_visibility to see the whole part.",
            Section::Add);
    section("edit_section", "Change a section analysis (only the arguments given change).",
            Section::Edit);
}

} // namespace cad
