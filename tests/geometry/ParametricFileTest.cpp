// A parameter-driven model end to end: an extrude whose distance is an expression
// follows its parameter, still does after the project is saved and opened again,
// and keeps the parameter from being deleted while it uses it; a change, a refusal
// and an undo compute only the features the parameter reaches.
#include "GeometryTestModel.h"

#include "core/ProjectFile.h"
#include "geometry/GeometryTypes.h"
#include "sketch/SketchJson.h"

#include <filesystem>
#include <unistd.h>

using namespace cad;

namespace {

class ParametricFile : public cad::testing::GeometryModel {
protected:
    ParametricFile() {
        registerSketchTypes(types);
        registerGeometryTypes(types);
    }
    ObjectTypes types;
};

} // namespace

TEST_F(ParametricFile, AnExpressionFollowsItsParameterAcrossSaveAndOpen) {
    ok("set_parameter", {{"name", "w"}, {"expression", "10"}});
    std::string sketch = sketchWithRectangles({{0, 0, 20, 20}});
    ok("extrude", {{"sketch", sketch}, {"distance", "w * 2"}});
    EXPECT_NEAR(volumeOf("Body1"), 400 * 20, 1e-6);
    ok("set_parameter", {{"name", "w"}, {"expression", "15"}});
    EXPECT_NEAR(volumeOf("Body1"), 400 * 30, 1e-6);
    EXPECT_EQ(run("delete_parameter", {{"name", "w"}}).message,
              "w is used by Extrude1.distance; change those first.");

    const std::string path = (std::filesystem::temp_directory_path() /
                              ("korvel-parametric-" + std::to_string(getpid()) + ".kv3"))
                                 .string();
    ASSERT_TRUE(writeProject(document, path, "Korvel Studio test", types).ok());
    Result<std::unique_ptr<Document>> reopened = readProject(path, types);
    std::filesystem::remove(path);
    ASSERT_TRUE(reopened.ok()) << reopened.error();

    document.replaceWith(std::move(**reopened));
    stack.clear();
    EXPECT_NEAR(volumeOf("Body1"), 400 * 30, 1e-6);
    EXPECT_TRUE(body("Body1")->shape.findByName("Extrude1.end"));
    ok("set_parameter", {{"name", "w"}, {"expression", "1in"}});
    EXPECT_NEAR(volumeOf("Body1"), 400 * 50.8, 1e-6);
    stack.undo();
    EXPECT_NEAR(volumeOf("Body1"), 400 * 30, 1e-6);
}

TEST_F(ParametricFile, ChangesRefusalsAndUndoComputeOnlyWhatTheParameterReaches) {
    ok("set_parameter", {{"name", "w"}, {"expression", "20"}});
    ok("set_parameter", {{"name", "h"}, {"expression", "3"}});
    // Body1: a w x 10 plate 2 thick with a 2 x 2 boss h high last; Body2 uses neither.
    std::string plate = sketchWithRectangles({{0, 0, 20, 10}});
    ok("add_constraint", {{"sketch", plate},
                          {"type", "horizontal_distance"},
                          {"a", "Rectangle1.bottom_left"},
                          {"b", "Rectangle1.bottom_right"},
                          {"value", "w"}});
    ok("extrude", {{"sketch", plate}, {"distance", 2}});
    std::string boss = sketchWithRectangles({{1, 1, 3, 3}}, 2);
    ok("extrude",
       {{"sketch", boss}, {"distance", "h"}, {"operation", "join"}, {"target", "Body1"}});
    ok("extrude", {{"sketch", sketchWithRectangles({{50, 0, 60, 10}})}, {"distance", 1}});
    ASSERT_NEAR(volumeOf("Body1"), 412, 1e-6);
    const TopoDS_Shape other = body("Body2")->shape.shape();
    // The plate's result is what the boss starts from: the same shape means the
    // plate was not computed again.
    const TopoDS_Shape underBoss = document.shapeBefore("Extrude2")->shape();

    ok("set_parameter", {{"name", "h"}, {"expression", "5"}});
    const double bossed = volumeOf("Body1");
    EXPECT_NEAR(bossed, 420, 1e-6);
    EXPECT_TRUE(document.shapeBefore("Extrude2")->shape().IsSame(underBoss));

    const TopoDS_Shape built = body("Body1")->shape.shape();
    EXPECT_EQ(run("set_parameter", {{"name", "w"}, {"expression", "0"}}).message,
              "That would break Sketch1: HorizontalDistance1: A dimension must be greater "
              "than zero.");
    EXPECT_EQ(document.findParameter("w")->expression, "20");
    EXPECT_TRUE(body("Body1")->shape.shape().IsSame(built));

    // The plate's width reaches the whole body; undo gives back the same volume.
    ok("set_parameter", {{"name", "w"}, {"expression", "30"}});
    EXPECT_NEAR(volumeOf("Body1"), 620, 1e-6);
    ASSERT_TRUE(stack.undo());
    EXPECT_DOUBLE_EQ(volumeOf("Body1"), bossed);
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Body1"), 412, 1e-6);
    EXPECT_EQ(document.findParameter("h")->expression, "3");
    EXPECT_TRUE(body("Body2")->shape.shape().IsSame(other));
}
