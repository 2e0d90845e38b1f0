// export_sketch: the sketch by ID or name, the unit (the document's display unit
// unless one is given) and whether construction geometry goes too; the writer is
// chosen by the path's extension.
#include "mcp/DrawingTools.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/TextCase.h"
#include "geometry/exchange/ExchangeUnit.h"
#include "mcp/McpHost.h"
#include "sketch/SketchObject.h"
#include "sketch/drawing/SketchExport.h"

namespace cad::mcp {

ToolAnswer exportSketchTool(McpHost& host, const ToolArguments& arguments) {
    if (Result<void> ok = arguments.allow({"sketch", "path", "unit", "construction"}); !ok)
        return ToolAnswer::failure(ok.error());
    ArgReader reader(arguments.record());
    Result<std::string> name = reader.string("sketch");
    if (!name) return ToolAnswer::failure(name.error());
    Result<std::string> path = reader.string("path");
    if (!path) return ToolAnswer::failure(path.error());
    if (trimmed(*path).empty())
        return ToolAnswer::failure("export_sketch: give the file's 'path'.");
    Result<bool> construction = reader.boolean("construction", false);
    if (!construction) return ToolAnswer::failure(construction.error());

    units::Length unit = host.document().lengthUnit();
    if (const Value* given = arguments.record().find("unit")) {
        const auto* text = std::get_if<std::string>(given);
        std::optional<units::Length> chosen = text ? exchange::exchangeUnit(*text) : std::nullopt;
        if (!chosen) return ToolAnswer::failure("Unknown unit.");
        unit = *chosen;
    }
    const auto* sketch = host.document().findAs<SketchObject>(*name);
    if (!sketch) return ToolAnswer::failure("No sketch named '" + *name + "'.");
    Result<std::string> written = drawing::exportSketch(*sketch, *path, unit, *construction);
    if (!written) return ToolAnswer::failure(written.error());
    return ToolAnswer::success(*written);
}

} // namespace cad::mcp
