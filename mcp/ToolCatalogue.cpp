// The query and file tools' descriptors, and the schemas of registered commands
// built from their declared arguments.
#include "mcp/ToolCatalogue.h"

#include "mcp/BodyTools.h"
#include "mcp/DrawingTools.h"
#include "mcp/ExchangeTools.h"
#include "mcp/FlatTools.h"
#include "mcp/FootprintTools.h"
#include "mcp/NestTools.h"
#include "mcp/QueryTools.h"

namespace cad::mcp {

namespace {

using ordered_json = nlohmann::ordered_json;

struct Property {
    const char* name;
    bool required;
    const char* description; // may be empty
    std::vector<std::string> choices = {};
    const char* type = "string";  // "string", "number", "boolean", or "array" of strings
    ordered_json items = nullptr; // an array's items when they aren't strings
};

// The unit of the files the tools write, and the bodies they take.
Property unitProperty(const char* description) {
    return {"unit", false, description, {"mm", "cm", "m", "in", "ft"}};
}
const Property kBodiesProperty{
    "bodies", false, "Bodies' IDs or names (default: every visible body).", {}, "array"};

// nest_parts' list: objects naming a body, how many of it, and its flat face.
Property nestPartsProperty() {
    Property parts{"parts", true, "Bodies and how many of each (default 1).", {}, "array"};
    parts.items = {{"type", "object"},
                   {"properties",
                    {{"body", {{"type", "string"}}},
                     {"quantity", {{"type", "integer"}, {"minimum", 0}}},
                     {"face", {{"type", "string"}}}}},
                   {"required", {"body"}},
                   {"additionalProperties", false}};
    return parts;
}

// A query tool's schema from its properties, in the order given.
ordered_json stringSchema(const std::vector<Property>& properties) {
    ordered_json schema = ordered_json::object();
    schema["type"] = "object";
    ordered_json props = ordered_json::object();
    ordered_json required = ordered_json::array();
    for (const Property& p : properties) {
        ordered_json prop = ordered_json::object();
        prop["type"] = p.type;
        if (std::string_view(p.type) == "array")
            prop["items"] = p.items.is_null() ? ordered_json{{"type", "string"}} : p.items;
        if (!p.choices.empty()) prop["enum"] = p.choices;
        if (*p.description) prop["description"] = p.description;
        props[p.name] = std::move(prop);
        if (p.required) required.push_back(p.name);
    }
    schema["properties"] = std::move(props);
    if (!required.empty()) schema["required"] = std::move(required);
    schema["additionalProperties"] = false;
    return schema;
}

std::vector<QueryTool> buildQueryTools() {
    std::vector<QueryTool> tools;
    auto add = [&](const char* name, const char* description, std::vector<Property> properties,
                   bool readOnly, bool before, ToolHandler run) {
        tools.push_back(
            {name, description, stringSchema(properties), readOnly, before, std::move(run)});
    };
    add("get_document",
        "The whole model as JSON: units, sketches (plane, entities, constraints, degrees of "
        "freedom), features (parameters, errors) and bodies (volume, bounds). Lengths in mm.",
        {}, true, true, getDocumentTool);
    add("get_body",
        "One body's faces, edges and vertices with persistent references and what each measures "
        "(area, length, radius, center, axis, normal, position). Faces are named after the "
        "feature and sketch curve that made them (\"Body1/Extrude1.end\", "
        "\"Body1/Extrude1.side.Line3\"), edges and vertices after the faces they join "
        "(\"Body1/Edge(Extrude1.end, Extrude1.side.Line3)\"); the names survive dimension "
        "changes and other edits.",
        {{"body", true, "e.g. \"Body1\""}}, true, true, getBodyTool);
    add("measure",
        "Measure one shape (area, length, radius, position, volume), or two: minimum distance "
        "with the closest points and dX/dY/dZ, the angle between planes, lines or axes, and the "
        "distance between hole centers or axes. References: \"Body1\" or the refs get_body "
        "lists (\"Body1/Extrude1.end\"). Lengths in mm.",
        {{"a", true, "First shape."}, {"b", false, "Second shape (optional)."}}, true, true,
        measureTool);
    add("get_sketch",
        "One sketch in detail: entities, constraints, degrees of freedom, and every named point "
        "(\"Line1.end\" ...) with its coordinates, for building references.",
        {{"sketch", true, "e.g. \"Sketch1\""}}, true, true, getSketchTool);
    add("list_materials",
        "The physical materials (set_material: density in kg/m^3 for mass, strength, a default "
        "look) and the appearances (set_appearance: color and finish) to choose from.",
        {}, true, false, listMaterialsTool);
    add("list_footprints",
        "The saved footprints (reusable sketch pieces such as a switch's mounting holes, shared by "
        "every project): name, description and what each contains.",
        {}, true, false, listFootprintsTool);
    add("save_footprint",
        "Save a sketch (or some of its entities) as a footprint in the library, with its "
        "constraints and dimensions. The sketch origin is the footprint's reference point, so "
        "draw it around the origin.",
        {{"sketch", true, "e.g. \"Sketch2\""},
         {"name", true, "Footprint name, e.g. \"Toggle switch\""},
         {"description", false, ""},
         {"entities", false, "Only these entity IDs, separated by ';' (default all)."},
         {"replace", false, "Overwrite a footprint with the same name.", {}, "boolean"}},
        false, false, saveFootprintTool);
    add("delete_footprint", "Remove a footprint from the library.", {{"name", true, ""}}, false,
        false, deleteFootprintTool);
    add("undo", "Undo the last change (one tool call is one step).", {}, false, false, undoTool);
    add("redo", "Redo the last undone change.", {}, false, false, redoTool);
    add("new_document", "Start a new, empty document (unsaved changes are discarded).", {}, false,
        false, newDocumentTool);
    add("open_project", "Open a Korvel Studio project (.kv3).", {{"path", true, "File path."}},
        false, false, openProjectTool);
    add("save_project", "Save the document as a Korvel Studio project (.kv3).",
        {{"path", false, "File path; omit to save to the current file."}}, false, false,
        saveProjectTool);
    add("export_sketch",
        "Write a sketch as a 2D file for laser or CNC software (LightBurn, SheetCam, Vectric): "
        ".dxf (R12) or .svg by the path's extension. Layers: CUT (geometry), ENGRAVE (text as "
        "outlines), CONSTRUCTION (only with construction=true). Real units.",
        {{"sketch", true, "The sketch's ID or name."},
         {"path", true, "File path ending in .dxf or .svg."},
         unitProperty("What the file's numbers are in (default: the document's display unit)."),
         {"construction", false, "Include construction geometry.", {}, "boolean"}},
        false, false, exportSketchTool);
    add("export_flat",
        "Write a body laid flat as a 2D file for laser or CNC software: .dxf (R12) or .svg by the "
        "path's extension. Seen square to its largest flat face (or `face`): the outside on "
        "CUT_OUTSIDE, openings right through on CUT_INSIDE, pockets and engraved text on "
        "ENGRAVE. Real units.",
        {{"body", true, "The body's ID or name."},
         {"path", true, "File path ending in .dxf or .svg."},
         {"face", false, "A flat face's persistent name (get_body), e.g. \"Extrude1.end\"."},
         unitProperty("What the file's numbers are in (default: the document's display unit).")},
        false, false, exportFlatTool);
    add("flat_pattern",
        "A sheet metal body unfolded: its blank's size, its bends (angle, inner radius, up or "
        "down, where), and optionally the blank written to .dxf or .svg (outline on CUT_OUTSIDE, "
        "holes on CUT_INSIDE, bend lines on BEND). Works on any part of flat walls and "
        "cylindrical bends of one thickness, imported ones too. Uses the body's rules (its base "
        "flange), or k_factor / thickness given here.",
        {{"body", true, "The body's ID or name."},
         {"path", false, "Optional: a file ending in .dxf or .svg."},
         {"face", false, "The flat face that stays put (default: the largest)."},
         {"k_factor", false, "Instead of the body's (default 0.44 without rules).", {}, "number"},
         {"thickness", false, "mm; default the body's, or measured.", {}, "number"},
         unitProperty("What the file's numbers are in (default: the document's display unit).")},
        true, false, flatPatternTool);
    add("export_step",
        "Write bodies to a STEP file (AP214) for other CAD software: exact geometry, each body a "
        "part named as it is here. Millimetres.",
        {{"path", true, "File path ending in .step or .stp."}, kBodiesProperty}, false, false,
        exportStepTool);
    add("export_stl", "Write bodies to one STL mesh file (for 3D printing or mesh tools).",
        {{"path", true, "File path ending in .stl."},
         kBodiesProperty,
         {"deflection",
          false,
          "How far triangles may stray from the surfaces, mm (default 0.01).",
          {},
          "number"},
         unitProperty("What the file's numbers are in (default mm)."),
         {"binary", false, "Binary (default) or text STL.", {}, "boolean"}},
        false, false, exportStlTool);
    add("nest_parts",
        "Lay out copies of bodies (each laid flat, as export_flat) on rectangular sheets and write "
        "them as one .dxf or .svg: sheets side by side, each outlined on the SHEET layer. Parts "
        "are turned to their tightest rectangle and packed; 90° turns when allowed. Reports "
        "the sheets used and each copy's place.",
        {nestPartsProperty(),
         {"sheet_width", true, "In `unit` (default mm).", {}, "number"},
         {"sheet_height", true, "", {}, "number"},
         {"spacing", false, "Between parts (default 3 mm).", {}, "number"},
         {"margin", false, "From the sheet's edges (default 5 mm).", {}, "number"},
         {"allow_turning", false, "90° turns to fit better (default true).", {}, "boolean"},
         {"path", false, "File path ending in .dxf or .svg; omit to only report the layout."},
         unitProperty("")},
        false, false, [](McpHost& host, const ToolArguments& arguments) {
            return nestPartsTool(host, arguments, flatDrawingForNesting);
        });
    add("screenshot", "An image of the app's 3D view as the user sees it.", {}, true, false,
        screenshotTool);
    add("set_view", "Turn the app's view to a standard direction, or fit everything in view.",
        {{"view", true, "", {"top", "front", "right", "iso", "fit"}}}, false, false, setViewTool);
    return tools;
}

ordered_json descriptor(const std::string& name, const std::string& description,
                        ordered_json schema, bool readOnly) {
    ordered_json tool = ordered_json::object();
    tool["name"] = name;
    tool["description"] = description;
    tool["inputSchema"] = std::move(schema);
    if (readOnly) tool["annotations"] = {{"readOnlyHint", true}};
    return tool;
}

// The type of a declared argument in the schema, and the sentence it adds.
std::pair<ordered_json, const char*> schemaType(ArgType type) {
    switch (type) {
    case ArgType::Length:
        return {ordered_json::array({"number", "string"}),
                "Length: mm, or a string with units (\"0.5in\", \"1/4\\\"\", \"10 + 2mm\")."};
    case ArgType::Number:
        return {"number", ""};
    case ArgType::Angle:
        return {"number", "Degrees."};
    case ArgType::Integer:
        return {"integer", ""};
    case ArgType::Boolean:
        return {"boolean", ""};
    case ArgType::SketchReference:
        return {"string", "A sketch reference such as \"Line1.end\", \"Circle1\", \"Origin\"."};
    case ArgType::String:
    case ArgType::Text:
        break;
    }
    return {"string", ""};
}

} // namespace

const std::vector<QueryTool>& queryTools() {
    static const std::vector<QueryTool> tools = buildQueryTools();
    return tools;
}

const QueryTool* findQueryTool(std::string_view name) {
    for (const QueryTool& tool : queryTools())
        if (tool.name == name) return &tool;
    return nullptr;
}

ordered_json commandInputSchema(const std::vector<ArgSpec>& arguments) {
    ordered_json schema = ordered_json::object();
    schema["type"] = "object";
    ordered_json props = ordered_json::object();
    ordered_json required = ordered_json::array();
    for (const ArgSpec& arg : arguments) {
        auto [type, sentence] = schemaType(arg.type);
        ordered_json prop = ordered_json::object();
        prop["type"] = std::move(type);
        std::string description = arg.description;
        if (*sentence) description += (description.empty() ? "" : " ") + std::string(sentence);
        if (!description.empty()) prop["description"] = description;
        if (!arg.choices.empty()) prop["enum"] = arg.choices;
        props[arg.name] = std::move(prop);
        if (arg.required) required.push_back(arg.name);
    }
    schema["properties"] = std::move(props);
    if (!required.empty()) schema["required"] = std::move(required);
    schema["additionalProperties"] = false;
    return schema;
}

ordered_json toolDescriptors(const CommandRegistry& registry) {
    ordered_json tools = ordered_json::array();
    for (const QueryTool& tool : queryTools())
        if (tool.beforeCommands)
            tools.push_back(
                descriptor(tool.name, tool.description, tool.inputSchema, tool.readOnly));
    for (const CommandRegistry::Entry& entry : registry.entries())
        tools.push_back(
            descriptor(entry.name, entry.description, commandInputSchema(entry.arguments), false));
    for (const QueryTool& tool : queryTools())
        if (!tool.beforeCommands)
            tools.push_back(
                descriptor(tool.name, tool.description, tool.inputSchema, tool.readOnly));
    return tools;
}

} // namespace cad::mcp
