// The file tools that lay a body flat for laser and CNC software: flat_pattern
// reports the blank (and may write it), export_flat writes it. Neither changes the
// document. Also the flat drawing nest_parts packs.
#pragma once

#include "core/Result.h"
#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"
#include "sketch/drawing/Drawing.h"

#include <string>

namespace cad {
class Document;
}

namespace cad::mcp {

class McpHost;

ToolAnswer flatPatternTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer exportFlatTool(McpHost& host, const ToolArguments& arguments);

// A body (by ID or name) laid flat on its flat face `face` (empty: the largest), in
// millimetres: what nest_parts takes as its FlatDrawing.
Result<drawing::Drawing> flatDrawingForNesting(const Document& document, const std::string& body,
                                               const std::string& face);

} // namespace cad::mcp
