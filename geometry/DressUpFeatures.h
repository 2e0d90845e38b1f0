// The dress-up features that finish a body: fillets round edges, chamfers bevel
// them, shells hollow the body. They keep persistent names, never geometry, and
// look them up again in the body's shape at every rebuild.
#pragma once

#include "core/DocumentObject.h"
#include "core/NamedShape.h"
#include "core/units/Expression.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

// What the three share: one length (a radius, a distance or a thickness) that may
// follow an expression, and no objects used outside their own body.
class DressUpFeature : public FeatureObject {
public:
    std::vector<std::string> references() const override { return {}; }

    // The value's key in commands and the project file: "radius", "distance", "thickness".
    virtual std::string_view valueKey() const = 0;
    virtual double value() const = 0;
    virtual void setValue(double value) = 0;

    // Failures read "<ID>.<key>: <message>" and keep the old value.
    std::vector<std::pair<std::string, units::Expression>> valueExpressions() const override;
    void renameInExpressions(std::string_view from, std::string_view to) override;
    bool reevaluateExpressions(std::vector<std::string>& problems) override;
    std::any valuesSnapshot() const override;
    void restoreValues(const std::any& snapshot) override;

    std::map<std::string, units::Expression> expressions; // value key -> the text it follows
};

class FilletFeature : public DressUpFeature {
public:
    std::string_view typeName() const override { return "Fillet"; }
    std::string_view valueKey() const override { return "radius"; }
    double value() const override { return radius; }
    void setValue(double value) override { radius = value; }
    Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                       const Document& document) const override;

    std::vector<std::string> edges; // persistent edge names in the body
    double radius = 0;              // mm
    bool tangentChain = true;       // also the edges continuing these smoothly
};

class ChamferFeature : public DressUpFeature {
public:
    std::string_view typeName() const override { return "Chamfer"; }
    std::string_view valueKey() const override { return "distance"; }
    double value() const override { return distance; }
    void setValue(double value) override { distance = value; }
    Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                       const Document& document) const override;

    std::vector<std::string> edges;
    double distance = 0; // mm along each face
    bool tangentChain = true;
};

class ShellFeature : public DressUpFeature {
public:
    std::string_view typeName() const override { return "Shell"; }
    std::string_view valueKey() const override { return "thickness"; }
    double value() const override { return thickness; }
    void setValue(double value) override { thickness = value; }
    Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                       const Document& document) const override;

    std::vector<std::string> faces; // the openings: persistent face names in the body
    double thickness = 0;           // mm
    bool outward = false;           // walls grow out of the body instead of into it
};

} // namespace cad
