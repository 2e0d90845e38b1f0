// The parametric feature's compute: the kind's function, then (for kinds that make
// a new solid) the operation through the shared boolean; and its expression values.
#include "geometry/param/ParamFeature.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/ExpressionNames.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/param/ParamFeatureType.h"

#include <Standard_Failure.hxx>

#include <exception>

namespace cad {

using geometry::BooleanKind;
using geometry::NamedShape;

std::vector<std::string> ParamFeature::references() const {
    const ParamFeatureType* type = paramFeatureTypes().find(typeId);
    if (!type) return {};
    return type->dependencies ? type->dependencies(parameters)
                              : referencedObjects(*type, parameters);
}

bool ParamFeature::standsAlone() const {
    return !(typeId == "PatternBody" && parameters.is_object() && parameters.contains("set"));
}

bool ParamFeature::keepsLast() const {
    const ParamFeatureType* type = paramFeatureTypes().find(typeId);
    return type && type->keepsLast && type->keepsLast(parameters);
}

Result<NamedShape> ParamFeature::apply(const NamedShape& input, const Document& document) const {
    const ParamFeatureType* type = paramFeatureTypes().find(typeId);
    if (!type || !type->compute) return fail("Unknown feature type '" + typeId + "'.");

    Result<NamedShape> made = fail("");
    try {
        made = type->compute(document, parameters, input, id);
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel failed while working out " + id + ".");
    } catch (const std::exception&) {
        return fail(id + " couldn't be worked out from its values.");
    }
    if (!made || !type->makesNewSolid) return made;

    BooleanKind kind = BooleanKind::Join;
    if (operation == "new_body" || operation.empty()) {
        return made;
    } else if (operation == "join") {
        if (input.isNull()) return fail("Join needs an existing body to add to.");
    } else if (operation == "cut") {
        if (input.isNull()) return fail("Cut needs an existing body to cut from.");
        kind = BooleanKind::Cut;
    } else if (operation == "intersect") {
        if (input.isNull()) return fail("Intersect needs an existing body.");
        kind = BooleanKind::Intersect;
    } else {
        return fail("Unknown operation '" + operation + "' (new_body, join, cut or intersect).");
    }
    return geometry::shapeBoolean(input, *made, kind);
}

// ---------------------------------------------------------------- expression values

namespace {

const nlohmann::json* expressionRecords(const nlohmann::json& parameters) {
    if (!parameters.is_object()) return nullptr;
    auto records = parameters.find("expressions");
    return records != parameters.end() && records->is_object() ? &*records : nullptr;
}

} // namespace

std::vector<std::pair<std::string, units::Expression>> ParamFeature::valueExpressions() const {
    std::vector<std::pair<std::string, units::Expression>> out;
    if (const nlohmann::json* records = expressionRecords(parameters))
        for (const auto& [key, record] : records->items())
            if (std::optional<units::Expression> e = units::expressionFromJson(record))
                out.emplace_back(key, *e);
    return out;
}

void ParamFeature::renameInExpressions(std::string_view from, std::string_view to) {
    for (auto& [key, expression] : valueExpressions()) {
        expression.text = units::renameInExpression(expression.text, from, to);
        units::setExpression(parameters, key, expression);
    }
}

bool ParamFeature::reevaluateExpressions(std::vector<std::string>& problems) {
    return units::reevaluateExpressions(parameters, id, problems);
}

std::any ParamFeature::valuesSnapshot() const { return parameters; }

void ParamFeature::restoreValues(const std::any& snapshot) {
    if (const auto* values = std::any_cast<nlohmann::json>(&snapshot)) parameters = *values;
}

// ---------------------------------------------------------------- reading parameters

std::string parameterText(const nlohmann::json& parameters, std::string_view key) {
    if (!parameters.is_object()) return {};
    auto it = parameters.find(std::string(key));
    return it != parameters.end() && it->is_string() ? it->get<std::string>() : std::string();
}

double parameterNumber(const nlohmann::json& parameters, std::string_view key, double fallback) {
    if (!parameters.is_object()) return fallback;
    auto it = parameters.find(std::string(key));
    return it != parameters.end() && it->is_number() ? it->get<double>() : fallback;
}

bool parameterFlag(const nlohmann::json& parameters, std::string_view key, bool fallback) {
    if (!parameters.is_object()) return fallback;
    auto it = parameters.find(std::string(key));
    return it != parameters.end() && it->is_boolean() ? it->get<bool>() : fallback;
}

geometry::ReferenceContext featureContext(const Document& document, const std::string& featureId) {
    geometry::ReferenceContext context;
    context.featureId = featureId;
    if (const GeometryObject* body = document.bodyOfFeature(featureId)) context.bodyId = body->id;
    return context;
}

} // namespace cad
