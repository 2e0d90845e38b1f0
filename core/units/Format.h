// Lengths, areas and volumes as text for display, in any unit, with fixed or
// automatic decimals. The decimal separator is always a point.
#pragma once

#include "core/units/Length.h"

#include <string>

namespace cad::units {

// The value with the given number of decimals ("12.500"), never a negative zero.
// With decimals < 0 the unit's automatic decimals are used and trailing zeros are
// dropped ("12.5", "12").
std::string formatNumber(double value, Length unit, int decimals = -1);

// Millimetres shown in the unit, followed by " in" etc. when withUnit is set.
std::string formatLength(double millimeters, Length unit, bool withUnit = true, int decimals = -1);

// Square millimetres shown in the unit, e.g. "6.25 in²".
std::string formatArea(double squareMillimeters, Length unit, int decimals = -1);

// Cubic millimetres shown in the unit, e.g. "1000 cm³".
std::string formatVolume(double cubicMillimeters, Length unit, int decimals = -1);

} // namespace cad::units
