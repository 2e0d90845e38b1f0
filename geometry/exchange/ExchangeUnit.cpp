// Reading the unit of an exchanged file: only the five abbreviations count, so
// "inches" or "MM" are refused as an agent's schema says.
#include "geometry/exchange/ExchangeUnit.h"

namespace cad::exchange {

std::optional<units::Length> exchangeUnit(std::string_view word) {
    using units::Length;
    for (Length unit : {Length::Millimeters, Length::Centimeters, Length::Meters, Length::Inches,
                        Length::Feet})
        if (units::unitAbbreviation(unit) == word) return unit;
    return std::nullopt;
}

} // namespace cad::exchange
