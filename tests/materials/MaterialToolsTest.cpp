// What agents see of materials: list_materials in its catalogue place, and the mass
// keys of get_body and get_document once a body has a material.
#include "geometry/materials/MaterialTables.h"
#include "tests/mcp/McpTestSupport.h"

#include <cmath>

namespace cad::mcp::testing {
namespace {

double rounded(double x) { return std::round(x * 1e6) / 1e6; }

std::vector<std::string> keysOf(const json& object) {
    std::vector<std::string> keys;
    for (auto it = object.begin(); it != object.end(); ++it) keys.push_back(it.key());
    return keys;
}

TEST(ListMaterials, ListsEveryMaterialAndAppearanceInTableOrder) {
    HeadlessSession h;
    json tools = h.session.send(request(1, "tools/list"))["result"]["tools"];
    const std::size_t commands = h.host.registry().entries().size();
    ASSERT_GT(tools.size(), commands + 4);
    const json& tool = tools[commands + 4]; // the first tool after the commands
    EXPECT_EQ(tool["name"], "list_materials");
    EXPECT_EQ(tool["annotations"]["readOnlyHint"], true);
    EXPECT_EQ(tool["inputSchema"].dump(),
              R"({"type":"object","properties":{},"additionalProperties":false})");

    json answer = h.session.okJson("list_materials");
    ASSERT_EQ(answer["materials"].size(), materials().size());
    for (std::size_t i = 0; i < materials().size(); ++i)
        EXPECT_EQ(answer["materials"][i]["id"], std::string(materials()[i].id)) << i;
    ASSERT_EQ(answer["appearances"].size(), appearancePresets().size());
    for (std::size_t i = 0; i < appearancePresets().size(); ++i)
        EXPECT_EQ(answer["appearances"][i]["id"], std::string(appearancePresets()[i].id)) << i;

    const json& aluminum = answer["materials"][0];
    EXPECT_EQ(keysOf(aluminum),
              (std::vector<std::string>{"id", "name", "category", "density_kg_m3", "appearance",
                                        "yield_strength_mpa", "tensile_strength_mpa",
                                        "youngs_modulus_gpa"}));
    EXPECT_EQ(aluminum["name"], "Aluminum 6061-T6");
    EXPECT_EQ(aluminum["density_kg_m3"], 2700);
    EXPECT_EQ(aluminum["youngs_modulus_gpa"], 68.9);
    // Values the table leaves out are not listed.
    auto listed = [&](const char* id) {
        for (const json& m : answer["materials"])
            if (m["id"] == id) return m;
        return json();
    };
    EXPECT_EQ(keysOf(listed("tool_steel_o1")),
              (std::vector<std::string>{"id", "name", "category", "density_kg_m3", "appearance",
                                        "youngs_modulus_gpa"}));
    EXPECT_FALSE(listed("plywood_birch").contains("youngs_modulus_gpa"));
    EXPECT_FALSE(listed("acetal").contains("yield_strength_mpa"));
    EXPECT_TRUE(listed("acetal").contains("tensile_strength_mpa"));
    EXPECT_EQ(
        answer["appearances"][0].dump(),
        R"({"id":"aluminum_satin","name":"Aluminum, Satin","category":"Metal","color":"#ccd1d9","finish":"satin"})");
    EXPECT_EQ(answer["custom"], "Any color as \"#rrggbb\", with an optional finish: "
                                "\"#3a7bd5/glossy\".");
}

TEST(BodyMass, FollowsTheMaterialInGetBodyAndGetDocument) {
    HeadlessSession h;
    Session& s = h.session;
    s.ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    json plain = s.okJson("get_body", {{"body", "Box1"}})["measured"];
    EXPECT_FALSE(plain.contains("material") || plain.contains("mass_kg")) << plain.dump();

    EXPECT_EQ(s.ok("set_material", {{"objects", "Box1"}, {"material", "aluminum_6061"}}),
              "Made of Aluminum 6061-T6.");
    json measured = s.okJson("get_body", {{"body", "Box1"}})["measured"];
    EXPECT_EQ(keysOf(measured),
              (std::vector<std::string>{"empty", "volume_mm3", "surface_area_mm2", "bounds",
                                        "faces", "material", "density_kg_m3", "mass_kg", "mass_lb",
                                        "center_of_mass", "appearance"}));
    // 6000 mm³ of 2700 kg/m³: 6000e-9 m³ x 2700.
    const double kilograms = 6000 * 1e-9 * 2700;
    EXPECT_EQ(measured["volume_mm3"], 6000);
    EXPECT_EQ(measured["material"], "aluminum_6061");
    EXPECT_EQ(measured["density_kg_m3"], 2700);
    EXPECT_EQ(measured["mass_kg"].get<double>(), rounded(kilograms));
    EXPECT_EQ(measured["mass_lb"].get<double>(), rounded(kilograms / 0.45359237));

    // Without its own material a body weighs as the document's default says.
    s.ok("undo");
    h.host.document().setDefaultMaterial("steel_a36");
    json byDefault = s.okJson("get_document")["document"]["objects"][0]["measured"];
    EXPECT_EQ(byDefault["material"], "steel_a36");
    EXPECT_EQ(byDefault["mass_kg"].get<double>(), rounded(6000 * 1e-9 * 7850));

    s.ok("set_appearance", {{"targets", "Box1/Box1.top"}, {"appearance", "paint_red"}});
    const json body = s.okJson("get_body", {{"body", "Box1"}});
    for (const json& face : body["faces"])
        EXPECT_EQ(face.contains("appearance"), face["ref"] == "Box1/Box1.top") << face.dump();
}

} // namespace
} // namespace cad::mcp::testing
