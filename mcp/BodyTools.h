// The tools that look into solid bodies: a body's summary (volume, area, bounds,
// centre of mass), its faces, edges and vertices by persistent name, and measuring
// one shape or between two.
#pragma once

#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"

#include <nlohmann/json.hpp>

namespace cad {
class Document;
class GeometryObject;
} // namespace cad

namespace cad::mcp {

class McpHost;

// The "measured" summary of a body; every number rounded to 6 decimals. The material
// keys appear when a material applies to the body (its own, its component's or the
// document's default).
nlohmann::ordered_json bodySummary(const GeometryObject& body, const Document& document);

ToolAnswer getBodyTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer measureTool(McpHost& host, const ToolArguments& arguments);

} // namespace cad::mcp
