// Tests of the expression language without names: numbers, fractions, unit words,
// feet-and-inches, operator dimension rules and every error sentence.
#include "core/units/ExpressionParser.h"

#include "core/units/Format.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

namespace cad::units {
namespace {

// The raw quantity keeps whether the value is a length (in mm) or a plain number; a
// plain result meets the field's unit only in evaluateLength.
TEST(ExpressionParserTest, QuantitiesAndTheirDimension) {
    struct Case {
        const char* text;
        Length unit;
        double value;
        bool isLength;
    };
    const Case cases[] = {
        {"1/4\"", Length::Millimeters, 6.35, true},
        {"0.5in", Length::Millimeters, 12.7, true},
        {"10 + 2mm", Length::Millimeters, 12.0, true},
        {"2'6\"", Length::Millimeters, 762.0, true},
        {"2' 6", Length::Millimeters, 762.0, true},
        {"1' 3 1/2\"", Length::Millimeters, 393.7, true},
        {"2' 1/2\"", Length::Millimeters, 622.3, true},
        {"3 1/2 in", Length::Millimeters, 88.9, true},
        {"3 IN", Length::Millimeters, 76.2, true},
        {"1 m + 1 cm", Length::Millimeters, 1010.0, true},
        {" \t\n1cm\r\v\f", Length::Millimeters, 10.0, true},
        {"(1+2) in", Length::Millimeters, 76.2, true},
        {"-(2in)", Length::Millimeters, -50.8, true},
        // "1 / 2" is one fraction token, so the unit applies to the half.
        {"1 / 2in", Length::Millimeters, 12.7, true},
        {"1/2/4", Length::Millimeters, 0.125, false},
        {".", Length::Millimeters, 0.0, false},
        {".5", Length::Millimeters, 0.5, false},
        {"--5", Length::Millimeters, 5.0, false},
        {"2*-3", Length::Millimeters, -6.0, false},
        {"1 + 2 * 3", Length::Millimeters, 7.0, false},
        {"10", Length::Inches, 10.0, false},
        {"1 + 1mm", Length::Inches, 26.4, true},
        {"2 * 3in", Length::Inches, 152.4, true},
        {"6in / 2", Length::Inches, 76.2, true},
        {"6in / 2in", Length::Inches, 3.0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const auto result = parseQuantity(c.text, c.unit, true);
        ASSERT_TRUE(result.ok()) << result.error();
        EXPECT_NEAR(result->value, c.value, 1e-9);
        EXPECT_EQ(result->isLength, c.isLength);
    }
    EXPECT_NEAR(evaluateLength("10", Length::Inches).value(), 254.0, 1e-9);
    EXPECT_NEAR(evaluateLength("6in / 2in", Length::Inches).value(), 76.2, 1e-9);
    EXPECT_NEAR(evaluateLength("10 + 2mm", Length::Millimeters).value(), 12.0, 1e-9);
    EXPECT_EQ(evaluateLength("1", static_cast<Length>(9)).value(), 1.0);
}

TEST(ExpressionParserTest, UnitWordsInAnyCaseAndNothingElse) {
    const std::vector<std::pair<Length, std::vector<const char*>>> spellings = {
        {Length::Millimeters, {"mm", "Millimeter", "MILLIMETERS", "millimetres"}},
        {Length::Centimeters, {"CM", "centimeters", "Centimetres"}},
        {Length::Meters, {"M", "meter", "metres"}},
        {Length::Inches, {"IN", "inch", "Inches", "\""}},
        {Length::Feet, {"ft", "foot", "FEET", "'"}},
    };
    for (const auto& [unit, words] : spellings)
        for (const char* word : words) EXPECT_EQ(parseUnitName(word), unit) << word;
    for (const char* word : {"", "mmm", "inchs", "yd", "millimetresx", " mm", "m2", "''"})
        EXPECT_FALSE(parseUnitName(word).has_value()) << word;
}

TEST(ExpressionParserTest, ErrorsCarryTheirSentence) {
    struct Case {
        const char* text;
        const char* message;
    };
    const Case cases[] = {
        {"", "Enter a value."},
        {"2in * 3in", "Multiplying two lengths gives an area, not a length."},
        {"1 / (2in)", "Dividing a number by a length doesn't give a length."},
        {"5 / 0", "Division by zero."},
        {"1/.", "Division by zero."},
        {"1 / (0in)", "Division by zero."}, // the zero divisor is checked first
        {"2 3", "Unexpected text after the value."},
        {"1e3", "Unexpected text after the value."},
        {"2' 6\" in", "Unexpected text after the value."},
        {"(1 + 2", "Missing ')'."},
        {"(1 2)", "Missing ')'."},
        {"1 +", "The value is incomplete."},
        {"mm", "Expected a number."},
        {"1/ mm", "Expected a number."},
        {"1.2.3", "That number isn't valid."},
        {"5 %", "Unexpected character '%'."},
        {"2 \xC3\x97 3", "Unexpected character '\xC3\x97'."},
        {"1in mm", "A value has two units."},
        {"(1in) mm", "A value has two units."},
        {"2ft 6cm", "After feet, give inches (e.g. 2'6\")."},
        {"2' 6'", "After feet, give inches (e.g. 2'6\")."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const auto result = evaluateLength(c.text, Length::Millimeters);
        ASSERT_FALSE(result.ok());
        EXPECT_EQ(result.error(), c.message);
    }
}

TEST(ExpressionParserTest, DeepNestingIsRefusedWithoutCrashing) {
    const std::string fine = std::string(150, '(') + "1" + std::string(150, ')');
    EXPECT_EQ(evaluateNumber(fine).value(), 1.0);
    const std::string deep = std::string(100000, '(') + "1" + std::string(100000, ')');
    EXPECT_EQ(evaluateNumber(deep).error(), "The value has too many parentheses.");
    EXPECT_EQ(evaluateNumber(std::string(100001, '-') + "1").value(), -1.0);
}

TEST(ExpressionParserTest, PlainNumbersRefuseUnits) {
    EXPECT_EQ(evaluateNumber("3 * 1/4").value(), 0.75);
    // The tokenizer refuses the unit before the parser could report anything else.
    for (const char* text : {"3mm", "2'", "1 + 1\"", "3 IN", "5 / (1 - 1) + 3mm", "1 2 mm"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(evaluateNumber(text).error(), "Enter a plain number here (no units).");
    }
}

// A locale with a decimal comma must change neither reading nor writing.
TEST(ExpressionParserTest, NumbersIgnoreTheProcessLocale) {
    const std::string saved = std::setlocale(LC_ALL, nullptr);
    const char* german = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE"}) {
        if (std::setlocale(LC_ALL, name)) {
            german = name;
            break;
        }
    }
    const auto parsed = evaluateLength("2.5", Length::Millimeters);
    const std::string formatted = formatNumber(2.5, Length::Millimeters, 2);
    std::setlocale(LC_ALL, saved.c_str());
    if (!german) GTEST_SKIP() << "no German locale installed";
    ASSERT_TRUE(parsed.ok()) << parsed.error();
    EXPECT_EQ(*parsed, 2.5);
    EXPECT_EQ(formatted, "2.50");
}

} // namespace
} // namespace cad::units
