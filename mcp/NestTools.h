// nest_parts: copies of bodies laid flat and packed on sheets, reported and
// optionally written as one drawing. It doesn't change the document.
#pragma once

#include "core/Result.h"
#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"
#include "sketch/drawing/Drawing.h"

#include <functional>
#include <string>

namespace cad {
class Document;
}

namespace cad::mcp {

class McpHost;

// A body laid flat (its flat face `face`, or the largest), in millimetres.
using FlatDrawing = std::function<Result<drawing::Drawing>(
    const Document& document, const std::string& body, const std::string& face)>;

ToolAnswer nestPartsTool(McpHost& host, const ToolArguments& arguments, const FlatDrawing& flat);

} // namespace cad::mcp
