// Length units: scales, names and accepted spellings.
#include "core/units/Length.h"

#include <array>
#include <string>

namespace cad::units {

namespace {

struct UnitInfo {
    double scale;
    std::string_view name;
    std::string_view abbreviation;
    int decimals;
};

const UnitInfo& info(Length unit) {
    static const std::array<UnitInfo, 5> units{{
        {1.0, "Millimeters", "mm", 3},
        {10.0, "Centimeters", "cm", 4},
        {1000.0, "Meters", "m", 6},
        {25.4, "Inches", "in", 4},
        {304.8, "Feet", "ft", 5},
    }};
    const auto index = static_cast<int>(unit);
    // A value outside the enumeration reads as millimetres.
    return index >= 0 && index < static_cast<int>(units.size())
               ? units[static_cast<std::size_t>(index)]
               : units[0];
}

struct Spelling {
    std::string_view word;
    Length unit;
};

constexpr std::array<Spelling, 23> spellings{{
    {"mm", Length::Millimeters},
    {"millimeter", Length::Millimeters},
    {"millimeters", Length::Millimeters},
    {"millimetre", Length::Millimeters},
    {"millimetres", Length::Millimeters},
    {"cm", Length::Centimeters},
    {"centimeter", Length::Centimeters},
    {"centimeters", Length::Centimeters},
    {"centimetre", Length::Centimeters},
    {"centimetres", Length::Centimeters},
    {"m", Length::Meters},
    {"meter", Length::Meters},
    {"meters", Length::Meters},
    {"metre", Length::Meters},
    {"metres", Length::Meters},
    {"in", Length::Inches},
    {"inch", Length::Inches},
    {"inches", Length::Inches},
    {"\"", Length::Inches},
    {"ft", Length::Feet},
    {"foot", Length::Feet},
    {"feet", Length::Feet},
    {"'", Length::Feet},
}};

} // namespace

double unitScale(Length unit) { return info(unit).scale; }

std::string_view unitName(Length unit) { return info(unit).name; }

std::string_view unitAbbreviation(Length unit) { return info(unit).abbreviation; }

int automaticDecimals(Length unit) { return info(unit).decimals; }

std::optional<Length> parseUnitName(std::string_view word) {
    // The longest spelling is "millimetres"; anything longer is no unit.
    if (word.empty() || word.size() > 11) return std::nullopt;
    std::string lower(word);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    for (const Spelling& s : spellings) {
        if (s.word == lower) return s.unit;
    }
    return std::nullopt;
}

} // namespace cad::units
