// The registry of parametric feature kinds and the argument tables every kind's
// command and editor take, generic arguments included.
#include "geometry/param/ParamFeatureType.h"

#include "geometry/References.h"
#include "geometry/param/ProfileFeatures.h"

#include <algorithm>

namespace cad {

namespace {

using Kind = FeatureArgument::Kind;

bool hasKey(const FeatureArguments& table, std::string_view key) {
    return std::any_of(table.begin(), table.end(),
                       [&](const FeatureArgument& a) { return a.key == key; });
}

} // namespace

ParamFeatureType paramFeatureKind(const char* typeId, const char* nameBase, const char* command,
                                  const char* label, const char* formId,
                                  const char* description) {
    ParamFeatureType type;
    type.typeId = typeId;
    type.nameBase = nameBase;
    type.command = command;
    type.label = label;
    type.formId = formId;
    type.description = description;
    return type;
}

bool ParamFeatureTypes::add(ParamFeatureType type) {
    if (find(type.typeId) || (!type.command.empty() && findByCommand(type.command))) return false;
    types_.push_back(std::move(type));
    return true;
}

const ParamFeatureType* ParamFeatureTypes::find(std::string_view typeId) const {
    for (const ParamFeatureType& type : types_)
        if (type.typeId == typeId) return &type;
    return nullptr;
}

const ParamFeatureType* ParamFeatureTypes::findByCommand(std::string_view command) const {
    for (const ParamFeatureType& type : types_)
        if (type.command == command) return &type;
    return nullptr;
}

std::vector<const ParamFeatureType*> ParamFeatureTypes::ofForm(std::string_view formId) const {
    std::vector<const ParamFeatureType*> out;
    for (const ParamFeatureType& type : types_)
        if (type.formId == formId) out.push_back(&type);
    return out;
}

ParamFeatureTypes& paramFeatureTypes() {
    static ParamFeatureTypes types = [] {
        ParamFeatureTypes built;
        registerProfileFeatureTypes(built);
        return built;
    }();
    return types;
}

FeatureArguments commandArguments(const ParamFeatureType& type) {
    FeatureArguments table = type.arguments;
    const std::string name = "Feature name (default " + type.nameBase + "N).";
    if (type.makesNewSolid) {
        table.push_back({"Operation",
                         "Default new_body.",
                         "operation",
                         Kind::Choice,
                         false,
                         {"new_body", "join", "cut", "intersect"},
                         "new_body",
                         ""});
        const std::string target =
            type.targetDescription.empty()
                ? "The body to join, cut or intersect (default: the body the sketch sits on)."
                : type.targetDescription;
        table.push_back({"Target body", target, "target", Kind::Text, false, {}, {}, "body",
                         FeatureArgument::Bodies});
        table.push_back({"Name", name, "name", Kind::Text, false, {}, {}, ""});
        table.push_back({"New body",
                         "New body's name (default BodyN).",
                         "body",
                         Kind::Text,
                         false,
                         {},
                         {},
                         ""});
        return table;
    }
    table.push_back({"Name", name, "name", Kind::Text, false, {}, {}, ""});
    if (!hasKey(table, type.bodyKey))
        table.push_back({"Body",
                         "The body it changes (default: the body of what it uses).",
                         type.bodyKey,
                         Kind::Text,
                         false,
                         {},
                         {},
                         "body",
                         FeatureArgument::Bodies});
    return table;
}

FeatureArguments editArguments(const ParamFeatureType& type) {
    FeatureArguments table;
    table.push_back({"Feature",
                     "The feature to change, e.g. \"" + type.nameBase + "1\".",
                     "feature",
                     Kind::Text,
                     true,
                     {},
                     {},
                     "feature"});
    for (FeatureArgument argument : type.arguments) {
        argument.required = false;
        argument.fallback = nullptr;
        table.push_back(std::move(argument));
    }
    return table;
}

std::vector<std::string> referencedObjects(const ParamFeatureType& type,
                                           const nlohmann::json& parameters) {
    std::vector<std::string> out;
    if (!parameters.is_object()) return out;
    for (const FeatureArgument& argument : type.arguments) {
        if (argument.kind != Kind::References) continue;
        auto value = parameters.find(argument.key);
        if (value == parameters.end() || !value->is_string()) continue;
        for (const std::string& reference :
             geometry::splitReferenceList(value->get_ref<const std::string&>())) {
            std::string head = geometry::objectPart(reference);
            if (!head.empty() && std::find(out.begin(), out.end(), head) == out.end())
                out.push_back(std::move(head));
        }
    }
    return out;
}

} // namespace cad
