// Command records rendered as API calls, the way the command log shows them.
#include "core/CommandRecord.h"

#include <gtest/gtest.h>

using namespace cad;

TEST(CommandRecord, RendersAsAnApiCall) {
    CommandRecord r("extrude");
    r.set("sketch", "Sketch1").set("distance", 10).set("operation", "join");
    EXPECT_EQ(r.toCall(), "extrude(sketch=\"Sketch1\", distance=10, operation=\"join\")");
    EXPECT_EQ(CommandRecord("undo").toCall(), "undo()");

    CommandRecord values("v");
    values.set("b", Value(true))
        .set("f", Value(false))
        .set("d", Value(0.1))
        .set("big", Value(1e21));
    values.set("neg", Value(-2.5)).set("whole", Value(3.0)).set("i", Value(std::int64_t{-7}));
    EXPECT_EQ(values.toCall(), "v(b=true, f=false, d=0.1, big=1e+21, neg=-2.5, whole=3, i=-7)");

    CommandRecord quoted("rename_object");
    quoted.set("label", R"(12" "pipe" \ end)");
    EXPECT_EQ(quoted.toCall(), R"(rename_object(label="12\" \"pipe\" \\ end"))");
}

TEST(CommandRecord, SetReplacesInPlaceAndKeepsTheAlternative) {
    CommandRecord r("x");
    r.set("a", 1).set("b", "two").set("a", Value(1.0));
    ASSERT_EQ(r.arguments.size(), 2u);
    EXPECT_EQ(r.arguments[0].first, "a");
    EXPECT_TRUE(std::holds_alternative<double>(r.arguments[0].second));
    EXPECT_TRUE(
        std::holds_alternative<std::int64_t>(CommandRecord("y").set("n", 2).arguments[0].second));
    r.remove("a");
    EXPECT_EQ(r.toCall(), "x(b=\"two\")");
}

TEST(CommandRecord, ShortestDoublesReadBack) {
    for (double d : {0.1, 1.0 / 3.0, 123456.789, 1e-300, -0.0}) {
        std::string text = formatShortest(d);
        EXPECT_EQ(std::stod(text), d) << text;
    }
    EXPECT_EQ(formatShortest(12.5), "12.5");
}
