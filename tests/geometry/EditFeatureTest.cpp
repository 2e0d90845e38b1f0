// edit_feature: values change and the body rebuilds; the parse and kind checks
// refuse with their exact sentences; undo puts the old values back; expressions
// stay bound to the feature.
#include "GeometryTestModel.h"

#include "core/units/NameLookup.h"
#include "geometry/ExtrudeFeature.h"

#include <algorithm>

namespace cad::testing {

namespace {

class EditFeature : public GeometryModel {
protected:
    // Body1: a 10 x 10 x 5 block (Extrude1) with a 2 x 2 boss of height 3 (Extrude2) on top.
    void blockWithBoss() {
        sketchWithRectangles({{0, 0, 10, 10}});
        ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
        std::string boss = sketchWithRectangles({{4, 4, 6, 6}}, 5);
        ok("extrude",
           {{"sketch", boss}, {"distance", 3}, {"operation", "join"}, {"target", "Body1"}});
    }
    ExtrudeFeature* extrude(const char* id) { return document.findAs<ExtrudeFeature>(id); }
};

} // namespace

TEST_F(EditFeature, ChangesOnlyTheGivenValuesAndRebuilds) {
    blockWithBoss();
    EXPECT_NEAR(volumeOf("Body1"), 512, 1e-6);
    EXPECT_EQ(ok("edit_feature", {{"feature", "Extrude2"}, {"distance", 1}}), "Edited Extrude2.");
    EXPECT_NEAR(volumeOf("Body1"), 504, 1e-6);
    EXPECT_EQ(extrude("Extrude2")->operation, ExtrudeOperation::Join);

    // Join and cut swap: the boss becomes a pocket of depth 1 going up: nothing to cut.
    ok("edit_feature", {{"feature", "Extrude2"}, {"operation", "cut"}, {"distance", -1}});
    EXPECT_NEAR(volumeOf("Body1"), 496, 1e-6);

    // A thin wall: a 10 x 10 ring 1 thick and 5 high; the pocket falls in its hollow.
    ok("edit_feature", {{"feature", "Extrude1"}, {"thickness", 1}});
    EXPECT_NEAR(volumeOf("Body1"), 36 * 5, 1e-6);
    ok("edit_feature", {{"feature", "Extrude1"}, {"thickness", 0}});
    EXPECT_NEAR(volumeOf("Body1"), 496, 1e-6);

    ok("edit_feature", {{"feature", "Extrude1"}, {"extent", "symmetric"}});
    auto b = bounds(body("Body1")->shape.shape());
    EXPECT_NEAR(b[2], -2.5, 1e-9);
    // The pocket's sketch stays at z = 5, now above the block: the cut misses it.
    EXPECT_NEAR(volumeOf("Body1"), 500, 1e-6);

    for (int i = 0; i < 5; ++i) ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Body1"), 512, 1e-6);
    EXPECT_EQ(extrude("Extrude2")->distance, 3);
    EXPECT_EQ(extrude("Extrude1")->extent, "one_side");
}

TEST_F(EditFeature, EditingTheLastStepGivesWhatAFullRebuildGives) {
    blockWithBoss();
    std::string pocket = sketchWithRectangles({{1, 1, 2, 2}}, 5);
    ok("extrude",
       {{"sketch", pocket}, {"distance", -1}, {"operation", "cut"}, {"target", "Body1"}});
    auto names = [&] {
        std::vector<std::string> out;
        for (auto& [shape, name] : body("Body1")->shape.names(TopAbs_FACE)) out.push_back(name);
        std::sort(out.begin(), out.end());
        return out;
    };
    for (double depth : {-2.0, -3.0, -1.0}) {
        ok("edit_feature", {{"feature", "Extrude3"}, {"distance", depth}});
        const double quick = volumeOf("Body1");
        const std::vector<std::string> quickNames = names();
        document.recomputeAll();
        EXPECT_NEAR(volumeOf("Body1"), quick, 1e-9);
        EXPECT_NEAR(quick, 512 + depth, 1e-6);
        EXPECT_EQ(names(), quickNames);
    }
    // Editing an earlier step rebuilds what follows it too.
    ok("edit_feature", {{"feature", "Extrude2"}, {"distance", 1}});
    EXPECT_NEAR(volumeOf("Body1"), 504 - 1, 1e-6);
    EXPECT_FALSE(extrude("Extrude2")->suppressed);
}

TEST_F(EditFeature, AFailingEditIsKeptAndReported) {
    sketchWithRectangles({{0, 0, 10, 10}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
    std::string cover = sketchWithRectangles({{-1, -1, 11, 11}}, 5);
    ok("extrude", {{"sketch", cover}, {"distance", -1}, {"operation", "cut"}, {"target", "Body1"}});
    EXPECT_NEAR(volumeOf("Body1"), 400, 1e-6);
    // Cutting deeper than the block leaves nothing: the edit stands, the body keeps
    // the shape before the failing feature, and the message says what broke.
    EXPECT_EQ(ok("edit_feature", {{"feature", "Extrude2"}, {"distance", -20}}),
              "Edited Extrude2. Now failing: Extrude2: The cut removes the entire body.");
    EXPECT_NEAR(volumeOf("Body1"), 500, 1e-6);
    EXPECT_EQ(extrude("Extrude2")->error, "The cut removes the entire body.");
    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(extrude("Extrude2")->error.empty());
    EXPECT_NEAR(volumeOf("Body1"), 400, 1e-6);
}

TEST_F(EditFeature, RefusalsUseTheirExactSentences) {
    blockWithBoss();
    ok("create_sketch", {{"plane", "XY"}});
    struct Case {
        Args args;
        const char* error;
    };
    const Case cases[] = {
        {{{"distance", 1}}, "edit_feature: missing string argument 'feature'."},
        {{{"feature", "Extrude1"}, {"operation", "merge"}},
         "edit_feature: 'operation' must be \"new_body\", \"join\" or \"cut\"."},
        {{{"feature", "Extrude1"}, {"direction", "up"}},
         "edit_feature: 'direction' must be \"inside\" or \"outside\"."},
        {{{"feature", "Extrude1"}}, "edit_feature: nothing to change."},
        {{{"feature", "Sketch1"}, {"distance", 1}},
         "No extrude, fillet or chamfer named 'Sketch1' exists."},
        {{{"feature", "Extrude1"}, {"tangent_chain", true}},
         "Only fillets and chamfers follow tangent chains."},
        {{{"feature", "Extrude1"}, {"radius", 1}},
         "An extrude has distances, a direction, an operation and a thin wall's thickness and "
         "side, not a radius."},
        {{{"feature", "Extrude1"}, {"distance", 0}}, "The extrusion distance must not be zero."},
        {{{"feature", "Extrude2"}, {"operation", "new_body"}},
         "A new-body extrude can't become a join or cut (or the reverse) yet; only join and cut "
         "can be swapped."},
        {{{"feature", "Extrude1"}, {"thickness", -1}},
         "A thin wall's thickness can't be negative (0: solid)."},
        {{{"feature", "Extrude1"}, {"extent", "two_sides"}},
         "Two sides needs a distance the other way (distance2)."},
    };
    for (const Case& c : cases) {
        CommandResult result = run("edit_feature", c.args);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.message, c.error);
    }
    EXPECT_NEAR(volumeOf("Body1"), 512, 1e-6);
    EXPECT_EQ(
        ok("edit_feature", {{"feature", "Extrude1"}, {"extent", "two_sides"}, {"distance2", 1}}),
        "Edited Extrude1.");
    EXPECT_NEAR(volumeOf("Body1"), 612, 1e-6);
}

TEST_F(EditFeature, ExpressionsStayBoundToParameters) {
    blockWithBoss();
    ok("set_parameter", {{"name", "h"}, {"expression", "4"}});
    ok("edit_feature", {{"feature", "Extrude2"}, {"distance", "h / 2"}});
    ExtrudeFeature* boss = extrude("Extrude2");
    EXPECT_NEAR(boss->distance, 2, 1e-12);
    EXPECT_NEAR(volumeOf("Body1"), 508, 1e-6);

    // The parameter changes: the value follows and the body rebuilds.
    ok("set_parameter", {{"name", "h"}, {"expression", "10"}});
    EXPECT_NEAR(boss->distance, 5, 1e-12);
    EXPECT_NEAR(volumeOf("Body1"), 520, 1e-6);

    // Renaming the parameter rewrites the expression.
    ok("rename_parameter", {{"name", "h"}, {"to", "height"}});
    EXPECT_EQ(boss->expressions.at("distance").text, "height / 2");

    // Without the parameter the value can't be evaluated: named after the value, kept as it was.
    std::vector<std::string> problems;
    document.setParameters({});
    {
        units::ScopedParameterLookup scope(document.parameterLookup(), document.lengthUnit());
        EXPECT_FALSE(boss->reevaluateExpressions(problems));
    }
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems.front().rfind("Extrude2.distance: ", 0), 0u) << problems.front();
    EXPECT_NEAR(boss->distance, 5, 1e-12);

    // A plain number unbinds the value.
    ok("edit_feature", {{"feature", "Extrude2"}, {"distance", 3}});
    EXPECT_TRUE(boss->valueExpressions().empty());
}

} // namespace cad::testing
