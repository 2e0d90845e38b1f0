// The add commands: what each stores, their argument rules and sentences, IDs, and
// undo and redo.
#include "SketchSession.h"

#include "core/units/NameLookup.h"

#include <cmath>

using namespace cad;
using cad::test::SketchSession;

namespace {

class AddEntity : public SketchSession {
protected:
    AddEntity() { newSketch(); }
};

} // namespace

TEST_F(AddEntity, StoresNormalisedValues) {
    EXPECT_EQ(ok(on("add_rectangle", {{"x1", 10}, {"y1", 10}, {"x2", 0}, {"y2", 0}})),
              "Added Rectangle1 to Sketch1.");
    const auto& r = geometry<SketchRectangle>("Rectangle1");
    EXPECT_EQ(r.corner, (Point2{0, 0}));
    EXPECT_EQ(r.width, 10);
    EXPECT_EQ(r.height, 10);

    ok(on("add_circle", {{"cx", 1}, {"cy", 2}, {"diameter", "1in"}}));
    EXPECT_DOUBLE_EQ(geometry<SketchCircle>("Circle1").radius, 12.7);
    document.setParameters({Parameter{"w", "12", units::Length::Millimeters, true, ""}});
    ok(on("add_circle", {{"cx", 0}, {"cy", 0}, {"radius", "w / 2"}}));
    EXPECT_DOUBLE_EQ(geometry<SketchCircle>("Circle2").radius, 6);

    ok(on("add_polygon", {{"cx", 0}, {"cy", 0}, {"sides", 6}, {"across_flats", 10}}));
    const auto& hex = geometry<SketchPolygon>("Polygon1");
    EXPECT_NEAR(hex.radius, 5.7735, 1e-4);
    EXPECT_EQ(hex.rotation, 90);
    EXPECT_EQ(hex.sides, 6);

    ok(on("add_slot", {{"x1", 0}, {"y1", 0}, {"x2", 5}, {"y2", 0}, {"width", 2}}));
    ok(on("add_point", {{"x", 3}, {"y", 4}, {"construction", true}}));
    EXPECT_TRUE(entity("Point1").construction);
    EXPECT_FALSE(entity("Slot1").construction);

    ok(on("add_spline", {{"points", "0,0; 10mm,5; 1in , 0 ;"}}));
    const auto& spline = geometry<SketchSpline>("Spline1");
    ASSERT_EQ(spline.points.size(), 3u);
    EXPECT_DOUBLE_EQ(spline.points[2].x, 25.4);
    EXPECT_FALSE(spline.closed);
}

// Through three points the sweep goes the way the middle point says, the short or
// the long way round; the center form takes the angles as given.
TEST_F(AddEntity, ArcsThroughThreePointsAndByCenter) {
    const double r2 = std::sqrt(2.0);
    struct Case {
        double x1, y1, x2, y2, x3, y3;
        double radius, start, sweep;
    };
    const Case cases[] = {
        {1, 0, 0, 1, -1, 0, 1, 0, 180},
        {1, 0, 0, -1, -1, 0, 1, 0, -180},
        {0, 2, r2, r2, 2, 0, 2, 90, -90},
        {0, 2, -2, 0, 2, 0, 2, 90, 270},
    };
    int n = 0;
    for (const Case& c : cases) {
        ok(on(
            "add_arc",
            {{"x1", c.x1}, {"y1", c.y1}, {"x2", c.x2}, {"y2", c.y2}, {"x3", c.x3}, {"y3", c.y3}}));
        const auto& a = geometry<SketchArc>("Arc" + std::to_string(++n));
        EXPECT_NEAR(std::hypot(a.center.x, a.center.y), 0, 1e-12) << n;
        EXPECT_NEAR(a.radius, c.radius, 1e-12) << n;
        EXPECT_NEAR(a.startAngle, c.start, 1e-9) << n;
        EXPECT_NEAR(a.sweepAngle, c.sweep, 1e-9) << n;
    }
    ok(on("add_arc",
          {{"cx", 0}, {"cy", 0}, {"radius", 2}, {"start_angle", 90}, {"sweep_angle", -90}}));
    EXPECT_EQ(geometry<SketchArc>("Arc5").sweepAngle, -90);
}

TEST_F(AddEntity, ArgumentRulesAndSentences) {
    CommandRecord elsewhere("add_point");
    elsewhere.set("sketch", "Nope").set("x", 0).set("y", 0);
    const std::pair<CommandRecord, std::string> cases[] = {
        {on("add_line", {{"x1", 0}, {"y1", 0}, {"x2", 1}}),
         "add_line: missing length argument 'y2'."},
        {on("add_line", {{"x1", 0}, {"y1", 0}, {"x2", 1}, {"y2", 1}, {"colour", "red"}}),
         "add_line: unknown argument 'colour'. Expected one of: sketch, x1, y1, x2, y2, "
         "construction."},
        {elsewhere, "No sketch named 'Nope' exists."},
        {on("add_line", {{"x1", 1}, {"y1", 1}, {"x2", 1}, {"y2", 1}}),
         "A line needs two distinct end points."},
        {on("add_circle", {{"cx", 0}, {"cy", 0}, {"radius", 5}, {"diameter", 10}}),
         "add_circle: give exactly one of 'radius' or 'diameter'."},
        {on("add_circle", {{"cx", 0}, {"cy", 0}}),
         "add_circle: give exactly one of 'radius' or 'diameter'."},
        {on("add_circle", {{"cx", 0}, {"cy", 0}, {"across_flats", 5}}),
         "add_circle: 'across_flats' only applies to polygons."},
        {on("add_polygon", {{"cx", 0}, {"cy", 0}, {"sides", 2}, {"radius", 1}}),
         "add_polygon: 'sides' must be a whole number from 3 to 1000."},
        {on("add_polygon", {{"cx", 0}, {"cy", 0}, {"sides", 6.5}, {"radius", 1}}),
         "add_polygon: 'sides' must be a whole number from 3 to 1000."},
        {on("add_polygon", {{"cx", 0}, {"cy", 0}, {"sides", 6}, {"radius", 1}, {"diameter", 2}}),
         "add_polygon: give exactly one of 'radius', 'diameter' or 'across_flats'."},
        {on("add_polygon", {{"cx", 0}, {"cy", 0}, {"sides", 6}}),
         "add_polygon: give exactly one of 'radius', 'diameter' or 'across_flats'."},
        {on("add_arc", {{"cx", 0}, {"x1", 0}}),
         "add_arc: give either the center form or three points, not both."},
        {on("add_arc", {{"x1", 0}, {"y1", 0}, {"x2", 1}, {"y2", 1}, {"x3", 3}, {"y3", 3}}),
         "add_arc: the three points are in a line; they don't define an arc."},
        {on("add_spline", {{"points", "0,0; 5;5"}}),
         "points: expected \"x,y; x,y; ...\" but found \"5\""},
        {on("add_spline", {{"points", "0,0; 5,five"}}),
         "points: expected \"x,y; x,y; ...\" but found \"5,five\""},
    };
    const std::size_t undoSteps = stack.undoCount();
    for (const auto& [record, message] : cases) EXPECT_EQ(error(record), message);
    EXPECT_TRUE(sketch().entities.empty());
    EXPECT_EQ(stack.undoCount(), undoSteps);
}

TEST_F(AddEntity, IdsAreReusedAndRedoBringsBackTheSameOnes) {
    line(0, 0, 1, 0);
    line(0, 0, 0, 1);
    EXPECT_EQ(ok(on("delete_sketch_entity", {{"entity", "Line1"}})), "Deleted Line1 from Sketch1.");
    line(0, 0, 2, 2);
    EXPECT_EQ(sketch().entities.back().id, "Line1");

    ASSERT_TRUE(stack.undo()); // the new Line1
    ASSERT_TRUE(stack.undo()); // the deletion
    EXPECT_EQ(snapshot(), "Line1:0,0,1,0,;Line2:0,0,0,1,;");
    ASSERT_TRUE(stack.redo().ok);
    ASSERT_TRUE(stack.redo().ok);
    EXPECT_EQ(geometry<SketchLine>("Line1").end, (Point2{2, 2}));
    EXPECT_EQ(sketch().entities.size(), 2u);
}

TEST_F(AddEntity, ObserversHearOfTheChange) {
    struct Counter : DocumentObserver {
        void objectAdded(DocumentObject&) override {}
        void objectRemoved(DocumentObject&) override {}
        void objectChanged(DocumentObject& o) override { changed.push_back(o.id); }
        std::vector<std::string> changed;
    } counter;
    document.addObserver(&counter);
    line(0, 0, 1, 1);
    stack.undo();
    error(on("add_point", {{"x", 0}}));
    EXPECT_EQ(counter.changed, (std::vector<std::string>{"Sketch1", "Sketch1"}));
    document.removeObserver(&counter);
}
