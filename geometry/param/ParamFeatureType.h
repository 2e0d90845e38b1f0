// The kinds of parametric feature: for each, its type id, names, argument table,
// dependencies and compute function, kept in registration order. A new kind is one
// entry here plus its compute function; its commands, form rows and project-file
// record all follow from the entry.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/param/FeatureArgument.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class Document;

struct ParamFeatureType {
    // What the kind makes from its parameters: for a kind that makes a new solid the
    // tool (the operation then meets it with the body); otherwise the body's new shape.
    using Compute = std::function<Result<geometry::NamedShape>(
        const Document& document, const nlohmann::json& parameters,
        const geometry::NamedShape& body, const std::string& featureName)>;
    // The objects the parameters use, by ID.
    using Dependencies = std::function<std::vector<std::string>(const nlohmann::json& parameters)>;

    std::string typeId;      // "Revolve": the type word in the project file
    std::string nameBase;    // "Revolve": features are named RevolveN
    std::string command;     // "revolve"; its editor is "edit_revolve"
    std::string label;       // "Revolve": "Change a Revolve feature ..."
    std::string formId;      // the form it is made in: "revolve", "pattern-rect"
    std::string description; // the tool's description
    bool makesNewSolid = false;
    FeatureArguments arguments; // the kind's own keys, in form order
    Compute compute;
    // Empty: the objects named by the reference-list arguments.
    Dependencies dependencies;
    // Kinds that change a body: the key naming that body, added to the arguments
    // unless the table has it already ("target" of combine).
    std::string bodyKey = "body";
    // Whether a feature of the kind, with these parameters, keeps the end of its body's
    // history while new features go just before it (a fold left open); unset: never.
    std::function<bool(const nlohmann::json& parameters)> keepsLast;
    // The sentence when no body can be told from the arguments; empty: the usual one.
    std::string noBody;
    // Overrides the text of the target argument ("The body it changes (default: the
    // body of what it patterns)."); empty keeps the usual one.
    std::string targetDescription;
};

// A kind with its names, form and description filled in; the caller adds the rest.
ParamFeatureType paramFeatureKind(const char* typeId, const char* nameBase, const char* command,
                                  const char* label, const char* formId,
                                  const char* description);

class ParamFeatureTypes {
public:
    // False (and nothing added) when the type id or the command is taken already.
    bool add(ParamFeatureType type);
    const ParamFeatureType* find(std::string_view typeId) const;
    const ParamFeatureType* findByCommand(std::string_view command) const;
    // The kinds made in one form ("mirror3d": mirror_features and mirror_body).
    std::vector<const ParamFeatureType*> ofForm(std::string_view formId) const;
    const std::vector<ParamFeatureType>& all() const { return types_; }

private:
    std::vector<ParamFeatureType> types_;
};

// The process-wide registry, holding revolve, sweep and loft from the start; other
// libraries add their kinds before registering commands and project-file types.
ParamFeatureTypes& paramFeatureTypes();

// The whole argument table of a kind's command: its own keys, then operation, target,
// name and body for kinds that make a new solid, or name and the body for the others.
FeatureArguments commandArguments(const ParamFeatureType& type);
// The editor's: the feature to change, then the kind's own keys, none required.
FeatureArguments editArguments(const ParamFeatureType& type);

// The names the parameters use: the object part of every reference of every
// reference-list argument, each once, in table order.
std::vector<std::string> referencedObjects(const ParamFeatureType& type,
                                           const nlohmann::json& parameters);

} // namespace cad
