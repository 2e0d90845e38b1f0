// The query tools for documents and sketches, undo and redo, project files and
// the view. They read the model or go through the host; none leaves it half-changed.
#include "mcp/QueryTools.h"

#include "core/ArgReader.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/DocumentJson.h"
#include "core/GeometryObject.h"
#include "core/JsonLayout.h"
#include "geometry/materials/MaterialListing.h"
#include "geometry/planes/PlaneObject.h"
#include "geometry/planes/SectionObject.h"
#include "mcp/AllCommands.h"
#include "mcp/BodyTools.h"
#include "mcp/McpHost.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchReference.h"
#include "sketch/SketchSolver.h"

#include <cmath>

namespace cad::mcp {

namespace {

using ordered_json = nlohmann::ordered_json;

ordered_json sketchAnalysis(const SketchObject& sketch) {
    SketchAnalysis analysis = analyseSketch(sketch.entities, sketch.constraints);
    ordered_json out = ordered_json::object();
    out["degrees_of_freedom"] = analysis.degreesOfFreedom;
    out["fully_constrained"] = analysis.degreesOfFreedom == 0;
    return out;
}

// Reads the tool's arguments: only `names` allowed, then the readers' checks.
#define KORVEL_CHECK(result)                                                                       \
    if (auto&& checked = (result); !checked) return ToolAnswer::failure(checked.error())

} // namespace

const ObjectTypes& allObjectTypes() {
    static const ObjectTypes types = [] {
        ObjectTypes t;
        registerAllTypes(t);
        return t;
    }();
    return types;
}

std::string toolJsonText(const ordered_json& value) {
    std::string text = layoutJson(value);
    if (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

double roundMeasure(double value) {
    double rounded = std::round(value * 1000000.0) / 1000000.0;
    return rounded == 0 ? 0.0 : rounded; // no "-0"
}

ordered_json vector3(double x, double y, double z) {
    return ordered_json::array({roundMeasure(x), roundMeasure(y), roundMeasure(z)});
}

// Where a plane or a section's cut lies now, for an agent to place things by.
ordered_json placementOf(const gp_Ax3& placement) {
    const gp_Pnt& o = placement.Location();
    const gp_Dir& n = placement.Direction();
    const gp_Dir& x = placement.XDirection();
    ordered_json json = ordered_json::object();
    json["origin"] = vector3(o.X(), o.Y(), o.Z());
    json["normal"] = vector3(n.X(), n.Y(), n.Z());
    json["x_direction"] = vector3(x.X(), x.Y(), x.Z());
    return json;
}

// A plane's or section's computed placement and, when its last compute failed, why.
void completePlaced(ordered_json& record, bool placed, const gp_Ax3& placement,
                    const std::string& error) {
    if (placed) record["placement"] = placementOf(placement);
    if (!error.empty()) record["error"] = error;
}

ordered_json documentAnswer(McpHost& host) {
    const Document& document = host.document();
    SideFiles sideFiles;
    ordered_json json = writeDocumentJson(document, sideFiles, allObjectTypes());
    ordered_json& records = json["objects"];
    std::size_t i = 0;
    for (const auto& object : document.objects()) {
        ordered_json& record = records[i++];
        if (auto* body = dynamic_cast<const GeometryObject*>(object.get()))
            record["measured"] = bodySummary(*body, document);
        else if (auto* sketch = dynamic_cast<const SketchObject*>(object.get()))
            record["analysis"] = sketchAnalysis(*sketch);
        else if (auto* feature = dynamic_cast<const FeatureObject*>(object.get());
                 feature && !feature->error.empty())
            record["error"] = feature->error;
        else if (auto* plane = dynamic_cast<const PlaneObject*>(object.get()))
            completePlaced(record, plane->placed, plane->placement, plane->error);
        else if (auto* section = dynamic_cast<const SectionObject*>(object.get()))
            completePlaced(record, section->placed, section->placement, section->error);
        // Projected geometry that can't follow its source says so.
        if (auto* sketch = dynamic_cast<const SketchObject*>(object.get()))
            if (std::string error = sketch->error(); !error.empty()) record["error"] = error;
    }
    ordered_json answer = ordered_json::object();
    answer["file"] = host.currentPath();
    answer["live"] = host.isInteractive();
    answer["lengths_in"] =
        "mm (display unit: " + std::string(units::unitAbbreviation(document.lengthUnit())) + ")";
    answer["document"] = std::move(json);
    return answer;
}

ToolAnswer getDocumentTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({}));
    return ToolAnswer::success(toolJsonText(documentAnswer(host)));
}

ToolAnswer getSketchTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"sketch"}));
    Result<std::string> name = ArgReader(arguments.record()).string("sketch");
    KORVEL_CHECK(name);
    const auto* sketch = host.document().findAs<SketchObject>(*name);
    if (!sketch) return ToolAnswer::failure("No sketch named '" + *name + "'.");

    ordered_json record = ordered_json::object();
    record["type"] = std::string(sketch->typeName());
    record["name"] = sketch->id;
    if (!sketch->label.empty()) record["label"] = sketch->label;
    if (const ObjectType* type = allObjectTypes().find(sketch->typeName()); type && type->write) {
        SideFiles sideFiles;
        type->write(*sketch, record, sideFiles);
    }
    record["analysis"] = sketchAnalysis(*sketch);
    if (std::string error = sketch->error(); !error.empty()) record["error"] = error;
    ordered_json points = ordered_json::array();
    for (const NamedPoint& p : namedPoints(sketch->entities)) {
        ordered_json point = ordered_json::object();
        point["ref"] = p.reference;
        point["x"] = roundMeasure(p.position.x);
        point["y"] = roundMeasure(p.position.y);
        points.push_back(std::move(point));
    }
    record["named_points"] = std::move(points);
    return ToolAnswer::success(toolJsonText(record));
}

ToolAnswer listMaterialsTool(McpHost&, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({}));
    return ToolAnswer::success(toolJsonText(materialListing()));
}

ToolAnswer undoTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({}));
    CommandStack& stack = host.commandStack();
    const CommandRecord* record = stack.undoRecord();
    if (!record) return ToolAnswer::failure("Nothing to undo.");
    const std::string call = record->toCall();
    if (!stack.undo()) return ToolAnswer::failure("Couldn't undo " + call + ".");
    return ToolAnswer::success("Undid " + call + ".");
}

ToolAnswer redoTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({}));
    CommandStack& stack = host.commandStack();
    const CommandRecord* record = stack.redoRecord();
    if (!record) return ToolAnswer::failure("Nothing to redo.");
    const std::string call = record->toCall();
    CommandResult done = stack.redo();
    if (!done.ok) return ToolAnswer::failure(done.message);
    return ToolAnswer::success("Redid " + call + ".");
}

ToolAnswer newDocumentTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({}));
    KORVEL_CHECK(host.newDocument());
    return ToolAnswer::success("Started a new document.");
}

ToolAnswer openProjectTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"path"}));
    Result<std::string> path = ArgReader(arguments.record()).string("path");
    KORVEL_CHECK(path);
    KORVEL_CHECK(host.openProject(*path));
    return ToolAnswer::success("Opened " + host.currentPath() + ".");
}

ToolAnswer saveProjectTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"path"}));
    Result<std::string> path = ArgReader(arguments.record()).string("path", "");
    KORVEL_CHECK(path);
    KORVEL_CHECK(host.saveProject(*path));
    return ToolAnswer::success("Saved " + host.currentPath() + ".");
}

ToolAnswer screenshotTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({}));
    Result<std::string> png = host.screenshot();
    if (!png || png->empty()) return ToolAnswer::failure("Couldn't capture the view.");
    return ToolAnswer::image(std::move(png).value());
}

ToolAnswer setViewTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"view"}));
    Result<std::string> view = ArgReader(arguments.record()).string("view");
    KORVEL_CHECK(view);
    KORVEL_CHECK(host.setView(*view));
    return ToolAnswer::success("View changed.");
}

} // namespace cad::mcp
