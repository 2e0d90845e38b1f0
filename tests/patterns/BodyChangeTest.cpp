// Combine, split, delete faces, frozen shapes and mirrored bodies through their
// commands: volumes that add up, clearances, tools hidden and shown again, and
// results that follow their sources.
#include "PatternTestModel.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepTools.hxx>

#include <sstream>

namespace cad::testing {

namespace {

class BodyChange : public PatternModel {
protected:
    // Body1: a 20 x 20 x 10 block from the origin; Body2: a pin of radius 2 standing on
    // (10, 10) from z = from to z = 20.
    void blockAndPin(double from) {
        ok("extrude", {{"sketch", sketchWithRectangles({{0, 0, 20, 20}})}, {"distance", 10}});
        ok("extrude", {{"sketch", circleSketch(from, 10, 10, 2)}, {"distance", 20 - from}});
    }
};

TEST_F(BodyChange, CombineJoinsCutsAndIntersectsThenHidesTheTools) {
    ok("create_box", {{"width", 20}, {"depth", 20}, {"height", 20}});
    ok("create_box",
       {{"width", 10}, {"depth", 10}, {"height", 10}, {"x", 15}, {"y", 15}, {"z", 15}});
    EXPECT_EQ(ok("combine", {{"target", "Box1"}, {"tools", "Box2"}}), "Added Combine1 to Box1.");
    EXPECT_NEAR(volumeOf("Box1"), 8000 + 1000 - 125, 1e-6);
    EXPECT_FALSE(body("Box2")->visible);
    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(body("Box2")->visible);
    EXPECT_NEAR(volumeOf("Box1"), 8000, 1e-6);

    ok("combine", {{"target", "Box1"}, {"tools", "Box2"}, {"operation", "cut"}, {"keep", true}});
    EXPECT_NEAR(volumeOf("Box1"), 8000 - 125, 1e-6);
    EXPECT_TRUE(body("Box2")->visible);
    ok("edit_combine", {{"feature", "Combine2"}, {"operation", "intersect"}});
    EXPECT_NEAR(volumeOf("Box1"), 125, 1e-6);

    EXPECT_EQ(refused("combine", {{"target", "Box1"}}),
              "Pick the bodies to combine with this one.");
    EXPECT_EQ(refused("combine", {{"target", "Box1"}, {"tools", "Nope"}}),
              "There's no body named 'Nope'.");
    EXPECT_EQ(refused("combine", {{"target", "Box1"}, {"tools", "Box1"}}),
              "A body can't be combined with itself.");
    EXPECT_EQ(refused("combine", {{"tools", "Box2"}}), "combine: missing 'target'.");
}

TEST_F(BodyChange, ACutWithClearanceLeavesRoomRoundThePin) {
    blockAndPin(-5);
    ok("combine",
       {{"target", "Body1"}, {"tools", "Body2"}, {"operation", "cut"}, {"clearance", 0.1}});
    // The hole is 0.2 larger in diameter than the pin.
    EXPECT_NEAR(volumeOf("Body1"), 4000 - pi * 2.1 * 2.1 * 10, 1e-6);

    // A pin ending inside the block: its end gets its own clearance, along its axis.
    blockAndPin(5);
    ok("combine", {{"target", "Body3"},
                   {"tools", "Body4"},
                   {"operation", "cut"},
                   {"clearance", 0.1},
                   {"axial_clearance", 0.5}});
    EXPECT_NEAR(volumeOf("Body3"), 4000 - pi * 2.1 * 2.1 * 5.5, 1e-6);
    ok("edit_combine", {{"feature", "Combine2"}, {"axial_clearance", 0}});
    EXPECT_NEAR(volumeOf("Body3"), 4000 - pi * 2.1 * 2.1 * 5, 1e-6);
    EXPECT_EQ(
        run("edit_combine", {{"feature", "Combine2"}, {"axis", "Sketch4/Circle1.center"}}).message,
        "'Sketch4/Circle1.center' doesn't give a direction.");
}

TEST_F(BodyChange, SplitsKeepOnePieceAndMakeBodiesOfTheOthers) {
    ok("create_box", {{"width", 20}, {"depth", 10}, {"height", 10}});
    ok("add_plane", {{"kind", "offset"}, {"references", "YZ"}, {"distance", 5}});
    EXPECT_EQ(ok("split_body", {{"body", "Box1"}, {"tool", "Plane1"}}), "Added Split1 to Box1.");
    EXPECT_NEAR(volumeOf("Box1"), 1500, 1e-6);
    EXPECT_TRUE(body("Box1")->shape.findByName("Split1.split"));
    ok("edit_split_body", {{"feature", "Split1"}, {"keep", "1,5,5"}});
    EXPECT_NEAR(volumeOf("Box1"), 500, 1e-6);

    EXPECT_EQ(ok("split_piece", {{"source", "Split1"}, {"source_body", "Box1"}, {"at", "15,5,5"}}),
              "Created Body1 with Piece1.");
    EXPECT_NEAR(volumeOf("Body1"), 1500, 1e-6);
    // The piece follows the split when its plane moves.
    ok("edit_plane", {{"plane", "Plane1"}, {"distance", 7}});
    EXPECT_NEAR(volumeOf("Box1") + volumeOf("Body1"), 2000, 1e-6);
    EXPECT_NEAR(volumeOf("Body1"), 1300, 1e-6);

    // The places given say which piece is kept.
    ok("create_box", {{"width", 30}, {"depth", 10}, {"height", 10}, {"x", 100}});
    EXPECT_EQ(refused("split_body", {{"body", "Box2"}, {"tool", "Plane1"}}),
              "The tool doesn't cut the body in two.");
    ok("add_plane", {{"kind", "offset"}, {"references", "YZ"}, {"distance", 110}});
    ok("split_body", {{"body", "Box2"}, {"tool", "Plane2"}, {"pieces", "125,5,5; 101,5,5"}});
    EXPECT_NEAR(volumeOf("Box2"), 2000, 1e-6);

    EXPECT_EQ(
        refused("split_piece", {{"source", "Split2"}, {"source_body", "Box2"}, {"at", "121,5,5"}}),
        "No piece of the split is where this one should be.");
    EXPECT_EQ(
        refused("split_piece", {{"source", "Split9"}, {"source_body", "Box2"}, {"at", "1,5,5"}}),
        "There's no split named 'Split9'.");
    EXPECT_EQ(refused("split_body", {{"body", "Box2"}}),
              "Pick what splits the body: a plane or a face.");
    EXPECT_EQ(refused("split_body", {{"body", "Box2"}, {"tool", "X"}}),
              "'X' isn't a plane or a face.");
    EXPECT_EQ(refused("split_body", {{"body", "Box2"}, {"tool", "Plane2"}, {"keep", "1;2"}}),
              "'1;2' isn't a point: give x,y,z in mm.");
}

TEST_F(BodyChange, DeletingAFilletsFaceTakesItBackOff) {
    ok("create_box", {{"width", 20}, {"depth", 20}, {"height", 20}});
    const std::string edge = "Edge(Box1.front, Box1.top)";
    ok("fillet", {{"body", "Box1"}, {"edges", edge}, {"radius", 3}});
    EXPECT_LT(volumeOf("Box1"), 8000 - 1);
    EXPECT_EQ(ok("delete_faces", {{"body", "Box1"}, {"faces", "Fillet1.round(" + edge + ")"}}),
              "Added DeleteFaces1 to Box1.");
    EXPECT_NEAR(volumeOf("Box1"), 8000, 1e-6);
    EXPECT_TRUE(body("Box1")->shape.findByName("Box1.top.healed"));
    EXPECT_TRUE(body("Box1")->shape.findByName("Box1.bottom")) << "an unchanged face";

    EXPECT_EQ(refused("delete_faces", {{"body", "Box1"}, {"faces", "Nope"}}),
              "The body has no face 'Nope' now.");
    EXPECT_EQ(refused("delete_faces", {{"body", "Box1"}}), "Pick the faces to delete.");
    EXPECT_EQ(refused("delete_faces", {{"body", "Box1"}, {"faces", "Box1/Box1.top.healed"}}),
              "Those faces can't be taken off: the faces around them don't meet to close the "
              "gap.");
}

TEST_F(BodyChange, FrozenShapesAndMirroredBodies) {
    std::ostringstream text;
    BRepTools::Write(BRepPrimAPI_MakeBox(gp_Pnt(0, 0, 0), 10, 20, 30).Shape(), text);
    EXPECT_EQ(ok("frozen_body", {{"brep", text.str()}, {"note", "from a test"}}),
              "Created Body1 with Frozen1.");
    EXPECT_NEAR(volumeOf("Body1"), 6000, 1e-6);
    EXPECT_TRUE(body("Body1")->shape.findByName("Frozen1.top"));

    // A body's history stops mattering past a frozen step.
    plateWith(-4);
    ok("frozen", {{"body", "Body2"}, {"brep", text.str()}});
    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 20}});
    EXPECT_NEAR(volumeOf("Body2"), 6000, 1e-6);
    EXPECT_EQ(refused("frozen", {{"body", "Body2"}, {"brep", " "}}),
              "This frozen step has no shape.");
    EXPECT_EQ(refused("frozen_body", {{"brep", "not a shape"}}),
              "The frozen shape couldn't be read.");

    // A mirrored body follows its source.
    sketchWithRectangles({{10, 0, 30, 10}});
    ok("extrude", {{"sketch", "Sketch3"}, {"distance", 5}});
    EXPECT_EQ(ok("mirror_body", {{"source", "Body3"}, {"plane", "YZ"}}),
              "Created Body4 with Mirror1.");
    EXPECT_NEAR(bounds(body("Body4")->shape.shape())[0], -30, 1e-6);
    EXPECT_TRUE(body("Body4")->shape.findByName("Mirror1.left"));
    ok("edit_feature", {{"feature", "Extrude3"}, {"distance", 8}});
    EXPECT_NEAR(volumeOf("Body4"), 1600, 1e-6);
    EXPECT_EQ(refused("mirror_body", {{"plane", "YZ"}}), "Pick the body to mirror.");
    EXPECT_EQ(refused("mirror_body", {{"source", "Sketch3"}, {"plane", "YZ"}}),
              "'Sketch3' has no shape to mirror.");
}

} // namespace

} // namespace cad::testing
