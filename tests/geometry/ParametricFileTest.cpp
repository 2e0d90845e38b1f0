// A parameter-driven model end to end: an extrude whose distance is an expression
// follows its parameter, still does after the project is saved and opened again,
// and keeps the parameter from being deleted while it uses it.
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
