// The sketch commands' registry entries. The descriptions are what agents read as
// the tools' descriptions.
#include "sketch/SketchCommands.h"

#include "core/CommandRegistry.h"
#include "sketch/AddEntityCommand.h"
#include "sketch/ConstraintCommands.h"
#include "sketch/CreateSketchCommand.h"
#include "sketch/EditSketchEntityCommand.h"
#include "sketch/MoveSketchPointCommand.h"
#include "sketch/SketchEntityCommands.h"

namespace cad {

namespace {

void addEntityCommand(CommandRegistry& registry, const char* name, const char* description,
                      EntityKind kind) {
    registry.add(
        name, description, AddEntityCommand::arguments(kind),
        [kind](const CommandRecord& record) { return AddEntityCommand::create(kind, record); });
}

} // namespace

void registerSketchCommands(CommandRegistry& registry) {
    registry.add("create_sketch",
                 "Create a sketch: on an origin plane (plane), or on any plane given by origin, "
                 "normal and an optional x direction (e.g. a body's face, with support naming the "
                 "body). Sketch coordinates are mm in that plane.",
                 CreateSketchCommand::arguments(), &CreateSketchCommand::create);

    addEntityCommand(registry, "add_line", "Add a line to a sketch.", EntityKind::Line);
    addEntityCommand(registry, "add_rectangle",
                     "Add an axis-aligned rectangle (one entity) by two opposite corners. (The "
                     "app's rectangle tool draws four constrained lines instead.)",
                     EntityKind::Rectangle);
    addEntityCommand(registry, "add_circle", "Add a circle: center plus radius or diameter.",
                     EntityKind::Circle);
    addEntityCommand(registry, "add_point",
                     "Add a point to a sketch (for holes, snapping and constraints).",
                     EntityKind::Point);
    addEntityCommand(registry, "add_arc",
                     "Add an arc: center form (cx, cy, radius|diameter, start_angle, sweep_angle; "
                     "counter-clockwise positive) or three points (x1,y1 start, x2,y2 a point on "
                     "the arc, x3,y3 end).",
                     EntityKind::Arc);
    addEntityCommand(registry, "add_polygon",
                     "Add a regular polygon (one entity; its sides stay editable).",
                     EntityKind::Polygon);
    addEntityCommand(registry, "add_spline", "Add a fit-point spline through every point.",
                     EntityKind::Spline);
    addEntityCommand(registry, "add_slot",
                     "Add a straight slot by its two end centers and its full width.",
                     EntityKind::Slot);
    addEntityCommand(registry, "add_text",
                     "Add text to a sketch: lettering whose glyph outlines are real geometry "
                     "(closed contours, so it extrudes as raised or engraved lettering). Height "
                     "is the cap height. Use text_to_outlines to turn it into editable curves.",
                     EntityKind::Text);

    registry.add(
        "add_constraint",
        "Constrain or dimension sketch geometry. Refused when it conflicts with the "
        "sketch's constraints or is redundant. References: \"Line1\" (the line), "
        "\"Line1.start\"/\"end\", \"Circle1\" / \"Circle1.center\", "
        "\"Arc1.start\"/\"end\"/\"center\", \"Point1\", "
        "\"Rectangle1.top\"/\"bottom_left\"/..., \"Polygon1.corner0\"/\"edge0\", "
        "\"Origin\", \"XAxis\", \"YAxis\". Use get_sketch to see an entity's named points.",
        AddConstraintCommand::arguments(), &AddConstraintCommand::create);
    registry.add("edit_constraint", "Change a sketch dimension's value; the sketch re-solves.",
                 EditConstraintCommand::arguments(), &EditConstraintCommand::create);
    registry.add("delete_constraint", "Remove a sketch constraint or dimension.",
                 DeleteConstraintCommand::arguments(), &DeleteConstraintCommand::create);
    registry.add("move_dimension",
                 "Move where a sketch dimension's value is drawn (no geometry changes).",
                 MoveDimensionCommand::arguments(), &MoveDimensionCommand::create);
    registry.add("move_sketch_point",
                 "Drag a sketch point to a position; constrained geometry follows.",
                 MoveSketchPointCommand::arguments(), &MoveSketchPointCommand::create);
    registry.add("set_construction",
                 "Mark a sketch entity as construction (reference) geometry, or back.",
                 SetConstructionCommand::arguments(), &SetConstructionCommand::create);
    registry.add("delete_sketch_entity",
                 "Delete an entity from a sketch (and the constraints that use it).",
                 DeleteSketchEntityCommand::arguments(), &DeleteSketchEntityCommand::create);
    registry.add("edit_sketch_entity",
                 "Change a sketch entity's values; omitted values stay. line: x1 y1 x2 y2 / length "
                 "angle; rectangle: x y width height; circle: cx cy radius|diameter; point: x y; "
                 "arc: cx cy radius|diameter start_angle sweep_angle; polygon: cx cy sides "
                 "radius|diameter|across_flats rotation; spline: points closed; slot: x1 y1 x2 y2 "
                 "width; text: text x y height font angle align bold italic. Refused if the "
                 "sketch's constraints don't allow it.",
                 EditSketchEntityCommand::arguments(), &EditSketchEntityCommand::create);
}

} // namespace cad
