// Join and cut: target bodies, face profiles, a cut that would leave nothing, undo
// and redo of features appended to a body.
#include "GeometryTestModel.h"

#include "geometry/ExtrudeFeature.h"

#include <TopExp.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <cmath>

namespace cad::testing {

namespace {

class ExtrudeOperations : public GeometryModel {
protected:
    // A 20 x 20 x 5 plate made by Extrude1 in Body1.
    void plate() {
        sketchWithRectangles({{0, 0, 20, 20}});
        ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
    }
};

} // namespace

TEST_F(ExtrudeOperations, JoinAndCutChangeTheTargetBody) {
    plate();
    std::string boss = sketchWithRectangles({{2, 2, 6, 6}}, 5);
    EXPECT_EQ(ok("extrude",
                 {{"sketch", boss}, {"distance", 3}, {"operation", "join"}, {"target", "Body1"}}),
              "Added Extrude2 to Body1.");
    EXPECT_NEAR(volumeOf("Body1"), 2000 + 48, 1e-6);
    std::string pocket = sketchWithRectangles({{10, 10, 13, 13}}, 5);
    EXPECT_EQ(ok("extrude",
                 {{"sketch", pocket}, {"distance", -2}, {"operation", "cut"}, {"target", "Body1"}}),
              "Added Extrude3 to Body1.");
    GeometryObject* b = body("Body1");
    EXPECT_NEAR(volume(b->shape.shape()), 2048 - 18, 1e-6);
    EXPECT_EQ(b->features, (std::vector<std::string>{"Extrude1", "Extrude2", "Extrude3"}));
    EXPECT_EQ(count(b->shape.shape(), TopAbs_SOLID), 1);
    // Names survive the booleans: the plate's top keeps its name, the boss and the
    // pocket bring theirs.
    for (const char* name :
         {"Extrude1.end", "Extrude1.start", "Extrude2.end", "Extrude2.side.Rectangle1.top",
          "Extrude3.end", "Extrude3.side.Rectangle1.left"})
        EXPECT_TRUE(b->shape.findByName(name)) << name;
    // The boss's bottom cap is inside the joined solid: it is gone.
    EXPECT_FALSE(b->shape.findByName("Extrude2.start"));
    auto pocketFloor = bounds(*b->shape.findByName("Extrude3.end"));
    EXPECT_NEAR(pocketFloor[2], 3, 1e-9);

    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Body1"), 2048, 1e-6);
    EXPECT_FALSE(document.find("Extrude3"));
    EXPECT_EQ(body("Body1")->features.size(), 2u);
    EXPECT_TRUE(stack.redo().ok);
    EXPECT_NEAR(volumeOf("Body1"), 2030, 1e-6);
    EXPECT_TRUE(document.find("Extrude3"));
}

TEST_F(ExtrudeOperations, ACutThroughEverythingIsRefusedAndTheBodyKeepsItsShape) {
    plate();
    std::string big = sketchWithRectangles({{-5, -5, 25, 25}}, 5);
    const std::size_t objects = document.objects().size();
    CommandResult cut = run(
        "extrude", {{"sketch", big}, {"distance", -10}, {"operation", "cut"}, {"target", "Body1"}});
    EXPECT_FALSE(cut.ok);
    EXPECT_EQ(cut.message, "The cut removes the entire body.");
    EXPECT_NEAR(volumeOf("Body1"), 2000, 1e-6);
    EXPECT_EQ(body("Body1")->features, std::vector<std::string>{"Extrude1"});
    EXPECT_EQ(document.objects().size(), objects);
    EXPECT_TRUE(body("Body1")->shape.findByName("Extrude1.end"));
}

TEST_F(ExtrudeOperations, AFlatFaceIsAProfileAndItsBodyTheDefaultTarget) {
    plate();
    EXPECT_EQ(
        ok("extrude", {{"sketch", "Body1/Extrude1.end"}, {"distance", 2}, {"operation", "join"}}),
        "Added Extrude2 to Body1.");
    EXPECT_NEAR(volumeOf("Body1"), 20 * 20 * 7, 1e-6);
    GeometryObject* b = body("Body1");
    EXPECT_NEAR(bounds(*b->shape.findByName("Extrude2.end"))[5], 7, 1e-9);
    // The face is looked up in the body as it was before Extrude2, so a rebuild from
    // scratch still finds it (the finished body has merged it away).
    ASSERT_TRUE(document.rebuildBody(*b).ok());
    EXPECT_NEAR(volumeOf("Body1"), 2800, 1e-6);

    // A box's face as the profile of a new body, against the face's outward normal.
    ok("create_box", {{"width", 2}, {"depth", 2}, {"height", 2}, {"x", 50}});
    EXPECT_EQ(ok("extrude", {{"sketch", "Box1/Box1.right"}, {"distance", 3}}),
              "Created Body2 with Extrude3.");
    EXPECT_NEAR(bounds(body("Body2")->shape.shape())[3], 55, 1e-9);
    // A face pointing down extrudes down; a thin wall of a face lies in that face's plane.
    ok("extrude", {{"sketch", "Box1/Box1.bottom"}, {"distance", 1}});
    EXPECT_NEAR(bounds(body("Body3")->shape.shape())[2], -1, 1e-9);
    ok("extrude", {{"sketch", "Box1/Box1.right"}, {"distance", 3}, {"thickness", 0.5}});
    EXPECT_NEAR(volumeOf("Body4"), (4 - 1) * 3, 1e-6);
    auto ring = bounds(body("Body4")->shape.shape());
    EXPECT_NEAR(ring[0], 52, 1e-9);
    EXPECT_NEAR(ring[4], 2, 1e-9);

    CommandResult curved =
        run("extrude", {{"sketch", "Box1/Edge(Box1.front, Box1.top)"}, {"distance", 3}});
    EXPECT_EQ(curved.message,
              "'Box1/Edge(Box1.front, Box1.top)' can't be a profile: use a sketch, a closed "
              "region of one, or a flat face.");
}

TEST_F(ExtrudeOperations, ASketchOnABodyJoinsThatBodyByDefault) {
    plate();
    ok("create_sketch", {{"on", "Body1/Extrude1.end"}});
    ok("add_rectangle", {{"sketch", "Sketch2"}, {"x1", 1}, {"y1", 1}, {"x2", 3}, {"y2", 3}});
    EXPECT_EQ(ok("extrude", {{"sketch", "Sketch2"}, {"distance", 1}, {"operation", "join"}}),
              "Added Extrude2 to Body1.");
    EXPECT_NEAR(volumeOf("Body1"), 2004, 1e-6);
}

TEST_F(ExtrudeOperations, OverlappingCirclesMakeTwoLunesThatTouch) {
    ok("create_sketch", {{"plane", "XY"}});
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 0}, {"cy", 0}, {"radius", 5}});
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 6}, {"cy", 0}, {"radius", 5}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 1}});
    // Two discs minus twice their lens; the lunes touch where the circles cross.
    const double pi = std::acos(-1.0);
    const double d = 6, r = 5;
    const double lens = 2 * r * r * std::acos(d / (2 * r)) - d / 2 * std::sqrt(4 * r * r - d * d);
    EXPECT_NEAR(volumeOf("Body1"), 2 * pi * r * r - 2 * lens, 1e-4);
    // The lunes touch along the crossing lines, so they were fused: two solids that
    // share those edges (the kernel keeps line-touching solids apart).
    const TopoDS_Shape& shape = body("Body1")->shape.shape();
    EXPECT_EQ(count(shape, TopAbs_SOLID), 2);
    TopTools_IndexedDataMapOfShapeListOfShape edgeSolids;
    TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_SOLID, edgeSolids);
    int shared = 0;
    for (int i = 1; i <= edgeSolids.Extent(); ++i) {
        TopTools_IndexedMapOfShape solids;
        for (const TopoDS_Shape& s : edgeSolids(i)) solids.Add(s);
        shared += solids.Extent() == 2;
    }
    EXPECT_EQ(shared, 2);
    // Two lunes, two start caps.
    EXPECT_TRUE(body("Body1")->shape.findByName("Extrude1.start"));
    EXPECT_TRUE(body("Body1")->shape.findByName("Extrude1.start[2]"));
}

} // namespace cad::testing
