// Fillet, chamfer and shell features: their values and the expressions that drive
// them; the computes live in EdgeBlend and ShellSolid.
#include "geometry/DressUpFeatures.h"

#include "core/units/ExpressionNames.h"
#include "geometry/EdgeBlend.h"
#include "geometry/ShellSolid.h"

#include <cmath>

namespace cad {

using namespace geometry;

namespace {

// What re-evaluating can change, kept to be put back exactly.
struct DressUpValues {
    double value = 0;
    std::map<std::string, units::Expression> expressions;
};

} // namespace

std::vector<std::pair<std::string, units::Expression>> DressUpFeature::valueExpressions() const {
    return {expressions.begin(), expressions.end()};
}

void DressUpFeature::renameInExpressions(std::string_view from, std::string_view to) {
    for (auto& [key, expression] : expressions)
        expression.text = units::renameInExpression(expression.text, from, to);
}

bool DressUpFeature::reevaluateExpressions(std::vector<std::string>& problems) {
    auto found = expressions.find(std::string(valueKey()));
    if (found == expressions.end()) return false;
    Result<double> evaluated = units::evaluate(found->second);
    if (!evaluated) {
        problems.push_back(id + "." + found->first + ": " + evaluated.error());
        return false;
    }
    if (std::abs(*evaluated - value()) <= 1e-12) return false;
    setValue(*evaluated);
    return true;
}

std::any DressUpFeature::valuesSnapshot() const { return DressUpValues{value(), expressions}; }

void DressUpFeature::restoreValues(const std::any& snapshot) {
    const auto* values = std::any_cast<DressUpValues>(&snapshot);
    if (!values) return;
    setValue(values->value);
    expressions = values->expressions;
}

Result<NamedShape> FilletFeature::apply(const NamedShape& input, const Document&) const {
    return blendEdges(input, EdgeBlend{BlendKind::Fillet, edges, radius, tangentChain, id});
}

Result<NamedShape> ChamferFeature::apply(const NamedShape& input, const Document&) const {
    return blendEdges(input, EdgeBlend{BlendKind::Chamfer, edges, distance, tangentChain, id});
}

Result<NamedShape> ShellFeature::apply(const NamedShape& input, const Document&) const {
    return shellSolid(input, ShellWalls{faces, thickness, outward, id});
}

} // namespace cad
