// A shop's bend figures: rows of "angle, inside radius, value" (or "angle, value" for
// any radius), read from text, and the value they give a bend by interpolating
// between angles.
#pragma once

#include "core/Result.h"

#include <optional>
#include <string_view>
#include <vector>

namespace cad::sheet {

enum class BendTableKind { Deduction, Allowance };

struct BendTableRow {
    double angle = 0;             // degrees, in (0, 180]
    std::optional<double> radius; // mm; none or 0: any radius
    double value = 0;             // mm
};

// Rows on lines or between semicolons; '#' starts a comment to the end of the row;
// commas, tabs and carriage returns count as spaces. Empty text gives no rows.
// "Bend table line <n>: ..." names the first bad row, counted from 1.
Result<std::vector<BendTableRow>> parseBendTable(std::string_view text);

// "deduction" or "allowance" (empty: deduction); none for another word.
std::optional<BendTableKind> parseBendTableKind(std::string_view word);

// The table's value for a bend of `angle` degrees and inner radius `radius`: the
// rows for any radius or within 0.01 mm of it, an exact angle's value or one
// interpolated between the two rows around it; none outside their angles.
std::optional<double> bendTableValue(const std::vector<BendTableRow>& rows, double angle,
                                     double radius);

} // namespace cad::sheet
