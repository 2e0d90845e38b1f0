// Tests of finding and renaming the names an expression uses.
#include "core/units/ExpressionNames.h"

#include <gtest/gtest.h>

namespace cad::units {
namespace {

using Names = std::vector<std::string>;

TEST(ExpressionNamesTest, ReferencedNamesInOrderOfFirstAppearance) {
    EXPECT_EQ(referencedNames("a + b*a + 2mm"), (Names{"a", "b"}));
    EXPECT_EQ(referencedNames("panel_width / 2 - margin"), (Names{"panel_width", "margin"}));
    // Unit spellings in any case are not names; digits inside identifiers are kept.
    EXPECT_EQ(referencedNames("2 IN + 3 Feet + _w2 - x1.5"), (Names{"_w2", "x1"}));
    // Numbers, marks and stray characters are skipped, even in text that does not parse.
    EXPECT_EQ(referencedNames("1' 3 1/2\" % (w"), (Names{"w"}));
    EXPECT_EQ(referencedNames("W + w"), (Names{"W", "w"}));
    EXPECT_EQ(referencedNames("1e3"), (Names{"e3"}));
    EXPECT_TRUE(referencedNames("1.5in + 2 mm").empty());
}

TEST(ExpressionNamesTest, RenameReplacesWholeIdentifiersOnly) {
    struct Case {
        const char* text;
        const char* from;
        const char* to;
        const char* expected;
    };
    const Case cases[] = {
        {"w*2 + width", "w", "depth", "depth*2 + width"},
        {"W + w+w", "w", "x", "W + x+x"},
        {"w2 + 2w", "w", "x", "w2 + 2x"},
        {"_w + w_", "w", "x", "_w + w_"},
        {"  a\t*\n(1' 3 1/2\" - a) % ", "a", "bb", "  bb\t*\n(1' 3 1/2\" - bb) % "},
        {"2 mm", "mm", "x", "2 mm"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(renameInExpression(c.text, c.from, c.to), c.expected);
    }
}

} // namespace
} // namespace cad::units
