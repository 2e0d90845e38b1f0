// The footprint library tools: list_footprints, save_footprint and delete_footprint.
// They change only the library, never the document.
#pragma once

#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"

#include <nlohmann/json.hpp>

namespace cad::mcp {

class McpHost;

// {"footprints": [{"name", "description", "entities", "constraints"}]}: entities as
// "2 Circle, 1 Line", constraints as their count.
nlohmann::ordered_json footprintListing();

ToolAnswer listFootprintsTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer saveFootprintTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer deleteFootprintTool(McpHost& host, const ToolArguments& arguments);

} // namespace cad::mcp
