// Fillets, chamfers and shells in the history: they follow their edges through
// sketch edits, fail with the body keeping its shape when an edge vanishes, undo
// and redo exactly, take edits and expressions, and survive a save and open.
#include "GeometryTestModel.h"

#include "core/ProjectFile.h"
#include "geometry/DressUpFeatures.h"
#include "geometry/GeometryTypes.h"
#include "sketch/SketchJson.h"

#include <filesystem>
#include <numbers>
#include <set>
#include <unistd.h>

namespace cad::testing {

namespace {

double filletArea(double r) { return (1 - std::numbers::pi / 4) * r * r; }

class DressUpHistory : public GeometryModel {
protected:
    std::set<std::string> faceNames(const std::string& id) {
        std::set<std::string> out;
        for (const auto& [face, name] : body(id)->shape.names(TopAbs_FACE)) out.insert(name);
        return out;
    }
    FilletFeature* fillet(const char* id) { return document.findAs<FilletFeature>(id); }
};

const char* const kTopFront = "Edge(Box1.front, Box1.top)";

} // namespace

TEST_F(DressUpHistory, AFilletFollowsItsEdgeThroughASketchEdit) {
    sketchWithRectangles({{0, 0, 10, 4}});
    ok("add_constraint", {{"sketch", "Sketch1"},
                          {"type", "horizontal_distance"},
                          {"a", "Rectangle1.bottom_left"},
                          {"b", "Rectangle1.bottom_right"},
                          {"value", 10}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 2}});
    ok("fillet", {{"body", "Body1"},
                  {"edges", "Edge(Extrude1.end, Extrude1.side.Rectangle1.bottom)"},
                  {"radius", 1}});
    EXPECT_NEAR(volumeOf("Body1"), 80 - filletArea(1) * 10, 1e-6);
    ok("edit_constraint",
       {{"sketch", "Sketch1"}, {"constraint", "HorizontalDistance1"}, {"value", 25}});
    EXPECT_TRUE(fillet("Fillet1")->error.empty());
    EXPECT_NEAR(volumeOf("Body1"), 200 - filletArea(1) * 25, 1e-6);
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Body1"), 80 - filletArea(1) * 10, 1e-6);
}

TEST_F(DressUpHistory, AVanishedEdgeFailsTheFilletAndTheBodyKeepsItsShape) {
    // A 20 x 10 x 5 block with a hole of radius 2; the hole's rim is rounded.
    sketchWithRectangles({{0, 0, 20, 10}});
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 10}, {"cy", 5}, {"radius", 2}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
    ok("fillet", {{"body", "Body1"},
                  {"edges", "Edge(Extrude1.end, Extrude1.side.Circle1)"},
                  {"radius", 0.5}});
    ok("chamfer", {{"body", "Body1"},
                   {"edges", "Edge(Extrude1.side.Rectangle1.left, Extrude1.start)"},
                   {"distance", 1}});
    const double both = volumeOf("Body1");
    EXPECT_LT(both, 1000 - 4 * std::numbers::pi * 5 - 5);

    ok("delete_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Circle1"}});
    EXPECT_EQ(fillet("Fillet1")->error, "Edge(Extrude1.end, Extrude1.side.Circle1) no longer "
                                        "exists: the geometry it was on has changed.");
    EXPECT_EQ(document.findAs<ChamferFeature>("Chamfer1")->error,
              "Not computed because an earlier feature failed.");
    EXPECT_NEAR(volumeOf("Body1"), 1000, 1e-6);

    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(fillet("Fillet1")->error.empty());
    EXPECT_NEAR(volumeOf("Body1"), both, 1e-6);
}

TEST_F(DressUpHistory, UndoAndRedoTakeEachFeatureExactlyAwayAndBack) {
    ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    struct State {
        std::vector<std::string> features;
        double volume;
        std::set<std::string> names;
    };
    std::vector<State> states{{{}, volumeOf("Box1"), faceNames("Box1")}};
    auto keep = [&] {
        states.push_back({body("Box1")->features, volumeOf("Box1"), faceNames("Box1")});
    };
    ok("fillet", {{"body", "Box1"}, {"edges", "Edge(Box1.front, Box1.right)"}, {"radius", 2}});
    keep();
    ok("chamfer", {{"body", "Box1"}, {"edges", "Edge(Box1.back, Box1.left)"}, {"distance", 1}});
    keep();
    ok("shell", {{"body", "Box1"}, {"faces", "Box1.top"}, {"thickness", 1}});
    keep();
    EXPECT_EQ(states.back().features, (std::vector<std::string>{"Fillet1", "Chamfer1", "Shell1"}));
    EXPECT_TRUE(states.back().names.count("Shell1.inner(Fillet1.round(Edge(Box1.front, "
                                          "Box1.right)))"));

    auto expectState = [&](const State& s) {
        EXPECT_EQ(body("Box1")->features, s.features);
        EXPECT_NEAR(volumeOf("Box1"), s.volume, 1e-9);
        EXPECT_EQ(faceNames("Box1"), s.names);
        EXPECT_EQ(document.objects().size(), 1 + s.features.size());
    };
    for (int i = 2; i >= 0; --i) {
        ASSERT_TRUE(stack.undo());
        expectState(states[static_cast<std::size_t>(i)]);
    }
    for (std::size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(stack.redo().ok);
        expectState(states[i]);
    }
}

TEST_F(DressUpHistory, EditFeatureTakesExpressionsAndRefusesBadValues) {
    ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    ok("fillet", {{"body", "Box1"}, {"edges", kTopFront}, {"radius", 1}});
    ok("set_parameter", {{"name", "r"}, {"expression", "4"}});
    EXPECT_EQ(ok("edit_feature", {{"feature", "Fillet1"}, {"radius", "r / 2"}}), "Edited Fillet1.");
    EXPECT_NEAR(volumeOf("Box1"), 6000 - filletArea(2) * 10, 1e-6);
    ok("set_parameter", {{"name", "r"}, {"expression", "6"}});
    EXPECT_NEAR(fillet("Fillet1")->radius, 3, 1e-12);
    EXPECT_NEAR(volumeOf("Box1"), 6000 - filletArea(3) * 10, 1e-6);

    ok("chamfer", {{"body", "Box1"}, {"edges", "Edge(Box1.bottom, Box1.left)"}, {"distance", 1}});
    ok("shell", {{"body", "Box1"}, {"faces", "Box1.bottom"}, {"thickness", 1}});
    const double built = volumeOf("Box1");
    struct Case {
        Args args;
        const char* error;
    };
    const Case cases[] = {
        {{{"feature", "Fillet1"}, {"radius", 0}}, "The fillet radius must be greater than zero."},
        {{{"feature", "Fillet1"}, {"radius", -2}}, "The fillet radius must be greater than zero."},
        {{{"feature", "Chamfer1"}, {"distance", 0}},
         "The chamfer distance must be greater than zero."},
        {{{"feature", "Shell1"}, {"thickness", 0}},
         "The shell thickness must be greater than zero."},
        {{{"feature", "Fillet1"}, {"distance", 1}},
         "A fillet has a radius, not a distance or operation."},
        {{{"feature", "Chamfer1"}, {"radius", 1}},
         "A chamfer has a distance, not a radius or operation."},
        {{{"feature", "Chamfer1"}, {"direction", "outside"}},
         "A chamfer has a distance, not a radius or operation."},
        {{{"feature", "Shell1"}, {"operation", "cut"}}, "A shell has a thickness and a direction."},
        {{{"feature", "Fillet1"}, {"extent", "symmetric"}},
         "Only an extrude goes one side, two sides or symmetric."},
        {{{"feature", "Shell1"}, {"tangent_chain", false}},
         "Only fillets and chamfers follow tangent chains."},
        {{{"feature", "Fillet2"}, {"radius", 1}},
         "No extrude, fillet or chamfer named 'Fillet2' exists."},
    };
    for (const Case& c : cases) EXPECT_EQ(run("edit_feature", c.args).message, c.error);
    EXPECT_FALSE(run("edit_feature", {{"feature", "Fillet1"}, {"radius", "nosuch + 1"}}).ok);
    EXPECT_NEAR(volumeOf("Box1"), built, 1e-9);
    EXPECT_EQ(fillet("Fillet1")->expressions.at("radius").text, "r / 2");

    // A radius the faces can't take is kept and reported; the body shows the shape
    // before the fillet until the edit is undone.
    EXPECT_EQ(ok("edit_feature", {{"feature", "Fillet1"}, {"radius", 25}}),
              "Edited Fillet1. Now failing: Fillet1: The fillet couldn't be built: the radius "
              "may be too large for the faces around these edges.");
    EXPECT_TRUE(fillet("Fillet1")->expressions.empty());
    EXPECT_NEAR(volumeOf("Box1"), 6000, 1e-9);
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Box1"), built, 1e-9);
    EXPECT_EQ(fillet("Fillet1")->expressions.at("radius").text, "r / 2");
}

TEST_F(DressUpHistory, SavedAndOpenedProjectsRebuildThem) {
    ok("set_parameter", {{"name", "r"}, {"expression", "2"}});
    ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    ok("fillet", {{"body", "Box1"}, {"edges", kTopFront}, {"radius", "r"}});
    ok("chamfer", {{"body", "Box1"},
                   {"edges", "Edge(Box1.bottom, Box1.left)"},
                   {"distance", 1},
                   {"tangent_chain", false}});
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}});
    ok("shell",
       {{"body", "Box2"}, {"faces", "Box2.top"}, {"thickness", 1}, {"direction", "outside"}});
    const double first = volumeOf("Box1"), second = volumeOf("Box2");

    ObjectTypes types;
    registerSketchTypes(types);
    registerGeometryTypes(types);
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("korvel-dressup-" + std::to_string(getpid()) + ".kv3"))
                                 .string();
    ASSERT_TRUE(writeProject(document, path, "Korvel Studio test", types).ok());
    Result<std::unique_ptr<Document>> reopened = readProject(path, types);
    std::filesystem::remove(path);
    ASSERT_TRUE(reopened.ok()) << reopened.error();
    document.replaceWith(std::move(**reopened));
    stack.clear();

    EXPECT_NEAR(volumeOf("Box1"), first, 1e-9);
    EXPECT_NEAR(volumeOf("Box2"), second, 1e-9);
    EXPECT_FALSE(document.findAs<ChamferFeature>("Chamfer1")->tangentChain);
    EXPECT_TRUE(document.findAs<ShellFeature>("Shell1")->outward);
    EXPECT_EQ(document.findAs<ShellFeature>("Shell1")->faces, std::vector<std::string>{"Box2.top"});
    // The radius still follows its parameter.
    ok("set_parameter", {{"name", "r"}, {"expression", "3"}});
    EXPECT_NEAR(first - volumeOf("Box1"), (filletArea(3) - filletArea(2)) * 10, 1e-6);
}

} // namespace cad::testing
