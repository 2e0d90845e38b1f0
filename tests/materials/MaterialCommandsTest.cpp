// set_material and set_appearance on bodies, faces and components: their sentences,
// undo, looks that follow faces through rebuilds, the rules that find a body's
// material and look, and the project file keeping all of it.
#include "geometry/materials/MaterialCommands.h"
#include "geometry/materials/BodyMaterial.h"
#include "mcp/QueryTools.h"
#include "tests/geometry/GeometryTestModel.h"

#include "core/ProjectFile.h"

namespace cad::testing {
namespace {

// A component as the project file knows it: only what covers its bodies matters here.
class Component : public DocumentObject {
public:
    std::string_view typeName() const override { return "Component"; }
};

class MaterialCommands : public GeometryModel {
protected:
    MaterialCommands() { registerMaterialCommands(registry); }

    // Body1: a 20 x 10 plate of the given thickness from Sketch1 (its top face is
    // "Extrude1.end").
    void plate(double thickness) {
        std::string sketch = sketchWithRectangles({{0, 0, 20, 10}});
        ok("extrude", {{"sketch", sketch}, {"distance", thickness}});
    }
    std::string failure(const std::string& name, Args arguments) {
        CommandResult result = run(name, arguments);
        EXPECT_FALSE(result.ok) << name << " succeeded: " << result.message;
        return result.message;
    }
    std::string lookText(const DocumentObject& body, std::string_view face = {}) {
        std::optional<Appearance> look =
            face.empty() ? lookOf(document, body) : lookOfFace(document, body, face);
        return look ? look->text : "(none)";
    }
};

TEST_F(MaterialCommands, SetMaterialOnTwoBodiesUndoesAsOne) {
    ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    ok("create_box", {{"width", 5}, {"depth", 5}, {"height", 5}, {"x", 20}});
    ok("set_material", {{"objects", "Box2"}, {"material", "oak_red"}});

    EXPECT_EQ(ok("set_material", {{"objects", "box1; Box2;"}, {"material", "aluminum_6061"}}),
              "Made of Aluminum 6061-T6.");
    EXPECT_EQ(body("Box1")->material, "aluminum_6061");
    EXPECT_EQ(body("Box2")->material, "aluminum_6061");
    EXPECT_EQ(stack.undoRecord()->toCall(),
              "set_material(objects=\"Box1; Box2\", material=\"aluminum_6061\")");

    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(body("Box1")->material, "");
    EXPECT_EQ(body("Box2")->material, "oak_red");
    ASSERT_TRUE(stack.redo().ok);
    EXPECT_EQ(body("Box1")->material, "aluminum_6061");

    EXPECT_EQ(ok("set_material", {{"objects", "Box2"}, {"material", " "}}), "Material taken off.");
    EXPECT_EQ(body("Box2")->material, "");
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(body("Box2")->material, "aluminum_6061");
}

TEST_F(MaterialCommands, WrongArgumentsGetTheirSentencesAndChangeNothing) {
    ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    std::string sketch = sketchWithRectangles({{0, 0, 1, 1}});

    EXPECT_EQ(failure("set_material", {{"material", "abs"}}),
              "set_material: give the bodies or components ('objects').");
    EXPECT_EQ(failure("set_material", {{"objects", " ; "}, {"material", "abs"}}),
              "set_material: give the bodies or components ('objects').");
    EXPECT_EQ(failure("set_material", {{"objects", "Box1"}}),
              "set_material: missing string argument 'material' (empty takes it off).");
    EXPECT_EQ(failure("set_material", {{"objects", "Box1"}, {"material", "unobtainium"}}),
              "No physical material 'unobtainium'. list_materials shows them.");
    EXPECT_EQ(failure("set_material", {{"objects", "Box1; Body9"}, {"material", "abs"}}),
              "'Body9' is not a body or component.");
    EXPECT_EQ(failure("set_material", {{"objects", "Box1; " + sketch}, {"material", "abs"}}),
              "'" + sketch + "' is not a body or component.");
    EXPECT_EQ(body("Box1")->material, "");

    EXPECT_EQ(failure("set_appearance", {{"appearance", "chrome"}}),
              "set_appearance: give the faces, bodies or components ('targets').");
    EXPECT_EQ(failure("set_appearance", {{"targets", "Box1"}}),
              "set_appearance: missing string argument 'appearance' (empty takes it off).");
    EXPECT_EQ(failure("set_appearance", {{"targets", "Box1"}, {"appearance", "sparkly"}}),
              "No appearance 'sparkly': use one list_materials shows, or a color such as "
              "\"#3a7bd5\".");
    EXPECT_EQ(failure("set_appearance",
                      {{"targets", "Box1/Box1.top; Box1/Box1.lid"}, {"appearance", "chrome"}}),
              "'Box1.lid' is not a face of Box1 (get_body lists its faces).");
    EXPECT_EQ(failure("set_appearance", {{"targets", sketch + "/Line1"}, {"appearance", "chrome"}}),
              "'" + sketch +
                  "' is not a body (a linked part's faces take its component's "
                  "appearance).");
    EXPECT_EQ(failure("set_appearance", {{"targets", "Box1; Body9"}, {"appearance", "chrome"}}),
              "'Body9' is not a body or component.");
    EXPECT_TRUE(body("Box1")->faceAppearances.empty());
    EXPECT_EQ(body("Box1")->appearance, "");
}

TEST_F(MaterialCommands, FacesKeepTheirPaintThroughARebuildAndUnderTheBodys) {
    plate(2);
    GeometryObject& plate = *body("Body1");
    ok("set_material", {{"objects", "Body1"}, {"material", "brass_360"}});
    EXPECT_EQ(ok("set_appearance", {{"targets", "Body1/Extrude1.end; Body1/Extrude1.start"},
                                    {"appearance", "#3A7BD5/glossy"}}),
              "Painted 2 faces.");
    EXPECT_EQ(plate.faceAppearances.at("Extrude1.end"), "#3a7bd5/glossy");

    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 7}});
    EXPECT_NEAR(volumeOf("Body1"), 20 * 10 * 7, 1e-6);
    ASSERT_TRUE(plate.shape.findByName("Extrude1.end"));
    EXPECT_EQ(lookText(plate, "Extrude1.end"), "#3a7bd5/glossy");
    // An unpainted face shows the material's look.
    std::string side;
    for (const auto& [face, name] : plate.shape.names(TopAbs_FACE))
        if (name.find(".side") != std::string::npos) side = name;
    ASSERT_FALSE(side.empty());
    EXPECT_EQ(lookText(plate, side), "brass_satin");

    EXPECT_EQ(ok("set_appearance", {{"targets", "Body1/Extrude1.start"}, {"appearance", ""}}),
              "Took the appearance off 1 face.");
    EXPECT_EQ(plate.faceAppearances.count("Extrude1.start"), 0u);
    EXPECT_EQ(plate.faceAppearances.count("Extrude1.end"), 1u);

    // Painting the whole body covers every face: the faces' own looks go.
    EXPECT_EQ(ok("set_appearance",
                 {{"targets", "Body1/Extrude1.start; Body1"}, {"appearance", "anodized_red"}}),
              "Painted 1 face and 1 body or component.");
    EXPECT_TRUE(plate.faceAppearances.empty());
    EXPECT_EQ(lookText(plate, "Extrude1.end"), "anodized_red");
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(plate.appearance, "");
    EXPECT_EQ(plate.faceAppearances.size(), 1u);
    EXPECT_EQ(lookText(plate, "Extrude1.end"), "#3a7bd5/glossy");
}

TEST_F(MaterialCommands, ComponentsAndTheDocumentDefaultCoverBodiesWithoutTheirOwn) {
    plate(1);
    auto component = std::make_unique<Component>();
    component->id = "Component1";
    document.add(std::move(component));
    GeometryObject& plate = *body("Body1");
    EXPECT_EQ(lookText(plate), "(none)");
    EXPECT_EQ(materialOf(document, plate), nullptr);
    EXPECT_EQ(kFactorOf(document, plate), 0.44);

    document.setDefaultMaterial("copper_110");
    EXPECT_EQ(materialIdOf(document, plate), "copper_110");
    EXPECT_EQ(kFactorOf(document, plate), 0.40);
    EXPECT_EQ(lookText(plate), "copper_satin");

    plate.component = "Component1";
    ok("set_material", {{"objects", "Component1"}, {"material", "pvc"}});
    ok("set_appearance", {{"targets", "Component1"}, {"appearance", "plastic_blue"}});
    EXPECT_EQ(materialIdOf(document, plate), "pvc");
    EXPECT_EQ(lookText(plate), "plastic_blue");

    ok("set_material", {{"objects", "Body1"}, {"material", "stainless_17_4"}});
    EXPECT_EQ(materialIdOf(document, plate), "stainless_17_4");
    EXPECT_EQ(kFactorOf(document, plate), 0.46);
    EXPECT_EQ(lookText(plate), "plastic_blue");
    ok("set_appearance", {{"targets", "Component1"}, {"appearance", ""}});
    EXPECT_EQ(lookText(plate), "stainless_satin");
}

TEST_F(MaterialCommands, TheProjectFileKeepsMaterialsAndAppearances) {
    plate(3);
    ok("create_box", {{"width", 1}, {"depth", 1}, {"height", 1}, {"x", 40}});
    ok("set_material", {{"objects", "Body1"}, {"material", "acrylic"}});
    ok("set_appearance", {{"targets", "Body1/Extrude1.end"}, {"appearance", "#102030/satin"}});
    ok("set_appearance", {{"targets", "Box1"}, {"appearance", "gold"}});
    document.setDefaultMaterial("walnut_black");

    const ObjectTypes& types = mcp::allObjectTypes();
    Result<Bytes> bytes = projectBytes(document, "materials test", types);
    ASSERT_TRUE(bytes) << bytes.error();
    Result<std::unique_ptr<Document>> read = readProjectBytes(*bytes, "plate.kv3", types);
    ASSERT_TRUE(read) << read.error();
    const Document& copy = **read;
    EXPECT_EQ(copy.defaultMaterial(), "walnut_black");
    auto* plate = copy.findAs<GeometryObject>("Body1");
    auto* box = copy.findAs<GeometryObject>("Box1");
    ASSERT_TRUE(plate && box);
    EXPECT_EQ(plate->material, "acrylic");
    EXPECT_EQ(plate->appearance, "");
    EXPECT_EQ(plate->faceAppearances,
              (std::map<std::string, std::string>{{"Extrude1.end", "#102030/satin"}}));
    EXPECT_EQ(box->appearance, "gold");
    EXPECT_EQ(materialIdOf(copy, *box), "walnut_black");
    // The faces are named again by the rebuild, so the painted one is found.
    std::optional<Appearance> top = lookOfFace(copy, *plate, "Extrude1.end");
    ASSERT_TRUE(plate->shape.findByName("Extrude1.end") && top);
    EXPECT_EQ(colorText(top->color), "#102030");
    EXPECT_EQ(top->finish, Finish::Satin);
    EXPECT_EQ(lookOfFace(copy, *plate, "Extrude1.start")->text, "acrylic_clear");
}

} // namespace
} // namespace cad::testing
