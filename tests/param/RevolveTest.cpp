// Revolve through its commands: volumes by Pappus for full and partial turns, the
// direction and split of the angle, cutting a body, editing with undo, and the
// sentences that refuse bad arguments without touching the document.
#include "ParamTestModel.h"

namespace cad::testing {

namespace {

class Revolve : public ParamModel {
protected:
    // Sketch1 on XZ: a 5 x 20 rectangle from x = 5, revolved about Z. Pappus: the
    // area 100 times the path of its centroid (radius 7.5).
    void ring(Args extra = {}) {
        xzRectangle(5, 0, 10, 20);
        CommandRecord record("revolve");
        record.set("sketch", "Sketch1").set("axis", "Z");
        for (const auto& [key, arg] : extra) record.set(key, arg.value);
        CommandResult result = stack.execute(record);
        ASSERT_TRUE(result.ok) << result.message;
    }
    static double ringVolume(double degrees) { return 100 * 7.5 * degrees * pi / 180; }
};

TEST_F(Revolve, FullAndPartialTurnsFollowPappus) {
    // About a construction centerline of the sketch itself (sketch y is model Y).
    std::string sketch = sketchWithRectangles({{5, 0, 10, 20}});
    addLine(sketch, 0, 0, 0, 30);
    ok("set_construction", {{"sketch", sketch}, {"entity", "Line1"}, {"construction", true}});
    EXPECT_EQ(ok("revolve", {{"sketch", sketch}, {"axis", sketch + "/Line1"}}),
              "Created Body1 with Revolve1.");
    EXPECT_NEAR(volumeOf("Body1"), ringVolume(360), 1e-6);
    EXPECT_FALSE(body("Body1")->shape.findByName("Revolve1.start")) << "a full turn has no ends";
    EXPECT_TRUE(body("Body1")->shape.findByName("Revolve1.side.Rectangle1.right"));

    // A rectangle on the axis makes a cylinder; more than a turn is one turn.
    xzRectangle(0, 0, 10, 20);
    ok("revolve", {{"sketch", "Sketch2"}, {"axis", "Z"}, {"angle", 400}});
    EXPECT_NEAR(volumeOf("Body2"), pi * 100 * 20, 1e-6);

    ok("revolve", {{"sketch", "Sketch2"}, {"axis", "Z"}, {"angle", 90}});
    EXPECT_NEAR(volumeOf("Body3"), pi * 100 * 20 / 4, 1e-6);
    EXPECT_TRUE(body("Body3")->shape.findByName("Revolve3.start"));
    EXPECT_TRUE(body("Body3")->shape.findByName("Revolve3.end"));
}

TEST_F(Revolve, NegativeAnglesTurnBackAndSymmetricSplitsTheAngle) {
    ring({{"angle", 90}});
    EXPECT_NEAR(volumeOf("Body1"), ringVolume(90), 1e-6);
    EXPECT_NEAR(bounds(body("Body1")->shape.shape())[1], 0, 1e-6); // +90 sweeps +X to +Y

    ok("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"angle", -90}});
    auto b = bounds(body("Body2")->shape.shape());
    EXPECT_NEAR(b[1], -10, 1e-6);
    EXPECT_NEAR(b[4], 0, 1e-6);

    ok("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"angle", 90}, {"symmetric", true}});
    b = bounds(body("Body3")->shape.shape());
    EXPECT_NEAR(b[1], -10 * std::sqrt(0.5), 1e-6);
    EXPECT_NEAR(b[4], 10 * std::sqrt(0.5), 1e-6);
    EXPECT_NEAR(volumeOf("Body3"), ringVolume(90), 1e-6);
}

TEST_F(Revolve, CutsAndJoinsABody) {
    ok("create_box", {{"width", 40}, {"depth", 40}, {"height", 20}, {"x", -20}, {"y", -20}});
    xzRectangle(5, -1, 10, 21);
    EXPECT_EQ(run("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"operation", "cut"}}).message,
              "Give the target body (it isn't clear which body this changes).");
    EXPECT_EQ(ok("revolve",
                 {{"sketch", "Sketch1"}, {"axis", "Z"}, {"operation", "cut"}, {"target", "Box1"}}),
              "Added Revolve1 to Box1.");
    EXPECT_NEAR(volumeOf("Box1"), 40 * 40 * 20 - pi * (100 - 25) * 20, 1e-6);

    // A body with nothing in it yet has nothing to join to.
    sketchWithRectangles({{0, 0, 5, 5}});
    ok("extrude", {{"sketch", "Sketch2"}, {"distance", 5}});
    ok("suppress_feature", {{"feature", "Extrude1"}, {"suppressed", true}});
    EXPECT_EQ(
        run("revolve",
            {{"sketch", "Sketch1"}, {"axis", "Z"}, {"operation", "join"}, {"target", "Body1"}})
            .message,
        "Join needs an existing body to add to.");
}

TEST_F(Revolve, EditChangesTheAngleAndUndoRestoresIt) {
    ring();
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(objectCount(), 1u) << "the new body goes with the feature";
    ASSERT_TRUE(stack.redo().ok);
    EXPECT_NEAR(volumeOf("Body1"), ringVolume(360), 1e-6);
    EXPECT_EQ(ok("edit_revolve", {{"feature", "Revolve1"}, {"angle", 180}}), "Changed Revolve1.");
    EXPECT_NEAR(volumeOf("Body1"), ringVolume(180), 1e-6);
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Body1"), ringVolume(360), 1e-6);
    ASSERT_TRUE(stack.redo().ok);
    EXPECT_NEAR(volumeOf("Body1"), ringVolume(180), 1e-6);

    // An angle typed with a parameter follows it.
    ok("set_parameter", {{"name", "turn"}, {"expression", "45"}});
    ok("edit_revolve", {{"feature", "Revolve1"}, {"angle", "turn * 2"}});
    EXPECT_NEAR(volumeOf("Body1"), ringVolume(90), 1e-6);
    ok("set_parameter", {{"name", "turn"}, {"expression", "60"}});
    EXPECT_NEAR(volumeOf("Body1"), ringVolume(120), 1e-6);
}

TEST_F(Revolve, BadArgumentsGetTheirSentenceAndChangeNothing) {
    ring();
    const std::size_t objects = objectCount();
    const std::size_t steps = stack.undoCount();
    const double volume = volumeOf("Body1");
    auto refused = [&](const char* command, Args args, const char* sentence) {
        CommandResult result = run(command, args);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.message, sentence);
    };
    refused("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"angle", "wide"}},
            "revolve: 'angle' must be a number: wide");
    refused("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"angel", 90}},
            "revolve: unknown argument 'angel'. Expected one of: sketch, axis, angle, symmetric, "
            "operation, target, name, body.");
    refused("revolve", {{"sketch", "Sketch1"}}, "revolve: missing 'axis'.");
    refused("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"operation", "fuse"}},
            "revolve: 'operation' must be one of new_body, join, cut, intersect.");
    refused("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"angle", 0}},
            "The angle must not be zero.");
    refused("revolve", {{"sketch", "Sketch1"}, {"axis", "Sketch1"}},
            "'Sketch1' isn't a straight line or axis.");
    refused("revolve", {{"sketch", "Sketch9"}, {"axis", "Z"}},
            "The sketch 'Sketch9' no longer exists.");
    refused("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"name", "Body1"}},
            "An object named 'Body1' already exists.");
    refused("edit_revolve", {{"angle", 90}}, "edit_revolve: missing 'feature'.");
    refused("edit_revolve", {{"feature", "Revolve7"}, {"angle", 90}},
            "No Revolve feature named 'Revolve7'.");
    refused("edit_revolve", {{"feature", "Revolve1"}, {"angle", 0}}, "The angle must not be zero.");
    refused("edit_revolve", {{"feature", "Revolve1"}, {"symmetric", 1}},
            "edit_revolve: 'symmetric' must be true or false.");
    EXPECT_EQ(objectCount(), objects);
    EXPECT_EQ(stack.undoCount(), steps);
    EXPECT_NEAR(volumeOf("Body1"), volume, 1e-9);
    EXPECT_EQ(document.nextId("Revolve"), "Revolve2");
}

} // namespace

} // namespace cad::testing
