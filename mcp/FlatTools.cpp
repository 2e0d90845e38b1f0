// flat_pattern and export_flat: the body by ID or name, the fixed face (which must
// be the body's), the K-factor and thickness overrides, the file's unit (the
// document's display unit unless one is given) and the writer by the path's
// extension; the blank answered in millimetres or the file's unit.
#include "mcp/FlatTools.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "core/units/Format.h"
#include "geometry/exchange/ExchangeUnit.h"
#include "geometry/sheet/flat/FlatPattern.h"
#include "geometry/sheet/flat/Unfolding.h"
#include "mcp/McpHost.h"
#include "mcp/QueryTools.h"
#include "sketch/drawing/SketchExport.h"

namespace cad::mcp {

namespace {

using nlohmann::ordered_json;

#define KORVEL_CHECK(result)                                                                       \
    if (auto&& checked = (result); !checked) return ToolAnswer::failure(checked.error())

// The body's flat pattern with the face checked against the body first.
Result<flat::FlatPattern> patternOf(const Document& document, const std::string& name,
                                    const flat::FlatOptions& options) {
    const auto* body = document.findAs<GeometryObject>(name);
    if (!body) return fail("No body named '" + name + "'.");
    if (!options.face.empty()) {
        const std::optional<TopoDS_Shape> face =
            body->shape.findByName(flat::faceNameOf(options.face));
        if (!face || face->ShapeType() != TopAbs_FACE)
            return fail(body->displayName() + " has no face '" + options.face + "'.");
    }
    return flat::flatPattern(document, *body, options);
}

// The file's unit: the one given, else the document's.
Result<units::Length> fileUnit(const Document& document, const ToolArguments& arguments) {
    const Value* given = arguments.record().find("unit");
    if (!given) return document.lengthUnit();
    const auto* text = std::get_if<std::string>(given);
    std::optional<units::Length> chosen = text ? exchange::exchangeUnit(*text) : std::nullopt;
    if (!chosen) return fail("Unknown unit.");
    return *chosen;
}

// The path, when given: it must end in .dxf or .svg.
Result<std::string> drawingPath(const ToolArguments& arguments, bool required) {
    ArgReader reader(arguments.record());
    Result<std::string> path = required ? reader.string("path") : reader.string("path", "");
    if (!path) return path;
    if (trimmed(*path).empty()) {
        if (required) return fail(arguments.tool() + ": give the file's 'path'.");
        return std::string();
    }
    if (!drawing::isDrawingPath(*path)) return fail("Export as .dxf or .svg.");
    return path;
}

Result<void> writePattern(const flat::FlatPattern& pattern, const std::string& path,
                          units::Length unit) {
    return drawing::writeDrawing(drawing::inUnit(pattern.drawing, unit), path);
}

ordered_json bendJson(const flat::FlatPatternBend& bend) {
    ordered_json out = ordered_json::object();
    out["direction"] = bend.up ? "up" : "down";
    out["angle_degrees"] = roundMeasure(bend.angle);
    out["inner_radius_mm"] = roundMeasure(bend.innerRadius);
    out["line_mm"] = ordered_json::array({roundMeasure(bend.from.x), roundMeasure(bend.from.y),
                                          roundMeasure(bend.to.x), roundMeasure(bend.to.y)});
    return out;
}

} // namespace

ToolAnswer flatPatternTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"body", "path", "face", "k_factor", "thickness", "unit"}));
    ArgReader reader(arguments.record());
    Result<std::string> body = reader.string("body");
    KORVEL_CHECK(body);
    Result<std::string> path = drawingPath(arguments, false);
    KORVEL_CHECK(path);
    Result<std::string> face = reader.string("face", "");
    KORVEL_CHECK(face);
    flat::FlatOptions options;
    options.face = trimmed(*face);
    if (reader.has("k_factor")) {
        Result<double> k = reader.number("k_factor");
        KORVEL_CHECK(k);
        options.kFactor = *k;
    }
    if (reader.has("thickness")) {
        Result<double> thickness = reader.number("thickness");
        KORVEL_CHECK(thickness);
        options.thickness = *thickness;
    }
    Result<units::Length> unit = fileUnit(host.document(), arguments);
    KORVEL_CHECK(unit);

    Result<flat::FlatPattern> pattern = patternOf(host.document(), *body, options);
    KORVEL_CHECK(pattern);
    ordered_json answer = ordered_json::object();
    answer["width_mm"] = roundMeasure(pattern->width);
    answer["height_mm"] = roundMeasure(pattern->height);
    answer["thickness_mm"] = roundMeasure(pattern->thickness);
    answer["k_factor"] = roundMeasure(pattern->kFactor);
    answer["holes"] = pattern->holes;
    answer["bends"] = ordered_json::array();
    for (const flat::FlatPatternBend& bend : pattern->bends)
        answer["bends"].push_back(bendJson(bend));
    if (!path->empty()) {
        KORVEL_CHECK(writePattern(*pattern, *path, *unit));
        answer["wrote"] = *path;
    }
    return ToolAnswer::success(toolJsonText(answer));
}

ToolAnswer exportFlatTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"body", "path", "face", "unit"}));
    ArgReader reader(arguments.record());
    Result<std::string> body = reader.string("body");
    KORVEL_CHECK(body);
    Result<std::string> path = drawingPath(arguments, true);
    KORVEL_CHECK(path);
    Result<std::string> face = reader.string("face", "");
    KORVEL_CHECK(face);
    Result<units::Length> unit = fileUnit(host.document(), arguments);
    KORVEL_CHECK(unit);

    flat::FlatOptions options;
    options.face = trimmed(*face);
    Result<flat::FlatPattern> pattern = patternOf(host.document(), *body, options);
    KORVEL_CHECK(pattern);
    KORVEL_CHECK(writePattern(*pattern, *path, *unit));
    return ToolAnswer::success("Wrote " + *path + ": " +
                               units::formatLength(pattern->width, *unit) + " x " +
                               units::formatLength(pattern->height, *unit) + ", " +
                               units::formatLength(pattern->thickness, *unit) + " thick.");
}

Result<drawing::Drawing> flatDrawingForNesting(const Document& document, const std::string& body,
                                               const std::string& face) {
    flat::FlatOptions options;
    options.face = trimmed(face);
    Result<flat::FlatPattern> pattern = patternOf(document, body, options);
    if (!pattern) return Error(pattern);
    return std::move(pattern->drawing);
}

} // namespace cad::mcp
