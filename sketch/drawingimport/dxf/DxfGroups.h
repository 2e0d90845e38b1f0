// DXF group pairs (a code line, then a value line) split out of the file's bytes,
// and the locale-independent reading of their numbers.
#pragma once

#include "core/Result.h"

#include <optional>
#include <string_view>
#include <vector>

namespace cad::drawingimport::dxf {

struct Group {
    int code = 0;
    std::string_view value; // trimmed; points into the file's bytes
};

// Every group up to "0 / EOF" (or the end of the bytes). CR LF and CR line ends and
// spaces around codes are accepted; a code line that is not an integer is an error.
Result<std::vector<Group>> splitGroups(std::string_view bytes);

// The value as a finite number; nothing for text, NaN or infinity.
std::optional<double> groupNumber(std::string_view value);
// The value as an integer (written "7" or "7.0"); nothing when it is not one.
std::optional<long long> groupInteger(std::string_view value);

} // namespace cad::drawingimport::dxf
