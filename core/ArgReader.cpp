// Argument readers: every factory reads its record through these, so an agent
// or a form always gets the same sentence for the same mistake.
#include "core/ArgReader.h"

#include "core/units/ExpressionParser.h"

#include <cmath>
#include <limits>

namespace cad {

namespace {

std::string quoted(std::string_view arg) { return "'" + std::string(arg) + "'"; }

std::string joined(const std::vector<std::string>& items) {
    std::string out;
    for (const std::string& item : items) {
        if (!out.empty()) out += ", ";
        out += item;
    }
    return out;
}

} // namespace

Error ArgReader::error(std::string_view text) const {
    return Error{record_.name + ": " + std::string(text)};
}

Result<void> ArgReader::allowOnly(const std::vector<std::string_view>& names) const {
    for (const auto& [key, value] : record_.arguments) {
        bool known = false;
        for (std::string_view name : names) known = known || name == key;
        if (known) continue;
        std::vector<std::string> list(names.begin(), names.end());
        return error("unknown argument " + quoted(key) + ". Expected one of: " + joined(list) +
                     ".");
    }
    return {};
}

Result<void> ArgReader::allowDeclared(const std::vector<ArgSpec>& declared) const {
    std::vector<std::string_view> names;
    for (const ArgSpec& declaredArg : declared) names.push_back(declaredArg.name);
    return allowOnly(names);
}

// ---------------------------------------------------------------- lengths and numbers

Result<double> ArgReader::readLength(std::string_view arg, const Value& value) const {
    if (auto* i = std::get_if<std::int64_t>(&value)) return static_cast<double>(*i);
    if (auto* d = std::get_if<double>(&value)) {
        if (std::isfinite(*d)) return *d;
    } else if (auto* s = std::get_if<std::string>(&value)) {
        Result<double> mm = units::readLengthText(*s);
        if (!mm) return error(quoted(arg) + ": " + mm.error());
        return mm;
    }
    return error(quoted(arg) + " must be a length.");
}

Result<double> ArgReader::length(std::string_view arg) const {
    const Value* value = record_.find(arg);
    if (!value) return error("missing length argument " + quoted(arg) + ".");
    return readLength(arg, *value);
}

Result<double> ArgReader::length(std::string_view arg, double fallback) const {
    const Value* value = record_.find(arg);
    return value ? readLength(arg, *value) : Result<double>(fallback);
}

Result<double> ArgReader::readNumber(std::string_view arg, const Value& value,
                                     std::string_view kind) const {
    if (auto* i = std::get_if<std::int64_t>(&value)) return static_cast<double>(*i);
    if (auto* d = std::get_if<double>(&value)) {
        if (std::isfinite(*d)) return *d;
    } else if (auto* s = std::get_if<std::string>(&value)) {
        if (Result<double> n = units::evaluateNumber(*s)) return n;
    }
    return error(quoted(arg) + " must be " + std::string(kind) + ".");
}

Result<double> ArgReader::number(std::string_view arg) const {
    const Value* value = record_.find(arg);
    if (!value) return error("missing numeric argument " + quoted(arg) + ".");
    return readNumber(arg, *value, "a number");
}

Result<double> ArgReader::number(std::string_view arg, double fallback) const {
    const Value* value = record_.find(arg);
    return value ? readNumber(arg, *value, "a number") : Result<double>(fallback);
}

Result<double> ArgReader::angle(std::string_view arg) const {
    const Value* value = record_.find(arg);
    if (!value) return error("missing numeric argument " + quoted(arg) + ".");
    return readNumber(arg, *value, "a number of degrees");
}

Result<double> ArgReader::angle(std::string_view arg, double fallback) const {
    const Value* value = record_.find(arg);
    return value ? readNumber(arg, *value, "a number of degrees") : Result<double>(fallback);
}

Result<std::int64_t> ArgReader::readInteger(std::string_view arg, const Value& value) const {
    if (auto* i = std::get_if<std::int64_t>(&value)) return *i;
    double d = std::numeric_limits<double>::quiet_NaN();
    if (auto* number = std::get_if<double>(&value)) {
        d = *number;
    } else if (auto* s = std::get_if<std::string>(&value)) {
        if (Result<double> n = units::evaluateNumber(*s)) d = *n;
    }
    if (std::isfinite(d) && d == std::floor(d) && std::fabs(d) < 9.0e15)
        return static_cast<std::int64_t>(d);
    return error(quoted(arg) + " must be a whole number.");
}

Result<std::int64_t> ArgReader::integer(std::string_view arg) const {
    const Value* value = record_.find(arg);
    if (!value) return error("missing numeric argument " + quoted(arg) + ".");
    return readInteger(arg, *value);
}

Result<std::int64_t> ArgReader::integer(std::string_view arg, std::int64_t fallback) const {
    const Value* value = record_.find(arg);
    return value ? readInteger(arg, *value) : Result<std::int64_t>(fallback);
}

// ---------------------------------------------------------------- text, objects, flags

Result<std::string> ArgReader::readString(std::string_view arg, const Value& value) const {
    if (auto* s = std::get_if<std::string>(&value)) return *s;
    return error(quoted(arg) + " must be text.");
}

Result<std::string> ArgReader::string(std::string_view arg) const {
    const Value* value = record_.find(arg);
    if (!value) return error("missing string argument " + quoted(arg) + ".");
    return readString(arg, *value);
}

Result<std::string> ArgReader::string(std::string_view arg, std::string fallback) const {
    const Value* value = record_.find(arg);
    return value ? readString(arg, *value) : Result<std::string>(std::move(fallback));
}

Result<std::string> ArgReader::object(std::string_view arg) const {
    const Value* value = record_.find(arg);
    auto* name = value ? std::get_if<std::string>(value) : nullptr;
    if (!value || (name && name->empty())) return error("missing " + quoted(arg) + ".");
    if (!name) return error(quoted(arg) + " must be the name or ID of an object.");
    return *name;
}

Result<bool> ArgReader::readBoolean(std::string_view arg, const Value& value) const {
    if (auto* b = std::get_if<bool>(&value)) return *b;
    return error(quoted(arg) + " must be true or false.");
}

Result<bool> ArgReader::boolean(std::string_view arg) const {
    const Value* value = record_.find(arg);
    if (!value) return error(quoted(arg) + " must be true or false.");
    return readBoolean(arg, *value);
}

Result<bool> ArgReader::boolean(std::string_view arg, bool fallback) const {
    const Value* value = record_.find(arg);
    return value ? readBoolean(arg, *value) : Result<bool>(fallback);
}

Result<std::string> ArgReader::readChoice(std::string_view arg, const Value& value,
                                          const std::vector<std::string>& choices) const {
    if (auto* s = std::get_if<std::string>(&value))
        for (const std::string& c : choices)
            if (c == *s) return *s;
    return error(quoted(arg) + " must be one of " + joined(choices) + ".");
}

Result<std::string> ArgReader::choice(std::string_view arg,
                                      const std::vector<std::string>& choices) const {
    const Value* value = record_.find(arg);
    if (!value) return error("missing string argument " + quoted(arg) + ".");
    return readChoice(arg, *value, choices);
}

Result<std::string> ArgReader::choice(std::string_view arg, const std::vector<std::string>& choices,
                                      std::string fallback) const {
    const Value* value = record_.find(arg);
    return value ? readChoice(arg, *value, choices) : Result<std::string>(std::move(fallback));
}

Result<void> checkArgumentTypes(const CommandRecord& record, const std::vector<ArgSpec>& declared) {
    ArgReader args(record);
    for (const ArgSpec& declaredArg : declared) {
        const Value* value = record.find(declaredArg.name);
        if (!value) continue;
        if (!declaredArg.refersTo.empty()) {
            // An optional reference may be empty ("roll_back" to nothing); a required
            // one may not.
            auto* name = std::get_if<std::string>(value);
            if (!name || (declaredArg.required && name->empty()))
                if (Result<std::string> object = args.object(declaredArg.name); !object)
                    return Error(object);
            continue;
        }
        // Only the kind of value is checked here; what a number or a text must
        // say is the factory's, in its own words ("'sides' must be a whole number
        // from 3 to 1000.").
        const bool flag = std::holds_alternative<bool>(*value);
        const bool text = std::holds_alternative<std::string>(*value);
        Result<void> ok;
        switch (declaredArg.type) {
        case ArgType::Length:
            if (flag) ok = Error(args.length(declaredArg.name));
            break;
        case ArgType::Number:
            if (flag) ok = Error(args.number(declaredArg.name));
            break;
        case ArgType::Angle:
            if (flag) ok = Error(args.angle(declaredArg.name));
            break;
        case ArgType::Integer:
            if (flag) ok = Error(args.integer(declaredArg.name));
            break;
        case ArgType::Boolean:
            if (!flag) ok = Error(args.boolean(declaredArg.name));
            break;
        case ArgType::SketchReference:
            if (!text)
                ok = fail(record.name + ": '" + declaredArg.name +
                          "' must be a reference like \"Line1.end\".");
            break;
        case ArgType::String:
        case ArgType::Text:
            if (!text) ok = Error(args.string(declaredArg.name));
            break;
        }
        if (!ok) return ok;
    }
    return {};
}

Result<void> checkArguments(const CommandRecord& record, const std::vector<ArgSpec>& declared) {
    ArgReader args(record);
    if (Result<void> ok = args.allowDeclared(declared); !ok) return ok;
    for (const ArgSpec& declaredArg : declared) {
        if (!declaredArg.required || args.has(declaredArg.name)) continue;
        if (!declaredArg.refersTo.empty()) return Error(args.object(declaredArg.name));
        switch (declaredArg.type) {
        case ArgType::Length:
            return Error(args.length(declaredArg.name));
        case ArgType::Number:
        case ArgType::Integer:
            return Error(args.number(declaredArg.name));
        case ArgType::Angle:
            return Error(args.angle(declaredArg.name));
        case ArgType::Boolean:
            return Error(args.boolean(declaredArg.name));
        case ArgType::String:
        case ArgType::SketchReference:
        case ArgType::Text:
            return Error(args.string(declaredArg.name));
        }
    }
    return {};
}

} // namespace cad
