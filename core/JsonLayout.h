// The project file's JSON layout: pretty-printed with two-space indentation,
// arrays of plain numbers kept on one line ("[1, 2, 3]"), a line feed at the end.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace cad {

std::string layoutJson(const nlohmann::ordered_json& value);

} // namespace cad
