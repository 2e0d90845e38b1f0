// The sketch operations' registry entries. The descriptions are what agents read as
// the tools' descriptions.
#include "sketch/ops/SketchOperationCommands.h"

#include "core/CommandRegistry.h"
#include "sketch/ops/SketchCornerCommand.h"
#include "sketch/ops/SketchOperationCommand.h"

namespace cad {

namespace {

void addOperation(CommandRegistry& registry, const char* name, const char* description) {
    registry.add(name, description, SketchOperationCommand::arguments(name),
                 &SketchOperationCommand::create);
}

} // namespace

void registerSketchOperationCommands(CommandRegistry& registry) {
    addOperation(registry, "trim",
                 "Trim a line, circle or arc: removes the piece around (x, y) between its nearest "
                 "crossings with other curves (all of it if nothing crosses). A circle becomes an "
                 "arc; a middle piece splits the curve. Rectangle, polygon and slot sides can be "
                 "trimmed (the shape is broken into lines first). Trimmed ends stay on the curves "
                 "that cut them.");
    addOperation(registry, "extend",
                 "Extend the end of a line or arc nearest (x, y) to the next curve in its way.");
    addOperation(registry, "offset",
                 "Offset curves: copies at a distance, toward (x, y) if given, else outward for "
                 "closed shapes and left of a line's direction (negative distance: the other "
                 "way). Lines stay parallel at a dimensioned distance; circles, arcs, polygons "
                 "and slots stay centred on the originals.");
    addOperation(registry, "mirror",
                 "Mirror entities across a line or axis; the copies stay symmetric with the "
                 "originals.");
    addOperation(registry, "move_entities",
                 "Slide sketch entities by (x, y); constrained geometry tied to them follows.");
    addOperation(registry, "group",
                 "Group sketch entities: they select and move together (an imported drawing "
                 "arrives grouped).");
    addOperation(registry, "ungroup", "Take apart the groups these sketch entities are in.");
    addOperation(registry, "explode",
                 "Break a rectangle, polygon or slot into separate lines and arcs (joined and "
                 "constrained like before).");
    addOperation(registry, "text_to_outlines",
                 "Convert sketch text to outlines (as Illustrator does): its glyph contours "
                 "become lines and splines to edit, trim, cut or engrave. The text itself goes.");
    registry.add("sketch_fillet",
                 "Round a sketch corner where exactly two lines meet (trims them, adds a tangent "
                 "arc and a radius dimension).",
                 SketchCornerCommand::arguments("sketch_fillet"), &SketchCornerCommand::create);
    registry.add("sketch_chamfer", "Bevel a sketch corner where exactly two lines meet.",
                 SketchCornerCommand::arguments("sketch_chamfer"), &SketchCornerCommand::create);
}

} // namespace cad
