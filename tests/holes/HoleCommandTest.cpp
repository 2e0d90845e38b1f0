// hole and edit_hole through the command stack: the material removed, the face
// names of each kind, refusals that leave the document alone, edits and undo, a
// hole that follows its sketch point, and the cosmetic thread of a tapped hole.
#include "HoleTestModel.h"

#include "geometry/holes/CosmeticThreads.h"

#include <cmath>
#include <numbers>

namespace cad::testing {

namespace {

constexpr double pi = std::numbers::pi;

class Holes : public HoleModel {};

} // namespace

TEST_F(Holes, HolesRemoveTheirVolumeAndNameTheirFaces) {
    plateWithPoints({{10, 10}, {30, 25}});
    EXPECT_EQ(ok("hole", {{"sketch", "Sketch1"}, {"diameter", 5}, {"through", true}}),
              "Made 2 holes in Box1 (Hole1).");
    EXPECT_NEAR(volumeOf("Box1"), 16000 - 2 * pi * 2.5 * 2.5 * 10, 1e-6);
    EXPECT_EQ(count(body("Box1")->shape.shape(), TopAbs_SOLID), 1);
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 2.5, 1e-9);
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall[2]"), 2.5, 1e-9);
    EXPECT_FALSE(hasFace("Box1", "Hole1.tip"));
    EXPECT_FALSE(hasFace("Box1", "Hole1.bottom"));

    // One blind hole with a flat bottom, one with a 118° drill point.
    ok("edit_hole", {{"feature", "Hole1"},
                     {"through", false},
                     {"depth", 6},
                     {"tip_angle", 0},
                     {"points", "Point1"}});
    EXPECT_EQ(ok("hole", {{"sketch", "Sketch1"},
                          {"points", " Point2 "},
                          {"size", "M6"},
                          {"depth", 6},
                          {"name", "Tapped"}}),
              "Made 1 hole in Box1 (Tapped).");
    EXPECT_TRUE(hasFace("Box1", "Hole1.bottom"));
    EXPECT_FALSE(hasFace("Box1", "Hole1.tip"));
    EXPECT_TRUE(hasFace("Box1", "Tapped.tip"));
    EXPECT_NEAR(radiusOf("Box1", "Tapped.wall"), 2.5, 1e-9); // the M6 tap drill
    const double cone = pi * 2.5 * 2.5 * (2.5 / std::tan(59 * pi / 180)) / 3;
    EXPECT_NEAR(volumeOf("Box1"), 16000 - 2 * pi * 2.5 * 2.5 * 6 - cone, 1e-6);
}

TEST_F(Holes, AFaceSketchDrillsIntoItsFaceAtEveryPointAndCircleCentre) {
    std::string base = sketchWithRectangles({{0, 0, 40, 40}});
    ok("extrude", {{"sketch", base}, {"distance", 10}});
    ok("create_sketch", {{"on", "Body1/Extrude1.end"}});
    ok("add_circle", {{"sketch", "Sketch2"}, {"cx", 10}, {"cy", 10}, {"radius", 3}});
    ok("add_point", {{"sketch", "Sketch2"}, {"x", 10}, {"y", 10}}); // on the centre: one hole
    ok("add_point", {{"sketch", "Sketch2"}, {"x", 25}, {"y", 20}});
    ok("add_point", {{"sketch", "Sketch2"}, {"x", 30}, {"y", 30}, {"construction", true}});
    EXPECT_EQ(ok("hole", {{"sketch", "Sketch2"}, {"diameter", 4}, {"depth", 5}, {"tip_angle", 0}}),
              "Made 2 holes in Body1 (Hole1).");
    const double drilled = 16000 - 2 * pi * 4 * 5;
    EXPECT_NEAR(volumeOf("Body1"), drilled, 1e-6);
    EXPECT_NEAR(bounds(*body("Body1")->shape.findByName("Hole1.bottom"))[2], 5, 1e-7);
    // The sketch follows the face the holes were drilled into; the holes stay put.
    document.recomputeAll();
    EXPECT_NEAR(volumeOf("Body1"), drilled, 1e-6);
    EXPECT_EQ(ok("hole", {{"sketch", "Sketch2"},
                          {"points", "Point3; Circle1.center"},
                          {"diameter", 2},
                          {"depth", 2}}),
              "Made 2 holes in Body1 (Hole2).");
}

TEST_F(Holes, CounterboresAndCountersinksTakeTheirSizesFromTheThread) {
    plateWithPoints({{10, 10}, {30, 30}});
    ok("hole", {{"sketch", "Sketch1"},
                {"points", "Point1"},
                {"size", "M5"},
                {"fit", "close"},
                {"kind", "counterbore"},
                {"through", true}});
    EXPECT_NEAR(radiusOf("Box1", "Hole1.counterbore"), 5, 1e-9);
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 2.65, 1e-9);
    auto floor = body("Box1")->shape.findByName("Hole1.floor");
    ASSERT_TRUE(floor);
    EXPECT_NEAR(bounds(*floor)[2], 10 - 5.4, 1e-7);

    ok("hole", {{"sketch", "Sketch1"},
                {"points", "Point2"},
                {"size", "M6"},
                {"fit", "normal"},
                {"kind", "countersink"},
                {"depth", 8},
                {"tip_angle", 0}});
    auto sink = body("Box1")->shape.findByName("Hole2.countersink");
    ASSERT_TRUE(sink);
    const auto b = bounds(*sink);
    EXPECT_NEAR(b[3] - b[0], 13.44, 1e-6); // the countersink's diameter at the face
    EXPECT_NEAR(b[5], 10, 1e-7);
    EXPECT_TRUE(hasFace("Box1", "Hole2.bottom"));
}

TEST_F(Holes, RefusalsLeaveTheDocumentAsItWas) {
    plateWithPoints({});
    struct Case {
        Args args;
        const char* error;
    };
    const Case cases[] = {
        {{{"diameter", 5}}, "hole: missing string argument 'sketch'."},
        {{{"sketch", "Sketch9"}, {"diameter", 5}}, "No sketch named 'Sketch9' exists."},
        {{{"sketch", "Sketch1"}, {"diameter", 5}, {"target", "Box7"}},
         "No body named 'Box7' exists."},
        {{{"sketch", "Sketch1"}, {"diameter", 5}, {"name", "box1"}},
         "An object named 'box1' already exists."},
        {{{"sketch", "Sketch1"}, {"size", "M6x0.5"}},
         "'M6x0.5' isn't a thread size I know (e.g. M6, M10x1.25, 1/4-20 UNC, #10-32 UNF)."},
        {{{"sketch", "Sketch1"}, {"diameter", 5}, {"tip_angle", "steep"}},
         "hole: 'tip_angle' must be a number."},
        {{{"sketch", "Sketch1"}, {"diameter", 5}},
         "There's nowhere to put a hole: the sketch has no points."},
        {{{"sketch", "Sketch1"}, {"diameter", 5}, {"points", "Point9"}},
         "Sketch1 has no point or circle 'Point9'"},
    };
    for (const Case& c : cases) EXPECT_EQ(run("hole", c.args).message, c.error);

    ok("create_sketch", {{"plane", "XY"}});
    ok("add_point", {{"sketch", "Sketch2"}, {"x", 1}, {"y", 1}});
    EXPECT_EQ(run("hole", {{"sketch", "Sketch2"}, {"diameter", 5}}).message,
              "Holes need a body: give a target, or sketch on the body's face.");
    // A counterbore no wider than the hole fails its first compute: nothing is added.
    ok("add_point", {{"sketch", "Sketch1"}, {"x", 5}, {"y", 5}});
    EXPECT_EQ(run("hole", {{"sketch", "Sketch1"},
                           {"diameter", 5},
                           {"kind", "counterbore"},
                           {"counterbore_diameter", 4},
                           {"counterbore_depth", 2}})
                  .message,
              "The counterbore must be wider than the hole and have a depth.");
    EXPECT_TRUE(body("Box1")->features.empty());
    EXPECT_FALSE(document.find("Hole1"));
    EXPECT_NEAR(volumeOf("Box1"), 16000, 1e-6);
}

TEST_F(Holes, EditsChangeOnlyWhatIsGivenAndUndoRestoresIt) {
    plateWithPoints({{20, 20}});
    ok("hole", {{"sketch", "Sketch1"}, {"size", "M6"}, {"through", true}});
    EXPECT_EQ(ok("edit_hole", {{"feature", "Hole1"}, {"size", "M8"}}), "Edited Hole1.");
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 3.4, 1e-9);
    ok("edit_hole", {{"feature", "Hole1"}, {"diameter", 3}});
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 1.5, 1e-9);
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 2.5, 1e-9);
    EXPECT_TRUE(stack.redo().ok);
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 3.4, 1e-9);

    EXPECT_EQ(run("edit_hole", {{"feature", "Hole1"}}).message, "edit_hole: nothing to change.");
    EXPECT_EQ(run("edit_hole", {{"feature", "Hole7"}, {"depth", 3}}).message,
              "No hole named 'Hole7' exists.");
    EXPECT_EQ(run("edit_hole", {{"feature", "Hole1"}, {"fit", "snug"}}).message,
              "The fit must be tapped, close, normal or loose.");
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 3.4, 1e-9);

    // Undoing the hole itself gives the plate back whole; redo drills it again.
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Box1"), 16000, 1e-6);
    EXPECT_FALSE(document.find("Hole1"));
    EXPECT_TRUE(stack.redo().ok);
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 2.5, 1e-9);
}

TEST_F(Holes, AHoleFollowsItsSketchPointAndCarriesACosmeticThread) {
    plateWithPoints({{10, 10}});
    ok("hole", {{"sketch", "Sketch1"}, {"size", "M6"}, {"depth", 8}});
    auto axisOf = [&] {
        BRepAdaptor_Surface wall(TopoDS::Face(*body("Box1")->shape.findByName("Hole1.wall")));
        return wall.Cylinder().Axis().Location();
    };
    EXPECT_NEAR(axisOf().X(), 10, 1e-9);

    std::vector<CosmeticThread> threads = cosmeticThreads(document, *body("Box1"));
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_EQ(threads[0].feature, "Hole1");
    EXPECT_TRUE(threads[0].internal);
    EXPECT_EQ(threads[0].radius, 3);
    EXPECT_EQ(threads[0].pitch, 1);
    EXPECT_NEAR(threads[0].length, 8, 1e-12);
    EXPECT_TRUE(threads[0].axis.Location().IsEqual(gp_Pnt(10, 10, 10), 1e-9));
    EXPECT_TRUE(threads[0].axis.Direction().IsEqual(gp_Dir(0, 0, -1), 1e-12));

    ok("move_sketch_point", {{"sketch", "Sketch1"}, {"point", "Point1"}, {"x", 25}, {"y", 12}});
    EXPECT_NEAR(axisOf().X(), 25, 1e-9);
    EXPECT_NEAR(axisOf().Y(), 12, 1e-9);
    EXPECT_TRUE(cosmeticThreads(document, *body("Box1"))[0].axis.Location().IsEqual(
        gp_Pnt(25, 12, 10), 1e-9));

    ok("edit_hole", {{"feature", "Hole1"}, {"fit", "close"}});
    EXPECT_TRUE(cosmeticThreads(document, *body("Box1")).empty());
}

TEST_F(Holes, FlipDrillsAlongTheSketchNormal) {
    ok("create_box", {{"width", 40}, {"depth", 40}, {"height", 10}});
    ok("create_sketch", {{"plane", "XY"}, {"support", "Box1"}});
    ok("add_point", {{"sketch", "Sketch1"}, {"x", 20}, {"y", 20}});
    ok("hole",
       {{"sketch", "Sketch1"}, {"diameter", 4}, {"depth", 5}, {"tip_angle", 0}, {"flip", true}});
    EXPECT_NEAR(volumeOf("Box1"), 16000 - pi * 4 * 5, 1e-6);
    EXPECT_NEAR(bounds(*body("Box1")->shape.findByName("Hole1.bottom"))[2], 5, 1e-7);
}

} // namespace cad::testing
