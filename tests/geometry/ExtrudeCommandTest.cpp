// extrude and create_box driven through the command stack: even-odd regions, face
// names, extents, operations, thin walls, failures that leave the document alone.
#include "GeometryTestModel.h"

#include "geometry/ExtrudeFeature.h"

#include <cmath>
#include <tuple>

namespace cad::testing {

namespace {

class Extrude : public GeometryModel {};

} // namespace

TEST_F(Extrude, BoxIsOneNamedSolidAndUndoesAndRedoes) {
    EXPECT_EQ(ok("create_box", {{"width", 1},
                                {"depth", 2},
                                {"height", 3},
                                {"x", 5},
                                {"y", -1},
                                {"z", "1cm"},
                                {"name", "Block"}}),
              "Created Block.");
    GeometryObject* box = body("Block");
    ASSERT_TRUE(box);
    EXPECT_EQ(count(box->shape.shape(), TopAbs_SOLID), 1);
    const std::array<double, 6> b = bounds(box->shape.shape()), at{5, -1, 10, 6, 1, 13};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(b[i], at[i], 1e-9);
    EXPECT_TRUE(box->shape.findByName("Edge(Block.front, Block.top)"));
    EXPECT_TRUE(box->features.empty());
    ASSERT_TRUE(stack.undo());
    EXPECT_FALSE(body("Block"));
    EXPECT_TRUE(stack.redo().ok);
    EXPECT_NEAR(volumeOf("Block"), 6, 1e-9);

    struct Case {
        Args args;
        const char* error;
    };
    const Case cases[] = {
        {{{"depth", 1}, {"height", 1}}, "create_box: missing length argument 'width'."},
        {{{"width", 1}, {"depth", 1}, {"height", 1}, {"name", ""}},
         "create_box: argument 'name' must be a non-empty string."},
        {{{"width", 1}, {"depth", 1}, {"height", 1}, {"name", "block"}},
         "An object named 'block' already exists."},
        {{{"width", 1}, {"depth", 0}, {"height", 2}},
         "Box dimensions must all be greater than zero (got width=1, depth=0, height=2)"},
    };
    for (const Case& c : cases) EXPECT_EQ(run("create_box", c.args).message, c.error);
    EXPECT_EQ(document.objects().size(), 1u);
    EXPECT_EQ(ok("create_box", {{"width", 1}, {"depth", 1}, {"height", 1}}), "Created Box1.");
}

TEST_F(Extrude, SquareInSquareIsAFrameAndAThirdSquareIsSolidAgain) {
    std::string sketch = sketchWithRectangles({{0, 0, 20, 20}, {5, 5, 15, 15}});
    EXPECT_EQ(ok("extrude", {{"sketch", sketch}, {"distance", 5}}), "Created Body1 with Extrude1.");
    GeometryObject* frame = body("Body1");
    ASSERT_TRUE(frame);
    EXPECT_NEAR(volume(frame->shape.shape()), 1500, 1e-6);
    EXPECT_EQ(count(frame->shape.shape(), TopAbs_SOLID), 1);
    for (const char* name : {"Extrude1.start", "Extrude1.end", "Extrude1.side.Rectangle1.top",
                             "Extrude1.side.Rectangle1.left", "Extrude1.side.Rectangle2.bottom",
                             "Extrude1.side.Rectangle2.right"})
        EXPECT_TRUE(frame->shape.findByName(name)) << name;
    // The end cap is the frame at z = 5 facing up.
    auto end = bounds(*frame->shape.findByName("Extrude1.end"));
    EXPECT_NEAR(end[2], 5, 1e-9);
    EXPECT_NEAR(end[5], 5, 1e-9);
    EXPECT_TRUE(frame->shape.findByName("Edge(Extrude1.end, Extrude1.side.Rectangle2.top)"));

    std::string third = sketchWithRectangles({{0, 0, 20, 20}, {5, 5, 15, 15}, {8, 8, 12, 12}});
    ok("extrude", {{"sketch", third}, {"distance", 5}});
    EXPECT_NEAR(volumeOf("Body2"), 1500 + 16 * 5, 1e-6);
    EXPECT_EQ(count(body("Body2")->shape.shape(), TopAbs_SOLID), 2);
    // Two separate end caps: the one whose region has the smaller curve name keeps the bare name.
    auto bare = bounds(*body("Body2")->shape.findByName("Extrude2.end"));
    auto second = bounds(*body("Body2")->shape.findByName("Extrude2.end[2]"));
    EXPECT_NEAR(bare[3] - bare[0], 20, 1e-9);
    EXPECT_NEAR(second[3] - second[0], 4, 1e-9);
}

TEST_F(Extrude, ARegionReferenceExtrudesThatRegionAlone) {
    std::string sketch = sketchWithRectangles({{0, 0, 20, 20}, {5, 5, 15, 15}});
    const std::string hole =
        sketch + "/Region(Rectangle2.bottom+Rectangle2.left+Rectangle2.right+Rectangle2.top)";
    ok("extrude", {{"sketch", hole}, {"distance", 2}});
    EXPECT_NEAR(volumeOf("Body1"), 200, 1e-6);
    // Two references in one list: the frame and the hole fill the whole square.
    const std::string frame = sketch + "/Region(Rectangle1.bottom+Rectangle1.left+Rectangle1.right+"
                                       "Rectangle1.top)";
    ok("extrude", {{"sketch", frame + " ; " + hole}, {"distance", 1}});
    EXPECT_NEAR(volumeOf("Body2"), 400, 1e-6);
    EXPECT_EQ(count(body("Body2")->shape.shape(), TopAbs_SOLID), 1);

    CommandResult missing =
        run("extrude", {{"sketch", sketch + "/Region(Rectangle9.top)"}, {"distance", 1}});
    EXPECT_EQ(missing.message,
              sketch + "/Region(Rectangle9.top) has no region bounded by those curves now.");
}

TEST_F(Extrude, ExtentsSpanTheRightHeights) {
    struct Case {
        Args args;
        double zmin, zmax;
    };
    const Case cases[] = {
        {{{"distance", 10}}, 0, 10},
        {{{"distance", -10}}, -10, 0},
        {{{"distance", 10}, {"extent", "symmetric"}}, -5, 5},
        {{{"distance", -10}, {"extent", "symmetric"}}, -5, 5},
        {{{"distance", 10}, {"extent", "two_sides"}, {"distance2", 4}}, -4, 10},
        {{{"distance", -10}, {"extent", "two_sides"}, {"distance2", 4}}, -10, 4},
    };
    std::string sketch = sketchWithRectangles({{0, 0, 2, 3}});
    int n = 0;
    for (const Case& c : cases) {
        CommandRecord record("extrude");
        record.set("sketch", Value(sketch));
        for (const auto& [key, arg] : c.args) record.set(key, arg.value);
        CommandResult result = stack.execute(record);
        ASSERT_TRUE(result.ok) << result.message;
        auto b = bounds(body("Body" + std::to_string(++n))->shape.shape());
        EXPECT_NEAR(b[2], c.zmin, 1e-9) << record.toCall();
        EXPECT_NEAR(b[5], c.zmax, 1e-9) << record.toCall();
        EXPECT_NEAR(volumeOf("Body" + std::to_string(n)), 6 * (c.zmax - c.zmin), 1e-6);
    }
}

TEST_F(Extrude, ArgumentErrorsComeInTheirOrder) {
    struct Case {
        Args args;
        const char* error;
    };
    const Case cases[] = {
        {{{"distance", 1}}, "extrude: missing string argument 'sketch'."},
        {{{"sketch", "Sketch1"}, {"distance", 1}, {"operation", "fuse"}, {"thickness", -1}},
         "extrude: 'operation' must be \"new_body\", \"join\" or \"cut\"."},
        {{{"sketch", "Sketch1"}, {"distance", 1}, {"thickness", -1}, {"thin_side", "left"}},
         "extrude: 'thickness' can't be negative."},
        {{{"sketch", "Sketch1"}, {"distance", 1}, {"thin_side", "left"}, {"extent", "both"}},
         "extrude: 'thin_side' must be \"inside\", \"outside\" or \"center\"."},
        {{{"sketch", "Sketch1"}, {"distance", 1}, {"extent", "both"}},
         "extrude: 'extent' must be \"one_side\", \"two_sides\" or \"symmetric\"."},
        {{{"sketch", "Sketch1"}, {"distance", 1}, {"extent", "two_sides"}, {"distance2", -3}},
         "extrude: two sides needs 'distance2', the distance the other way."},
        {{{"sketch", "Sketch1"}, {"distance", 1}, {"colour", "red"}},
         "extrude: unknown argument 'colour'. Expected one of: sketch, distance, operation, "
         "target, name, body, thickness, thin_side, extent, distance2."},
    };
    for (const Case& c : cases) {
        CommandResult result = run("extrude", c.args);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.message, c.error);
    }
}

TEST_F(Extrude, ExecutionErrorsLeaveTheDocumentAsItWas) {
    std::string sketch = sketchWithRectangles({{0, 0, 2, 2}});
    ok("create_box", {{"width", 1}, {"depth", 1}, {"height", 1}});
    const std::size_t objects = document.objects().size();
    const auto counters = document.idCounters();
    struct Case {
        Args args;
        std::string error;
    };
    const Case cases[] = {
        {{{"sketch", "Nope"}, {"distance", 1}}, "No sketch named 'Nope' exists."},
        {{{"sketch", sketch}, {"distance", 1e-9}}, "The extrusion distance must not be zero."},
        {{{"sketch", sketch}, {"distance", 1}, {"operation", "join"}},
         "Join and cut need a target body; this sketch isn't on a body."},
        {{{"sketch", sketch}, {"distance", 1}, {"operation", "cut"}, {"target", "Body7"}},
         "No body named 'Body7' exists."},
        {{{"sketch", sketch}, {"distance", 1}, {"body", "BOX1"}},
         "An object named 'BOX1' already exists."},
        {{{"sketch", sketch + "/Line1"}, {"distance", 1}},
         sketch + "/Line1 has no region bounded by those curves now."},
        {{{"sketch", "Box1/Box1.nowhere"}, {"distance", 1}},
         "'Box1/Box1.nowhere': Box1 has no element with that name now."},
        {{{"sketch", "XY"}, {"distance", 1}}, "No sketch named 'XY' exists."},
        {{{"sketch", "XY; " + sketch}, {"distance", 1}},
         "'XY' can't be a profile: use a sketch, a closed region of one, or a flat face."},
    };
    for (const Case& c : cases) {
        CommandResult result = run("extrude", c.args);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.message, c.error);
        EXPECT_EQ(document.objects().size(), objects);
        EXPECT_EQ(document.idCounters(), counters);
    }
    EXPECT_EQ(ok("extrude", {{"sketch", sketch}, {"distance", 1}}), "Created Body1 with Extrude1.");
}

TEST_F(Extrude, ALoneOpenLineHasNoClosedLoopsButMakesAThinWall) {
    ok("create_sketch", {{"plane", "XY"}});
    addLine("Sketch1", 0, 0, 10, 0);
    const std::size_t objects = document.objects().size();
    CommandResult open = run("extrude", {{"sketch", "Sketch1"}, {"distance", 3}});
    EXPECT_FALSE(open.ok);
    EXPECT_EQ(open.message,
              "The sketch has no closed loops: close the outline so it encloses an area.");
    EXPECT_EQ(document.objects().size(), objects);

    // Inside is to the left of the line's direction (+Y here), outside to the right.
    const std::tuple<const char*, double, double> sides[] = {
        {"center", -1, 1}, {"inside", 0, 2}, {"outside", -2, 0}};
    int n = 0;
    for (const auto& [side, ymin, ymax] : sides) {
        ok("extrude",
           {{"sketch", "Sketch1"}, {"distance", 3}, {"thickness", 2}, {"thin_side", side}});
        const std::string id = "Body" + std::to_string(++n);
        EXPECT_NEAR(volumeOf(id), 10 * 2 * 3, 1e-6) << side;
        auto b = bounds(body(id)->shape.shape());
        EXPECT_NEAR(b[1], ymin, 1e-7) << side;
        EXPECT_NEAR(b[4], ymax, 1e-7) << side;
    }
    // Both long sides of the centred wall lie a half thickness off the line; each end
    // cap passes through an end of the line, so it takes the line's own name.
    const auto& wall = body("Body1")->shape;
    EXPECT_TRUE(wall.findByName("Extrude1.side.Line1.offset[2]"));
    EXPECT_TRUE(wall.findByName("Extrude1.side.Line1[2]"));
    EXPECT_FALSE(wall.findByName("Extrude1.side.Line1[3]"));
}

TEST_F(Extrude, ThinWallsOfARegionGoInsideOutsideOrCentred) {
    std::string sketch = sketchWithRectangles({{0, 0, 10, 10}});
    const double pi = std::acos(-1.0);
    struct Case {
        const char* side;
        double volume, min, max;
    };
    // Growing rounds the corners (arc joins); shrinking keeps them sharp.
    const Case cases[] = {
        {"inside", 100 - 64, 0, 10},
        {"outside", 40 + pi, -1, 11},
        {"center", (120 + pi / 4) - 81, -0.5, 10.5},
    };
    int n = 0;
    for (const Case& c : cases) {
        ok("extrude",
           {{"sketch", sketch}, {"distance", 1}, {"thickness", 1}, {"thin_side", c.side}});
        const std::string id = "Body" + std::to_string(++n);
        EXPECT_NEAR(volumeOf(id), c.volume, 1e-4) << c.side;
        auto b = bounds(body(id)->shape.shape());
        EXPECT_NEAR(b[0], c.min, 1e-6) << c.side;
        EXPECT_NEAR(b[3], c.max, 1e-6) << c.side;
    }
    EXPECT_TRUE(body("Body1")->shape.findByName("Extrude1.side.Rectangle1.top"));
    EXPECT_TRUE(body("Body1")->shape.findByName("Extrude1.side.Rectangle1.top.offset"));
}

} // namespace cad::testing
