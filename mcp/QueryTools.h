// The tools the server answers itself for reading the model, undo and redo, the
// project files and the view. Each takes its arguments as a record and answers a
// sentence or pretty-printed JSON.
#pragma once

#include "core/ObjectTypes.h"
#include "core/Result.h"
#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"

#include <nlohmann/json.hpp>

#include <string_view>
#include <vector>

namespace cad::mcp {

class McpHost;

// Every object type the project file knows, built once.
const ObjectTypes& allObjectTypes();

// What "get_document" answers: the document JSON wrapped with "file", "live" and
// "lengths_in", each record completed with what was measured or analysed.
nlohmann::ordered_json documentAnswer(McpHost& host);

ToolAnswer getDocumentTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer getSketchTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer listMaterialsTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer undoTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer redoTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer newDocumentTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer openProjectTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer saveProjectTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer screenshotTool(McpHost& host, const ToolArguments& arguments);
ToolAnswer setViewTool(McpHost& host, const ToolArguments& arguments);

// JSON text as the tools answer it: in the project file's layout (indented, number
// arrays on one line), invalid UTF-8 replaced.
std::string toolJsonText(const nlohmann::ordered_json& value);
// Rounded to 6 decimals, as every measured number is answered.
double roundMeasure(double value);

} // namespace cad::mcp
