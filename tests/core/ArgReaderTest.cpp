// Argument readers: what each accepts, and the exact sentence for each mistake.
#include "core/ArgReader.h"

#include <gtest/gtest.h>

using namespace cad;

namespace {

CommandRecord record() {
    CommandRecord r("extrude");
    r.set("mm", 10).set("dbl", Value(2.5)).set("quarter", R"(1/4")").set("feet", R"(2'6")");
    r.set("flag", Value(true)).set("word", "join").set("bad", "2 3").set("expr", "10 + 2mm");
    r.set("pi", "3.5").set("unit", "3mm").set("three", Value(3.0)).set("half", Value(2.5));
    r.set("empty", "");
    return r;
}

} // namespace

TEST(ArgReader, LengthsTakeNumbersAndExpressions) {
    CommandRecord r = record();
    ArgReader a(r);
    EXPECT_DOUBLE_EQ(*a.length("mm"), 10);
    EXPECT_DOUBLE_EQ(*a.length("dbl"), 2.5);
    EXPECT_DOUBLE_EQ(*a.length("quarter"), 6.35);
    EXPECT_DOUBLE_EQ(*a.length("feet"), 762);
    EXPECT_DOUBLE_EQ(*a.length("expr"), 12);
    EXPECT_DOUBLE_EQ(*a.length("absent", 4), 4);
    EXPECT_EQ(a.length("absent").error(), "extrude: missing length argument 'absent'.");
    EXPECT_EQ(a.length("flag").error(), "extrude: 'flag' must be a length.");
    EXPECT_EQ(a.length("flag", 1).error(), "extrude: 'flag' must be a length.");
    EXPECT_EQ(a.length("bad").error(), "extrude: 'bad': Unexpected text after the value.");
}

TEST(ArgReader, NumbersAnglesAndIntegers) {
    CommandRecord r = record();
    ArgReader a(r);
    EXPECT_DOUBLE_EQ(*a.number("pi"), 3.5);
    EXPECT_DOUBLE_EQ(*a.angle("mm"), 10);
    EXPECT_EQ(a.number("absent").error(), "extrude: missing numeric argument 'absent'.");
    EXPECT_EQ(a.number("unit").error(), "extrude: 'unit' must be a number.");
    EXPECT_EQ(a.number("flag").error(), "extrude: 'flag' must be a number.");
    EXPECT_EQ(a.angle("absent").error(), "extrude: missing numeric argument 'absent'.");
    EXPECT_EQ(a.angle("word").error(), "extrude: 'word' must be a number of degrees.");
    EXPECT_EQ(*a.integer("three"), 3);
    EXPECT_EQ(*a.integer("mm"), 10);
    EXPECT_EQ(a.integer("half").error(), "extrude: 'half' must be a whole number.");
    EXPECT_EQ(*a.integer("absent", 6), 6);
}

TEST(ArgReader, TextObjectsFlagsAndChoices) {
    CommandRecord r = record();
    ArgReader a(r);
    EXPECT_EQ(*a.string("word"), "join");
    EXPECT_EQ(a.string("absent").error(), "extrude: missing string argument 'absent'.");
    EXPECT_EQ(*a.string("absent", "x"), "x");
    EXPECT_EQ(a.object("absent").error(), "extrude: missing 'absent'.");
    EXPECT_EQ(a.object("empty").error(), "extrude: missing 'empty'.");
    EXPECT_TRUE(*a.boolean("flag"));
    EXPECT_FALSE(*a.boolean("absent", false));
    EXPECT_EQ(a.boolean("word").error(), "extrude: 'word' must be true or false.");
    std::vector<std::string> ops = {"new", "join", "cut"};
    EXPECT_EQ(*a.choice("word", ops), "join");
    EXPECT_EQ(*a.choice("absent", ops, "new"), "new");
    EXPECT_EQ(a.choice("expr", ops).error(), "extrude: 'expr' must be one of new, join, cut.");

    EXPECT_TRUE(a.allowOnly({"mm", "dbl", "quarter", "feet", "flag", "word", "bad", "expr", "pi",
                             "unit", "three", "half", "empty"})
                    .ok());
    EXPECT_EQ(a.allowOnly({"sketch", "distance"}).error(),
              "extrude: unknown argument 'mm'. Expected one of: sketch, distance.");
}

TEST(ArgReader, AFailedResultIsNeverUsedQuietly) {
    Result<double> missing = ArgReader(record()).length("absent");
#ifdef NDEBUG
    // Without assertions the slip reaches the command boundary as its own sentence.
    try {
        (void)*missing;
        ADD_FAILURE() << "no exception";
    } catch (const UncheckedResult& e) {
        EXPECT_STREQ(e.what(), "extrude: missing length argument 'absent'.");
    }
#else
    EXPECT_DEATH((void)*missing, "missing length argument 'absent'");
#endif
}
