// What the solver refuses and the exact sentence it says: conflicts, redundancy
// (whole and partial), value checks, references of the wrong kind, fixing what is
// fixed already, drags it can't do, and solutions that would break an entity.
#include "SolverTestSketches.h"

namespace cad::test {
namespace {

using T = ConstraintType;

class Refusals : public ::testing::TestWithParam<SolverMethod> {
protected:
    Sketch sketch(std::vector<SketchEntity> entities) const {
        Sketch s;
        s.options.method = GetParam();
        s.entities = std::move(entities);
        return s;
    }
    Result<std::vector<SketchEntity>> solve(const Sketch& s,
                                            const std::vector<std::string>& held = {},
                                            std::optional<SketchDrag> drag = {}) const {
        return solveSketch(s.entities, s.constraints, held, drag, s.options);
    }
    static SketchDrag dragTo(const char* reference, double x, double y) {
        return {*parseReference(reference), {x, y}};
    }
};

const std::string kRedundant =
    " is redundant: the sketch's other constraints already determine it.";

TEST_P(Refusals, RedundantConstraintsAddNothing) {
    Sketch s =
        sketch({line("Line1", 0, 0, 10, 1), line("Line2", 11, 2, 15, 8), point("Point1", 0, 5),
                point("Point2", 4, 6), circle("Circle1", 30, 0, 5), point("Point3", 36, 1)});
    s.mustAdd(T::Coincident, {"Line1.end", "Line2.start"});

    // One coordinate of the coincidence is already determined: refused as a whole.
    s.mustAdd(T::Horizontal, {"Point1", "Point2"});
    EXPECT_EQ(s.add(T::Coincident, {"Point1", "Point2"}), "That coincident" + kRedundant);

    // A point on a circle of known radius: its distance from the centre adds nothing.
    // (While the radius is free, that distance is what sets it.)
    s.mustAdd(T::Coincident, {"Point3", "Circle1"});
    s.mustAdd(T::Radius, {"Circle1"}, 4.0);
    EXPECT_EQ(s.add(T::Distance, {"Circle1.center", "Point3"}), "That distance" + kRedundant);
    EXPECT_EQ(s.add(T::Horizontal, {"XAxis"}), "That horizontal" + kRedundant);
    EXPECT_EQ(s.constraints.size(), 4u);
}

TEST_P(Refusals, ConflictsAreRefusedWithTheirKeyword) {
    Sketch s = sketch({line("Line2", 0, 5, 3, 9), point("Point1", 20, 0)});
    s.mustAdd(T::Length, {"Line2"}, 5.0);
    EXPECT_EQ(s.add(T::Distance, {"Line2.start", "Line2.end"}, 7.0),
              "That distance conflicts with the sketch's other constraints.");
    s.mustAdd(T::Fix, {"Point1"});
    EXPECT_EQ(s.add(T::Coincident, {"Point1", "Origin"}),
              "That coincident conflicts with the sketch's other constraints.");
    EXPECT_EQ(s.constraints.size(), 2u);
}

TEST_P(Refusals, SolvesThatFailSayWhy) {
    Sketch s = sketch({line("Line1", 0, 0, 10, 1), line("Line2", 0, 5, 3, 9)});
    SketchConstraint collapse = constraint(T::Coincident, {"Line1.start", "Line1.end"});
    collapse.id = "Coincident1";
    s.constraints = {collapse};
    EXPECT_EQ(solve(s).error(),
              "The constraints would make Line1 invalid: A line needs two distinct end points.");

    SketchConstraint five = constraint(T::Length, {"Line2"}), seven = five;
    five.id = "Length1";
    five.value = 5;
    seven.id = "Length2";
    seven.value = 7;
    s.constraints = {five, seven};
    EXPECT_EQ(solve(s).error(), "The constraints conflict: they can't all hold at once.");

    SketchConstraint stale = constraint(T::Coincident, {"Line9.end", "Line2.start"});
    stale.id = "Coincident4";
    s.constraints = {five, stale};
    EXPECT_EQ(solve(s).error(), "Coincident4: The sketch has no entity named 'Line9'.");

    // A held entity stays exactly where it is; the other one moves.
    SketchConstraint join = constraint(T::Coincident, {"Line1.end", "Line2.start"});
    join.id = "Coincident1";
    s.constraints = {join};
    Result<std::vector<SketchEntity>> held = solve(s, {"Line1"});
    ASSERT_TRUE(held.ok()) << held.error();
    EXPECT_EQ(std::get<SketchLine>((*held)[0].geometry).end, (Point2{10, 1}));
    EXPECT_LT(distance(std::get<SketchLine>((*held)[1].geometry).start, {10, 1}), 1e-7);
    EXPECT_EQ(solve(s, {"Line1", "Line2"}).error(),
              "The constraints conflict: they can't all hold at once.");
}

TEST_P(Refusals, Drags) {
    Sketch s = sketch({line("Line1", 0, 0, 10, 0), point("Point1", 3, 3)});
    // A free point goes exactly where it is dragged; nothing else moves.
    Result<std::vector<SketchEntity>> moved = solve(s, {}, dragTo("Point1", 4, -2));
    ASSERT_TRUE(moved.ok()) << moved.error();
    EXPECT_LT(distance(std::get<SketchPoint>((*moved)[1].geometry).position, {4, -2}), 1e-7);
    EXPECT_EQ(std::get<SketchLine>((*moved)[0].geometry).start, (Point2{0, 0}));

    s.mustAdd(T::Horizontal, {"Line1"});
    Result<std::vector<SketchEntity>> along = solve(s, {}, dragTo("Line1.end", 12, 3));
    ASSERT_TRUE(along.ok()) << along.error();
    const SketchLine& l = std::get<SketchLine>((*along)[0].geometry);
    EXPECT_LT(distance(l.end, {12, 3}), 1e-7);
    EXPECT_NEAR(l.start.y, 3, 1e-7);

    s.mustAdd(T::Fix, {"Line1.start"});
    s.mustAdd(T::Length, {"Line1"});
    EXPECT_EQ(solve(s, {}, dragTo("Line1.end", 12, 3)).error(),
              "The constraints don't allow that position.");
    EXPECT_EQ(solve(s, {}, dragTo("Origin", 1, 0)).error(),
              "The constraints don't allow that position.");
}

INSTANTIATE_TEST_SUITE_P(BothMethods, Refusals, bothMethods(), methodName);

// What prepareConstraint refuses before anything is solved.
TEST(Preparation, ValueChecks) {
    const std::vector<SketchEntity> entities{line("Line1", 0, 0, 10, 0), line("Line2", 0, 0, 0, 10),
                                             point("Point1", 0, 0)};
    auto prepare = [&](T type, const std::vector<const char*>& texts, std::optional<double> value) {
        SketchConstraint c = constraint(type, texts);
        if (value) c.value = *value;
        Result<SketchConstraint> r = prepareConstraint(entities, c, value.has_value());
        return r ? std::string() : r.error();
    };
    EXPECT_EQ(prepare(T::Length, {"Line1"}, std::nan("")), "The value must be a number.");
    EXPECT_EQ(prepare(T::Length, {"Line1"}, 1e-7), "A dimension must be greater than zero.");
    EXPECT_EQ(prepare(T::Length, {"Line1"}, 2e-7), "");
    EXPECT_EQ(prepare(T::Radius, {"Line1"}, 2.0), "radius: takes a circle or an arc.");
    // The current size: the two points coincide, so there is nothing to dimension.
    EXPECT_EQ(prepare(T::Distance, {"Line1.start", "Point1"}, std::nullopt),
              "A dimension must be greater than zero.");
    for (const char* fixed : {"Origin", "XAxis", "YAxis"})
        EXPECT_EQ(prepare(T::Fix, {fixed}, std::nullopt), "The origin and axes are fixed already.");
}

TEST(Preparation, ReferencesOfTheWrongKind) {
    const std::vector<SketchEntity> entities{
        line("Line1", 0, 0, 10, 0), line("Line2", 0, 0, 0, 10), circle("Circle1", 5, 5, 2),
        rectangle("Rectangle1", 20, 0, 4, 3), point("Point1", 1, 1)};
    struct Row {
        T type;
        std::vector<const char*> refs;
        const char* message;
    };
    const std::vector<Row> rows{
        {T::Fix, {"Rectangle1.top"}, "fix: fix takes one reference (a point or an entity)."},
        {T::Fix, {"Line1", "Line2"}, "fix: fix takes one reference (a point or an entity)."},
        {T::Coincident,
         {"Line1", "Line2"},
         "coincident: coincident takes two points, or a point and a line, circle or arc."},
        {T::Horizontal, {"Circle1"}, "horizontal: takes a line, or two points."},
        {T::Parallel, {"Line1", "Circle1"}, "parallel: takes two lines."},
        {T::Equal, {"Line1", "Circle1"}, "equal: equal takes two lines or two circles/arcs."},
        {T::Concentric, {"Circle1", "Line1"}, "concentric: concentric takes two circles/arcs."},
        {T::Midpoint, {"Point1", "Circle1"}, "midpoint: midpoint takes a point and a line."},
        {T::Tangent,
         {"Line1", "Line2"},
         "tangent: tangent takes a line and a circle/arc, or two circles/arcs."},
        {T::Symmetric,
         {"Line1", "Point1", "Line2"},
         "symmetric: symmetric takes two points and a line."},
        {T::EqualDistance,
         {"Point1", "Line1.end"},
         "equal_distance: equal_distance takes three points."},
        {T::EqualOffset,
         {"Line1", "Line2", "Circle1"},
         "equal_offset: equal_offset takes two pairs: two lines, or two circles/arcs, each."},
        {T::EqualOffset,
         {"Line1", "Circle1", "Line2", "Circle1"},
         "equal_offset: equal_offset takes two pairs: two lines, or two circles/arcs, each."},
        {T::Distance,
         {"Point1", "Circle1"},
         "distance: distance takes two points, a point and a line, or two lines."},
        {T::HorizontalDistance, {"Line1"}, "horizontal_distance: takes two points."},
        {T::Length, {"Circle1"}, "length: length takes a line."},
        {T::Angle, {"Line1", "Point1"}, "angle: takes two lines."},
    };
    for (const Row& row : rows)
        EXPECT_EQ(prepareConstraint(entities, constraint(row.type, row.refs), false).error(),
                  row.message);
}

// A dimension given no value takes the current size.
TEST(Preparation, MeasuresAsDrawn) {
    const std::vector<SketchEntity> entities{line("Line1", 0, 0, 10, 0),
                                             line("Line2", 0, 0, -5, -5), point("Point1", 3, -4),
                                             circle("Circle1", 3, 0, 4)};
    auto measure = [&](T type, const std::vector<const char*>& texts) {
        Result<double> r = measureDimension(type, refs(texts), entities);
        EXPECT_TRUE(r.ok()) << r.error();
        return r ? *r : -1;
    };
    EXPECT_DOUBLE_EQ(measure(T::Distance, {"Line1.start", "Point1"}), 5);
    EXPECT_DOUBLE_EQ(measure(T::Distance, {"Line1", "Point1"}), 4);
    EXPECT_DOUBLE_EQ(measure(T::HorizontalDistance, {"Point1", "Line1.start"}), 3);
    EXPECT_DOUBLE_EQ(measure(T::VerticalDistance, {"Point1", "Line1.start"}), 4);
    EXPECT_DOUBLE_EQ(measure(T::Diameter, {"Circle1"}), 8);
    EXPECT_NEAR(measure(T::Angle, {"Line1", "Line2"}), 135, 1e-12);
}

} // namespace
} // namespace cad::test
