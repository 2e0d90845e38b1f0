// Writing and reading parametric features. A read record's parameters are checked
// against the kind's table, so a damaged file is refused rather than computed.
#include "geometry/param/ParamTypes.h"

#include "core/ObjectTypes.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace cad {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;
using Kind = FeatureArgument::Kind;

std::string quoted(const std::string& key) { return "\"" + key + "\""; }

// Whether a stored value has the JSON type its table row reads; the problem if not.
Result<void> checkValue(const FeatureArgument& argument, const json& value) {
    const std::string head = "\"params\": " + quoted(argument.key) + " must be ";
    switch (argument.kind) {
    case Kind::Length:
    case Kind::Angle:
    case Kind::Number:
        if (!value.is_number() || !std::isfinite(value.get<double>()))
            return fail(head + "a number");
        return {};
    case Kind::Integer:
        if (!value.is_number_integer()) return fail(head + "a whole number");
        return {};
    case Kind::Bool:
        if (!value.is_boolean()) return fail(head + "true or false");
        return {};
    case Kind::Choice:
        if (!value.is_string() || std::find(argument.choices.begin(), argument.choices.end(),
                                            value.get<std::string>()) == argument.choices.end())
            return fail(head + "one of the kind's words");
        return {};
    case Kind::Text:
    case Kind::References:
        break;
    }
    if (!value.is_string()) return fail(head + "text");
    return {};
}

void writeFeature(const ParamFeatureType& type, const ParamFeature& f, ordered_json& r) {
    r["params"] = ordered_json(f.parameters);
    if (!type.makesNewSolid) return;
    r["operation"] = f.operation;
    if (!f.target.empty()) r["target"] = f.target;
}

Result<void> readFeature(const ParamFeatureType& type, ParamFeature& f, const json& r) {
    auto params = r.find("params");
    if (params == r.end() || !params->is_object()) return fail("\"params\" must be an object");
    for (const FeatureArgument& argument : type.arguments)
        if (auto value = params->find(argument.key); value != params->end())
            if (Result<void> ok = checkValue(argument, *value); !ok) return ok;
    if (auto records = params->find("expressions");
        records != params->end() && !records->is_object())
        return fail("\"params\": \"expressions\" must be an object");
    f.parameters = *params;
    if (!type.makesNewSolid) return {};

    if (auto operation = r.find("operation"); operation != r.end()) {
        static const char* const words[] = {"new_body", "join", "cut", "intersect"};
        if (!operation->is_string() || std::find(std::begin(words), std::end(words),
                                                 operation->get<std::string>()) == std::end(words))
            return fail(
                "\"operation\" must be one of \"new_body\", \"join\", \"cut\", \"intersect\"");
        f.operation = operation->get<std::string>();
    }
    if (auto target = r.find("target"); target != r.end()) {
        if (!target->is_string()) return fail("\"target\" must be text");
        f.target = target->get<std::string>();
    }
    return {};
}

std::string lowercase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

void registerParamTypes(ObjectTypes& types) {
    for (const ParamFeatureType& type : paramFeatureTypes().all()) {
        if (types.find(type.typeId)) continue;
        const std::string typeId = type.typeId;
        // The kind is looked up again at each use: the registry may grow meanwhile.
        auto kind = [typeId]() -> const ParamFeatureType& {
            return *paramFeatureTypes().find(typeId);
        };
        types.add({typeId, lowercase(type.label),
                   [typeId] {
                       auto feature = std::make_unique<ParamFeature>();
                       feature->typeId = typeId;
                       return feature;
                   },
                   [kind](const DocumentObject& o, ordered_json& r, SideFiles&) {
                       writeFeature(kind(), static_cast<const ParamFeature&>(o), r);
                   },
                   [kind](DocumentObject& o, const json& r, const ArchiveReader&) {
                       return readFeature(kind(), static_cast<ParamFeature&>(o), r);
                   }});
    }
}

} // namespace cad
