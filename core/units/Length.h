// Length units: the five units a person can type or display lengths in, their
// scales to millimetres, names and the word spellings the parser accepts.
#pragma once

#include <optional>
#include <string_view>

namespace cad::units {

// The numeric values are fixed: other code switches on them. Any value outside
// this list behaves as Millimeters everywhere.
enum class Length { Millimeters = 0, Centimeters = 1, Meters = 2, Inches = 3, Feet = 4 };

// Millimetres per unit.
double unitScale(Length unit);

// "Millimeters", "Centimeters", "Meters", "Inches", "Feet".
std::string_view unitName(Length unit);

// "mm", "cm", "m", "in", "ft".
std::string_view unitAbbreviation(Length unit);

// Decimals shown when a length is formatted with automatic precision.
int automaticDecimals(Length unit);

// The unit a word spells, in any letter case ("MM", "inches", "metre", '"', "'"),
// or nothing when the word is no unit.
std::optional<Length> parseUnitName(std::string_view word);

} // namespace cad::units
