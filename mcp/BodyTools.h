// The tools that look into solid bodies: a body's summary (volume, area, bounds,
// centre of mass), its faces, edges and vertices by persistent name, and measuring
// one shape or between two.
#pragma once

#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"

#include <nlohmann/json.hpp>

namespace cad {
class GeometryObject;
}

namespace cad::mcp {

class McpHost;

// The "measured" summary of a body; every number rounded to 6 decimals.
nlohmann::ordered_json bodySummary(const GeometryObject& body);

ToolAnswer getBodyTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer measureTool(McpHost& host, const ToolArguments& arguments);

} // namespace cad::mcp
