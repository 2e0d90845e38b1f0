// A pattern of whole bodies: its layout, its source bodies and the bodies it made,
// one per copy ("Bracket (2)"), which edit_pattern changes all together.
#pragma once

#include "core/DocumentObject.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace cad {

class ObjectTypes;

class PatternSetObject : public DocumentObject {
public:
    std::string_view typeName() const override { return "PatternSet"; }

    // Values typed as expressions live in parameters["expressions"], by key.
    std::vector<std::pair<std::string, units::Expression>> valueExpressions() const override;
    void renameInExpressions(std::string_view from, std::string_view to) override;
    bool reevaluateExpressions(std::vector<std::string>& problems) override;
    std::any valuesSnapshot() const override;
    void restoreValues(const std::any& snapshot) override;

    // "pattern" and the other layout keys of pattern_bodies, and "bodies": the
    // sources by ID, separated by "; ".
    nlohmann::json parameters = nlohmann::json::object();
    std::vector<std::string> copies; // the copies' body IDs, source by source, in copy order
};

// The project file's "PatternSet" record: "params" holds the parameters and "copies".
void registerPatternSetType(ObjectTypes& types);

} // namespace cad
