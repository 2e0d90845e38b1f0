// Tests of expression records: their JSON form as project files keep it, and
// evaluation as a length or a plain number.
#include "core/units/Expression.h"

#include <gtest/gtest.h>

namespace cad::units {
namespace {

using nlohmann::json;

TEST(ExpressionTest, JsonRoundTripAndDefaults) {
    const json stored = expressionToJson({"angle * 2", Length::Inches, false, false});
    EXPECT_EQ(stored, (json{{"text", "angle * 2"}, {"unit", "in"}, {"length", false}}));
    const auto read = expressionFromJson(stored);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->text, "angle * 2");
    EXPECT_EQ(read->unit, Length::Inches);
    EXPECT_FALSE(read->isLength);

    // Unknown units and missing flags read as a millimetre length.
    const auto minimal = expressionFromJson(json::parse(R"({"text":"w","unit":"parsec"})"));
    ASSERT_TRUE(minimal.has_value());
    EXPECT_EQ(minimal->unit, Length::Millimeters);
    EXPECT_TRUE(minimal->isLength);
    EXPECT_FALSE(minimal->isInteger);
    EXPECT_EQ(expressionFromJson(json::parse(R"({"text":"w","unit":"Feet"})"))->unit, Length::Feet);
    for (const char* bad : {R"({"unit":"mm"})", R"({"text":5})", R"("w")", "null"}) {
        SCOPED_TRACE(bad);
        EXPECT_FALSE(expressionFromJson(json::parse(bad)).has_value());
    }
}

TEST(ExpressionTest, EvaluateFollowsTheLengthFlag) {
    EXPECT_NEAR(evaluate({"10", Length::Inches, true, false}).value(), 254.0, 1e-9);
    EXPECT_EQ(evaluate({"10", Length::Inches, false, false}).value(), 10.0);
    EXPECT_EQ(evaluate({"10mm", Length::Inches, false, false}).error(),
              "Enter a plain number here (no units).");
}

} // namespace
} // namespace cad::units
