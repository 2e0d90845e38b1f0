// The tool catalogue agents read in "tools/list": the query and file tools the
// server answers itself, around every registered command, each with its exact
// description and input schema.
#pragma once

#include "core/CommandRecord.h"
#include "core/CommandRegistry.h"
#include "mcp/ToolAnswer.h"
#include "mcp/ToolArguments.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace cad::mcp {

class McpHost;

// A tool gets the call's JSON arguments as they came (lists included); its plain
// values are read with the command argument readers, so mistakes get the same
// sentences.
using ToolHandler = std::function<ToolAnswer(McpHost&, const ToolArguments& arguments)>;

struct QueryTool {
    std::string name;
    std::string description;
    nlohmann::ordered_json inputSchema;
    bool readOnly = false;
    bool beforeCommands = false; // listed before the registered commands, else after
    ToolHandler run;
};

// The query and file tools in catalogue order (those whose subsystems exist).
const std::vector<QueryTool>& queryTools();
const QueryTool* findQueryTool(std::string_view name);

// {"type": "object", "properties": ..., "required": ..., "additionalProperties": false}
// from a command's declared arguments.
nlohmann::ordered_json commandInputSchema(const std::vector<ArgSpec>& arguments);

// The "tools" array of "tools/list": the first query tools, every registered
// command in registration order, then the remaining query tools.
nlohmann::ordered_json toolDescriptors(const CommandRegistry& registry);

} // namespace cad::mcp
