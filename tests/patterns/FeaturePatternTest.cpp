// Feature patterns and mirrors through their commands: copies counted by volume and
// found by their names where the layout puts them, edits with undo, references to a
// copy that follow it, and the sentences that refuse bad arguments.
#include "PatternTestModel.h"

namespace cad::testing {

namespace {

class FeaturePattern : public PatternModel {
protected:
    void expectAt(const gp_Pnt& p, double x, double y, double z) {
        EXPECT_NEAR(p.X(), x, 1e-6);
        EXPECT_NEAR(p.Y(), y, 1e-6);
        EXPECT_NEAR(p.Z(), z, 1e-6);
    }
};

TEST_F(FeaturePattern, RowsAndGridsOfAPocket) {
    plateWith(-4);
    EXPECT_EQ(ok("pattern_rectangular",
                 {{"features", "Extrude2"}, {"direction", "X"}, {"count", 3}, {"spacing", 10}}),
              "Added Pattern1 to Body1.");
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 3 * kSquare, 1e-6);
    expectAt(faceCentre("Body1", "Pattern1.copy3.Extrude2.end"), 68, 8, 6);

    // A second direction makes a grid; copies count along the first direction first.
    EXPECT_EQ(ok("edit_pattern_rectangular",
                 {{"feature", "Pattern1"}, {"direction2", "Y"}, {"count2", 2}, {"spacing2", 15}}),
              "Changed Pattern1.");
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 6 * kSquare, 1e-6);
    expectAt(faceCentre("Body1", "Pattern1.copy5.Extrude2.end"), 58, 23, 6);

    // A negative spacing goes the other way.
    ok("edit_pattern_rectangular", {{"feature", "Pattern1"}, {"spacing", -10}, {"count2", 1}});
    expectAt(faceCentre("Body1", "Pattern1.copy3.Extrude2.end"), 28, 8, 6);
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 3 * kSquare, 1e-6);
    expectAt(faceCentre("Body1", "Pattern1.copy3.Extrude2.end"), 68, 8, 6);

    // Copies that overlap are joined before they meet the body.
    ok("edit_pattern_rectangular", {{"feature", "Pattern1"}, {"spacing", 3}});
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 12 * 6 * 4, 1e-6);
}

TEST_F(FeaturePattern, CircularPatternsSpreadOrStep) {
    // A disc with one round boss at (20, 0), repeated about Z.
    ok("create_sketch", {{"plane", "XY"}});
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 0}, {"cy", 0}, {"radius", 30}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
    circleSketch(5, 20, 0, 3);
    ok("extrude",
       {{"sketch", "Sketch2"}, {"distance", 5}, {"operation", "join"}, {"target", "Body1"}});
    const double disc = pi * 900 * 5, boss = pi * 9 * 5;

    ok("pattern_circular", {{"features", "Extrude2"}, {"axis", "Z"}, {"count", 4}});
    EXPECT_NEAR(volumeOf("Body1"), disc + 4 * boss, 1e-6);
    expectAt(faceCentre("Body1", "Pattern1.copy2.Extrude2.end"), 0, 20, 10);
    expectAt(faceCentre("Body1", "Pattern1.copy4.Extrude2.end"), 0, -20, 10);

    // Less than a full turn: the last copy lands on the angle.
    ok("edit_pattern_circular", {{"feature", "Pattern1"}, {"angle", 90}});
    expectAt(faceCentre("Body1", "Pattern1.copy2.Extrude2.end"), 20 * std::cos(pi / 6),
             20 * std::sin(pi / 6), 10);
    expectAt(faceCentre("Body1", "Pattern1.copy4.Extrude2.end"), 0, 20, 10);
}

TEST_F(FeaturePattern, PathPatternsStartAtTheNearerEndAndTurnWithThePath) {
    plateWith(-4);
    // A line from the far end back to the pocket: the copies still start at the pocket.
    std::string path = sketchWithRectangles({}, 10);
    addLine(path, 88, 8, 48, 8);
    ok("pattern_path", {{"features", "Extrude2"}, {"path", path + "/Line1"}, {"count", 3}});
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 3 * kSquare, 1e-6);
    expectAt(faceCentre("Body1", "Pattern1.copy3.Extrude2.end"), 88, 8, 6);
    EXPECT_EQ(run("edit_pattern_path", {{"feature", "Pattern1"}, {"spacing", 30}}).message,
              "The copies don't fit on the path at that spacing.");
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 3 * kSquare, 1e-6);

    // A long box on a quarter circle: turned with the path, or only moved along it.
    ok("create_box", {{"width", 1}, {"depth", 4}, {"height", 1}, {"x", 99.5}, {"y", -2}});
    std::string arc = sketchWithRectangles({});
    ok("add_arc", {{"sketch", arc},
                   {"cx", 0},
                   {"cy", 0},
                   {"radius", 100},
                   {"start_angle", 0},
                   {"sweep_angle", 90}});
    ok("pattern_path", {{"body", "Box1"}, {"path", arc + "/Arc1"}, {"count", 2}});
    auto b = bounds(body("Box1")->shape.shape());
    EXPECT_NEAR(b[0], -2, 1e-6);
    EXPECT_NEAR(b[4], 100.5, 1e-6);
    ok("edit_pattern_path", {{"feature", "Pattern2"}, {"follow", false}});
    b = bounds(body("Box1")->shape.shape());
    EXPECT_NEAR(b[0], -0.5, 1e-6);
    EXPECT_NEAR(b[4], 102, 1e-6);
}

TEST_F(FeaturePattern, MirrorsFeaturesAndWholeBodies) {
    plateWith(-4);
    ok("add_plane", {{"kind", "offset"}, {"references", "YZ"}, {"distance", 60}});
    EXPECT_EQ(ok("mirror_features", {{"features", "Extrude2"}, {"plane", "Plane1"}}),
              "Added Mirror1 to Body1.");
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 2 * kSquare, 1e-6);
    expectAt(faceCentre("Body1", "Mirror1.Extrude2.end"), 72, 8, 6);

    // Without features the body is mirrored whole, here across its own end face.
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}, {"x", 200}});
    ok("mirror_features", {{"body", "Box1"}, {"plane", "Box1/Box1.right"}});
    EXPECT_NEAR(volumeOf("Box1"), 2000, 1e-6);
    EXPECT_NEAR(bounds(body("Box1")->shape.shape())[3], 220, 1e-6);

    EXPECT_EQ(refused("mirror_features", {{"features", "Extrude2"}, {"plane", "X"}}),
              "'X' isn't a plane or flat face.");
    EXPECT_EQ(refused("mirror_features", {{"features", "Extrude2"}}), "Pick the mirror plane.");
}

TEST_F(FeaturePattern, HolesRevolvesAndWholeBodiesRepeat) {
    plateWith(-4);
    ok("create_sketch", {{"origin_x", 0.0},
                         {"origin_y", 0.0},
                         {"origin_z", 10.0},
                         {"normal_x", 0.0},
                         {"normal_y", 0.0},
                         {"normal_z", 1.0},
                         {"x_dir_x", 1.0},
                         {"x_dir_y", 0.0},
                         {"x_dir_z", 0.0},
                         {"support", "Body1"}});
    ok("add_point", {{"sketch", "Sketch3"}, {"x", 10}, {"y", 30}});
    ok("hole", {{"sketch", "Sketch3"}, {"diameter", 4}, {"through", true}, {"target", "Body1"}});
    const double hole = pi * 4 * 10;
    EXPECT_NEAR(volumeOf("Body1"), kPlate - kSquare - hole, 1e-6);
    ok("pattern_rectangular",
       {{"features", "Hole1; Extrude2"}, {"direction", "X"}, {"count", 4}, {"spacing", 12}});
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 4 * kSquare - 4 * hole, 1e-6);

    // A disc turned about a centreline on XZ and joined on top of the plate.
    ok("create_sketch", {{"plane", "XZ"}});
    ok("add_rectangle", {{"sketch", "Sketch4"}, {"x1", 20}, {"y1", 10}, {"x2", 22}, {"y2", 12}});
    addLine("Sketch4", 20, 10, 20, 14);
    ok("set_construction", {{"sketch", "Sketch4"}, {"entity", "Line1"}, {"construction", true}});
    ok("revolve", {{"sketch", "Sketch4"},
                   {"axis", "Sketch4/Line1"},
                   {"operation", "join"},
                   {"target", "Body1"}});
    ok("pattern_rectangular",
       {{"features", "Revolve1"}, {"direction", "X"}, {"count", 3}, {"spacing", 20}});
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 4 * kSquare - 4 * hole + 3 * pi * 4 * 2, 1e-6);

    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}, {"x", 200}});
    ok("pattern_circular", {{"body", "Box1"}, {"axis", "Z"}, {"count", 3}});
    EXPECT_NEAR(volumeOf("Box1"), 3000, 1e-6);
}

TEST_F(FeaturePattern, AFilletOnACopyFollowsTheSpacing) {
    plateWith(4);
    ok("pattern_rectangular",
       {{"features", "Extrude2"}, {"direction", "X"}, {"count", 2}, {"spacing", 20}});
    const std::string edge =
        "Edge(Pattern1.copy2.Extrude2.end, Pattern1.copy2.Extrude2.side.Rectangle1.right)";
    ok("fillet", {{"body", "Body1"}, {"edges", edge}, {"radius", 1}});
    const double filleted = volumeOf("Body1");
    EXPECT_NEAR(filleted, kPlate + 2 * kSquare - (1 - pi / 4) * 6, 1e-6);

    ok("edit_pattern_rectangular", {{"feature", "Pattern1"}, {"spacing", 30}});
    auto* fillet = dynamic_cast<FeatureObject*>(document.find("Fillet1"));
    ASSERT_TRUE(fillet);
    EXPECT_EQ(fillet->error, "");
    EXPECT_NEAR(volumeOf("Body1"), filleted, 1e-6);
    EXPECT_NEAR(faceCentre("Body1", "Fillet1.round(" + edge + ")").X(), 81 - (1 - 2 / pi), 1e-3);
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(faceCentre("Body1", "Fillet1.round(" + edge + ")").X(), 71 - (1 - 2 / pi), 1e-3);
}

TEST_F(FeaturePattern, BadArgumentsLeaveTheDocumentAlone) {
    plateWith(-4);
    ok("fillet", {{"body", "Body1"},
                  {"edges", "Edge(Extrude1.end, Extrude1.side.Rectangle1.top)"},
                  {"radius", 1}});
    const double before = volumeOf("Body1");
    const struct {
        const char* command;
        Args args;
        std::string sentence;
    } cases[] = {
        {"pattern_rectangular",
         {{"features", "Nope"}, {"direction", "X"}, {"spacing", 5}, {"body", "Body1"}},
         "There's no feature named 'Nope'."},
        {"pattern_rectangular",
         {{"features", "Fillet1"}, {"direction", "X"}, {"spacing", 5}},
         "Fillet1 (Fillet) can't be repeated; pattern the features that make the shape "
         "(extrude, revolve, sweep, loft, hole), or the whole body."},
        {"pattern_rectangular",
         {{"features", "Extrude2"}, {"direction", "X"}, {"count", 1}, {"spacing", 5}},
         "A pattern needs at least two copies."},
        {"pattern_rectangular", {{"features", "Extrude2"}, {"spacing", 5}}, "Pick the direction."},
        {"pattern_rectangular",
         {{"features", "Extrude2"}, {"direction", "Body1/Extrude1.end"}, {"spacing", 5}},
         "'Body1/Extrude1.end' isn't a straight line or axis."},
        {"pattern_rectangular",
         {{"features", "Extrude2"}, {"direction", "X"}},
         "pattern_rectangular: missing 'spacing'."},
        {"pattern_rectangular",
         {{"features", "Extrude2"}, {"direction", "X"}, {"count", 20000}, {"spacing", 5}},
         "That's too many copies for one pattern (at most 10000)."},
        {"pattern_circular", {{"features", "Extrude2"}}, "Pick the axis."},
        {"pattern_circular",
         {{"features", "Extrude2"}, {"axis", "Z"}, {"angle", 0}},
         "The angle must not be zero."},
        {"pattern_path", {{"features", "Extrude2"}}, "Pick the path."},
    };
    for (const auto& c : cases) EXPECT_EQ(refused(c.command, c.args), c.sentence) << c.command;
    EXPECT_NEAR(volumeOf("Body1"), before, 1e-9);
    EXPECT_EQ(body("Body1")->features.size(), 3u);
}

} // namespace

} // namespace cad::testing
