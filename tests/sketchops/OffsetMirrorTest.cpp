// offset and mirror: copies at the right distance on the right side, chains that
// meet at sharp corners, collapses refused, and mirror images that stay mirrored.
#include "SketchOpsSession.h"

#include <numbers>

using namespace cad;
using cad::test::SketchOpsSession;

namespace {

class OffsetMirror : public SketchOpsSession {
protected:
    static CommandRecord offset(const char* entities, double distance) {
        return on("offset", {{"entities", entities}, {"distance", distance}});
    }
    static CommandRecord mirror(const char* entities, const char* line) {
        return on("mirror", {{"entities", entities}, {"line", line}});
    }
};

// Where the lines a -> b and c -> d cross, each moved `by` to its left.
Point2 offsetCorner(Point2 a, Point2 b, Point2 c, Point2 d, double by) {
    auto shifted = [by](Point2 p, Point2 q) {
        const double len = std::hypot(q.x - p.x, q.y - p.y);
        const Point2 n{-(q.y - p.y) / len * by, (q.x - p.x) / len * by};
        return std::pair{Point2{p.x + n.x, p.y + n.y}, Point2{q.x - p.x, q.y - p.y}};
    };
    const auto [p, r] = shifted(a, b);
    const auto [q, s] = shifted(c, d);
    const double t = ((q.x - p.x) * s.y - (q.y - p.y) * s.x) / (r.x * s.y - r.y * s.x);
    return {p.x + t * r.x, p.y + t * r.y};
}

} // namespace

TEST_F(OffsetMirror, ARectangleGrowsOutwardAroundItsCentre) {
    rectangle(0, 0, 20, 10);
    EXPECT_EQ(ok(offset("Rectangle1", 2)), "Offset 1 entity.");
    const auto& grown = geometry<SketchRectangle>("Rectangle2");
    EXPECT_EQ(grown.corner, (Point2{-2, -2}));
    EXPECT_EQ(grown.width, 24);
    EXPECT_EQ(grown.height, 14);
    EXPECT_TRUE(sketch().constraints.empty()); // deliberately free of its source

    ok(on("offset", {{"entities", "Rectangle1"}, {"distance", 2}, {"x", 10}, {"y", 5}}));
    const auto& shrunk = geometry<SketchRectangle>("Rectangle3");
    EXPECT_EQ(shrunk.corner, (Point2{2, 2}));
    EXPECT_EQ(shrunk.width, 16);
    EXPECT_EQ(shrunk.height, 6);
    EXPECT_EQ(error(offset("Rectangle1", -5)),
              "Offsetting Rectangle1 inward by that much leaves nothing.");
}

TEST_F(OffsetMirror, AClosedChainOfLinesMeetsAtSharpCorners) {
    const std::vector<Point2> corners{{0, 0}, {20, 0}, {14, 10}, {4, 10}}; // a trapezoid
    closedLines(corners);
    EXPECT_EQ(ok(offset("Line1; Line2; Line3; Line4", 2)), "Offset a chain of 4 curves.");
    // Drawn counter-clockwise, so outward is to the right of each line.
    for (int i = 0; i < 4; ++i) {
        const Point2 a = corners[(i + 3) % 4], b = corners[i], c = corners[(i + 1) % 4];
        const Point2 expected = offsetCorner(a, b, b, c, -2);
        EXPECT_NEAR(gap(at("Line" + std::to_string(5 + i) + ".start"), expected), 0, 1e-9) << i;
    }
    EXPECT_EQ(count(ConstraintType::Parallel), 4u);
    ASSERT_EQ(count(ConstraintType::Distance), 4u);
    for (const SketchConstraint* d : ofType(ConstraintType::Distance)) EXPECT_EQ(d->value, 2);
    EXPECT_EQ(count(ConstraintType::Coincident), 8u);
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Line8.end", "Line5.start"}));

    // Inward past the middle of the 10 mm height leaves nothing.
    const std::string before = everything();
    EXPECT_EQ(error(offset("Line1; Line2; Line3; Line4", -6)),
              "Offsetting Line1, Line2, Line3 and Line4 that far inward leaves nothing.");
    EXPECT_EQ(everything(), before);
}

TEST_F(OffsetMirror, ChainsWithTangentArcsOffsetIntoTheSameShapeFurtherOut) {
    // A slot broken into two sides and two end arcs of radius 2, offset by 1: sides
    // 3 from the centre line, arcs of radius 3 round the same centres.
    ok(on("add_slot", {{"x1", 0}, {"y1", 0}, {"x2", 10}, {"y2", 0}, {"width", 4}}));
    ok(on("explode", {{"entity", "Slot1"}}));
    EXPECT_EQ(ok(offset("Line1; Arc1; Line2; Arc2", 1)), "Offset a chain of 4 curves.");
    EXPECT_NEAR(gap(at("Line3.start"), {0, -3}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line3.end"), {10, -3}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line4.start"), {10, 3}), 0, 1e-9);
    EXPECT_EQ(geometry<SketchArc>("Arc3").radius, 3);
    EXPECT_NEAR(gap(at("Arc4.center"), {0, 0}), 0, 1e-12);
    EXPECT_TRUE(has(ConstraintType::Concentric, {"Arc3", "Arc1"}));
    EXPECT_EQ(count(ConstraintType::Parallel), 2u);
    EXPECT_EQ(error(offset("Line1; Arc1; Line2; Arc2", -2)),
              "Offsetting Line1, Arc1, Line2 and Arc2 that far inward leaves nothing.");
}

TEST_F(OffsetMirror, ARoundedCornerOffsetsAsOneChain) {
    line(0, 0, 10, 0);
    line(10, 0, 10, 10);
    ok(constraint("coincident", "Line1.end", "Line2.start"));
    ok(on("sketch_fillet", {{"corner", "Line1.end"}, {"radius", 3}}));
    // Toward the inside of the bend: 1 in from each line, the arc's radius 3 - 1.
    EXPECT_EQ(
        ok(on("offset", {{"entities", "Line2; Arc1; Line1"}, {"distance", 1}, {"x", 5}, {"y", 5}})),
        "Offset a chain of 3 curves.");
    EXPECT_NEAR(gap(at("Line4.start"), {9, 3}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Line4.end"), {9, 10}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc2.center"), {7, 3}), 0, 1e-9);
    EXPECT_NEAR(geometry<SketchArc>("Arc2").radius, 2, 1e-9);
    EXPECT_NEAR(gap(at("Line3.end"), {7, 1}), 0, 1e-9);
}

TEST_F(OffsetMirror, ALineGoesLeftOrTowardThePointAndStaysAtItsDimension) {
    line(0, 0, 10, 0);
    ok(offset("Line1", 3));
    EXPECT_NEAR(gap(at("Line2.start"), {0, 3}), 0, 1e-12);
    EXPECT_NEAR(gap(at("Line2.end"), {10, 3}), 0, 1e-12);
    EXPECT_TRUE(has(ConstraintType::Parallel, {"Line2", "Line1"}));
    ASSERT_TRUE(has(ConstraintType::Distance, {"Line1", "Line2"}));
    ok(on("offset", {{"entities", "Line1"}, {"distance", 3}, {"x", 5}, {"y", -1}}));
    EXPECT_NEAR(at("Line3.start").y, -3, 1e-12);
    ok(offset("Line1", -1));
    EXPECT_NEAR(at("Line4.start").y, -1, 1e-12);

    // The copy follows its dimension: Line2's start ends up 5 from Line1's line.
    ok(on("edit_constraint", {{"constraint", "Distance1"}, {"value", 5}}));
    const Point2 a = at("Line1.start"), b = at("Line1.end"), p = at("Line2.start");
    EXPECT_NEAR(std::fabs((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / gap(a, b), 5,
                1e-7);
}

TEST_F(OffsetMirror, RoundShapesStayCentredAndInwardCollapsesAreRefused) {
    circle(0, 0, 5); // 10 mm across
    EXPECT_EQ(error(on("offset", {{"entities", "Circle1"}, {"distance", 6}, {"x", 1}, {"y", 0}})),
              "Offsetting Circle1 inward by that much leaves nothing.");
    EXPECT_EQ(ok(offset("Circle1", 2)), "Offset 1 entity.");
    EXPECT_EQ(geometry<SketchCircle>("Circle2").radius, 7);
    EXPECT_TRUE(has(ConstraintType::Concentric, {"Circle2", "Circle1"}));

    ok(on("add_polygon", {{"cx", 30}, {"cy", 0}, {"sides", 6}, {"radius", 10}}));
    ok(offset("Polygon1", 1));
    // Every side moved out by 1: the distance from the centre to a side grows by 1.
    const double apothem =
        geometry<SketchPolygon>("Polygon2").radius * std::cos(std::numbers::pi / 6);
    EXPECT_NEAR(apothem, 10 * std::cos(std::numbers::pi / 6) + 1, 1e-12);
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Polygon2.center", "Polygon1.center"}));

    ok(on("add_slot", {{"x1", 0}, {"y1", 30}, {"x2", 10}, {"y2", 30}, {"width", 4}}));
    ok(offset("Slot1", 1));
    EXPECT_EQ(geometry<SketchSlot>("Slot2").width, 6);
    EXPECT_TRUE(has(ConstraintType::Coincident, {"Slot2.end", "Slot1.end"}));

    ok(on("add_spline", {{"points", "0,50; 5,55; 10,50"}}));
    const std::string before = everything();
    EXPECT_EQ(error(offset("Circle1; Spline1", 1)),
              "Offset works on lines, circles, arcs, rectangles, polygons and slots (not Splines "
              "yet).");
    EXPECT_EQ(error(offset("Circle1", 0)), "The offset distance must not be zero.");
    EXPECT_EQ(error(offset(" ; ", 1)), "Choose what to offset.");
    EXPECT_EQ(error(on("offset", {{"entities", "Circle1"}})),
              "offset: missing length argument 'distance'.");
    EXPECT_EQ(error(on("offset", {{"entities", "Circle1"}, {"distance", 1}, {"x", 1}})),
              "offset: give both x and y (a point in the sketch).");
    EXPECT_EQ(error(on("offset", {{"distance", 1}})), "offset: say which entities.");
    EXPECT_EQ(everything(), before);
}

TEST_F(OffsetMirror, MirroredCopiesStaySymmetric) {
    line(1, 2, 5, 7);
    EXPECT_EQ(ok(mirror("Line1", "YAxis")), "Mirrored 1 entity across YAxis.");
    EXPECT_NEAR(gap(at("Line2.start"), {-1, 2}), 0, 1e-12);
    EXPECT_NEAR(gap(at("Line2.end"), {-5, 7}), 0, 1e-12);
    EXPECT_TRUE(has(ConstraintType::Symmetric, {"Line1.start", "Line2.start", "YAxis"}));
    EXPECT_TRUE(has(ConstraintType::Symmetric, {"Line1.end", "Line2.end", "YAxis"}));
    ok(on("move_sketch_point", {{"point", "Line1.end"}, {"x", 6}, {"y", 8}}));
    EXPECT_NEAR(gap(at("Line2.end"), {-6, 8}), 0, 1e-6);

    // An arc across a slanted line: ends reflected, the sweep turned round.
    line(0, 0, 10, 10); // Line3
    ok(on("add_arc",
          {{"cx", 5}, {"cy", 0}, {"radius", 2}, {"start_angle", 0}, {"sweep_angle", 90}}));
    EXPECT_EQ(ok(mirror("Arc1", "Line3")), "Mirrored 1 entity across Line3.");
    EXPECT_NEAR(gap(at("Arc2.start"), {0, 7}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc2.end"), {2, 5}), 0, 1e-9);
    EXPECT_NEAR(gap(at("Arc2.center"), {0, 5}), 0, 1e-9);
    EXPECT_EQ(geometry<SketchArc>("Arc2").sweepAngle, -90);
}

TEST_F(OffsetMirror, MirrorRefusalsSayWhatIsWrong) {
    line(0, 0, 10, 10);
    circle(5, 0, 1);
    rectangle(20, 0, 25, 5);
    const std::string before = everything();
    EXPECT_EQ(error(on("mirror", {{"entities", "Circle1"}})),
              "mirror: give the mirror line, e.g. \"Line3\" or \"YAxis\".");
    EXPECT_EQ(error(mirror("Line1", "Circle1")), "'Circle1' isn't a line reference.");
    EXPECT_EQ(error(mirror("", "YAxis")), "Choose what to mirror.");
    EXPECT_EQ(error(mirror("Circle9", "YAxis")), "No entity named 'Circle9'.");
    EXPECT_EQ(error(mirror("Rectangle1", "Line1")),
              "Rectangle1 can only be mirrored across a horizontal or vertical line.");
    EXPECT_EQ(everything(), before);

    EXPECT_EQ(ok(mirror("Rectangle1; Circle1", "XAxis")), "Mirrored 2 entities across XAxis.");
    const auto& flipped = geometry<SketchRectangle>("Rectangle2");
    EXPECT_EQ(flipped.corner, (Point2{20, -5}));
    EXPECT_TRUE(
        has(ConstraintType::Symmetric, {"Rectangle1.bottom_left", "Rectangle2.top_left", "XAxis"}));
}
