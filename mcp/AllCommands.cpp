// Builds the registry from every folder's registration function and puts the
// entries in the tool catalogue's order, whatever order the folders add them in.
#include "mcp/AllCommands.h"

#include "core/CommandRegistry.h"
#include "core/HistoryCommands.h"
#include "core/ObjectTypes.h"
#include "core/Parameters.h"
#include "geometry/GeometryCommands.h"
#include "geometry/GeometryTypes.h"
#include "geometry/exchange/ExchangeCommands.h"
#include "geometry/holes/HoleCommands.h"
#include "geometry/holes/HoleTypes.h"
#include "geometry/materials/MaterialCommands.h"
#include "geometry/param/ParamCommands.h"
#include "geometry/param/ParamTypes.h"
#include "geometry/patterns/PatternCommands.h"
#include "geometry/projection/ProjectionCommands.h"
#include "geometry/sheet/flat/FlatKinds.h"
#include "geometry/sheet/metal/SheetMetalKinds.h"
#include "sketch/SketchCommands.h"
#include "sketch/SketchJson.h"
#include "sketch/drawingimport/ImportDrawingCommand.h"
#include "sketch/footprints/PlaceFootprintCommand.h"
#include "sketch/ops/SketchOperationCommands.h"
#include "sketch/patterns/SketchPatternCommands.h"

#include <algorithm>
#include <string>

namespace cad::mcp {

const std::vector<std::string_view>& catalogueCommandOrder() {
    static const std::vector<std::string_view> order = {
        "create_box", "delete_object", "create_sketch", "add_plane", "project", "edit_plane",
        "add_section", "edit_section", "roll_back", "suppress_feature", "move_step", "import_model",
        "add_setup", "edit_setup", "add_operation", "edit_operation", "add_line", "add_rectangle",
        "add_circle", "add_point", "add_arc", "add_polygon", "add_spline", "add_text", "add_slot",
        "add_constraint", "edit_constraint", "delete_constraint", "sketch_fillet", "sketch_chamfer",
        "move_dimension", "move_sketch_point", "set_construction", "delete_sketch_entity",
        "edit_sketch_entity", "edit_feature", "fillet", "chamfer", "hole", "edit_hole", "trim",
        "extend", "offset", "mirror", "text_to_outlines", "set_parameter", "rename_parameter",
        "delete_parameter", "move_entities", "group", "ungroup", "explode", "place_footprint",
        "thread", "edit_thread", "shell", "extrude", "set_visibility", "set_material",
        "set_appearance", "insert_canvas", "edit_canvas", "calibrate_canvas", "rename_object",
        "make_component", "add_instance", "move_instance", "ground_instance", "edit_component",
        "add_connection", "link_to_file", "embed", "update_links", "edit_connection",
        "sketch_pattern_rectangular", "import_drawing", "sketch_pattern_circular",
        "edit_sketch_pattern", "sketch_pattern_path", "set_units",
        // The scan workspace.
        "import_scan", "repair_scan", "scan_regions", "extract_scan", "align_scan", "move_scan",
        "section_scan", "scan_to_body", "outline_scan", "add_deviation", "edit_deviation",
        // Patterns of bodies and components.
        "pattern_bodies", "pattern_instances", "edit_pattern",
        // Generic feature kinds, each followed by its editor.
        "revolve", "edit_revolve", "sweep", "edit_sweep", "loft", "edit_loft", "sheet_flange",
        "edit_sheet_flange", "edge_flange", "edit_edge_flange", "unfold", "edit_unfold", "fold",
        "edit_fold", "split_body", "edit_split_body", "split_piece", "edit_split_piece", "combine",
        "edit_combine", "mirror_body", "edit_mirror_body", "delete_faces", "edit_delete_faces",
        "frozen", "edit_frozen", "frozen_body", "edit_frozen_body", "sheet_rules",
        "edit_sheet_rules", "hem", "edit_hem", "pattern_rectangular", "edit_pattern_rectangular",
        "pattern_circular", "edit_pattern_circular", "pattern_path", "edit_pattern_path",
        "mirror_features", "edit_mirror_features"};
    return order;
}

void registerAllCommands(CommandRegistry& registry) {
    // The folders register into a scratch registry; the entries then move over in
    // catalogue order, because agents read the tool list in that order.
    CommandRegistry scratch;
    registerGeometryCommands(scratch);
    registerHoleCommands(scratch);
    registerMaterialCommands(scratch);
    exchange::registerExchangeCommands(scratch);
    // Adds the pattern kinds, so it goes before the parametric commands.
    registerPatternCommands(scratch);
    addSheetMetalKinds(); // kinds too: before the parametric commands
    addFlatKinds();
    registerParamCommands(scratch);
    registerHistoryCommands(scratch);
    registerSketchCommands(scratch);
    registerSketchOperationCommands(scratch);
    registerSketchPatternCommands(scratch);
    registerDrawingImportCommands(scratch);
    registerFootprintCommands(scratch);
    registerProjectionCommands(scratch);
    registerParameterCommands(scratch);

    std::vector<bool> moved(scratch.entries().size(), false);
    auto move = [&](std::size_t i) {
        const CommandRegistry::Entry& e = scratch.entries()[i];
        registry.add(e.name, e.description, e.arguments, e.factory);
        moved[i] = true;
    };
    for (std::string_view name : catalogueCommandOrder()) {
        const auto& entries = scratch.entries();
        auto it = std::find_if(entries.begin(), entries.end(),
                               [&](const CommandRegistry::Entry& e) { return e.name == name; });
        if (it != entries.end()) move(static_cast<std::size_t>(it - entries.begin()));
    }
    for (std::size_t i = 0; i < moved.size(); ++i)
        if (!moved[i]) move(i);
}

void registerAllTypes(ObjectTypes& types) {
    registerSketchTypes(types);
    registerGeometryTypes(types);
    registerHoleTypes(types);
    registerPatternTypes(types); // adds the kinds: before the parametric records
    addSheetMetalKinds();
    addFlatKinds();
    registerParamTypes(types);
}

} // namespace cad::mcp
