// fillet, chamfer and shell on real shapes: which edges round, how far a blend
// runs along a tangent chain, the names of the new faces, and refusals that leave
// the document as it was.
#include "GeometryTestModel.h"

#include "geometry/DressUpFeatures.h"

#include <cmath>
#include <numbers>

namespace cad::testing {

namespace {

// The cross-section a fillet of radius r takes off a right-angled edge.
double filletArea(double r) { return (1 - std::numbers::pi / 4) * r * r; }

class DressUp : public GeometryModel {
protected:
    // Body1: a slot 20 long between its end centres, 10 wide, 10 high, drawn as
    // Line1, Arc1, Line2, Arc2 so each side face is named after its own curve.
    void slot() {
        ok("create_sketch", {{"plane", "XY"}});
        addLine("Sketch1", 0, -5, 20, -5);
        ok("add_arc", {{"sketch", "Sketch1"},
                       {"cx", 20},
                       {"cy", 0},
                       {"radius", 5},
                       {"start_angle", -90},
                       {"sweep_angle", 180}});
        addLine("Sketch1", 20, 5, 0, 5);
        ok("add_arc", {{"sketch", "Sketch1"},
                       {"cx", 0},
                       {"cy", 0},
                       {"radius", 5},
                       {"start_angle", 90},
                       {"sweep_angle", 180}});
        ok("extrude", {{"sketch", "Sketch1"}, {"distance", 10}});
    }
    int facesNamed(const std::string& body, const std::string& start) {
        int n = 0;
        for (const auto& [face, name] : this->body(body)->shape.names(TopAbs_FACE))
            n += name.rfind(start, 0) == 0;
        return n;
    }
    void box(double w, double d, double h) {
        ok("create_box", {{"width", w}, {"depth", d}, {"height", h}});
    }
};

const char* const kTopFront = "Edge(Box1.front, Box1.top)";

} // namespace

TEST_F(DressUp, AFilletOrChamferOnOneBoxEdgeTakesOffThatEdgeOnly) {
    box(10, 20, 30);
    EXPECT_EQ(ok("fillet", {{"body", "Box1"}, {"edges", kTopFront}, {"radius", 2}}),
              "Rounded 1 edge of Box1 (Fillet1).");
    EXPECT_NEAR(volumeOf("Box1"), 6000 - filletArea(2) * 10, 1e-6);
    EXPECT_EQ(count(body("Box1")->shape.shape(), TopAbs_FACE), 7);
    const auto round = body("Box1")->shape.findByName("Fillet1.round(Edge(Box1.front, Box1.top))");
    ASSERT_TRUE(round);
    EXPECT_NEAR(bounds(*round)[5], 30, 1e-7);
    EXPECT_TRUE(body("Box1")->shape.findByName("Box1.top"));

    // The same edge with the body's name in front is the same edge.
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Box1"), 6000, 1e-9);
    ok("fillet", {{"body", "Box1"},
                  {"edges", std::string("Box1/") + kTopFront},
                  {"radius", 2},
                  {"name", "Prefixed"}});
    EXPECT_NEAR(volumeOf("Box1"), 6000 - filletArea(2) * 10, 1e-6);
    ASSERT_TRUE(document.findAs<FilletFeature>("Prefixed"));
    EXPECT_EQ(document.findAs<FilletFeature>("Prefixed")->edges,
              std::vector<std::string>{kTopFront});

    // A chamfer on two more edges, the second given twice over.
    EXPECT_EQ(ok("chamfer", {{"body", "Box1"},
                             {"edges", "Edge(Box1.back, Box1.top); Edge(Box1.bottom, Box1.left); "
                                       "Box1/Edge(Box1.back, Box1.top)"},
                             {"distance", 1}}),
              "Beveled 3 edges of Box1 (Chamfer1).");
    EXPECT_NEAR(volumeOf("Box1"), 6000 - filletArea(2) * 10 - 0.5 * 10 - 0.5 * 20, 1e-6);
    EXPECT_TRUE(body("Box1")->shape.findByName("Chamfer1.bevel(Edge(Box1.back, Box1.top))"));

    // Three rounded edges meeting at a corner get a corner patch named after the vertex.
    ok("fillet", {{"body", "Box1"},
                  {"edges", "Edge(Box1.front, Box1.right); Edge(Box1.bottom, Box1.right); "
                            "Edge(Box1.bottom, Box1.front)"},
                  {"radius", 1},
                  {"name", "Corner"}});
    EXPECT_EQ(facesNamed("Box1", "Corner.corner(Vertex(Box1.bottom, Box1.front, Box1.right))"), 1);
}

TEST_F(DressUp, AFilletFollowsTheTangentChainUnlessToldNotTo) {
    slot();
    const double solid = volumeOf("Body1");
    const double r = 1;
    // Round the top edge of one straight side: the blend runs all round the loop.
    EXPECT_EQ(ok("fillet", {{"body", "Body1"},
                            {"edges", "Edge(Extrude1.end, Extrude1.side.Line1)"},
                            {"radius", r}}),
              "Rounded 1 edge of Body1 (Fillet1).");
    EXPECT_EQ(facesNamed("Body1", "Fillet1.round("), 4);
    // Two straight runs, and two half-turns whose section sits (10 - 3 pi) / (12 - 3 pi) r in.
    const double inset = (10 - 3 * std::numbers::pi) / (12 - 3 * std::numbers::pi) * r;
    const double chain = filletArea(r) * (2 * 20 + 2 * std::numbers::pi * (5 - inset));
    EXPECT_NEAR(solid - volumeOf("Body1"), chain, 1e-3);

    // Without the chain only the straight edge rounds, ending square at its ends.
    EXPECT_EQ(ok("edit_feature", {{"feature", "Fillet1"}, {"tangent_chain", false}}),
              "Edited Fillet1.");
    EXPECT_NEAR(solid - volumeOf("Body1"), filletArea(r) * 20, 1e-4);
    EXPECT_EQ(count(body("Body1")->shape.shape(), TopAbs_SOLID), 1);
    EXPECT_EQ(facesNamed("Body1", "Fillet1.round("), 1);
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(solid - volumeOf("Body1"), chain, 1e-3);

    // A chamfer told not to follow the chain bevels the one edge too.
    ok("chamfer", {{"body", "Body1"},
                   {"edges", "Edge(Extrude1.side.Line2, Extrude1.start)"},
                   {"distance", 1},
                   {"tangent_chain", false}});
    EXPECT_NEAR(solid - volumeOf("Body1"), chain + 0.5 * 20, 1e-3);
}

TEST_F(DressUp, AShellHollowsTheBodyAndNamesItsWalls) {
    box(10, 10, 10);
    // Walls 6 thick inward cannot fit in a 10 mm cube: refused, nothing added.
    CommandResult thick = run("shell", {{"body", "Box1"}, {"faces", "Box1.top"}, {"thickness", 6}});
    EXPECT_FALSE(thick.ok);
    EXPECT_TRUE(thick.message == "The shell couldn't be built: the walls are too thick for the "
                                 "body's shape." ||
                thick.message == "The shell couldn't be built: the walls may be too thick for "
                                 "the body's shape.")
        << thick.message;
    EXPECT_TRUE(body("Box1")->features.empty());
    EXPECT_EQ(document.objects().size(), 1u);
    EXPECT_NEAR(volumeOf("Box1"), 1000, 1e-9);

    EXPECT_EQ(ok("shell", {{"body", "Box1"}, {"faces", "Box1/Box1.top"}, {"thickness", 1}}),
              "Shelled Box1, open at 1 face (Shell1).");
    EXPECT_NEAR(volumeOf("Box1"), 1000 - 8 * 8 * 9, 1e-6);
    const geometry::NamedShape& shape = body("Box1")->shape;
    EXPECT_FALSE(shape.findByName("Box1.top"));
    for (const char* name : {"Box1.front", "Box1.bottom", "Shell1.inner(Box1.front)",
                             "Shell1.inner(Box1.bottom)", "Shell1.rim(Box1.top)"})
        EXPECT_TRUE(shape.findByName(name)) << name;
    EXPECT_NEAR(bounds(*shape.findByName("Shell1.inner(Box1.bottom)"))[2], 1, 1e-7);

    EXPECT_EQ(ok("edit_feature", {{"feature", "Shell1"}, {"direction", "outside"}}),
              "Edited Shell1.");
    EXPECT_NEAR(volumeOf("Box1"), 12 * 12 * 11 - 1000, 1e-6);
    EXPECT_TRUE(body("Box1")->shape.findByName("Shell1.outer(Box1.left)"));

    box(10, 10, 10);
    EXPECT_EQ(ok("shell", {{"body", "Box2"},
                           {"faces", "Box2.top; Box2.front"},
                           {"thickness", 1},
                           {"name", "Tray"}}),
              "Shelled Box2, open at 2 faces (Tray).");
    EXPECT_NEAR(volumeOf("Box2"), 1000 - 8 * 9 * 9, 1e-6);
}

TEST_F(DressUp, RefusalsUseTheirSentencesAndChangeNothing) {
    box(10, 20, 30);
    ok("create_sketch", {{"plane", "XY"}});
    struct Case {
        const char* command;
        Args args;
        const char* error;
    };
    const Case cases[] = {
        {"fillet",
         {{"edges", kTopFront}, {"radius", 1}},
         "fillet: missing string argument 'body'."},
        {"fillet",
         {{"body", "Box1"}, {"radius", 1}},
         "fillet: missing 'edges' (names separated by ';')."},
        {"chamfer",
         {{"body", "Box1"}, {"edges", " ; "}, {"distance", 1}},
         "chamfer: missing 'edges' (names separated by ';')."},
        {"shell",
         {{"body", "Box1"}, {"thickness", 1}},
         "shell: missing 'faces' (names separated by ';')."},
        {"fillet",
         {{"body", "Box1"}, {"edges", kTopFront}},
         "fillet: missing length argument 'radius'."},
        {"chamfer",
         {{"body", "Box1"}, {"edges", kTopFront}},
         "chamfer: missing length argument 'distance'."},
        {"shell",
         {{"body", "Box1"}, {"faces", "Box1.top"}},
         "shell: missing length argument 'thickness'."},
        {"shell",
         {{"body", "Box1"}, {"faces", "Box1.top"}, {"thickness", 1}, {"direction", "up"}},
         "shell: 'direction' must be \"inside\" or \"outside\"."},
        {"fillet",
         {{"body", "Sketch1"}, {"edges", kTopFront}, {"radius", 1}},
         "No body named 'Sketch1' exists."},
        {"fillet",
         {{"body", "Box1"}, {"edges", kTopFront}, {"radius", 0}},
         "The fillet radius must be greater than zero."},
        {"chamfer",
         {{"body", "Box1"}, {"edges", kTopFront}, {"distance", -1}},
         "The chamfer distance must be greater than zero."},
        {"shell",
         {{"body", "Box1"}, {"faces", "Box1.top"}, {"thickness", 1e-8}},
         "The shell thickness must be greater than zero."},
        {"fillet",
         {{"body", "Box1"}, {"edges", kTopFront}, {"radius", 1}, {"name", "sketch1"}},
         "An object named 'sketch1' already exists."},
        {"fillet",
         {{"body", "Box1"}, {"edges", "Edge(Box1.top, Box1.nowhere)"}, {"radius", 1}},
         "Edge(Box1.top, Box1.nowhere) no longer exists: the geometry it was on has changed."},
        {"chamfer",
         {{"body", "Box1"}, {"edges", "Box1.top"}, {"distance", 1}},
         "Box1.top no longer exists: the geometry it was on has changed."},
        {"shell",
         {{"body", "Box1"}, {"faces", kTopFront}, {"thickness", 1}},
         "Edge(Box1.front, Box1.top) no longer exists: the geometry it was on has changed."},
        {"fillet",
         {{"body", "Box1"}, {"edges", std::string("Body7/") + kTopFront}, {"radius", 1}},
         "'Body7/Edge(Box1.front, Box1.top)' isn't on Box1."},
        {"fillet",
         {{"body", "Box1"}, {"edges", kTopFront}, {"radius", 25}},
         "The fillet couldn't be built: the radius may be too large for the faces around these "
         "edges."},
        {"chamfer",
         {{"body", "Box1"}, {"edges", kTopFront}, {"distance", 25}},
         "The chamfer couldn't be built: the distance may be too large for the faces around "
         "these edges."},
    };
    for (const Case& c : cases) {
        CommandResult result = run(c.command, c.args);
        EXPECT_FALSE(result.ok) << c.error;
        EXPECT_EQ(result.message, c.error);
    }
    EXPECT_TRUE(body("Box1")->features.empty());
    EXPECT_EQ(document.objects().size(), 2u);
    EXPECT_NEAR(volumeOf("Box1"), 6000, 1e-9);
    // Refused features used up no names.
    EXPECT_EQ(ok("chamfer", {{"body", "Box1"}, {"edges", kTopFront}, {"distance", 1}}),
              "Beveled 1 edge of Box1 (Chamfer1).");
}

} // namespace cad::testing
