// The file tools that write bodies out for other software: export_step and
// export_stl. Neither changes the document.
#pragma once

#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"

namespace cad::mcp {

class McpHost;

ToolAnswer exportStepTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer exportStlTool(McpHost& host, const ToolArguments& arguments);

} // namespace cad::mcp
