// A query or file tool's arguments as the agent sent them: the JSON object itself,
// so tools that take lists get their arrays, with the plain values also offered as
// a record for the command argument readers and their sentences.
#pragma once

#include "core/CommandRecord.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace cad::mcp {

// Turns one JSON member into a command value: bool, integer, other number or
// string; anything else is refused with the tool's name in front.
Result<Value> toCommandValue(std::string_view tool, std::string_view name,
                             const nlohmann::ordered_json& json);

class ToolArguments {
public:
    // `arguments` is the call's object (empty when the call gave none).
    ToolArguments(std::string tool, const nlohmann::ordered_json& arguments);

    const std::string& tool() const { return tool_; }
    const nlohmann::ordered_json& json() const { return arguments_; }
    // The member of that name, or null when absent.
    const nlohmann::ordered_json* find(std::string_view name) const;

    // Refuses names outside `plain` and `lists`, a plain one that is not a number,
    // string or boolean, and a list one that is not an array.
    Result<void> allow(const std::vector<std::string_view>& plain,
                       const std::vector<std::string_view>& lists = {}) const;

    // The plain members as a record named after the tool, for ArgReader.
    const CommandRecord& record() const { return record_; }

private:
    std::string tool_;
    const nlohmann::ordered_json& arguments_;
    CommandRecord record_;
};

} // namespace cad::mcp
