// Writes JSON in the project file's layout; scalars are written by nlohmann so
// numbers and escapes are exact and locale-independent.
#include "core/JsonLayout.h"

#include <algorithm>

namespace cad {

namespace {

std::string scalar(const nlohmann::ordered_json& value) {
    return value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

void write(const nlohmann::ordered_json& value, int depth, std::string& out) {
    const std::string indent(static_cast<std::size_t>(depth + 1) * 2, ' ');
    const std::string closing(static_cast<std::size_t>(depth) * 2, ' ');
    if (value.is_object()) {
        if (value.empty()) {
            out += "{}";
            return;
        }
        out += "{\n";
        bool first = true;
        for (auto it = value.begin(); it != value.end(); ++it) {
            if (!first) out += ",\n";
            first = false;
            out += indent + scalar(nlohmann::ordered_json(it.key())) + ": ";
            write(it.value(), depth + 1, out);
        }
        out += "\n" + closing + "}";
    } else if (value.is_array()) {
        bool numbers =
            std::all_of(value.begin(), value.end(), [](const auto& v) { return v.is_number(); });
        if (value.empty() || numbers) {
            out += "[";
            for (std::size_t i = 0; i < value.size(); ++i)
                out += (i ? ", " : "") + scalar(value[i]);
            out += "]";
            return;
        }
        out += "[\n";
        for (std::size_t i = 0; i < value.size(); ++i) {
            if (i) out += ",\n";
            out += indent;
            write(value[i], depth + 1, out);
        }
        out += "\n" + closing + "]";
    } else {
        out += scalar(value);
    }
}

} // namespace

std::string layoutJson(const nlohmann::ordered_json& value) {
    std::string out;
    write(value, 0, out);
    out += "\n";
    return out;
}

} // namespace cad
