// The pattern set's expression values and its project-file record.
#include "geometry/patterns/PatternSetObject.h"

#include "core/ObjectTypes.h"
#include "core/units/ExpressionNames.h"
#include "geometry/patterns/PatternLayout.h"

namespace cad {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

struct SetValues {
    json parameters;
    std::vector<std::string> copies;
};

Result<void> readSet(PatternSetObject& set, const json& record) {
    auto params = record.find("params");
    if (params == record.end() || !params->is_object()) return fail("\"params\" must be an object");
    auto pattern = params->find("pattern");
    if (pattern == params->end() || !pattern->is_string() ||
        !geometry::parsePatternKind(pattern->get<std::string>()))
        return fail("\"params\": \"pattern\" must be rectangular, circular or path");
    auto bodies = params->find("bodies");
    if (bodies == params->end() || !bodies->is_string())
        return fail("\"params\": \"bodies\" must be text");
    std::vector<std::string> copies;
    if (auto list = params->find("copies"); list != params->end()) {
        if (!list->is_array()) return fail("\"params\": \"copies\" must be a list of bodies");
        for (const json& item : *list) {
            if (!item.is_string()) return fail("\"params\": \"copies\" must be a list of bodies");
            copies.push_back(item.get<std::string>());
        }
    }
    set.parameters = *params;
    set.parameters.erase("copies");
    set.copies = std::move(copies);
    return {};
}

} // namespace

std::vector<std::pair<std::string, units::Expression>> PatternSetObject::valueExpressions() const {
    std::vector<std::pair<std::string, units::Expression>> out;
    auto records = parameters.find("expressions");
    if (records == parameters.end() || !records->is_object()) return out;
    for (const auto& [key, record] : records->items())
        if (std::optional<units::Expression> e = units::expressionFromJson(record))
            out.emplace_back(key, *e);
    return out;
}

void PatternSetObject::renameInExpressions(std::string_view from, std::string_view to) {
    for (auto& [key, expression] : valueExpressions()) {
        expression.text = units::renameInExpression(expression.text, from, to);
        units::setExpression(parameters, key, expression);
    }
}

bool PatternSetObject::reevaluateExpressions(std::vector<std::string>& problems) {
    return units::reevaluateExpressions(parameters, id, problems);
}

std::any PatternSetObject::valuesSnapshot() const { return SetValues{parameters, copies}; }

void PatternSetObject::restoreValues(const std::any& snapshot) {
    if (const auto* values = std::any_cast<SetValues>(&snapshot)) {
        parameters = values->parameters;
        copies = values->copies;
    }
}

void registerPatternSetType(ObjectTypes& types) {
    if (types.find("PatternSet")) return;
    types.add({"PatternSet", "pattern", [] { return std::make_unique<PatternSetObject>(); },
               [](const DocumentObject& o, ordered_json& r, SideFiles&) {
                   const auto& set = static_cast<const PatternSetObject&>(o);
                   ordered_json params(set.parameters);
                   params["copies"] = set.copies;
                   r["params"] = std::move(params);
               },
               [](DocumentObject& o, const json& r, const ArchiveReader&) {
                   return readSet(static_cast<PatternSetObject&>(o), r);
               }});
}

} // namespace cad
