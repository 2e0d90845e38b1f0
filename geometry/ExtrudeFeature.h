// The extrude feature: a profile swept straight along its normal, one side, two
// sides or symmetric, as a new body or joined to or cut from its body.
#pragma once

#include "core/DocumentObject.h"
#include "core/NamedShape.h"
#include "core/units/Expression.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

enum class ExtrudeOperation { NewBody = 0, Join = 1, Cut = 2 };

// Exactly "new_body", "join" and "cut".
std::optional<ExtrudeOperation> parseExtrudeOperation(std::string_view text);
std::string_view extrudeOperationName(ExtrudeOperation operation);

class ExtrudeFeature : public FeatureObject {
public:
    std::string_view typeName() const override { return "Extrude"; }
    // The objects the profile names (the part of each reference before its '/').
    std::vector<std::string> references() const override;
    Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                       const Document& document) const override;

    // The swept solid alone, before it meets the body.
    Result<geometry::NamedShape> tool(const Document& document) const;

    // The values typed as expressions: distance, distance2 and thickness. Failures
    // read "<ID>.<key>: <message>" and keep the old value.
    std::vector<std::pair<std::string, units::Expression>> valueExpressions() const override;
    void renameInExpressions(std::string_view from, std::string_view to) override;
    bool reevaluateExpressions(std::vector<std::string>& problems) override;
    std::any valuesSnapshot() const override;
    void restoreValues(const std::any& snapshot) override;

    std::string profile; // a ';'-separated list of profile references
    double distance = 0; // mm, signed: negative goes against the sketch normal
    ExtrudeOperation operation = ExtrudeOperation::NewBody;
    double thickness = 0;            // 0: solid regions; more: a thin wall that thick
    std::string thinSide = "inside"; // "inside", "outside" or "center"
    std::string extent = "one_side"; // "one_side", "two_sides" or "symmetric"
    double distance2 = 0;            // two sides: the distance the other way (sign ignored)
    std::string target;              // the body joined or cut, as given
    std::map<std::string, units::Expression> expressions; // value key -> the text it follows
};

} // namespace cad
