// The tools the server answers itself for reading the model, undo and redo, the
// project files and the view. Each takes its arguments as a record and answers a
// sentence or pretty-printed JSON.
#pragma once

#include "core/CommandRecord.h"
#include "core/ObjectTypes.h"
#include "core/Result.h"
#include "mcp/ToolAnswer.h"

#include <nlohmann/json.hpp>

#include <string_view>
#include <vector>

namespace cad::mcp {

class McpHost;

// Every object type the project file knows, built once.
const ObjectTypes& allObjectTypes();

// Refuses argument names outside the list with the command readers' sentence.
Result<void> allowToolArguments(const CommandRecord& arguments,
                                const std::vector<std::string_view>& names);

// What "get_document" answers: the document JSON wrapped with "file", "live" and
// "lengths_in", each record completed with what was measured or analysed.
nlohmann::ordered_json documentAnswer(McpHost& host);

ToolAnswer getDocumentTool(McpHost& host, const CommandRecord& arguments);
ToolAnswer getSketchTool(McpHost& host, const CommandRecord& arguments);
ToolAnswer undoTool(McpHost& host, const CommandRecord& arguments);
ToolAnswer redoTool(McpHost& host, const CommandRecord& arguments);
ToolAnswer newDocumentTool(McpHost& host, const CommandRecord& arguments);
ToolAnswer openProjectTool(McpHost& host, const CommandRecord& arguments);
ToolAnswer saveProjectTool(McpHost& host, const CommandRecord& arguments);
ToolAnswer screenshotTool(McpHost& host, const CommandRecord& arguments);
ToolAnswer setViewTool(McpHost& host, const CommandRecord& arguments);

// JSON text as the tools answer it: in the project file's layout (indented, number
// arrays on one line), invalid UTF-8 replaced.
std::string toolJsonText(const nlohmann::ordered_json& value);
// Rounded to 6 decimals, as every measured number is answered.
double roundMeasure(double value);

} // namespace cad::mcp
