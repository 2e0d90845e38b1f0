// The generic parametric feature: a kind's type id and a JSON object of its
// parameters, computed by the kind's registered function; kinds that make a new
// solid then meet it with the body by their operation.
#pragma once

#include "core/DocumentObject.h"
#include "core/NamedShape.h"
#include "geometry/References.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

struct ParamFeatureType;

class ParamFeature : public FeatureObject {
public:
    std::string_view typeName() const override { return typeId; }
    // The objects its parameters use, by the kind's dependencies.
    std::vector<std::string> references() const override;
    Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                       const Document& document) const override;
    // A body pattern that moves with its pattern set is no step of its own.
    bool standsAlone() const override;
    // As the kind says for these parameters.
    bool keepsLast() const override;

    // Values typed as expressions live in parameters["expressions"], by key.
    std::vector<std::pair<std::string, units::Expression>> valueExpressions() const override;
    void renameInExpressions(std::string_view from, std::string_view to) override;
    bool reevaluateExpressions(std::vector<std::string>& problems) override;
    std::any valuesSnapshot() const override;
    void restoreValues(const std::any& snapshot) override;

    std::string typeId;                                   // "Revolve"
    nlohmann::json parameters = nlohmann::json::object(); // keys as in the argument table
    std::string operation = "new_body"; // kinds that make a new solid: "new_body", "join", ...
    std::string target;                 // the body joined, cut or intersected, as chosen
};

// Reading parameters inside compute functions: a missing key or one of another
// JSON type gives the fallback.
std::string parameterText(const nlohmann::json& parameters, std::string_view key);
double parameterNumber(const nlohmann::json& parameters, std::string_view key, double fallback);
bool parameterFlag(const nlohmann::json& parameters, std::string_view key, bool fallback);

// On whose behalf a feature resolves its references: the feature and its body.
geometry::ReferenceContext featureContext(const Document& document, const std::string& featureId);

} // namespace cad
