// Reading a tool call's JSON arguments: plain values become command values, lists
// stay JSON for the tools that take them.
#include "mcp/ToolArguments.h"

#include "core/ArgReader.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace cad::mcp {

using ordered_json = nlohmann::ordered_json;

Result<Value> toCommandValue(std::string_view tool, std::string_view name, const ordered_json& v) {
    if (v.is_boolean()) return Value(v.get<bool>());
    if (v.is_number_unsigned()) {
        auto n = v.get<std::uint64_t>();
        if (n <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return Value(static_cast<std::int64_t>(n));
        return Value(static_cast<double>(n));
    }
    if (v.is_number_integer()) return Value(v.get<std::int64_t>());
    if (v.is_number_float()) return Value(v.get<double>());
    if (v.is_string()) return Value(v.get<std::string>());
    return fail(std::string(tool) + ": '" + std::string(name) +
                "' must be a number, string or boolean.");
}

ToolArguments::ToolArguments(std::string tool, const ordered_json& arguments)
    : tool_(std::move(tool)), arguments_(arguments), record_(tool_) {
    if (!arguments_.is_object()) return;
    for (auto it = arguments_.begin(); it != arguments_.end(); ++it)
        if (Result<Value> value = toCommandValue(tool_, it.key(), it.value()))
            record_.arguments.emplace_back(it.key(), std::move(value).value());
}

const ordered_json* ToolArguments::find(std::string_view name) const {
    if (!arguments_.is_object()) return nullptr;
    auto it = arguments_.find(name);
    return it == arguments_.end() ? nullptr : &*it;
}

Result<void> ToolArguments::allow(const std::vector<std::string_view>& plain,
                                  const std::vector<std::string_view>& lists) const {
    if (!arguments_.is_object()) return {};
    std::vector<std::string_view> names = plain;
    names.insert(names.end(), lists.begin(), lists.end());
    for (auto it = arguments_.begin(); it != arguments_.end(); ++it) {
        const std::string& key = it.key();
        if (std::find(names.begin(), names.end(), key) == names.end()) {
            if (names.empty())
                return fail(tool_ + ": unknown argument '" + key + "'. It takes no arguments.");
            CommandRecord one(tool_);
            one.arguments.emplace_back(key, Value(false));
            return ArgReader(one).allowOnly(names);
        }
        if (std::find(lists.begin(), lists.end(), key) != lists.end()) {
            if (!it.value().is_array()) return fail(tool_ + ": '" + key + "' must be a list.");
        } else if (Result<Value> value = toCommandValue(tool_, key, it.value()); !value) {
            return Error(value);
        }
    }
    return {};
}

} // namespace cad::mcp
