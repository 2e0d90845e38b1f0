// explode, sketch_fillet and sketch_chamfer: shapes broken into joined pieces with
// their dimensions carried over, corners rounded and bevelled with the geometry
// and constraints a user expects, and the refusals, word for word.
#include "SketchOpsSession.h"

#include <numbers>

using namespace cad;
using cad::test::SketchOpsSession;

namespace {

class ExplodeCorner : public SketchOpsSession {
protected:
    static CommandRecord fillet(const char* corner, double radius) {
        return on("sketch_fillet", {{"corner", corner}, {"radius", radius}});
    }
    static CommandRecord chamfer(const char* corner, double distance) {
        return on("sketch_chamfer", {{"corner", corner}, {"distance", distance}});
    }
    // Line1 from the far end (fx, fy) to the corner (0, 0), Line2 from the corner to
    // (gx, gy), joined as the line tool joins them.
    void corner(double fx, double fy, double gx, double gy) {
        line(fx, fy, 0, 0);
        line(0, 0, gx, gy);
        ok(constraint("coincident", "Line1.end", "Line2.start"));
    }
    double length(const std::string& id) {
        const auto& l = geometry<SketchLine>(id);
        return gap(l.start, l.end);
    }
};

} // namespace

TEST_F(ExplodeCorner, ARectangleBecomesFourJoinedLinesAndItsDimensionsFollow) {
    rectangle(0, 0, 20, 10);
    ok(on("add_constraint", {{"type", "length"}, {"a", "Rectangle1.top"}}));
    ok(constraint("coincident", "Rectangle1.bottom_left", "Origin"));
    rectangle(40, 0, 50, 5);
    ok(constraint("fix", "Rectangle2"));
    EXPECT_EQ(ok(on("explode", {{"entity", "Rectangle1"}})), "Broke Rectangle1 into 4 pieces.");
    ok(on("explode", {{"entity", "Rectangle2"}}));

    ASSERT_EQ(sketch().entities.size(), 8u);
    EXPECT_NEAR(gap(at("Line1.start"), {0, 0}), 0, 1e-12);  // bottom
    EXPECT_NEAR(gap(at("Line2.end"), {20, 10}), 0, 1e-12);  // right
    EXPECT_NEAR(gap(at("Line3.start"), {0, 10}), 0, 1e-12); // top
    EXPECT_NEAR(gap(at("Line4.end"), {0, 10}), 0, 1e-12);   // left
    EXPECT_EQ(count(ConstraintType::Coincident), 9u);       // four joints each, and the origin
    EXPECT_EQ(count(ConstraintType::Horizontal), 4u);
    EXPECT_EQ(count(ConstraintType::Vertical), 4u);
    EXPECT_TRUE(has(ConstraintType::Horizontal, {"Line3"}));
    EXPECT_TRUE(has(ConstraintType::Length, {"Line3"}));
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line1.start", "Origin"}));
    EXPECT_EQ(count(ConstraintType::Fix), 0u); // it held the rectangle as a whole

    // Still a rectangle: lengthening the top carries the bottom with it.
    ok(on("edit_constraint", {{"constraint", "Length1"}, {"value", 30}}));
    EXPECT_NEAR(length("Line3"), 30, 1e-7);
    EXPECT_NEAR(length("Line1"), 30, 1e-7);
}

TEST_F(ExplodeCorner, PolygonsAndSlotsBreakUpTooButCurvesDoNot) {
    ok(on("add_polygon", {{"cx", 0}, {"cy", 0}, {"sides", 6}, {"radius", 10}, {"rotation", 0}}));
    ok(on("add_point", {{"x", -5}, {"y", 5 * std::sqrt(3.0)}}));
    ok(constraint("coincident", "Polygon1.corner2", "Point1"));
    EXPECT_EQ(ok(on("explode", {{"entity", "Polygon1"}})), "Broke Polygon1 into 6 pieces.");
    EXPECT_EQ(count(ConstraintType::Equal), 5u);
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line3.start", "Point1"}));
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line6.end", "Line1.start"}));

    ok(on("add_slot", {{"x1", 0}, {"y1", 30}, {"x2", 10}, {"y2", 30}, {"width", 4}}));
    EXPECT_EQ(ok(on("explode", {{"entity", "Slot1"}})), "Broke Slot1 into 4 pieces.");
    EXPECT_EQ(count(ConstraintType::Tangent), 4u);
    EXPECT_EQ(count(ConstraintType::Equal), 6u);
    EXPECT_NEAR(gap(at("Arc1.center"), {10, 30}), 0, 1e-12);
    EXPECT_NEAR(gap(at("Line7.start"), {0, 28}), 0, 1e-12);
    EXPECT_NEAR(gap(at("Line7.end"), at("Arc1.start")), 0, 1e-9);

    circle(50, 0, 1);
    EXPECT_EQ(error(on("explode", {{"entity", "Circle1"}})), "Circle1 is already a simple curve.");
    EXPECT_EQ(error(on("explode", {})), "explode: say which entity.");
}

TEST_F(ExplodeCorner, AFilletRoundsTheCornerAndKeepsTheSharpCornerForDimensions) {
    corner(-10, 0, 0, 8);
    ok(constraint("length", "Line1"));
    EXPECT_EQ(ok(fillet("Line1.end", 2)), "Filleted Line1.end with Arc1.");

    // A right angle: each line is cut back by r / tan(45 degrees) = r.
    EXPECT_NEAR(gap(at("Line1.end"), {-2, 0}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line2.start"), {0, 2}), 0, 1e-9);
    const auto& arc = geometry<SketchArc>("Arc1");
    EXPECT_NEAR(gap(arc.center, {-2, 2}), 0, 1e-9);
    EXPECT_NEAR(arc.radius, 2, 1e-12);
    EXPECT_NEAR(gap(at("Arc1.start"), {-2, 0}), 0, 1e-9);
    EXPECT_NEAR(arc.sweepAngle, 90, 1e-9); // the short way, counter-clockwise here
    EXPECT_TRUE(entity("Point1").construction);
    EXPECT_NEAR(gap(at("Point1"), {0, 0}), 0, 1e-12);

    EXPECT_TRUE(has(ConstraintType::Tangent, {"Line1", "Arc1"}));
    EXPECT_TRUE(has(ConstraintType::Tangent, {"Line2", "Arc1"}));
    ASSERT_EQ(count(ConstraintType::Radius), 1u);
    EXPECT_EQ(ofType(ConstraintType::Radius).front()->value, 2);
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Point1", "Line1"}));
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Arc1.end", "Line2.start"}));
    EXPECT_FALSE(has(ConstraintType::Coincident, {"Point1", "Point1"}));
    // The length now runs to the sharp corner: the line is shorter by the setback.
    const SketchConstraint& kept = *sketch().findConstraint("Length1");
    EXPECT_EQ(kept.type, ConstraintType::Distance);
    EXPECT_EQ(kept.refs.size(), 2u);
    EXPECT_TRUE(has(ConstraintType::Distance, {"Point1", "Line1.start"}));
    EXPECT_NEAR(length("Line1"), 10 - 2, 1e-9);
}

TEST_F(ExplodeCorner, FilletRefusalsLeaveTheSketchAsItWas) {
    corner(-4, 0, 0, 4);
    const std::string before = everything();
    EXPECT_EQ(error(fillet("Line1.end", 5)),
              "That radius is too large for these lines (the largest that fits is about 4.000000 "
              "mm).");
    EXPECT_EQ(error(fillet("Line1.end", 0)), "The radius must be greater than zero.");
    EXPECT_EQ(error(fillet("Line1", 1)),
              "sketch_fillet: 'corner' must name a line end such as \"Line1.end\".");
    EXPECT_EQ(error(fillet("Line1.start", 1)),
              "Line1.start is not a corner where exactly two lines meet.");
    EXPECT_EQ(everything(), before);

    line(0, 0, 3, -3); // a third line at the corner
    EXPECT_EQ(error(fillet("Line1.end", 1)),
              "Line1.end is not a corner where exactly two lines meet.");
    line(20, 0, 30, 0);
    line(30, 0, 40, 0);
    EXPECT_EQ(error(fillet("Line4.end", 1)),
              "The lines at that corner are in line with each other; there is no corner to round.");
    ok(on("add_arc",
          {{"cx", 50}, {"cy", 5}, {"radius", 5}, {"start_angle", -90}, {"sweep_angle", 90}}));
    line(40, 0, 50, 0);
    EXPECT_EQ(error(fillet("Line6.end", 1)), "The corner must join two lines.");
}

TEST_F(ExplodeCorner, ChamfersBevelByOneOrTwoDistances) {
    corner(-10, 0, 0, 10);
    EXPECT_EQ(ok(chamfer("Line1.end", 3)), "Chamfered Line1.end with Line3.");
    EXPECT_NEAR(gap(at("Line3.start"), {-3, 0}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line3.end"), {0, 3}), 0, 1e-9);
    EXPECT_TRUE(has(ConstraintType::EqualDistance, {"Point1", "Line1.end", "Line2.start"}));
    EXPECT_TRUE(has(ConstraintType::Distance, {"Point1", "Line1.end"}));
    stack.undo();

    const std::string before = everything();
    ok(on("sketch_chamfer", {{"corner", "Line2.start"}, {"distance", 2}, {"distance2", 5}}));
    EXPECT_NEAR(gap(at("Line2.start"), {0, 2}), 0, 1e-9); // the named line is the first
    EXPECT_NEAR(gap(at("Line1.end"), {-5, 0}), 0, 1e-9);
    EXPECT_EQ(count(ConstraintType::EqualDistance), 0u);
    ASSERT_EQ(count(ConstraintType::Distance), 2u);
    EXPECT_TRUE(has(ConstraintType::Distance, {"Point1", "Line1.end"}));
    stack.undo();
    EXPECT_EQ(everything(), before);

    EXPECT_EQ(error(chamfer("Line1.end", 10)), "That chamfer is longer than the lines it cuts.");
    EXPECT_EQ(
        error(on("sketch_chamfer", {{"corner", "Line1.end"}, {"distance", 1}, {"distance2", -1}})),
        "The chamfer distance must be greater than zero.");
    EXPECT_EQ(everything(), before);
}
