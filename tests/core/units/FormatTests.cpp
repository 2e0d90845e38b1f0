// Tests of display formatting: fixed and automatic decimals, units, areas, volumes.
#include "core/units/Format.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

namespace cad::units {
namespace {

TEST(FormatTest, NumbersWithFixedAndAutomaticDecimals) {
    struct Case {
        double value;
        Length unit;
        int decimals;
        const char* expected;
    };
    const Case cases[] = {
        {12.5, Length::Millimeters, -1, "12.5"},
        {12.0, Length::Millimeters, -1, "12"},
        {-0.00001, Length::Millimeters, -1, "0"},
        {-12.25, Length::Millimeters, -1, "-12.25"},
        {1.23456789, Length::Millimeters, -1, "1.235"},
        {1.23456789, Length::Centimeters, -1, "1.2346"},
        {1.23456789, Length::Meters, -1, "1.234568"},
        {1.23456789, Length::Feet, -1, "1.23457"},
        {1.23456789, static_cast<Length>(42), -1, "1.235"},
        {-0.0001, Length::Millimeters, 3, "0.000"},
        {std::numeric_limits<double>::infinity(), Length::Millimeters, 2, "inf"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(formatNumber(c.value, c.unit, c.decimals), c.expected);
    }
}

// printf's "%.*f" into a 64-character buffer, as the reference to compare with.
[[gnu::noinline]] std::string printfFixed(double value, int decimals) {
    std::array<char, 64> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.*f", decimals, value);
    return length < 0 ? std::string() : std::string(buffer.data());
}

// The digits are those of printf's "%.*f" in the C locale, rounding included.
TEST(FormatTest, FixedDecimalsMatchPrintf) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-8, 12);
    for (int i = 0; i < 2000; ++i) {
        const double value = mantissa(random) * std::pow(10.0, exponent(random));
        const int decimals = i % 9;
        const std::string expected = printfFixed(value, decimals);
        if (expected.find_first_not_of("-0.") == std::string::npos)
            continue; // negative zeros are dropped on purpose
        ASSERT_EQ(formatNumber(value, Length::Millimeters, decimals), expected)
            << value << " with " << decimals;
    }
    // Past a 64-character buffer the text is cut as printf's would be, and a huge
    // number of decimals neither overflows nor differs.
    EXPECT_EQ(formatNumber(1e70, Length::Millimeters, 3), printfFixed(1e70, 3));
    EXPECT_EQ(formatNumber(1.0 / 3.0, Length::Millimeters, 100000), printfFixed(1.0 / 3.0, 100000));
}

TEST(FormatTest, LengthsAreasAndVolumesInTheirUnit) {
    EXPECT_EQ(formatLength(25.4, Length::Inches), "1 in");
    EXPECT_EQ(formatLength(25.4, Length::Inches, false), "1");
    EXPECT_EQ(formatLength(1234.5, Length::Meters, true, 2), "1.23 m");
    EXPECT_EQ(formatLength(762.0, Length::Feet), "2.5 ft");
    EXPECT_EQ(formatArea(250.0, Length::Centimeters, 1), "2.5 cm\u00B2");
    EXPECT_EQ(formatVolume(1e6, Length::Meters), "0.001 m\u00B3");
}

} // namespace
} // namespace cad::units
