// Builds list_materials' answer from the tables.
#include "geometry/materials/MaterialListing.h"

#include "geometry/materials/Appearance.h"
#include "geometry/materials/MaterialTables.h"

#include <string>

namespace cad {

nlohmann::ordered_json materialListing() {
    using ordered_json = nlohmann::ordered_json;
    ordered_json list = ordered_json::array();
    for (const Material& m : materials()) {
        ordered_json item = ordered_json::object();
        item["id"] = std::string(m.id);
        item["name"] = std::string(m.name);
        item["category"] = std::string(m.category);
        item["density_kg_m3"] = m.densityKgM3;
        item["appearance"] = std::string(m.appearance);
        // 0 in the table means not given: such a value is left out.
        if (m.yieldStrengthMpa > 0) item["yield_strength_mpa"] = m.yieldStrengthMpa;
        if (m.tensileStrengthMpa > 0) item["tensile_strength_mpa"] = m.tensileStrengthMpa;
        if (m.youngsModulusGpa > 0) item["youngs_modulus_gpa"] = m.youngsModulusGpa;
        list.push_back(std::move(item));
    }
    ordered_json looks = ordered_json::array();
    for (const AppearancePreset& a : appearancePresets()) {
        ordered_json item = ordered_json::object();
        item["id"] = std::string(a.id);
        item["name"] = std::string(a.name);
        item["category"] = std::string(a.category);
        item["color"] = colorText(a.color);
        item["finish"] = std::string(finishName(a.finish));
        looks.push_back(std::move(item));
    }
    ordered_json answer = ordered_json::object();
    answer["materials"] = std::move(list);
    answer["appearances"] = std::move(looks);
    answer["custom"] = std::string(kCustomAppearanceHint);
    return answer;
}

} // namespace cad
