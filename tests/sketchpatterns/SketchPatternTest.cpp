// Sketch patterns: where circular, rectangular and path copies land, the argument
// sentences, and editing a pattern with its undo.
#include "SketchPatternModel.h"

#include <cmath>

namespace cad::testing {

namespace {

class SketchPatterns : public SketchPatternModel {
protected:
    SketchPatterns() { ok("create_sketch", {{"plane", "XY"}}); }

    const SketchPattern& pattern(std::size_t i) {
        static const SketchPattern none;
        const auto& patterns = sketch("Sketch1").patterns;
        EXPECT_LT(i, patterns.size());
        return i < patterns.size() ? patterns[i] : none;
    }
    // The copies of pattern `i`, as the lines they must be.
    std::vector<SketchLine> copyLines(std::size_t i) {
        std::vector<SketchLine> lines;
        for (const std::string& id : pattern(i).copies) {
            const auto* line = std::get_if<SketchLine>(&entity("Sketch1", id).geometry);
            EXPECT_NE(line, nullptr) << id;
            if (line) lines.push_back(*line);
        }
        return lines;
    }
    void expectLine(const SketchLine& actual, Point2 start, Point2 end, const std::string& what) {
        expectNear(actual.start, start, what + " start");
        expectNear(actual.end, end, what + " end");
    }
};

} // namespace

TEST_F(SketchPatterns, CircularCopiesSpreadOverAFullOrAPartTurn) {
    addLine("Sketch1", 10, 0, 14, 1);
    const Point2 a{10, 0}, b{14, 1};
    EXPECT_EQ(
        ok("sketch_pattern_circular", {{"sketch", "Sketch1"}, {"entities", "Line1"}, {"count", 6}}),
        "Patterned 1 entity into 6 copies.");
    EXPECT_EQ(pattern(0).id, "Pattern1");
    EXPECT_EQ(pattern(0).record.name, "sketch_pattern_circular");
    std::vector<SketchLine> full = copyLines(0);
    ASSERT_EQ(full.size(), 5u);
    for (int k = 1; k <= 5; ++k)
        expectLine(full[k - 1], turned(a, 60.0 * k), turned(b, 60.0 * k),
                   "360/" + std::to_string(k));

    ASSERT_TRUE(stack.undo());
    ok("sketch_pattern_circular",
       {{"sketch", "Sketch1"}, {"entities", "Line1"}, {"count", 6}, {"angle", 180}});
    std::vector<SketchLine> half = copyLines(0);
    ASSERT_EQ(half.size(), 5u);
    for (int k = 1; k <= 5; ++k)
        expectLine(half[k - 1], turned(a, 36.0 * k), turned(b, 36.0 * k),
                   "180/" + std::to_string(k));
    expectNear(half.back().start, {-10, 0}, "the last copy lands at 180 degrees");

    // About another centre; a whole circle is not a point.
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 5}, {"cy", 5}, {"radius", 1}});
    ok("sketch_pattern_circular",
       {{"sketch", "Sketch1"}, {"entities", "Line1"}, {"count", 4}, {"center", "Circle1.center"}});
    std::vector<SketchLine> around = copyLines(1);
    ASSERT_EQ(around.size(), 3u);
    expectLine(around[0], turned(a, 90, {5, 5}), turned(b, 90, {5, 5}), "about Circle1");
    EXPECT_EQ(error("sketch_pattern_circular",
                    {{"sketch", "Sketch1"}, {"entities", "Line1"}, {"center", "Circle1"}}),
              "'Circle1' isn't a point in the sketch.");
}

TEST_F(SketchPatterns, RectangularGridsStepAlongBothDirections) {
    ok("add_point", {{"sketch", "Sketch1"}, {"x", 1}, {"y", 2}});
    EXPECT_EQ(ok("sketch_pattern_rectangular",
                 {{"sketch", "Sketch1"}, {"entities", "Point1"}, {"count", 3}, {"count2", 2}}),
              "Patterned 1 entity into 6 copies.");
    // Defaults: 10 mm along x, then 10 mm along y; the first direction inside the second.
    auto expectGrid = [&](std::size_t which, double spacing, double angle, double spacing2,
                          double angle2) {
        const double t1 = angle * std::numbers::pi / 180, t2 = angle2 * std::numbers::pi / 180;
        std::vector<Point2> expected;
        for (int j = 0; j < 2; ++j)
            for (int i = 0; i < 3; ++i)
                if (i || j)
                    expected.push_back(
                        {1 + i * spacing * std::cos(t1) + j * spacing2 * std::cos(t2),
                         2 + i * spacing * std::sin(t1) + j * spacing2 * std::sin(t2)});
        const std::vector<std::string>& copies = pattern(which).copies;
        ASSERT_EQ(copies.size(), expected.size());
        for (std::size_t k = 0; k < copies.size(); ++k)
            expectNear(std::get<SketchPoint>(entity("Sketch1", copies[k]).geometry).position,
                       expected[k], copies[k]);
    };
    expectGrid(0, 10, 0, 10, 90);
    EXPECT_EQ(pattern(0).copies.front(), "Point2");

    ok("sketch_pattern_rectangular", {{"sketch", "Sketch1"},
                                      {"entities", "Point1"},
                                      {"count", 3},
                                      {"count2", 2},
                                      {"spacing", -5},
                                      {"angle", 30},
                                      {"spacing2", 4},
                                      {"angle2", 120}});
    expectGrid(1, -5, 30, 4, 120);
    EXPECT_EQ(pattern(1).id, "Pattern2");
}

TEST_F(SketchPatterns, RectanglesTurnOnlyByQuarterTurns) {
    ok("add_rectangle", {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 4}, {"y2", 2}});
    ok("sketch_pattern_circular",
       {{"sketch", "Sketch1"}, {"entities", "Rectangle1"}, {"count", 4}});
    const auto& quarter = std::get<SketchRectangle>(entity("Sketch1", "Rectangle2").geometry);
    expectNear(quarter.corner, {-2, 0}, "turned corner");
    EXPECT_NEAR(quarter.width, 2, 1e-12);
    EXPECT_NEAR(quarter.height, 4, 1e-12);
    const std::string message =
        error("sketch_pattern_circular",
              {{"sketch", "Sketch1"}, {"entities", "Rectangle1"}, {"count", 3}});
    EXPECT_EQ(message.rfind("Rectangle1: A rectangle stays square to the sketch axes", 0), 0u)
        << message;
}

TEST_F(SketchPatterns, BadArgumentsGetTheirSentencesAndChangeNothing) {
    addLine("Sketch1", 0, 0, 30, 0);
    addLine("Sketch1", 0, 1, 0, 3);
    const std::string before = snapshot("Sketch1");
    const std::string sketchId = "Sketch1";
    struct Case {
        const char* command;
        Args arguments;
        std::string expected;
    };
    const Case cases[] = {
        {"sketch_pattern_rectangular",
         {{"entities", "Line1"}},
         "sketch_pattern_rectangular: missing 'sketch'."},
        {"sketch_pattern_rectangular",
         {{"sketch", sketchId}},
         "sketch_pattern_rectangular: say which entities, separated by ';'."},
        {"sketch_pattern_rectangular",
         {{"sketch", sketchId}, {"entities", " ; "}},
         "Choose what to pattern."},
        {"sketch_pattern_rectangular",
         {{"sketch", sketchId}, {"entities", "Line9"}},
         "No entity named 'Line9'."},
        {"sketch_pattern_rectangular",
         {{"sketch", sketchId}, {"entities", "Line1"}, {"count", 0}},
         "sketch_pattern_rectangular: counts must be whole numbers from 1 to 1000."},
        {"sketch_pattern_rectangular",
         {{"sketch", sketchId}, {"entities", "Line1"}, {"count2", 1001}},
         "sketch_pattern_rectangular: counts must be whole numbers from 1 to 1000."},
        {"sketch_pattern_circular",
         {{"sketch", sketchId}, {"entities", "Line1"}, {"count", 2.5}},
         "sketch_pattern_circular: counts must be whole numbers from 1 to 1000."},
        {"sketch_pattern_rectangular",
         {{"sketch", sketchId}, {"entities", "Line1"}, {"count", 1}},
         "A pattern needs at least two copies."},
        {"sketch_pattern_circular",
         {{"sketch", sketchId}, {"entities", "Line1"}, {"angle", "wide"}},
         "sketch_pattern_circular: 'angle' must be a number of degrees."},
        {"sketch_pattern_rectangular",
         {{"sketch", sketchId}, {"entities", "Line1"}, {"angle2", "up"}},
         "sketch_pattern_rectangular: 'angle2' must be a number of degrees."},
        {"sketch_pattern_path",
         {{"sketch", sketchId}, {"entities", "Line2"}},
         "sketch_pattern_path: give the path's curves, separated by ';'."},
        {"sketch_pattern_path",
         {{"sketch", sketchId}, {"entities", "Line2"}, {"path", "Line1"}, {"follow", "maybe"}},
         "sketch_pattern_path: 'follow' must be true or false."},
        {"sketch_pattern_path",
         {{"sketch", sketchId},
          {"entities", "Line2"},
          {"path", "Line1"},
          {"count", 4},
          {"spacing", 20}},
         "The path is 30 mm long: 4 copies 20 mm apart don't fit on it."},
        {"edit_sketch_pattern",
         {{"sketch", sketchId}},
         "edit_sketch_pattern: give the sketch and the pattern (e.g. \"Pattern1\")."},
        {"edit_sketch_pattern",
         {{"sketch", sketchId}, {"pattern", "Pattern1"}},
         "edit_sketch_pattern: no patterns here."},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(error(c.command, c.arguments), c.expected) << c.command;
        EXPECT_EQ(snapshot("Sketch1"), before) << c.expected;
    }
    ok("sketch_pattern_rectangular", {{"sketch", sketchId}, {"entities", "Line2"}});
    EXPECT_EQ(error("edit_sketch_pattern", {{"sketch", sketchId}, {"pattern", "Pattern7"}}),
              "No pattern named 'Pattern7' in Sketch1.");
    EXPECT_EQ(error("edit_sketch_pattern",
                    {{"sketch", sketchId}, {"pattern", "Pattern1"}, {"center", "Origin"}})
                  .rfind("edit_sketch_pattern: unknown argument 'center'.", 0),
              0u);
}

TEST_F(SketchPatterns, EditingRemakesTheCopiesAndUndoPutsBackExactly) {
    addLine("Sketch1", 10, 0, 14, 1);
    const Point2 a{10, 0}, b{14, 1};
    ok("sketch_pattern_circular", {{"sketch", "Sketch1"}, {"entities", "Line1"}, {"count", 4}});
    // A deleted copy stays in the record and comes back with the next edit.
    ok("delete_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Line3"}});
    const std::string before = snapshot("Sketch1");

    EXPECT_EQ(
        ok("edit_sketch_pattern", {{"sketch", "Sketch1"}, {"pattern", "Pattern1"}, {"count", 6}}),
        "Remade Pattern1: 1 entity into 6 copies.");
    EXPECT_EQ(sketch("Sketch1").entities.size(), 6u);
    EXPECT_EQ(*pattern(0).record.find("count"), Value(std::int64_t{6}));
    std::vector<SketchLine> copies = copyLines(0);
    ASSERT_EQ(copies.size(), 5u);
    for (int k = 1; k <= 5; ++k)
        expectLine(copies[k - 1], turned(a, 60.0 * k), turned(b, 60.0 * k), std::to_string(k));
    const std::string after = snapshot("Sketch1");

    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(snapshot("Sketch1"), before);
    ASSERT_TRUE(stack.redo().ok);
    EXPECT_EQ(snapshot("Sketch1"), after);

    // Only the given arguments change; the others keep what the pattern was made with.
    ok("edit_sketch_pattern", {{"sketch", "Sketch1"}, {"pattern", "Pattern1"}, {"angle", 90}});
    copies = copyLines(0);
    ASSERT_EQ(copies.size(), 5u);
    expectLine(copies.back(), turned(a, 90), turned(b, 90), "spread over 90");
}

TEST_F(SketchPatterns, PathCopiesFollowTheJoinedCurves) {
    addLine("Sketch1", 0, 0, 30, 0);    // Line1
    addLine("Sketch1", 30, 0, 30, 20);  // Line2
    addLine("Sketch1", 30, 18, 32, 18); // Line3: the selection
    const Point2 p{30, 18}, q{32, 18};

    // Spread over an open path: the last copy at its end.
    ok("sketch_pattern_path",
       {{"sketch", "Sketch1"}, {"entities", "Line3"}, {"path", "Line1"}, {"count", 4}});
    std::vector<SketchLine> spread = copyLines(0);
    ASSERT_EQ(spread.size(), 3u);
    for (int k = 1; k <= 3; ++k)
        expectLine(spread[k - 1], {p.x + 10.0 * k, p.y}, {q.x + 10.0 * k, q.y}, "spread");

    // Given the other way round, the path starts at Line2's far end (30, 20), runs
    // down to the corner and along Line1 back to the origin.
    ok("sketch_pattern_path", {{"sketch", "Sketch1"},
                               {"entities", "Line3"},
                               {"path", "Line2; Line1"},
                               {"count", 5},
                               {"spacing", 10}});
    std::vector<SketchLine> turning = copyLines(1);
    ASSERT_EQ(turning.size(), 4u);
    const Point2 start{30, 20};
    auto placed = [&](Point2 v, double turn, Point2 at) {
        const Point2 r = turned(v, turn, start);
        return Point2{r.x + at.x - start.x, r.y + at.y - start.y};
    };
    expectLine(turning[0], placed(p, 0, {30, 10}), placed(q, 0, {30, 10}), "down the side");
    // Along Line1 the path runs in -x, a quarter turn clockwise from running in -y.
    expectLine(turning[3], placed(p, -90, {10, 0}), placed(q, -90, {10, 0}), "along the bottom");

    ok("edit_sketch_pattern", {{"sketch", "Sketch1"}, {"pattern", "Pattern2"}, {"follow", false}});
    expectLine(copyLines(1)[3], placed(p, 0, {10, 0}), placed(q, 0, {10, 0}), "not following");
}

TEST_F(SketchPatterns, AClosedPathSpreadsAllTheWayRound) {
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 0}, {"cy", 0}, {"radius", 10}});
    addLine("Sketch1", 10, 0, 12, 0); // a spoke at the circle's start
    ok("sketch_pattern_path",
       {{"sketch", "Sketch1"}, {"entities", "Line1"}, {"path", "Circle1"}, {"count", 4}});
    std::vector<SketchLine> spokes = copyLines(0);
    ASSERT_EQ(spokes.size(), 3u);
    for (int k = 1; k <= 3; ++k)
        expectLine(spokes[k - 1], turned({10, 0}, 90.0 * k), turned({12, 0}, 90.0 * k),
                   "spoke " + std::to_string(k));
    addLine("Sketch1", 50, 50, 60, 50);
    EXPECT_EQ(error("sketch_pattern_path",
                    {{"sketch", "Sketch1"}, {"entities", "Line1"}, {"path", "Circle1; Line5"}}),
              "The path's curves don't join end to end.");
}

} // namespace cad::testing
