// A sheet metal body's rules (thickness, inner bend radius, K-factor, bend table) and
// how long a bend is when laid flat. The rules live on the body's first sheet metal
// feature (a SheetFlange or SheetRules step), in its parameters under the keys of
// their commands: "thickness", "bend_radius", "k_factor", "bend_table",
// "bend_table_kind".
#pragma once

#include "core/Result.h"
#include "geometry/sheet/metal/BendTable.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {
class Document;
class GeometryObject;
} // namespace cad

namespace cad::sheet {

// Every default filled in: the bend radius is the thickness when given as 0, the
// K-factor the material's when left out, the table parsed.
struct SheetRules {
    double thickness = 1.5;  // mm
    double bendRadius = 1.5; // inner, mm
    double kFactor = 0.44;   // share of the thickness from the inside to the neutral layer
    std::vector<BendTableRow> table;
    BendTableKind tableKind = BendTableKind::Deduction;
    std::string featureId; // the feature holding them
};

inline constexpr double kDefaultThickness = 1.5;

// The rules written in a feature's parameters, for a body whose material gives
// `materialK` (used when "k_factor" is absent). Refuses a thickness not above zero
// ("The thickness must be greater than zero."), a negative bend radius ("The bend
// radius can't be negative."), a K-factor outside (0, 1) ("The K-factor is between 0
// and 1.") and a bad table or kind.
Result<SheetRules> readSheetRules(const nlohmann::json& parameters, double materialK);

// The rules of a body: those of its first active SheetFlange or SheetRules feature;
// none when it has no such feature (it isn't sheet metal). A SheetRules feature with
// thickness 0 gives the thickness measured on the body as that feature found it.
std::optional<SheetRules> sheetRulesOf(const Document& document, const GeometryObject& body);

// The flat length of one bend of `angleDegrees` with inner radius `innerRadius`: a
// table value when the table covers it (an allowance directly; a deduction as
// 2 (R + T) tan(A/2) - deduction, below 179.9 degrees), else A (radians) times the
// neutral radius max(R, 0) + K T.
double bendLength(const SheetRules& rules, double angleDegrees, double innerRadius);

// A relief's default width as a multiple of the thickness, by material id (harder
// metals tear wider); 1 for any other material or none.
double reliefWidthFactor(std::string_view materialId);

// The radius of the layer that keeps its length in that bend: bendLength / A, so a
// cylindrical bend laid flat by it comes out as long as the table or K-factor says.
double neutralRadius(const SheetRules& rules, double angleDegrees, double innerRadius);

} // namespace cad::sheet
