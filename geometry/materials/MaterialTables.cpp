// The material and appearance tables as data, their lookups, finish names and
// colour text. The tables are read-only and kept in listing order.
#include "geometry/materials/MaterialTables.h"

#include "core/TextCase.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace cad {

namespace {

// id, name, category, density kg/m³, appearance, Young's modulus GPa, Poisson's ratio,
// yield MPa, tensile MPa, conductivity W/(m·K), expansion 10⁻⁶/K.
constexpr Material kMaterials[] = {
    {"aluminum_6061", "Aluminum 6061-T6", "Metal", 2700, "aluminum_satin", 68.9, 0.33, 276, 310,
     167, 23.6},
    {"aluminum_7075", "Aluminum 7075-T6", "Metal", 2810, "aluminum_satin", 71.7, 0.33, 503, 572,
     130, 23.4},
    {"aluminum_5052", "Aluminum 5052-H32", "Metal", 2680, "aluminum_satin", 70.3, 0.33, 193, 228,
     138, 23.8},
    {"aluminum_2024", "Aluminum 2024-T3", "Metal", 2780, "aluminum_satin", 73.1, 0.33, 345, 483,
     121, 23.2},
    {"aluminum_cast_plate", "Aluminum, Cast Tooling Plate", "Metal", 2650, "aluminum_cast", 71,
     0.33, 105, 165, 142, 24},
    {"steel_1018", "Steel 1018 (Mild)", "Metal", 7870, "steel_satin", 205, 0.29, 370, 440, 51.9,
     12},
    {"steel_a36", "Steel A36", "Metal", 7850, "steel_satin", 200, 0.26, 250, 400, 51.9, 11.7},
    {"steel_1045", "Steel 1045", "Metal", 7870, "steel_satin", 206, 0.29, 530, 625, 49.8, 11.2},
    {"steel_4140", "Steel 4140 (Annealed)", "Metal", 7850, "steel_satin", 205, 0.29, 415, 655, 42.6,
     12.2},
    {"tool_steel_o1", "Tool Steel O1", "Metal", 7810, "steel_polished", 214, 0.3, 0, 0, 33, 11.2},
    {"tool_steel_a2", "Tool Steel A2", "Metal", 7860, "steel_polished", 203, 0.3, 0, 0, 26, 10.7},
    {"stainless_304", "Stainless Steel 304", "Metal", 8000, "stainless_satin", 193, 0.29, 215, 505,
     16.2, 17.3},
    {"stainless_316", "Stainless Steel 316", "Metal", 8000, "stainless_satin", 193, 0.3, 205, 515,
     16.3, 16},
    {"stainless_17_4", "Stainless Steel 17-4 PH (H900)", "Metal", 7780, "stainless_satin", 197,
     0.27, 1170, 1310, 18.3, 10.8},
    {"cast_iron_gray", "Gray Cast Iron", "Metal", 7150, "cast_iron", 110, 0.26, 0, 250, 46, 10.8},
    {"brass_360", "Brass C360", "Metal", 8500, "brass_satin", 97, 0.31, 310, 385, 115, 20.5},
    {"bronze_932", "Bearing Bronze C932", "Metal", 8930, "bronze", 100, 0.34, 125, 240, 58, 18},
    {"copper_110", "Copper C110", "Metal", 8890, "copper_satin", 115, 0.31, 69, 220, 388, 17},
    {"titanium_6al4v", "Titanium Ti-6Al-4V", "Metal", 4430, "titanium_satin", 113.8, 0.342, 880,
     950, 6.7, 8.6},
    {"magnesium_az31b", "Magnesium AZ31B", "Metal", 1770, "aluminum_cast", 45, 0.35, 200, 260, 96,
     26},
    {"abs", "ABS", "Plastic", 1050, "plastic_gray_light", 2.3, 0.35, 40, 44, 0.17, 90},
    {"acetal", "Acetal (POM)", "Plastic", 1410, "plastic_white", 2.9, 0.35, 0, 69, 0.31, 110},
    {"acrylic", "Acrylic (PMMA)", "Plastic", 1190, "acrylic_clear", 3.2, 0.37, 0, 72, 0.19, 75},
    {"polycarbonate", "Polycarbonate", "Plastic", 1200, "polycarbonate_clear", 2.4, 0.37, 62, 69,
     0.2, 68},
    {"nylon_66", "Nylon 6/6", "Plastic", 1140, "plastic_ivory", 3, 0.39, 0, 82, 0.25, 80},
    {"hdpe", "HDPE", "Plastic", 960, "plastic_white_matte", 1, 0.42, 26, 31, 0.48, 120},
    {"uhmw", "UHMW Polyethylene", "Plastic", 930, "plastic_white_matte", 0.69, 0.46, 21, 40, 0.41,
     200},
    {"pvc", "PVC", "Plastic", 1380, "plastic_gray", 3.3, 0.38, 0, 52, 0.19, 52},
    {"ptfe", "PTFE", "Plastic", 2200, "plastic_white_matte", 0.5, 0.46, 0, 23, 0.25, 135},
    {"peek", "PEEK", "Plastic", 1320, "plastic_tan", 3.6, 0.38, 0, 100, 0.25, 47},
    {"pla", "PLA (3D Printed, Solid)", "Plastic", 1240, "plastic_gray_light", 3.5, 0.36, 60, 65,
     0.13, 68},
    {"petg", "PETG (3D Printed, Solid)", "Plastic", 1270, "plastic_gray_light", 2.1, 0.4, 50, 53,
     0.2, 68},
    {"g10", "G-10 / FR-4 Laminate", "Composite", 1850, "fr4_green", 18.6, 0.12, 0, 310, 0.29, 13},
    {"carbon_fiber", "Carbon Fiber Laminate", "Composite", 1550, "carbon_fiber", 70, 0.1, 0, 600, 5,
     2},
    {"oak_red", "Red Oak", "Wood", 700, "wood_oak", 12.5, 0, 0, 0, 0.17, 0},
    {"maple_hard", "Hard Maple", "Wood", 705, "wood_maple", 12.6, 0, 0, 0, 0.16, 0},
    {"walnut_black", "Black Walnut", "Wood", 610, "wood_walnut", 11.6, 0, 0, 0, 0.15, 0},
    {"cherry_black", "Black Cherry", "Wood", 560, "wood_cherry", 10.3, 0, 0, 0, 0.14, 0},
    {"pine_white", "Eastern White Pine", "Wood", 400, "wood_pine", 8.5, 0, 0, 0, 0.11, 0},
    {"plywood_birch", "Baltic Birch Plywood", "Wood", 680, "wood_birch_ply", 0, 0, 0, 0, 0.13, 0},
    {"mdf", "MDF", "Wood", 750, "mdf", 3.5, 0, 0, 0, 0.12, 0},
    {"glass_soda_lime", "Glass (Soda-Lime)", "Other", 2500, "glass_clear", 72, 0.22, 0, 0, 1, 9},
    {"rubber_neoprene", "Neoprene Rubber", "Other", 1230, "rubber_black", 0.005, 0.49, 0, 0, 0.19,
     0},
    {"concrete", "Concrete", "Other", 2400, "concrete", 30, 0.2, 0, 0, 1.7, 10},
};

using F = Finish;
// id, name, category, {red, green, blue}, finish, opacity.
constexpr AppearancePreset kAppearances[] = {
    {"aluminum_satin", "Aluminum, Satin", "Metal", {0.8, 0.82, 0.85}, F::Satin, 1},
    {"aluminum_polished", "Aluminum, Polished", "Metal", {0.91, 0.92, 0.93}, F::Polished, 1},
    {"aluminum_cast", "Aluminum, Cast", "Metal", {0.7, 0.71, 0.72}, F::Matte, 1},
    {"steel_satin", "Steel, Satin", "Metal", {0.62, 0.64, 0.66}, F::Satin, 1},
    {"steel_polished", "Steel, Polished", "Metal", {0.78, 0.79, 0.8}, F::Polished, 1},
    {"stainless_satin", "Stainless Steel, Satin", "Metal", {0.74, 0.75, 0.77}, F::Satin, 1},
    {"stainless_polished",
     "Stainless Steel, Polished",
     "Metal",
     {0.85, 0.86, 0.87},
     F::Polished,
     1},
    {"black_oxide", "Black Oxide", "Metal", {0.16, 0.16, 0.17}, F::Satin, 1},
    {"cast_iron", "Cast Iron", "Metal", {0.33, 0.33, 0.34}, F::Matte, 1},
    {"chrome", "Chrome", "Metal", {0.92, 0.93, 0.95}, F::Polished, 1},
    {"zinc_plated", "Zinc Plated", "Metal", {0.8, 0.82, 0.8}, F::Satin, 1},
    {"galvanized", "Galvanized", "Metal", {0.68, 0.7, 0.7}, F::Matte, 1},
    {"brass_polished", "Brass, Polished", "Metal", {0.86, 0.7, 0.36}, F::Polished, 1},
    {"brass_satin", "Brass, Satin", "Metal", {0.78, 0.64, 0.36}, F::Satin, 1},
    {"bronze", "Bronze", "Metal", {0.7, 0.47, 0.25}, F::Satin, 1},
    {"copper_polished", "Copper, Polished", "Metal", {0.9, 0.55, 0.38}, F::Polished, 1},
    {"copper_satin", "Copper, Satin", "Metal", {0.8, 0.5, 0.36}, F::Satin, 1},
    {"titanium_satin", "Titanium, Satin", "Metal", {0.66, 0.65, 0.63}, F::Satin, 1},
    {"gold", "Gold", "Metal", {1, 0.8, 0.36}, F::Polished, 1},
    {"anodized_clear", "Anodized Clear", "Anodized", {0.82, 0.83, 0.85}, F::Satin, 1},
    {"anodized_black", "Anodized Black", "Anodized", {0.1, 0.1, 0.11}, F::Satin, 1},
    {"anodized_gray", "Anodized Gray", "Anodized", {0.36, 0.37, 0.4}, F::Satin, 1},
    {"anodized_red", "Anodized Red", "Anodized", {0.7, 0.08, 0.1}, F::Satin, 1},
    {"anodized_orange", "Anodized Orange", "Anodized", {0.95, 0.42, 0.08}, F::Satin, 1},
    {"anodized_gold", "Anodized Gold", "Anodized", {0.85, 0.66, 0.25}, F::Satin, 1},
    {"anodized_green", "Anodized Green", "Anodized", {0.1, 0.5, 0.25}, F::Satin, 1},
    {"anodized_blue", "Anodized Blue", "Anodized", {0.1, 0.28, 0.7}, F::Satin, 1},
    {"anodized_purple", "Anodized Purple", "Anodized", {0.42, 0.18, 0.6}, F::Satin, 1},
    {"paint_black_gloss", "Black, Gloss", "Paint", {0.05, 0.05, 0.06}, F::Glossy, 1},
    {"paint_black_matte", "Black, Matte", "Paint", {0.07, 0.07, 0.08}, F::Matte, 1},
    {"paint_wrinkle_black", "Wrinkle Black", "Paint", {0.11, 0.11, 0.12}, F::Rubber, 1},
    {"paint_white_gloss", "White, Gloss", "Paint", {0.94, 0.94, 0.94}, F::Glossy, 1},
    {"paint_white_matte", "White, Matte", "Paint", {0.9, 0.9, 0.89}, F::Matte, 1},
    {"paint_gray", "Gray", "Paint", {0.45, 0.46, 0.48}, F::Glossy, 1},
    {"paint_red", "Red", "Paint", {0.75, 0.07, 0.08}, F::Glossy, 1},
    {"paint_safety_orange", "Safety Orange", "Paint", {1, 0.4, 0}, F::Glossy, 1},
    {"paint_yellow", "Yellow", "Paint", {1, 0.8, 0}, F::Glossy, 1},
    {"paint_green", "Green", "Paint", {0.02, 0.67, 0.24}, F::Glossy, 1},
    {"paint_blue", "Blue", "Paint", {0.06, 0.25, 0.65}, F::Glossy, 1},
    {"plastic_white", "White Plastic", "Plastic", {0.93, 0.93, 0.92}, F::Glossy, 1},
    {"plastic_white_matte", "White Plastic, Matte", "Plastic", {0.92, 0.92, 0.9}, F::Matte, 1},
    {"plastic_ivory", "Ivory Plastic", "Plastic", {0.93, 0.9, 0.8}, F::Matte, 1},
    {"plastic_tan", "Tan Plastic", "Plastic", {0.8, 0.7, 0.52}, F::Matte, 1},
    {"plastic_gray_light", "Light Gray Plastic", "Plastic", {0.78, 0.79, 0.8}, F::Matte, 1},
    {"plastic_gray", "Gray Plastic", "Plastic", {0.5, 0.51, 0.52}, F::Matte, 1},
    {"plastic_black", "Black Plastic", "Plastic", {0.07, 0.07, 0.08}, F::Glossy, 1},
    {"plastic_black_matte", "Black Plastic, Matte", "Plastic", {0.09, 0.09, 0.1}, F::Matte, 1},
    {"plastic_red", "Red Plastic", "Plastic", {0.8, 0.1, 0.1}, F::Glossy, 1},
    {"plastic_orange", "Orange Plastic", "Plastic", {0.98, 0.45, 0.06}, F::Glossy, 1},
    {"plastic_yellow", "Yellow Plastic", "Plastic", {0.98, 0.82, 0.1}, F::Glossy, 1},
    {"plastic_green", "Green Plastic", "Plastic", {0.1, 0.6, 0.25}, F::Glossy, 1},
    {"plastic_blue", "Blue Plastic", "Plastic", {0.1, 0.32, 0.8}, F::Glossy, 1},
    {"acrylic_clear", "Acrylic, Clear", "Clear", {0.9, 0.95, 0.97}, F::Glass, 0.3},
    {"acrylic_red", "Acrylic, Red", "Clear", {0.85, 0.1, 0.1}, F::Glass, 0.55},
    {"acrylic_blue", "Acrylic, Blue", "Clear", {0.12, 0.35, 0.85}, F::Glass, 0.55},
    {"polycarbonate_clear", "Polycarbonate, Clear", "Clear", {0.88, 0.92, 0.94}, F::Glass, 0.35},
    {"glass_clear", "Glass, Clear", "Clear", {0.85, 0.93, 0.92}, F::Glass, 0.25},
    {"glass_smoked", "Glass, Smoked", "Clear", {0.25, 0.27, 0.28}, F::Glass, 0.55},
    {"wood_oak", "Oak", "Wood", {0.72, 0.55, 0.36}, F::Matte, 1},
    {"wood_pine", "Pine", "Wood", {0.87, 0.74, 0.53}, F::Matte, 1},
    {"wood_maple", "Maple", "Wood", {0.9, 0.8, 0.62}, F::Matte, 1},
    {"wood_cherry", "Cherry", "Wood", {0.66, 0.38, 0.24}, F::Matte, 1},
    {"wood_walnut", "Walnut", "Wood", {0.42, 0.28, 0.18}, F::Matte, 1},
    {"wood_birch_ply", "Birch Plywood", "Wood", {0.88, 0.78, 0.6}, F::Matte, 1},
    {"mdf", "MDF", "Wood", {0.66, 0.54, 0.4}, F::Matte, 1},
    {"rubber_black", "Black Rubber", "Other", {0.1, 0.1, 0.1}, F::Rubber, 1},
    {"rubber_gray", "Gray Rubber", "Other", {0.35, 0.36, 0.37}, F::Rubber, 1},
    {"carbon_fiber", "Carbon Fiber", "Other", {0.14, 0.14, 0.15}, F::Glossy, 1},
    {"fr4_green", "Circuit Board Green", "Other", {0.18, 0.42, 0.22}, F::Glossy, 1},
    {"concrete", "Concrete", "Other", {0.62, 0.62, 0.6}, F::Matte, 1},
};

struct KFactor {
    std::string_view material;
    double k;
};
constexpr KFactor kKFactors[] = {
    {"aluminum_5052", 0.43},   {"aluminum_6061", 0.45},       {"aluminum_7075", 0.46},
    {"aluminum_2024", 0.45},   {"aluminum_cast_plate", 0.43}, {"steel_1018", 0.44},
    {"steel_a36", 0.44},       {"steel_1045", 0.45},          {"steel_4140", 0.45},
    {"tool_steel_o1", 0.46},   {"tool_steel_a2", 0.46},       {"stainless_304", 0.45},
    {"stainless_316", 0.45},   {"stainless_17_4", 0.46},      {"brass_360", 0.42},
    {"bronze_932", 0.42},      {"copper_110", 0.40},          {"titanium_6al4v", 0.46},
    {"magnesium_az31b", 0.45},
};

constexpr std::array<std::string_view, 6> kFinishNames = {"polished", "satin",  "glossy",
                                                          "matte",    "rubber", "glass"};

// The exact id first, so that case only matters when it has to.
template <typename Row> const Row* findById(std::span<const Row> rows, std::string_view id) {
    for (const Row& row : rows)
        if (row.id == id) return &row;
    for (const Row& row : rows)
        if (equalsIgnoringCase(row.id, id)) return &row;
    return nullptr;
}

int channel(double value) {
    return static_cast<int>(std::round(std::clamp(value, 0.0, 1.0) * 255.0));
}

} // namespace

Finish finishFromNumber(int number) {
    return number >= 0 && number < static_cast<int>(kFinishNames.size())
               ? static_cast<Finish>(number)
               : Finish::Matte;
}

std::string_view finishName(Finish finish) {
    return kFinishNames[static_cast<std::size_t>(finishFromNumber(static_cast<int>(finish)))];
}

std::optional<Finish> parseFinish(std::string_view word) {
    for (std::size_t i = 0; i < kFinishNames.size(); ++i)
        if (equalsIgnoringCase(kFinishNames[i], word)) return static_cast<Finish>(i);
    return std::nullopt;
}

std::string colorText(const Color& color) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", channel(color.red), channel(color.green),
                  channel(color.blue));
    return text;
}

std::span<const Material> materials() { return kMaterials; }
std::span<const AppearancePreset> appearancePresets() { return kAppearances; }

const Material* findMaterial(std::string_view id) { return findById(materials(), id); }

const AppearancePreset* findAppearancePreset(std::string_view id) {
    return findById(appearancePresets(), id);
}

double kFactorForMaterial(std::string_view materialId) {
    for (const KFactor& row : kKFactors)
        if (row.material == materialId) return row.k;
    return kDefaultKFactor;
}

} // namespace cad
