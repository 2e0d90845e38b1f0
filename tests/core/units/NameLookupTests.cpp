// Tests of name resolution in expressions: the default resolver, scoped overrides
// and how parameter values meet units and the plain-number rule.
#include "core/units/NameLookup.h"

#include "core/units/ExpressionParser.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace cad::units {
namespace {

// A lookup over a fixed table; unknown names fail like a document would.
NameLookup tableLookup(std::map<std::string, Quantity> table, int* calls = nullptr) {
    return [table = std::move(table), calls](std::string_view name) -> cad::Result<Quantity> {
        if (calls) ++*calls;
        const auto it = table.find(std::string(name));
        if (it == table.end())
            return cad::fail("There's no parameter '" + std::string(name) + "'.");
        return it->second;
    };
}

class NameLookupTest : public ::testing::Test {
protected:
    void TearDown() override { installDefaultResolver({}, {}); }
};

TEST_F(NameLookupTest, WithoutAnyLookupNamesAreUnknown) {
    EXPECT_EQ(currentLengthUnit(), Length::Millimeters);
    EXPECT_EQ(evaluateLength("width + 2", Length::Millimeters).error(),
              "Unknown unit or parameter 'width' (units: mm, cm, m, in, ft).");
    // An override without a function leaves names to the (missing) default lookup.
    ScopedParameterLookup scope({}, Length::Feet);
    EXPECT_EQ(currentLengthUnit(), Length::Feet);
    EXPECT_EQ(evaluateNumber("yd").error(),
              "Unknown unit or parameter 'yd' (units: mm, cm, m, in, ft).");
}

TEST_F(NameLookupTest, DefaultResolverSuppliesNamesAndUnit) {
    installDefaultResolver(tableLookup({{"width", {50.8, true}}, {"count", {4, false}}}),
                           [] { return Length::Inches; });
    EXPECT_EQ(currentLengthUnit(), Length::Inches);
    EXPECT_NEAR(evaluateLength("width / 2", Length::Millimeters).value(), 25.4, 1e-9);
    // A bare number meeting a length is read in the parser's default unit.
    EXPECT_NEAR(evaluateLength("width + 1", Length::Inches).value(), 76.2, 1e-9);
    EXPECT_NEAR(evaluateLength("width + 1", Length::Millimeters).value(), 51.8, 1e-9);
    // A plain parameter takes a unit suffix; a length parameter cannot.
    EXPECT_NEAR(evaluateLength("count in", Length::Millimeters).value(), 101.6, 1e-9);
    EXPECT_EQ(evaluateLength("width mm", Length::Millimeters).error(), "A value has two units.");
    EXPECT_EQ(evaluateLength("-count * 2", Length::Millimeters).value(), -8.0);
    // The lookup's own message is passed up unchanged.
    EXPECT_EQ(evaluateLength("depth", Length::Millimeters).error(),
              "There's no parameter 'depth'.");
    // A plain-number field takes plain parameters and refuses lengths.
    EXPECT_EQ(evaluateNumber("count * 2").value(), 8.0);
    EXPECT_EQ(evaluateNumber("1 + width").error(),
              "'width' is a length; a plain number is needed here.");

    // Command text: with names, bare numbers are in the document's unit; without, mm.
    EXPECT_NEAR(readLengthText("count * 1 + width").value(), 152.4, 1e-9);
    EXPECT_NEAR(readLengthText("count + 1mm").value(), 102.6, 1e-9);
    EXPECT_EQ(readLengthText("4").value(), 4.0);
    EXPECT_EQ(readNumberText("count / 4").value(), 1.0);
}

TEST_F(NameLookupTest, OverridesTakePrecedenceAndNestLastInFirstOut) {
    int defaultCalls = 0;
    installDefaultResolver(tableLookup({{"a", {1, false}}}, &defaultCalls),
                           [] { return Length::Centimeters; });
    {
        ScopedParameterLookup outer(tableLookup({{"a", {2, false}}}), Length::Inches);
        EXPECT_EQ(currentLengthUnit(), Length::Inches);
        EXPECT_EQ(evaluateNumber("a").value(), 2.0);
        {
            ScopedParameterLookup inner(tableLookup({{"b", {3, false}}}), Length::Millimeters);
            EXPECT_EQ(currentLengthUnit(), Length::Millimeters);
            // Only the innermost override is asked, not the ones around it.
            EXPECT_EQ(evaluateNumber("a").error(), "There's no parameter 'a'.");
            EXPECT_EQ(evaluateNumber("b").value(), 3.0);
        }
        EXPECT_EQ(currentLengthUnit(), Length::Inches);
        EXPECT_EQ(evaluateNumber("a").value(), 2.0);
    }
    EXPECT_EQ(defaultCalls, 0);
    // A unit in a plain-number field is refused before any name is looked up.
    EXPECT_EQ(evaluateNumber("a + 3mm").error(), "Enter a plain number here (no units).");
    EXPECT_EQ(defaultCalls, 0);
    EXPECT_EQ(currentLengthUnit(), Length::Centimeters);
    EXPECT_EQ(evaluateNumber("a").value(), 1.0);
    EXPECT_EQ(defaultCalls, 1);

    // A lookup may install its own override while it evaluates, even when it fails.
    auto failing = [](std::string_view) -> cad::Result<Quantity> {
        ScopedParameterLookup nested({}, Length::Feet);
        EXPECT_EQ(currentLengthUnit(), Length::Feet);
        return cad::fail("no");
    };
    ScopedParameterLookup scope(failing, Length::Meters);
    EXPECT_EQ(evaluateLength("x", Length::Millimeters).error(), "no");
    EXPECT_EQ(currentLengthUnit(), Length::Meters);
}

} // namespace
} // namespace cad::units
