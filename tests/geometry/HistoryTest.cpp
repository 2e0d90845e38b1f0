// Bodies follow the history: a sketch dimension rebuilds its extrude, deleting a
// sketch in use is refused (or takes its users along, and undo brings them back),
// suppressing and rolling back features change the body.
#include "GeometryTestModel.h"

#include "geometry/ExtrudeFeature.h"

namespace cad::testing {

namespace {

class History : public GeometryModel {
protected:
    // Sketch1: a rectangle 10 wide (a dimension holds the width), extruded 2 into Body1.
    void dimensionedPlate() {
        sketchWithRectangles({{0, 0, 10, 4}});
        ok("add_constraint", {{"sketch", "Sketch1"},
                              {"type", "horizontal_distance"},
                              {"a", "Rectangle1.bottom_left"},
                              {"b", "Rectangle1.bottom_right"},
                              {"value", 10}});
        ok("extrude", {{"sketch", "Sketch1"}, {"distance", 2}});
    }
};

} // namespace

TEST_F(History, ChangingASketchDimensionRebuildsTheExtrude) {
    dimensionedPlate();
    EXPECT_NEAR(volumeOf("Body1"), 80, 1e-6);
    ok("edit_constraint",
       {{"sketch", "Sketch1"}, {"constraint", "HorizontalDistance1"}, {"value", 25}});
    EXPECT_NEAR(volumeOf("Body1"), 25 * 4 * 2, 1e-6);
    EXPECT_TRUE(body("Body1")->shape.findByName("Extrude1.side.Rectangle1.right"));
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Body1"), 80, 1e-6);
}

TEST_F(History, DeletingAUsedSketchIsRefusedOrTakesItsUsersAlong) {
    dimensionedPlate();
    CommandResult refused = run("delete_object", {{"object", "Sketch1"}});
    EXPECT_FALSE(refused.ok);
    EXPECT_EQ(refused.message,
              "Sketch1 is used by Extrude1; delete that first, or delete with its dependents.");
    EXPECT_TRUE(document.find("Sketch1"));

    const std::vector<std::string> before = [&] {
        std::vector<std::string> ids;
        for (const auto& o : document.objects()) ids.push_back(o->id);
        return ids;
    }();
    EXPECT_EQ(ok("delete_object", {{"object", "Sketch1"}, {"with_dependents", true}}),
              "Deleted Sketch1 and what used it.");
    EXPECT_FALSE(document.find("Sketch1"));
    EXPECT_FALSE(document.find("Extrude1"));
    EXPECT_TRUE(body("Body1")->features.empty());
    EXPECT_TRUE(body("Body1")->shape.isNull());

    ASSERT_TRUE(stack.undo());
    std::vector<std::string> after;
    for (const auto& o : document.objects()) after.push_back(o->id);
    EXPECT_EQ(after, before);
    EXPECT_EQ(body("Body1")->features, std::vector<std::string>{"Extrude1"});
    EXPECT_NEAR(volumeOf("Body1"), 80, 1e-6);
}

TEST_F(History, AFeatureThatStopsWorkingKeepsTheLastGoodShape) {
    dimensionedPlate();
    std::string pocket = sketchWithRectangles({{2, 1, 4, 3}}, 2);
    ok("extrude",
       {{"sketch", pocket}, {"distance", -1}, {"operation", "cut"}, {"target", "Body1"}});
    EXPECT_NEAR(volumeOf("Body1"), 80 - 4, 1e-6);
    // Deleting the pocket's rectangle leaves its sketch with nothing to extrude.
    ok("delete_sketch_entity", {{"sketch", pocket}, {"entity", "Rectangle1"}});
    auto* extrude = document.findAs<ExtrudeFeature>("Extrude2");
    ASSERT_TRUE(extrude);
    EXPECT_EQ(extrude->error, "The sketch has no geometry to make a profile from.");
    EXPECT_NEAR(volumeOf("Body1"), 80, 1e-6);
    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(extrude->error.empty());
    EXPECT_NEAR(volumeOf("Body1"), 76, 1e-6);
}

TEST_F(History, SuppressingAndRollingBackChangeTheBody) {
    dimensionedPlate();
    std::string boss = sketchWithRectangles({{0, 0, 1, 1}}, 2);
    ok("extrude", {{"sketch", boss}, {"distance", 1}, {"operation", "join"}, {"target", "Body1"}});
    EXPECT_NEAR(volumeOf("Body1"), 81, 1e-6);
    ok("suppress_feature", {{"feature", "Extrude2"}, {"suppressed", true}});
    EXPECT_NEAR(volumeOf("Body1"), 80, 1e-6);
    ok("suppress_feature", {{"feature", "Extrude2"}, {"suppressed", false}});
    EXPECT_NEAR(volumeOf("Body1"), 81, 1e-6);
    ok("roll_back", {{"to", "Extrude2"}});
    EXPECT_NEAR(volumeOf("Body1"), 80, 1e-6);
    ok("roll_back", {});
    EXPECT_NEAR(volumeOf("Body1"), 81, 1e-6);
}

} // namespace cad::testing
