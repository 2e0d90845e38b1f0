// The length units an exchanged file's numbers can be in: the five abbreviations
// "mm", "cm", "m", "in", "ft", read exactly as written.
#pragma once

#include "core/units/Length.h"

#include <optional>
#include <string_view>

namespace cad::exchange {

// The unit whose abbreviation is `word`, or nothing for any other text.
std::optional<units::Length> exchangeUnit(std::string_view word);

} // namespace cad::exchange
