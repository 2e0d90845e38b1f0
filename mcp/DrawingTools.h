// The file tool that writes a sketch out for laser and CNC software: export_sketch.
// It doesn't change the document.
#pragma once

#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"

namespace cad::mcp {

class McpHost;

ToolAnswer exportSketchTool(McpHost& host, const ToolArguments& arguments);

} // namespace cad::mcp
