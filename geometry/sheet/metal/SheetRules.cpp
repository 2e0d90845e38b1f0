// Reading a body's sheet rules and working out bend lengths from them.
#include "geometry/sheet/metal/SheetRules.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/materials/BodyMaterial.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/sheet/metal/SheetThickness.h"

#include <cmath>
#include <numbers>

namespace cad::sheet {

namespace {

constexpr double kPi = std::numbers::pi;

double radians(double degrees) { return degrees * kPi / 180; }

} // namespace

Result<SheetRules> readSheetRules(const nlohmann::json& parameters, double materialK) {
    SheetRules rules;
    rules.thickness = parameterNumber(parameters, "thickness", kDefaultThickness);
    if (!(rules.thickness > 0) || !std::isfinite(rules.thickness))
        return fail("The thickness must be greater than zero.");
    const double radius = parameterNumber(parameters, "bend_radius", 0);
    if (radius < 0 || !std::isfinite(radius)) return fail("The bend radius can't be negative.");
    rules.bendRadius = radius == 0 ? rules.thickness : radius;
    rules.kFactor = parameters.contains("k_factor")
                        ? parameterNumber(parameters, "k_factor", materialK)
                        : materialK;
    if (!(rules.kFactor > 0 && rules.kFactor < 1)) return fail("The K-factor is between 0 and 1.");
    Result<std::vector<BendTableRow>> table =
        parseBendTable(parameterText(parameters, "bend_table"));
    if (!table) return Error(table);
    rules.table = std::move(*table);
    const std::optional<BendTableKind> kind =
        parseBendTableKind(parameterText(parameters, "bend_table_kind"));
    if (!kind) return fail("The bend table's kind is \"deduction\" or \"allowance\".");
    rules.tableKind = *kind;
    return rules;
}

std::optional<SheetRules> sheetRulesOf(const Document& document, const GeometryObject& body) {
    for (const std::string& id : body.features) {
        const auto* feature = document.findAs<ParamFeature>(id);
        if (!feature || feature->suppressed) continue;
        if (feature->typeId != "SheetFlange" && feature->typeId != "SheetRules") continue;
        nlohmann::json parameters = feature->parameters;
        // A body made sheet metal with thickness 0 is as thick as it measures there.
        if (feature->typeId == "SheetRules" && parameterNumber(parameters, "thickness", 0) == 0) {
            const geometry::NamedShape* shape = document.shapeBefore(id);
            Result<double> measured =
                measureSheetThickness(shape ? shape->shape() : body.shape.shape());
            if (!measured) return std::nullopt;
            parameters["thickness"] = *measured;
        }
        Result<SheetRules> rules = readSheetRules(parameters, kFactorOf(document, body));
        if (!rules) return std::nullopt;
        rules->featureId = id;
        return *rules;
    }
    return std::nullopt;
}

double bendLength(const SheetRules& rules, double angleDegrees, double innerRadius) {
    const double r = std::max(innerRadius, 0.0);
    if (const std::optional<double> value = bendTableValue(rules.table, angleDegrees, r)) {
        if (rules.tableKind == BendTableKind::Allowance) return *value;
        if (angleDegrees < 179.9)
            return 2 * (r + rules.thickness) * std::tan(radians(angleDegrees) / 2) - *value;
    }
    return radians(angleDegrees) * (r + rules.kFactor * rules.thickness);
}

double reliefWidthFactor(std::string_view materialId) {
    struct Row {
        std::string_view material;
        double factor;
    };
    static constexpr Row kRows[] = {
        {"aluminum_6061", 1.5}, {"aluminum_7075", 2},   {"aluminum_2024", 2},
        {"steel_1045", 1.5},    {"steel_4140", 1.5},    {"tool_steel_o1", 2},
        {"tool_steel_a2", 2},   {"stainless_304", 1.5}, {"stainless_316", 1.5},
        {"stainless_17_4", 2},  {"titanium_6al4v", 2},  {"magnesium_az31b", 2}};
    for (const Row& row : kRows)
        if (row.material == materialId) return row.factor;
    return 1;
}

double neutralRadius(const SheetRules& rules, double angleDegrees, double innerRadius) {
    const double a = radians(angleDegrees);
    if (a <= 1e-7) return std::max(innerRadius, 0.0) + rules.kFactor * rules.thickness;
    return bendLength(rules, angleDegrees, innerRadius) / a;
}

} // namespace cad::sheet
