// The material and appearance tables checked against values read off by hand, the
// K-factors, colour text and the appearance texts agents type.
#include "geometry/materials/MaterialTables.h"
#include "geometry/materials/Appearance.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace cad {
namespace {

TEST(MaterialTables, HoldTheListedRowsInOrder) {
    ASSERT_EQ(materials().size(), 44u);
    ASSERT_EQ(appearancePresets().size(), 70u);
    EXPECT_EQ(materials().front().id, "aluminum_6061");
    EXPECT_EQ(materials().back().id, "concrete");
    EXPECT_EQ(appearancePresets().front().id, "aluminum_satin");
    EXPECT_EQ(appearancePresets().back().id, "concrete");

    const Material* aluminum = findMaterial("aluminum_6061");
    ASSERT_NE(aluminum, nullptr);
    EXPECT_EQ(aluminum->name, "Aluminum 6061-T6");
    EXPECT_EQ(aluminum->densityKgM3, 2700);
    EXPECT_EQ(aluminum->appearance, "aluminum_satin");
    EXPECT_EQ(aluminum->youngsModulusGpa, 68.9);

    // 1045 weighs as 1018, not as A36 and 4140.
    EXPECT_EQ(findMaterial("steel_1045")->densityKgM3, findMaterial("steel_1018")->densityKgM3);
    EXPECT_EQ(findMaterial("steel_a36")->densityKgM3, 7850);
    EXPECT_EQ(findMaterial("titanium_6al4v")->poissonRatio, 0.342);
    EXPECT_EQ(findMaterial("tool_steel_o1")->yieldStrengthMpa, 0);
    EXPECT_EQ(findMaterial("tool_steel_o1")->tensileStrengthMpa, 0);
    EXPECT_EQ(findMaterial("plywood_birch")->youngsModulusGpa, 0);
    EXPECT_EQ(findMaterial("magnesium_az31b")->appearance, "aluminum_cast");

    std::set<std::string> ids;
    for (const Material& m : materials()) {
        EXPECT_TRUE(ids.insert(std::string(m.id)).second) << m.id;
        EXPECT_NE(findAppearancePreset(m.appearance), nullptr) << m.id << " looks " << m.appearance;
        if (m.category == "Wood") {
            EXPECT_EQ(m.poissonRatio, 0) << m.id;
        }
    }
    ids.clear();
    for (const AppearancePreset& a : appearancePresets()) {
        EXPECT_TRUE(ids.insert(std::string(a.id)).second) << a.id;
        // Only the clear presets are see-through.
        EXPECT_EQ(a.opacity < 1, a.category == "Clear") << a.id;
    }
    EXPECT_EQ(findAppearancePreset("glass_clear")->opacity, 0.25);
    EXPECT_EQ(findAppearancePreset("acrylic_clear")->opacity, 0.3);
    EXPECT_EQ(findAppearancePreset("polycarbonate_clear")->opacity, 0.35);
    for (const char* tinted : {"acrylic_red", "acrylic_blue", "glass_smoked"})
        EXPECT_EQ(findAppearancePreset(tinted)->opacity, 0.55) << tinted;

    EXPECT_EQ(kFactorForMaterial("copper_110"), 0.40);
    EXPECT_EQ(kFactorForMaterial("aluminum_5052"), 0.43);
    EXPECT_EQ(kFactorForMaterial("oak_red"), 0.44);
    EXPECT_EQ(findMaterial("Aluminum_6061"), aluminum);
    EXPECT_EQ(findMaterial("aluminium_6061"), nullptr);
}

TEST(AppearanceText, ColoursAndFinishesReadAndWrite) {
    EXPECT_EQ(colorText(findAppearancePreset("aluminum_satin")->color), "#ccd1d9");
    // Clamped, and 127.5 rounds up.
    EXPECT_EQ(colorText({1.2, -0.1, 0.5}), "#ff0080");
    EXPECT_EQ(finishFromNumber(2), Finish::Glossy);
    EXPECT_EQ(finishFromNumber(6), Finish::Matte);
    EXPECT_EQ(finishFromNumber(-1), Finish::Matte);

    Result<Appearance> custom = readAppearance(" #3A7BD5/Glossy ");
    ASSERT_TRUE(custom) << custom.error();
    EXPECT_EQ(custom->text, "#3a7bd5/glossy");
    EXPECT_EQ(custom->finish, Finish::Glossy);
    EXPECT_EQ(colorText(custom->color), "#3a7bd5");
    EXPECT_EQ(readAppearance("#3a7bd5")->finish, Finish::Matte);
    EXPECT_EQ(readAppearance("#3a7bd5")->text, "#3a7bd5");

    Result<Appearance> preset = readAppearance("Anodized_Black");
    ASSERT_TRUE(preset);
    EXPECT_EQ(preset->text, "anodized_black");

    for (const char* wrong : {"#3a7bd", "#3a7bd5/shiny", "3a7bd5", "#+1+2+3", "#3a7bdz", ""})
        EXPECT_EQ(readAppearance(wrong).error(),
                  "No appearance '" + std::string(wrong) +
                      "': use one list_materials shows, or a color such as \"#3a7bd5\".");
}

} // namespace
} // namespace cad
