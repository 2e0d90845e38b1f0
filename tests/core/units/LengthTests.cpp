// Tests of the unit table and of reading unit words.
#include "core/units/Length.h"

#include <gtest/gtest.h>

#include <vector>

namespace cad::units {
namespace {

TEST(LengthTest, TableOfUnits) {
    struct Row {
        Length unit;
        double scale;
        const char* name;
        const char* abbreviation;
        int decimals;
    };
    const Row rows[] = {
        {Length::Millimeters, 1.0, "Millimeters", "mm", 3},
        {Length::Centimeters, 10.0, "Centimeters", "cm", 4},
        {Length::Meters, 1000.0, "Meters", "m", 6},
        {Length::Inches, 25.4, "Inches", "in", 4},
        {Length::Feet, 304.8, "Feet", "ft", 5},
        // Anything outside the enumeration behaves as millimetres.
        {static_cast<Length>(5), 1.0, "Millimeters", "mm", 3},
        {static_cast<Length>(-1), 1.0, "Millimeters", "mm", 3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(static_cast<int>(row.unit));
        EXPECT_EQ(unitScale(row.unit), row.scale);
        EXPECT_EQ(unitName(row.unit), row.name);
        EXPECT_EQ(unitAbbreviation(row.unit), row.abbreviation);
        EXPECT_EQ(automaticDecimals(row.unit), row.decimals);
    }
}

TEST(LengthTest, ParseUnitNameAcceptsEverySpellingInAnyCase) {
    const std::vector<std::pair<Length, std::vector<const char*>>> spellings = {
        {Length::Millimeters, {"mm", "Millimeter", "MILLIMETERS", "millimetre", "millimetres"}},
        {Length::Centimeters, {"CM", "centimeter", "centimeters", "centimetre", "Centimetres"}},
        {Length::Meters, {"m", "M", "meter", "meters", "metre", "metres"}},
        {Length::Inches, {"in", "IN", "inch", "Inches", "\""}},
        {Length::Feet, {"ft", "foot", "FEET", "'"}},
    };
    for (const auto& [unit, words] : spellings) {
        for (const char* word : words) {
            SCOPED_TRACE(word);
            EXPECT_EQ(parseUnitName(word), unit);
        }
    }
    for (const char* word : {"", "mmm", "inchs", "yd", "millimetresx", " mm", "m2", "''"}) {
        SCOPED_TRACE(word);
        EXPECT_FALSE(parseUnitName(word).has_value());
    }
}

} // namespace
} // namespace cad::units
