// edge_flange and hem on a 40 x 30 x 2 plate: volumes of the bend and wall worked out
// here, the way they turn, offsets with their relief slots, editing with undo, and
// the edges refused with their sentences.
#include "SheetTestModel.h"

#include <cmath>

namespace cad::testing {

namespace {

using EdgeFlange = SheetModel;

// The wall of a flange `length` past its bend over `span` of the edge, 2 thick.
double wall(double length, double span) { return length * 2 * span; }

TEST_F(EdgeFlange, NinetyDegreesTwentyLongOnAPlate) {
    plate();
    EXPECT_EQ(ok("edge_flange", {{"edge", kRightEdge}}), "Added EdgeFlange1 to Body1.");
    EXPECT_TRUE(valid("Body1"));
    EXPECT_NEAR(volumeOf("Body1"), kPlate + bendVolume(90, 2, 2, 30) + wall(20, 30), 1e-6);
    // Up from the top face: the bend's centre 2 above it at the edge, the wall rising
    // from x = 42 to 44 up to z = 4 + 20.
    const auto b = bounds(body("Body1")->shape.shape());
    EXPECT_NEAR(b[3], 44, 1e-6);
    EXPECT_NEAR(b[5], 24, 1e-6);
    EXPECT_NEAR(cylinderRadius("Body1", "EdgeFlange1.inner_bend"), 2, 1e-9);
    EXPECT_NEAR(cylinderRadius("Body1", "EdgeFlange1.outer_bend"), 4, 1e-9);

    // A second flange on the first one's tip, inward over the plate at 45 degrees,
    // with its own radius.
    ok("edge_flange", {{"edge", "Body1/Edge(EdgeFlange1.inner, EdgeFlange1.wall)"},
                       {"angle", 45},
                       {"bend_radius", 1},
                       {"length", 5}});
    EXPECT_TRUE(valid("Body1"));
    EXPECT_NEAR(volumeOf("Body1"),
                kPlate + bendVolume(90, 2, 2, 30) + wall(20, 30) + bendVolume(45, 1, 2, 30) +
                    wall(5, 30),
                1e-6);

    EXPECT_EQ(ok("edit_edge_flange", {{"feature", "EdgeFlange1"}, {"length", 10}}),
              "Changed EdgeFlange1.");
    EXPECT_NEAR(volumeOf("Body1"),
                kPlate + bendVolume(90, 2, 2, 30) + wall(10, 30) + bendVolume(45, 1, 2, 30) +
                    wall(5, 30),
                1e-6);
    // Back to 20: the second flange's outside reaches (R + T) sin 45 + 5 cos 45 above.
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(bounds(body("Body1")->shape.shape())[5], 24 + (3 + 5) * std::sqrt(0.5), 1e-6);
}

TEST_F(EdgeFlange, FlippedWithOffsetsAndReliefs) {
    plate();
    // 5 in from each end; the slots beside it 1 thickness wide, R + T + w/2 = 5 deep.
    ok("edge_flange",
       {{"edge", kRightEdge}, {"flip", true}, {"offset_start", 5}, {"offset_end", 5}});
    EXPECT_TRUE(valid("Body1"));
    EXPECT_NEAR(volumeOf("Body1"),
                kPlate - 2 * (2 * 5 * 2) + bendVolume(90, 2, 2, 20) + wall(20, 20), 1e-6);
    EXPECT_NEAR(bounds(body("Body1")->shape.shape())[2], -22, 1e-6);
    EXPECT_TRUE(body("Body1")->shape.findByName("EdgeFlange1.relief1"));
    EXPECT_TRUE(body("Body1")->shape.findByName("EdgeFlange1.relief2"));

    // Round slots in 6061 are 1.5 thicknesses wide: 4 mm of straight, then a half disc.
    ASSERT_TRUE(stack.undo());
    ok("set_material", {{"objects", "Body1"}, {"material", "aluminum_6061"}});
    ok("edge_flange", {{"edge", kRightEdge}, {"offset_start", 5}, {"relief", "round"}});
    const double slot = (3 * 4 + pi * 1.5 * 1.5 / 2) * 2;
    EXPECT_NEAR(volumeOf("Body1"), kPlate - slot + bendVolume(90, 2, 2, 25) + wall(20, 25), 1e-6);
    ok("edit_edge_flange", {{"feature", "EdgeFlange2"}, {"relief", "none"}});
    EXPECT_NEAR(volumeOf("Body1"), kPlate + bendVolume(90, 2, 2, 25) + wall(20, 25), 1e-6);
}

TEST_F(EdgeFlange, HemsFoldRightBack) {
    // Closed: folded at radius 0.01, the hem lying 0.02 over the sheet.
    plate();
    EXPECT_EQ(ok("hem", {{"edge", kRightEdge}}), "Added Hem1 to Body1.");
    EXPECT_TRUE(valid("Body1"));
    EXPECT_NEAR(volumeOf("Body1"), kPlate + bendVolume(180, 0.01, 2, 30) + wall(10, 30), 1e-6);
    auto b = bounds(body("Body1")->shape.shape());
    EXPECT_NEAR(b[3], 42.01, 1e-6);
    EXPECT_NEAR(b[5], 4.02, 1e-6);

    // A 1 mm gap folded under.
    ASSERT_TRUE(stack.undo());
    ok("hem", {{"edge", kRightEdge}, {"gap", 1}, {"flip", true}, {"length", 15}});
    EXPECT_TRUE(valid("Body1"));
    EXPECT_NEAR(volumeOf("Body1"), kPlate + bendVolume(180, 0.5, 2, 30) + wall(15, 30), 1e-6);
    b = bounds(body("Body1")->shape.shape());
    EXPECT_NEAR(b[2], -3, 1e-6);
}

TEST_F(EdgeFlange, EdgesThatCantTakeAFlangeAreRefused) {
    plate();
    EXPECT_EQ(refused("edge_flange", {{"edge", kRightEdge}, {"angle", 200}}),
              "The flange's angle is between 0 and 180 degrees.");
    EXPECT_EQ(refused("hem", {{"edge", kRightEdge}, {"offset_start", 20}, {"offset_end", 10}}),
              "The offsets leave nothing of the edge for the flange.");
    EXPECT_EQ(refused("edge_flange", {{"edge", "Body1/Flange1.end"}}),
              "'Body1/Flange1.end' isn't an edge.");
    EXPECT_EQ(refused("edge_flange", {{"body", "Body1"}}), "Pick the edge the flange goes on.");

    // A disc's rim isn't straight.
    ok("create_sketch", {{"plane", "XY"}});
    ok("add_circle", {{"sketch", "Sketch2"}, {"cx", 100}, {"cy", 0}, {"radius", 10}});
    ok("sheet_flange", {{"sketch", "Sketch2"}, {"thickness", 2}});
    EXPECT_EQ(refused("edge_flange", {{"edge", "Body2/Edge(Flange2.end, Flange2.side.Circle1)"}}),
              "Pick a straight edge.");

    // A block said to be 2 mm sheet has no 2 mm edge.
    ok("create_box", {{"width", 20}, {"depth", 20}, {"height", 10}, {"x", 100}});
    ok("sheet_rules", {{"body", "Box1"}, {"thickness", 2}});
    EXPECT_EQ(refused("edge_flange", {{"edge", "Box1/Edge(Box1.right, Box1.top)"}}),
              "Pick an edge along the sheet's outside: between a face and the sheet's 2 mm "
              "edge.");
}

} // namespace
} // namespace cad::testing
