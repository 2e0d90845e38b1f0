// Sweep and loft through their commands: a circle along a bent path (volume is
// area times length), frustums and a pyramid between sections on offset sketches,
// holes carried through, and the sentences for paths and sections that can't work.
#include "ParamTestModel.h"

namespace cad::testing {

namespace {

class SweepLoft : public ParamModel {
protected:
    // Sketch2 on XZ: up Z for 30, a quarter arc of radius 10 bending towards +X, then
    // 30 along X: 60 + 5 pi long.
    void bentPath() {
        ok("create_sketch", {{"plane", "XZ"}});
        addLine("Sketch2", 0, 0, 0, 30);
        const double s = 10 * std::sqrt(0.5);
        ok("add_arc", {{"sketch", "Sketch2"},
                       {"x1", 0},
                       {"y1", 30},
                       {"x2", 10 - s},
                       {"y2", 30 + s},
                       {"x3", 10},
                       {"y3", 40}});
        addLine("Sketch2", 10, 40, 40, 40);
    }
};

TEST_F(SweepLoft, SweepsACircleAlongAPathGivenInAnyOrder) {
    circleAt(0, 2);
    bentPath();
    EXPECT_EQ(ok("sweep",
                 {{"sketch", "Sketch1"}, {"path", "Sketch2/Line2; Sketch2/Arc1; Sketch2/Line1"}}),
              "Created Body1 with Sweep1.");
    EXPECT_NEAR(volumeOf("Body1"), pi * 4 * (60 + 5 * pi), 0.002 * volumeOf("Body1"));
    const geometry::NamedShape& shape = body("Body1")->shape;
    EXPECT_TRUE(shape.findByName("Sweep1.start") && shape.findByName("Sweep1.end"));
    EXPECT_TRUE(shape.findByName("Sweep1.side.Circle1"));

    // Without turning, a straight path gives the same cylinder.
    ok("sweep", {{"sketch", "Sketch1"}, {"path", "Sketch2/Line1"}, {"follow", false}});
    EXPECT_NEAR(volumeOf("Body2"), pi * 4 * 30, 1e-6);

    ok("add_point", {{"sketch", "Sketch2"}, {"x", 50}, {"y", 50}});
    EXPECT_EQ(
        run("sweep", {{"sketch", "Sketch1"}, {"path", "Sketch2/Line1; Sketch2/Line2"}}).message,
        "The path's curves don't join end to end in one chain.");
    EXPECT_EQ(run("sweep", {{"sketch", "Sketch1"}, {"path", "Sketch2/Point1"}}).message,
              "'Sketch2/Point1' isn't a curve.");
    EXPECT_EQ(run("sweep", {{"sketch", "Sketch1"}, {"path", " ; "}}).message,
              "Pick the path to sweep along.");
}

TEST_F(SweepLoft, LoftsFrustumsAndAPyramidBetweenOffsetSketches) {
    sketchWithRectangles({{-10, -10, 10, 10}});
    sketchWithRectangles({{-5, -5, 5, 5}}, 30);
    EXPECT_EQ(ok("loft", {{"sections", "Sketch1; Sketch2"}, {"ruled", true}}),
              "Created Body1 with Loft1.");
    // Frustum: h/3 (A1 + A2 + sqrt(A1 A2)).
    EXPECT_NEAR(volumeOf("Body1"), 30.0 / 3 * (400 + 100 + 200), 1e-6);
    EXPECT_TRUE(body("Body1")->shape.findByName("Loft1.start"));
    EXPECT_TRUE(body("Body1")->shape.findByName("Loft1.end"));

    circleAt(0, 10);
    circleAt(30, 5);
    ok("loft", {{"sections", "Sketch3; Sketch4"}});
    EXPECT_NEAR(volumeOf("Body2"), pi * 30 / 3 * (100 + 50 + 25), 0.002 * volumeOf("Body2"));

    // Up to a point at the end: a pyramid.
    std::string apex = sketchWithRectangles({}, 30);
    ok("add_point", {{"sketch", apex}, {"x", 0}, {"y", 0}});
    ok("loft", {{"sections", "Sketch1; " + apex + "/Point1"}, {"ruled", true}});
    EXPECT_NEAR(volumeOf("Body3"), 400 * 30 / 3.0, 1e-6);
}

TEST_F(SweepLoft, HolesAreCarriedOnlyWhenEverySectionHasThem) {
    sketchWithRectangles({{-10, -10, 10, 10}, {-5, -5, 5, 5}});
    sketchWithRectangles({{-10, -10, 10, 10}, {-5, -5, 5, 5}}, 30);
    sketchWithRectangles({{-10, -10, 10, 10}}, 30);
    ok("loft", {{"sections", "Sketch1; Sketch2"}});
    EXPECT_NEAR(volumeOf("Body1"), (400 - 100) * 30, 1e-6);
    EXPECT_TRUE(body("Body1")->shape.findByName("Loft1.inner.Rectangle2.top"));
    ok("loft", {{"sections", "Sketch1; Sketch3"}});
    EXPECT_NEAR(volumeOf("Body2"), 400 * 30, 1e-6);
}

TEST_F(SweepLoft, SectionsThatCantBeLoftedAreNamed) {
    sketchWithRectangles({{-10, -10, 10, 10}});
    sketchWithRectangles({{0, 0, 1, 1}, {5, 5, 6, 6}}, 10);
    ok("add_point", {{"sketch", "Sketch1"}, {"x", 0}, {"y", 0}});
    const std::size_t objects = objectCount();
    EXPECT_EQ(run("loft", {{"sections", "Sketch1"}}).message,
              "A loft needs at least two sections.");
    EXPECT_EQ(run("loft", {{"sections", ";"}}).message,
              "Pick at least two sections (sketches, faces, or a point at an end).");
    EXPECT_EQ(run("loft", {{"sections", "Sketch1; Sketch2"}}).message,
              "Sketch2 has 2 closed regions; a loft section needs exactly one.");
    EXPECT_EQ(run("loft", {{"sections", "Sketch1; Sketch1/Point1; Sketch1"}}).message,
              "Only the first and last sections can be points.");
    EXPECT_EQ(
        run("loft", {{"sections", "Sketch1; Sketch1/Rectangle1.top"}}).message,
        "'Sketch1/Rectangle1.top' can't be a loft section (use a sketch, a face or a point).");
    EXPECT_EQ(objectCount(), objects);
}

} // namespace

} // namespace cad::testing
