// Expression records: what the user typed for a value, kept so that the value can
// follow the parameters it uses, and the "expressions" map of an object's parameters.
#pragma once

#include "core/Result.h"
#include "core/units/Length.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad::units {

struct Expression {
    std::string text;                  // as typed
    Length unit = Length::Millimeters; // the unit bare numbers were typed in
    bool isLength = true;              // a length, or a plain number (angles, counts)
    bool isInteger = false;            // the result is rounded to a whole number
};

// {"text": ..., "unit": "in", "length": true}, plus "integer": true for counts.
nlohmann::json expressionToJson(const Expression& expression);

// The record stored in json, or nothing when "text" is missing or not a string.
// Missing or unknown units read as millimetres; "length" defaults to true.
std::optional<Expression> expressionFromJson(const nlohmann::json& json);

// The record's value: a length in millimetres, or a plain number.
cad::Result<double> evaluate(const Expression& expression);

// Evaluates every record in params["expressions"] and stores each result under its
// key. A failure adds "<objectId>.<key>: <message>" to problems and keeps the old
// value. Returns whether any stored value changed.
bool reevaluateExpressions(nlohmann::json& params, std::string_view objectId,
                           std::vector<std::string>& problems);

// Stores the record under params["expressions"][key]. Returns false (and changes
// nothing) when params is neither an object nor null.
bool setExpression(nlohmann::json& params, std::string_view key, const Expression& expression);

// Removes the record of key, and the "expressions" map once it is empty.
void clearExpression(nlohmann::json& params, std::string_view key);

} // namespace cad::units
