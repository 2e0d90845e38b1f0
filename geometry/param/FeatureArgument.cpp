// Reading a feature command's record by its argument table: one fixed sentence per
// way a value can be wrong, numbers typed as text evaluated (units, parameters).
#include "geometry/param/FeatureArgument.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/units/ExpressionNames.h"
#include "core/units/ExpressionParser.h"
#include "geometry/References.h"

#include <cmath>
#include <string_view>

namespace cad {

namespace {

using Kind = FeatureArgument::Kind;

ArgType argTypeOf(Kind kind) {
    switch (kind) {
    case Kind::Length:
        return ArgType::Length;
    case Kind::Angle:
        return ArgType::Angle;
    case Kind::Number:
        return ArgType::Number;
    case Kind::Integer:
        return ArgType::Integer;
    case Kind::Bool:
        return ArgType::Boolean;
    case Kind::Text:
    case Kind::References:
    case Kind::Choice:
        break;
    }
    return ArgType::String;
}

// A number given as a number or as text to evaluate; nothing when it is neither.
std::optional<double> numberOf(const Value& value, Kind kind) {
    if (auto* i = std::get_if<std::int64_t>(&value)) return static_cast<double>(*i);
    if (auto* d = std::get_if<double>(&value)) {
        if (std::isfinite(*d)) return *d;
        return std::nullopt;
    }
    if (auto* s = std::get_if<std::string>(&value)) {
        Result<double> n =
            kind == Kind::Length ? units::readLengthText(*s) : units::readNumberText(*s);
        if (n && std::isfinite(*n)) return *n;
    }
    return std::nullopt;
}

std::string givenText(const Value& value) {
    if (auto* s = std::get_if<std::string>(&value)) return *s;
    return renderValue(value);
}

// The value of one table row as JSON, or the row's sentence.
Result<nlohmann::json> readOne(const std::string& command, const FeatureArgument& argument,
                               const Value& value) {
    const std::string head = command + ": '" + argument.key + "' must be ";
    switch (argument.kind) {
    case Kind::Length:
    case Kind::Angle:
    case Kind::Number: {
        std::optional<double> number = numberOf(value, argument.kind);
        if (!number) return fail(head + "a number: " + givenText(value));
        return nlohmann::json(*number);
    }
    case Kind::Integer: {
        std::optional<double> number = numberOf(value, argument.kind);
        if (!number || *number != std::floor(*number) || std::fabs(*number) >= 9.0e15)
            return fail(head + "a whole number.");
        return nlohmann::json(static_cast<std::int64_t>(*number));
    }
    case Kind::Bool:
        if (auto* flag = std::get_if<bool>(&value)) return nlohmann::json(*flag);
        return fail(head + "true or false.");
    case Kind::Choice: {
        auto* text = std::get_if<std::string>(&value);
        for (const std::string& choice : argument.choices)
            if (text && *text == choice) return nlohmann::json(*text);
        std::string list;
        for (const std::string& choice : argument.choices)
            list += (list.empty() ? "" : ", ") + choice;
        return fail(head + "one of " + list + ".");
    }
    case Kind::Text:
    case Kind::References:
        break;
    }
    if (auto* text = std::get_if<std::string>(&value)) return nlohmann::json(*text);
    return fail(head + "text.");
}

} // namespace

bool isNumeric(Kind kind) {
    return kind == Kind::Length || kind == Kind::Angle || kind == Kind::Number ||
           kind == Kind::Integer;
}

ArgSpec toArgSpec(const FeatureArgument& argument) {
    ArgSpec declared;
    declared.name = argument.key;
    declared.type = argTypeOf(argument.kind);
    declared.required = argument.required;
    declared.description = argument.description;
    if (argument.kind == Kind::Choice) declared.choices = argument.choices;
    declared.refersTo = argument.refersTo;
    return declared;
}

std::vector<ArgSpec> toArgSpecs(const FeatureArguments& arguments) {
    std::vector<ArgSpec> declared;
    declared.reserve(arguments.size());
    for (const FeatureArgument& argument : arguments) declared.push_back(toArgSpec(argument));
    return declared;
}

Result<nlohmann::json> readFeatureValues(const CommandRecord& record, const FeatureArguments& table,
                                         const std::vector<std::string>& accepted,
                                         bool requireAll) {
    std::vector<std::string_view> names(accepted.begin(), accepted.end());
    if (Result<void> ok = ArgReader(record).allowOnly(names); !ok) return Error(ok);

    nlohmann::json values = nlohmann::json::object();
    for (const FeatureArgument& argument : table) {
        const Value* value = record.find(argument.key);
        if (!value) {
            if (requireAll && argument.required)
                return fail(record.name + ": missing '" + argument.key + "'.");
            continue;
        }
        Result<nlohmann::json> read = readOne(record.name, argument, *value);
        if (!read) return Error(read);
        values[argument.key] = std::move(read).value();
    }
    return values;
}

std::optional<units::Expression> argumentExpression(const FeatureArgument& argument,
                                                    const Value* given, const Document& document) {
    auto* text = given ? std::get_if<std::string>(given) : nullptr;
    if (!isNumeric(argument.kind) || !text || !units::usesNames(*text)) return std::nullopt;
    units::Expression expression;
    expression.text = *text;
    expression.unit = document.lengthUnit();
    expression.isLength = argument.kind == Kind::Length;
    expression.isInteger = argument.kind == Kind::Integer;
    return expression;
}

std::string referencesById(const Document& document, const std::string& list) {
    std::string out;
    for (const std::string& reference : geometry::splitReferenceList(list)) {
        std::string text = reference;
        const std::string head = geometry::objectPart(reference);
        if (const DocumentObject* object = head.empty() ? nullptr : document.findByName(head))
            text = object->id + text.substr(std::min(text.find('/'), text.size()));
        out += (out.empty() ? "" : "; ") + text;
    }
    return out;
}

} // namespace cad
