// Tests of expression records: their JSON form, evaluation, re-evaluating an
// object's "expressions" map, and setting or clearing a record.
#include "core/units/Expression.h"

#include "core/units/NameLookup.h"

#include <gtest/gtest.h>

#include <map>

namespace cad::units {
namespace {

using nlohmann::json;

TEST(ExpressionTest, JsonRoundTripAndDefaults) {
    const json stored = expressionToJson({"holes * 2", Length::Inches, false, true});
    EXPECT_EQ(stored,
              (json{{"text", "holes * 2"}, {"unit", "in"}, {"length", false}, {"integer", true}}));
    const auto read = expressionFromJson(stored);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->text, "holes * 2");
    EXPECT_EQ(read->unit, Length::Inches);
    EXPECT_FALSE(read->isLength);
    EXPECT_TRUE(read->isInteger);
    // "integer" is written only for counts.
    EXPECT_FALSE(expressionToJson({"w", Length::Feet, true, false}).contains("integer"));

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

class ReevaluateTest : public ::testing::Test {
protected:
    void SetUp() override {
        installDefaultResolver(
            [this](std::string_view name) -> cad::Result<Quantity> {
                const auto it = parameters.find(std::string(name));
                if (it == parameters.end())
                    return cad::fail("There's no parameter '" + std::string(name) + "'.");
                return it->second;
            },
            [] { return Length::Millimeters; });
    }
    void TearDown() override { installDefaultResolver({}, {}); }

    std::map<std::string, Quantity> parameters{{"depth", {10, true}}, {"n", {2.5, false}}};
};

TEST_F(ReevaluateTest, StoresResultsAndReportsProblems) {
    json params = {{"distance", 1.0}, {"count", 7}, {"thickness", 3.0}, {"radius", "big"}};
    ASSERT_TRUE(setExpression(params, "distance", {"depth * 2", Length::Millimeters, true, false}));
    ASSERT_TRUE(setExpression(params, "count", {"n", Length::Millimeters, false, true}));
    ASSERT_TRUE(setExpression(params, "thickness", {"x + 1", Length::Millimeters, true, false}));
    ASSERT_TRUE(setExpression(params, "extra", {"-n", Length::Millimeters, false, true}));
    ASSERT_TRUE(setExpression(params, "radius", {"depth / 4", Length::Millimeters, true, false}));
    params["expressions"]["angle"] = "not a record";

    std::vector<std::string> problems{"earlier"};
    EXPECT_TRUE(reevaluateExpressions(params, "Extrude1", problems));
    EXPECT_EQ(params["distance"], 20.0);
    EXPECT_TRUE(params["distance"].is_number_float());
    // Counts round half away from zero and are stored as JSON integers.
    EXPECT_EQ(params["count"], 3);
    EXPECT_TRUE(params["count"].is_number_integer());
    EXPECT_EQ(params["extra"], -3);
    EXPECT_EQ(params["radius"], 2.5);
    EXPECT_EQ(params["thickness"], 3.0);
    EXPECT_FALSE(params.contains("angle"));
    EXPECT_EQ(problems, (std::vector<std::string>{
                            "earlier", "Extrude1.thickness: There's no parameter 'x'."}));

    // A second pass changes nothing; values within 1e-12 count as unchanged.
    EXPECT_FALSE(reevaluateExpressions(params, "Extrude1", problems));
    parameters["depth"] = {10 + 2e-13, true};
    EXPECT_FALSE(reevaluateExpressions(params, "Extrude1", problems));
    parameters["depth"] = {10.5, true};
    EXPECT_TRUE(reevaluateExpressions(params, "Extrude1", problems));
    EXPECT_EQ(params["distance"], 21.0);
    EXPECT_EQ(problems.size(), 5u); // the failing value reports on every pass
}

TEST_F(ReevaluateTest, ObjectsWithoutRecordsAreLeftAlone) {
    std::vector<std::string> problems;
    for (json params : {json{{"distance", 5.0}}, json{{"expressions", 5}}, json::array()}) {
        EXPECT_FALSE(reevaluateExpressions(params, "A", problems));
    }
    // A record under "expressions" itself cannot overwrite the map it lives in.
    json self = {{"expressions", {{"expressions", {{"text", "1"}}}}}};
    EXPECT_FALSE(reevaluateExpressions(self, "A", problems));
    EXPECT_TRUE(self["expressions"].is_object());
    EXPECT_TRUE(problems.empty());
}

TEST(ExpressionTest, SetAndClearRecords) {
    json params = json::object();
    ASSERT_TRUE(setExpression(params, "distance", {"w", Length::Inches, true, false}));
    ASSERT_TRUE(setExpression(params, "distance2", {"w / 2", Length::Inches, true, false}));
    ASSERT_TRUE(setExpression(params, "distance", {"w * 2", Length::Inches, true, false}));
    EXPECT_EQ(params["expressions"].size(), 2u);
    EXPECT_EQ(params["expressions"]["distance"]["text"], "w * 2");

    clearExpression(params, "distance");
    clearExpression(params, "unknown");
    EXPECT_EQ(params["expressions"].size(), 1u);
    clearExpression(params, "distance2");
    EXPECT_EQ(params, json::object());

    json array = json::array();
    EXPECT_FALSE(setExpression(array, "r", {"1", Length::Millimeters, true, false}));
    EXPECT_TRUE(array.empty());
    json brokenMap = {{"expressions", "junk"}};
    EXPECT_TRUE(setExpression(brokenMap, "r", {"1", Length::Millimeters, true, false}));
    EXPECT_TRUE(brokenMap["expressions"].contains("r"));
}

} // namespace
} // namespace cad::units
