// Evaluating what a person types for a value: arithmetic with units, fractions,
// feet-and-inches and parameter names, e.g. "0.5in", "1' 3 1/2\"", "width / 2 - 3mm".
#pragma once

#include "core/Result.h"
#include "core/units/Length.h"
#include "core/units/Quantity.h"

#include <string_view>

namespace cad::units {

// Parses and evaluates the text. Bare numbers that meet a length are read in
// defaultUnit; the result is raw: a wholly plain expression stays a plain number.
cad::Result<Quantity> parseQuantity(std::string_view text, Length defaultUnit, bool unitsAllowed);

// A length in millimetres; a plain result is taken in defaultUnit ("10" typed in an
// inch field is 254 mm).
cad::Result<double> evaluateLength(std::string_view text, Length defaultUnit);

// A plain number (angles, counts, factors); unit words are refused.
cad::Result<double> evaluateNumber(std::string_view text);

// A length argument of a command given as text: bare numbers are millimetres, unless
// the text uses names, in which case they are in the current document's unit.
cad::Result<double> readLengthText(std::string_view text);

// A plain-number argument of a command given as text.
cad::Result<double> readNumberText(std::string_view text);

} // namespace cad::units
