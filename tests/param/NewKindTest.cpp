// A kind added from outside the library, as later features add theirs: one table
// entry and one compute function give a working command and editor that change a
// body, with whole numbers and lengths typed as expressions.
#include "ParamTestModel.h"

#include "geometry/Naming.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"
#include "mcp/ToolCatalogue.h"

#include <BRepBuilderAPI_Transform.hxx>
#include <gp_Trsf.hxx>

namespace cad::testing {

namespace {

using Kind = FeatureArgument::Kind;

// Moves the body up by height, steps times.
ParamFeatureType liftKind() {
    ParamFeatureType type;
    type.typeId = "TestLift";
    type.nameBase = "Lift";
    type.command = "lift";
    type.label = "Lift";
    type.formId = "lift";
    type.description = "Lift a body.";
    type.arguments = {{"Height", "How far up.", "height", Kind::Length, true, {}, {}, ""},
                      {"Steps", "How many times.", "steps", Kind::Integer, false, {}, 1, ""}};
    type.compute = [](const Document&, const nlohmann::json& parameters,
                      const geometry::NamedShape& body,
                      const std::string& feature) -> Result<geometry::NamedShape> {
        if (body.isNull()) return fail("There's nothing to lift.");
        gp_Trsf up;
        up.SetTranslation(gp_Vec(0, 0,
                                 parameterNumber(parameters, "height", 0) *
                                     parameterNumber(parameters, "steps", 1)));
        return geometry::nameFacesByDirection(
            BRepBuilderAPI_Transform(body.shape(), up, Standard_True).Shape(), feature);
    };
    return type;
}

class NewKind : public ParamModel {
protected:
    NewKind() {
        if (!paramFeatureTypes().find("TestLift")) {
            EXPECT_TRUE(paramFeatureTypes().add(liftKind()));
        }
        registerParamCommands(registry);
    }
    double bottomOf(const std::string& id) { return bounds(body(id)->shape.shape())[2]; }
};

TEST_F(NewKind, OneEntryAndOneFunctionMakeACommandThatChangesABody) {
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}});
    ok("set_parameter", {{"name", "h"}, {"expression", "5"}});
    EXPECT_EQ(ok("lift", {{"body", "Box1"}, {"height", "h"}}), "Added Lift1 to Box1.");
    EXPECT_NEAR(bottomOf("Box1"), 5, 1e-9);
    EXPECT_TRUE(body("Box1")->shape.findByName("Lift1.top"));

    EXPECT_EQ(run("lift", {{"height", 1}}).message,
              "Give the target body (it isn't clear which body this changes).");
    EXPECT_EQ(run("lift", {{"body", "Box1"}, {"height", 1}, {"steps", 1.5}}).message,
              "lift: 'steps' must be a whole number.");
    EXPECT_EQ(run("lift", {{"body", "Box1"}, {"height", 1}, {"operation", "cut"}}).message,
              "lift: unknown argument 'operation'. Expected one of: height, steps, name, body.");

    EXPECT_EQ(ok("edit_lift", {{"feature", "Lift1"}, {"steps", 2}}), "Changed Lift1.");
    EXPECT_NEAR(bottomOf("Box1"), 10, 1e-9);
    ok("set_parameter", {{"name", "h"}, {"expression", "1"}});
    EXPECT_NEAR(bottomOf("Box1"), 2, 1e-9);
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(bottomOf("Box1"), 5, 1e-9);

    const nlohmann::ordered_json tools = mcp::toolDescriptors(registry);
    for (const auto& tool : tools) {
        if (tool["name"] != "lift") continue;
        EXPECT_EQ(tool["inputSchema"]["properties"]["body"]["description"],
                  "The body it changes (default: the body of what it uses).");
        EXPECT_EQ(tool["inputSchema"]["properties"]["steps"]["type"], "integer");
    }
}

} // namespace

} // namespace cad::testing
