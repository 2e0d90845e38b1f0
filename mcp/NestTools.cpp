// nest_parts: reading the parts list (body, quantity, face) and the sheet in the
// tool's unit, nesting the flat drawings, and answering the sheets, the usage and
// every copy's place in that unit.
#include "mcp/NestTools.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "geometry/exchange/ExchangeUnit.h"
#include "geometry/sheet/nest/Nesting.h"
#include "mcp/McpHost.h"
#include "mcp/QueryTools.h"
#include "sketch/drawing/SketchExport.h"

#include <cmath>
#include <limits>

namespace cad::mcp {

namespace {

using nlohmann::ordered_json;

// One entry of "parts": {"body": ..., "quantity": ..., "face": ...}.
Result<nest::NestPart> readPart(const Document& document, const ordered_json& entry,
                                const FlatDrawing& flat) {
    if (!entry.is_object() || !entry.contains("body") || !entry["body"].is_string())
        return fail("nest_parts: each part needs its 'body'.");
    for (const auto& [key, value] : entry.items())
        if (key != "body" && key != "quantity" && key != "face")
            return fail("nest_parts: a part has 'body', 'quantity' and 'face', not '" + key + "'.");
    const std::string name = entry["body"].get<std::string>();
    std::int64_t quantity = 1;
    if (entry.contains("quantity")) {
        const ordered_json& q = entry["quantity"];
        if (!q.is_number_integer() || q.get<std::int64_t>() < 0 ||
            q.get<std::int64_t>() > std::numeric_limits<std::int32_t>::max())
            return fail("nest_parts: a part's 'quantity' is a whole number, 0 or more.");
        quantity = q.get<std::int64_t>();
    }
    std::string face;
    if (entry.contains("face")) {
        if (!entry["face"].is_string())
            return fail("nest_parts: a part's 'face' is a face's name.");
        face = entry["face"].get<std::string>();
    }
    const auto* body = document.findAs<GeometryObject>(name);
    if (!body) return fail("No body named '" + name + "'.");
    Result<drawing::Drawing> drawing = flat(document, body->id, face);
    if (!drawing) return Error(drawing);
    return nest::NestPart{body->displayName(), std::move(*drawing),
                          static_cast<std::int32_t>(quantity)};
}

} // namespace

ToolAnswer nestPartsTool(McpHost& host, const ToolArguments& arguments, const FlatDrawing& flat) {
    if (Result<void> ok = arguments.allow(
            {"sheet_width", "sheet_height", "spacing", "margin", "allow_turning", "path", "unit"},
            {"parts"});
        !ok)
        return ToolAnswer::failure(ok.error());
    const Document& document = host.document();
    units::Length unit = units::Length::Millimeters;
    if (const Value* given = arguments.record().find("unit")) {
        const auto* text = std::get_if<std::string>(given);
        std::optional<units::Length> chosen = text ? exchange::exchangeUnit(*text) : std::nullopt;
        if (!chosen) return ToolAnswer::failure("Unknown unit.");
        unit = *chosen;
    }
    const double size = units::unitScale(unit); // mm per unit

    ArgReader reader(arguments.record());
    nest::NestRequest request;
    Result<double> width = reader.number("sheet_width");
    if (!width) return ToolAnswer::failure(width.error());
    Result<double> height = reader.number("sheet_height");
    if (!height) return ToolAnswer::failure(height.error());
    Result<double> spacing = reader.number("spacing", 3 / size);
    if (!spacing) return ToolAnswer::failure(spacing.error());
    Result<double> margin = reader.number("margin", 5 / size);
    if (!margin) return ToolAnswer::failure(margin.error());
    Result<bool> turning = reader.boolean("allow_turning", true);
    if (!turning) return ToolAnswer::failure(turning.error());
    Result<std::string> path = reader.string("path", "");
    if (!path) return ToolAnswer::failure(path.error());
    const std::string file(trimmed(*path));
    if (!file.empty() && !drawing::isDrawingPath(file))
        return ToolAnswer::failure("Export as .dxf or .svg.");
    request.sheetWidth = *width * size;
    request.sheetHeight = *height * size;
    request.spacing = *spacing * size;
    request.margin = *margin * size;
    request.allowTurning = *turning;

    if (const ordered_json* parts = arguments.find("parts"))
        for (const ordered_json& entry : *parts) {
            Result<nest::NestPart> part = readPart(document, entry, flat);
            if (!part) return ToolAnswer::failure(part.error());
            request.parts.push_back(std::move(*part));
        }
    Result<nest::NestResult> nested = nest::nest(request);
    if (!nested) return ToolAnswer::failure(nested.error());

    ordered_json answer = ordered_json::object();
    answer["sheets"] = nested->sheetCount;
    answer["usage"] = std::round(nested->usage * 1000) / 10;
    ordered_json placements = ordered_json::array();
    for (const nest::NestPlacement& p : nested->placements)
        placements.push_back({{"part", p.part},
                              {"copy", p.copy},
                              {"sheet", p.sheet + 1},
                              {"x", p.x / size},
                              {"y", p.y / size},
                              {"angle", p.angle}});
    answer["placements"] = std::move(placements);
    if (!file.empty()) {
        Result<void> written = drawing::writeDrawing(drawing::inUnit(nested->drawing, unit), file);
        if (!written) return ToolAnswer::failure(written.error());
        answer["file"] = file;
    }
    return ToolAnswer::success(toolJsonText(answer));
}

} // namespace cad::mcp
