// Expression records in JSON, and re-evaluating an object's expression-driven values.
#include "core/units/Expression.h"

#include "core/units/ExpressionParser.h"

#include <cmath>
#include <cstdint>

namespace cad::units {

namespace {

constexpr const char* expressionsKey = "expressions";

// The stored form of a rounded count: a JSON integer when it fits in one.
nlohmann::json integerJson(double rounded) {
    // 2^63 is exactly representable; everything in [-2^63, 2^63) fits in int64.
    constexpr double limit = 9223372036854775808.0;
    if (std::isfinite(rounded) && rounded >= -limit && rounded < limit)
        return static_cast<std::int64_t>(rounded);
    return rounded;
}

} // namespace

nlohmann::json expressionToJson(const Expression& expression) {
    nlohmann::json json = nlohmann::json::object();
    json["text"] = expression.text;
    json["unit"] = std::string(unitAbbreviation(expression.unit));
    json["length"] = expression.isLength;
    if (expression.isInteger) json["integer"] = true;
    return json;
}

std::optional<Expression> expressionFromJson(const nlohmann::json& json) {
    if (!json.is_object()) return std::nullopt;
    const auto text = json.find("text");
    if (text == json.end() || !text->is_string()) return std::nullopt;
    Expression expression;
    expression.text = text->get_ref<const std::string&>();
    // Values of the wrong JSON type read as if they were absent.
    const auto unit = json.find("unit");
    if (unit != json.end() && unit->is_string())
        expression.unit =
            parseUnitName(unit->get_ref<const std::string&>()).value_or(Length::Millimeters);
    const auto length = json.find("length");
    if (length != json.end() && length->is_boolean()) expression.isLength = length->get<bool>();
    const auto integer = json.find("integer");
    if (integer != json.end() && integer->is_boolean()) expression.isInteger = integer->get<bool>();
    return expression;
}

cad::Result<double> evaluate(const Expression& expression) {
    return expression.isLength ? evaluateLength(expression.text, expression.unit)
                               : evaluateNumber(expression.text);
}

bool reevaluateExpressions(nlohmann::json& params, std::string_view objectId,
                           std::vector<std::string>& problems) {
    if (!params.is_object()) return false;
    const auto records = params.find(expressionsKey);
    if (records == params.end() || !records->is_object()) return false;
    bool changed = false;
    for (const auto& [key, recordJson] : records->items()) {
        // Writing a value over the map itself would destroy it while it is read.
        if (key == expressionsKey) continue;
        const auto record = expressionFromJson(recordJson);
        if (!record) continue;
        const auto result = evaluate(*record);
        if (!result) {
            problems.push_back(std::string(objectId) + "." + key + ": " + result.error());
            continue;
        }
        const double value = record->isInteger ? std::round(*result) : *result;
        const auto stored = params.find(key);
        if (stored != params.end() && stored->is_number() &&
            std::abs(stored->get<double>() - value) <= 1e-12)
            continue;
        params[key] = record->isInteger ? integerJson(value) : nlohmann::json(value);
        changed = true;
    }
    return changed;
}

bool setExpression(nlohmann::json& params, std::string_view key, const Expression& expression) {
    if (!params.is_object() && !params.is_null()) return false;
    nlohmann::json& records = params[expressionsKey];
    if (!records.is_object()) records = nlohmann::json::object();
    records[std::string(key)] = expressionToJson(expression);
    return true;
}

void clearExpression(nlohmann::json& params, std::string_view key) {
    if (!params.is_object() || !params.contains(expressionsKey)) return;
    nlohmann::json& records = params[expressionsKey];
    if (!records.is_object()) return;
    records.erase(std::string(key));
    if (records.empty()) params.erase(expressionsKey);
}

} // namespace cad::units
