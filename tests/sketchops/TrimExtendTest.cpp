// trim and extend as a user meets them: split lines with ends left on their cutters,
// shortened ends, circles opened into arcs, shapes broken up first, ends grown to
// the next curve, and the refusals that leave the sketch as it was.
#include "SketchOpsSession.h"

#include <numbers>

using namespace cad;
using cad::test::SketchOpsSession;

namespace {

class TrimExtend : public SketchOpsSession {
protected:
    static CommandRecord trim(const char* entity, double x, double y) {
        return on("trim", {{"entity", entity}, {"x", x}, {"y", y}});
    }
    static CommandRecord extend(const char* entity, double x, double y) {
        return on("extend", {{"entity", entity}, {"x", x}, {"y", y}});
    }
};

} // namespace

TEST_F(TrimExtend, TheMiddleOfALineCrossedTwiceGoesAndTheEndsStayOnTheirCutters) {
    line(0, 0, 30, 0);   // Line1, to be trimmed
    line(10, -5, 10, 5); // Line2 crosses it at x = 10
    circle(20, 0, 3);    // crosses it at x = 17 and 23
    line(30, 0, 30, 8);  // Line3, joined to Line1's end
    ok(constraint("horizontal", "Line1"));
    ok(constraint("length", "Line1"));
    ok(constraint("coincident", "Line1.end", "Line3.start"));

    EXPECT_EQ(ok(trim("Line1", 13, 0.2)), "Trimmed Line1.");
    // The piece between x = 10 and the circle's near side (20 - 3) is gone.
    EXPECT_NEAR(gap(at("Line1.start"), {0, 0}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line1.end"), {10, 0}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line4.start"), {17, 0}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line4.end"), {30, 0}), 0, 1e-9);
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line1.end", "Line2"}));
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line4.start", "Circle1"}));
    // The old end's joint went with it to the new piece; the length went altogether.
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line4.end", "Line3.start"}));
    EXPECT_EQ(count(ConstraintType::Length), 0u);
    EXPECT_TRUE(has(ConstraintType::Horizontal, {"Line1"}));

    // The ends follow their cutters: tilting Line2 drags Line1's end along it.
    ok(on("move_sketch_point", {{"point", "Line2.start"}, {"x", 6}, {"y", -5}}));
    const Point2 a = at("Line2.start"), b = at("Line2.end"), end = at("Line1.end");
    EXPECT_LT(end.x, 9.5);
    EXPECT_NEAR((b.x - a.x) * (end.y - a.y) - (b.y - a.y) * (end.x - a.x), 0, 1e-6);
}

TEST_F(TrimExtend, APieceAtAnEndShortensTheLine) {
    line(0, 0, 10, 0);
    line(7, -1, 7, 1);
    line(10, 0, 10, 4);
    ok(constraint("coincident", "Line1.end", "Line3.start"));
    EXPECT_EQ(ok(trim("Line1", 9, 0)), "Trimmed Line1.");
    EXPECT_NEAR(gap(at("Line1.end"), {7, 0}), 0, 1e-9);
    EXPECT_EQ(sketch().entities.size(), 3u);
    // The joint at the end that moved is replaced by the end on its cutter.
    EXPECT_FALSE(has(ConstraintType::Coincident, {"Line1.end", "Line3.start"}));
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line1.end", "Line2"}));
}

TEST_F(TrimExtend, CirclesOpenIntoArcsOrGoWhenNothingCrosses) {
    circle(0, 0, 5);
    ok(constraint("radius", "Circle1"));
    EXPECT_EQ(ok(trim("Circle1", 0, 5)), "Deleted Circle1 (nothing crosses it).");
    EXPECT_TRUE(sketch().entities.empty());
    EXPECT_TRUE(sketch().constraints.empty());
    stack.undo();

    line(-10, 3, 10, 3); // crosses the circle at (-4, 3) and (4, 3)
    EXPECT_EQ(ok(trim("Circle1", 0, 5)), "Trimmed Circle1.");
    ASSERT_EQ(sketch().findEntity("Circle1"), nullptr);
    // The rest of the turn runs counter-clockwise from the crossing after the spot,
    // (-4, 3), round the bottom to (4, 3).
    EXPECT_NEAR(gap(at("Arc1.start"), {-4, 3}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc1.end"), {4, 3}), 0, 1e-9);
    const auto& arc = geometry<SketchArc>("Arc1");
    EXPECT_NEAR(arc.sweepAngle, 360 - 2 * std::atan2(4, 3) * 180 / std::numbers::pi, 1e-9);
    EXPECT_TRUE(has(ConstraintType::Radius, {"Arc1"}));
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Arc1.start", "Line1"}));
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Arc1.end", "Line1"}));
}

TEST_F(TrimExtend, ARectangleSideIsTrimmedAfterTheShapeIsBrokenIntoLines) {
    line(10, -5, 10, 15); // Line1
    rectangle(0, 0, 20, 10);
    EXPECT_EQ(ok(trim("Rectangle1", 15, 0.1)), "Trimmed Line2.");
    EXPECT_EQ(sketch().findEntity("Rectangle1"), nullptr);
    EXPECT_EQ(sketch().entities.size(), 5u); // the cutter and four sides
    EXPECT_NEAR(gap(at("Line2.start"), {0, 0}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line2.end"), {10, 0}), 0, 1e-9);
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line2.end", "Line1"}));
    EXPECT_FALSE(has(ConstraintType::Coincident, {"Line2.end", "Line3.start"}));
}

TEST_F(TrimExtend, TrimmingASlotEndLeavesTheRestOfItWhereItWas) {
    ok(on("add_slot", {{"x1", 0}, {"y1", 0}, {"x2", 10}, {"y2", 0}, {"width", 4}}));
    line(11, -10, 11, 10); // crosses the end cap at 60 degrees either side of its tip
    EXPECT_EQ(ok(trim("Slot1", 12, 0)), "Trimmed Arc1.");
    EXPECT_NEAR(gap(at("Line2.start"), {0, -2}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line3.start"), {10, 2}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc1.start"), {10, -2}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc1.end"), {11, -std::sqrt(3.0)}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc3.start"), {11, std::sqrt(3.0)}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc3.end"), {10, 2}), 0, 1e-9);
    EXPECT_NEAR(geometry<SketchArc>("Arc2").radius, 2, 1e-12);
}

TEST_F(TrimExtend, EndsGrowToTheNextCurveInTheirWay) {
    line(0, 0, 5, 0);
    line(12, -5, 12, 5);
    ok(constraint("length", "Line1"));
    EXPECT_EQ(ok(extend("Line1", 4, 0)), "Extended Line1.");
    EXPECT_NEAR(gap(at("Line1.end"), {12, 0}), 0, 1e-9);
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line1.end", "Line2"}));
    EXPECT_EQ(count(ConstraintType::Length), 0u);
    EXPECT_EQ(error(extend("Line1", 1, 0)),
              "There's nothing in the way of Line1's start to extend it to.");

    // An arc grows around its circle: its start, clockwise, to the line y = -3.
    ok(on("add_arc",
          {{"cx", 0}, {"cy", 30}, {"radius", 5}, {"start_angle", 0}, {"sweep_angle", 90}}));
    line(-10, 27, 10, 27);
    EXPECT_EQ(ok(extend("Arc1", 5, 30)), "Extended Arc1.");
    EXPECT_NEAR(gap(at("Arc1.start"), {4, 27}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc1.end"), {0, 35}), 0, 1e-9);
    EXPECT_EQ(error(on("extend", {{"entity", "Line2"}, {"x", 12}})),
              "extend: missing length argument 'y'.");
}

TEST_F(TrimExtend, RefusalsLeaveTheSketchAsItWas) {
    line(0, 0, 10, 0);
    circle(30, 0, 2);
    ok(on("add_spline", {{"points", "0,5; 5,8; 10,5"}}));
    SketchEntity projected;
    projected.id = "Line2";
    projected.geometry = SketchLine{{5, -5}, {5, 5}};
    projected.source = "Sketch2/Line1";
    sketch().entities.push_back(projected);
    const std::string before = everything();

    EXPECT_EQ(error(trim("Spline1", 5, 8)),
              "Trim works on lines, circles and arcs, and the sides of rectangles, polygons and "
              "slots.");
    EXPECT_EQ(error(trim("Line2", 5, 1)), "Line2 is projected; it follows its source.");
    EXPECT_EQ(error(trim("Line9", 5, 1)), "No entity named 'Line9'.");
    EXPECT_EQ(error(on("trim", {{"entity", "Line1"}, {"x", 3}})),
              "trim: give x and y: the spot on the curve that was clicked.");
    EXPECT_EQ(error(on("trim", {{"x", 3}, {"y", 3}})), "trim: say which entity.");
    EXPECT_EQ(error(extend("Circle1", 30, 2)), "Extend works on lines and arcs.");
    EXPECT_EQ(error(CommandRecord("trim").set("entity", "Line1").set("x", 1).set("y", 1)),
              "trim: missing string argument 'sketch'.");
    EXPECT_EQ(everything(), before);
}

TEST_F(TrimExtend, UndoPutsBackExactlyWhatWasThereAndRedoDoesItAgain) {
    line(0, 0, 30, 0);
    line(10, -5, 10, 5);
    line(20, -5, 20, 5);
    ok(constraint("horizontal", "Line1"));
    ok(constraint("length", "Line1"));
    const std::string before = everything();
    ok(trim("Line1", 15, 0));
    const std::string after = everything();
    ASSERT_NE(after, before);
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(everything(), before);
    ASSERT_TRUE(stack.redo().ok);
    EXPECT_EQ(everything(), after);
}
