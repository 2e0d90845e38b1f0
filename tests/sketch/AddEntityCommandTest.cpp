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
    static CommandRecord add(const char* command) {
        return CommandRecord(command).set("sketch", "Sketch1");
    }
};

} // namespace

TEST_F(AddEntity, StoresNormalisedValues) {
    EXPECT_EQ(ok(add("add_rectangle").set("x1", 10).set("y1", 10).set("x2", 0).set("y2", 0)),
              "Added Rectangle1 to Sketch1.");
    const auto& r = geometry<SketchRectangle>("Rectangle1");
    EXPECT_EQ(r.corner, (Point2{0, 0}));
    EXPECT_EQ(r.width, 10);
    EXPECT_EQ(r.height, 10);

    ok(add("add_circle").set("cx", 1).set("cy", 2).set("diameter", "1in"));
    EXPECT_DOUBLE_EQ(geometry<SketchCircle>("Circle1").radius, 12.7);

    ok(add("add_polygon").set("cx", 0).set("cy", 0).set("sides", 6).set("across_flats", 10));
    const auto& hex = geometry<SketchPolygon>("Polygon1");
    EXPECT_NEAR(hex.radius, 5.7735, 1e-4);
    EXPECT_EQ(hex.rotation, 90);
    EXPECT_EQ(hex.sides, 6);

    ok(add("add_slot").set("x1", 0).set("y1", 0).set("x2", 5).set("y2", 0).set("width", 2));
    ok(add("add_point").set("x", 3).set("y", 4).set("construction", true));
    EXPECT_TRUE(entity("Point1").construction);
    EXPECT_FALSE(entity("Slot1").construction);

    ok(add("add_spline").set("points", "0,0; 10mm,5; 1in , 0 ;"));
    const auto& spline = geometry<SketchSpline>("Spline1");
    ASSERT_EQ(spline.points.size(), 3u);
    EXPECT_DOUBLE_EQ(spline.points[2].x, 25.4);
    EXPECT_FALSE(spline.closed);
}

TEST_F(AddEntity, ArcsThroughThreePointsAndByCenter) {
    struct Case {
        Point2 p2;
        double sweep;
    };
    for (Case c : {Case{{0, 1}, 180}, Case{{0, -1}, -180}}) {
        ok(add("add_arc")
               .set("x1", 1)
               .set("y1", 0)
               .set("x2", c.p2.x)
               .set("y2", c.p2.y)
               .set("x3", -1)
               .set("y3", 0));
    }
    for (const char* id : {"Arc1", "Arc2"}) {
        const auto& a = geometry<SketchArc>(id);
        EXPECT_NEAR(a.center.x, 0, 1e-12);
        EXPECT_NEAR(a.center.y, 0, 1e-12);
        EXPECT_NEAR(a.radius, 1, 1e-12);
        EXPECT_NEAR(a.startAngle, 0, 1e-12);
    }
    EXPECT_NEAR(geometry<SketchArc>("Arc1").sweepAngle, 180, 1e-9);
    EXPECT_NEAR(geometry<SketchArc>("Arc2").sweepAngle, -180, 1e-9);

    // A short way round: start at 90 degrees, end at 0, through 45: clockwise 90.
    ok(add("add_arc")
           .set("x1", 0)
           .set("y1", 2)
           .set("x2", std::sqrt(2.0))
           .set("y2", std::sqrt(2.0))
           .set("x3", 2)
           .set("y3", 0));
    EXPECT_NEAR(geometry<SketchArc>("Arc3").sweepAngle, -90, 1e-9);

    ok(add("add_arc")
           .set("cx", 0)
           .set("cy", 0)
           .set("radius", 2)
           .set("start_angle", 90)
           .set("sweep_angle", -90));
    EXPECT_EQ(geometry<SketchArc>("Arc4").sweepAngle, -90);
}

TEST_F(AddEntity, ArgumentRulesAndSentences) {
    const std::pair<CommandRecord, std::string> cases[] = {
        {add("add_line").set("x1", 0).set("y1", 0).set("x2", 1),
         "add_line: missing length argument 'y2'."},
        {add("add_line").set("x1", 0).set("y1", 0).set("x2", 1).set("y2", true),
         "add_line: 'y2' must be a length."},
        {add("add_line").set("x1", 0).set("y1", 0).set("x2", 1).set("y2", 1).set("colour", "red"),
         "add_line: unknown argument 'colour'. Expected one of: sketch, x1, y1, x2, y2, "
         "construction."},
        {add("add_line")
             .set("x1", 0)
             .set("y1", 0)
             .set("x2", 1)
             .set("y2", 1)
             .set("construction", "yes"),
         "add_line: 'construction' must be true or false."},
        {CommandRecord("add_point").set("x", 0).set("y", 0),
         "add_point: missing string argument 'sketch'."},
        {CommandRecord("add_point").set("sketch", "Nope").set("x", 0).set("y", 0),
         "No sketch named 'Nope' exists."},
        {add("add_line").set("x1", 1).set("y1", 1).set("x2", 1).set("y2", 1),
         "A line needs two distinct end points."},
        {add("add_circle").set("cx", 0).set("cy", 0).set("radius", 5).set("diameter", 10),
         "add_circle: give exactly one of 'radius' or 'diameter'."},
        {add("add_circle").set("cx", 0).set("cy", 0),
         "add_circle: give exactly one of 'radius' or 'diameter'."},
        {add("add_circle").set("cx", 0).set("cy", 0).set("across_flats", 5),
         "add_circle: 'across_flats' only applies to polygons."},
        {add("add_arc").set("cx", 0).set("cy", 0).set("across_flats", 5),
         "add_arc: 'across_flats' only applies to polygons."},
        {add("add_polygon").set("cx", 0).set("cy", 0).set("sides", 2).set("radius", 1),
         "add_polygon: 'sides' must be a whole number from 3 to 1000."},
        {add("add_polygon").set("cx", 0).set("cy", 0).set("sides", 6.5).set("radius", 1),
         "add_polygon: 'sides' must be a whole number from 3 to 1000."},
        {add("add_polygon")
             .set("cx", 0)
             .set("cy", 0)
             .set("sides", 6)
             .set("radius", 1)
             .set("diameter", 2),
         "add_polygon: give exactly one of 'radius', 'diameter' or 'across_flats'."},
        {add("add_polygon").set("cx", 0).set("cy", 0).set("sides", 6),
         "add_polygon: give exactly one of 'radius', 'diameter' or 'across_flats'."},
        {add("add_arc").set("cx", 0).set("x1", 0),
         "add_arc: give either the center form or three points, not both."},
        {add("add_arc").set("x1", 0).set("y1", 0).set("x2", 1).set("y2", 1).set("x3", 3).set("y3",
                                                                                             3),
         "add_arc: the three points are in a line; they don't define an arc."},
        {add("add_arc")
             .set("cx", 0)
             .set("cy", 0)
             .set("radius", 1)
             .set("start_angle", 0)
             .set("sweep_angle", 359.9999995),
         "An arc's sweep must be between 0 and 360 degrees (use a circle for a full turn)."},
        {add("add_arc").set("cx", 0).set("cy", 0).set("radius", 1).set("start_angle", "north"),
         "add_arc: 'start_angle' must be a number of degrees."},
        {add("add_arc").set("cx", 0).set("cy", 0).set("radius", 1).set("start_angle", 0),
         "add_arc: missing numeric argument 'sweep_angle'."},
        {add("add_spline"), "add_spline: missing string argument 'points'."},
        {add("add_spline").set("points", "0,0; 5;5"),
         "points: expected \"x,y; x,y; ...\" but found \"5\""},
        {add("add_spline").set("points", "0,0; 5,five"),
         "points: expected \"x,y; x,y; ...\" but found \"5,five\""},
        {add("add_spline").set("points", "0,0; 5,5").set("closed", true),
         "A closed spline needs at least 3 points."},
        {add("add_slot").set("x1", 0).set("y1", 0).set("x2", 0).set("y2", 0).set("width", 1),
         "A slot needs distinct center points (use a circle for a round hole)."},
    };
    const std::size_t undoSteps = stack.undoCount();
    for (const auto& [record, message] : cases) EXPECT_EQ(error(record), message);
    EXPECT_TRUE(sketch().entities.empty());
    EXPECT_EQ(stack.undoCount(), undoSteps);
}

TEST_F(AddEntity, IdsAreReusedAndRedoBringsBackTheSameOnes) {
    line(0, 0, 1, 0);
    line(0, 0, 0, 1);
    EXPECT_EQ(
        ok(CommandRecord("delete_sketch_entity").set("sketch", "Sketch1").set("entity", "Line1")),
        "Deleted Line1 from Sketch1.");
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

TEST_F(AddEntity, LengthsUseTheDocumentsParameters) {
    document.setParameters({Parameter{"w", "12", units::Length::Millimeters, true, ""}});
    ok(add("add_circle").set("cx", 0).set("cy", 0).set("radius", "w / 2"));
    EXPECT_DOUBLE_EQ(geometry<SketchCircle>("Circle1").radius, 6);
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
    error(add("add_point").set("x", 0));
    EXPECT_EQ(counter.changed, (std::vector<std::string>{"Sketch1", "Sketch1"}));
    document.removeObserver(&counter);
}
