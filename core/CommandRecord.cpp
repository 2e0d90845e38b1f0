// Command records and their rendering as API calls.
#include "core/CommandRecord.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace cad {

const Value* CommandRecord::find(std::string_view argument) const {
    for (const auto& [key, value] : arguments)
        if (key == argument) return &value;
    return nullptr;
}

CommandRecord& CommandRecord::set(std::string_view argument, Value value) {
    for (auto& [key, existing] : arguments) {
        if (key == argument) {
            existing = std::move(value);
            return *this;
        }
    }
    arguments.emplace_back(std::string(argument), std::move(value));
    return *this;
}

void CommandRecord::remove(std::string_view argument) {
    std::erase_if(arguments, [&](const auto& entry) { return entry.first == argument; });
}

std::string formatShortest(double value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    char buffer[64];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return ec == std::errc() ? std::string(buffer, end) : std::string();
}

std::string renderValue(const Value& value) {
    struct Renderer {
        std::string operator()(bool b) const { return b ? "true" : "false"; }
        std::string operator()(std::int64_t i) const { return std::to_string(i); }
        std::string operator()(double d) const { return formatShortest(d); }
        std::string operator()(const std::string& s) const {
            std::string out = "\"";
            for (char c : s) {
                if (c == '"' || c == '\\') out += '\\';
                out += c;
            }
            return out + "\"";
        }
    };
    return std::visit(Renderer{}, value);
}

std::string CommandRecord::toCall() const {
    std::string out = name + "(";
    bool first = true;
    for (const auto& [key, value] : arguments) {
        if (!first) out += ", ";
        first = false;
        out += key + "=" + renderValue(value);
    }
    return out + ")";
}

} // namespace cad
