// Small document objects for exercising the document and commands without the
// real object types of the higher layers.
#pragma once

#include "core/DocumentObject.h"
#include "core/NamedShape.h"

#include <BRep_Builder.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Pnt.hxx>

#include "core/units/ExpressionNames.h"

#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace cad::test {

// Any object type: the type word and dependencies are whatever the test says.
class Thing : public DocumentObject {
public:
    Thing(std::string typeWord, std::string objectId, std::string objectLabel = {})
        : type(std::move(typeWord)) {
        id = std::move(objectId);
        label = std::move(objectLabel);
    }
    std::string_view typeName() const override { return type; }
    std::vector<std::string> dependencies() const override { return uses; }
    bool recompute(const Document&) override { return recomputesLeft > 0 && recomputesLeft--; }

    std::string type;
    std::vector<std::string> uses;
    int recomputesLeft = 0; // how many more recomputes report a change
};

// A feature that adds one vertex to its body's shape, so a shape's vertex count
// tells how many features built it; it fails while `failure` is set.
class TestFeature : public FeatureObject {
public:
    explicit TestFeature(std::string objectId, std::vector<std::string> refs = {})
        : refs_(std::move(refs)) {
        id = std::move(objectId);
    }
    std::string_view typeName() const override { return "Extrude"; }
    std::vector<std::string> references() const override { return refs_; }
    bool standsAlone() const override { return alone; }
    Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                       const Document&) const override {
        ++applied;
        if (!failure.empty()) return fail(failure);
        BRep_Builder builder;
        TopoDS_Compound compound;
        builder.MakeCompound(compound);
        if (!input.isNull()) builder.Add(compound, input.shape());
        TopoDS_Vertex vertex;
        builder.MakeVertex(vertex, gp_Pnt(static_cast<double>(applied), 0, 0), 1e-7);
        builder.Add(compound, vertex);
        return geometry::NamedShape(compound);
    }

    // One value that may follow an expression, as real features' distances do.
    std::vector<std::pair<std::string, units::Expression>> valueExpressions() const override {
        if (!distanceExpression) return {};
        return {{"distance", *distanceExpression}};
    }
    void renameInExpressions(std::string_view from, std::string_view to) override {
        if (distanceExpression)
            distanceExpression->text =
                units::renameInExpression(distanceExpression->text, from, to);
    }
    bool reevaluateExpressions(std::vector<std::string>& problems) override {
        if (!distanceExpression) return false;
        Result<double> value = units::evaluate(*distanceExpression);
        if (!value) {
            problems.push_back(id + ".distance: " + value.error());
            return false;
        }
        if (*value == distance) return false;
        distance = *value;
        return true;
    }
    std::any valuesSnapshot() const override {
        return std::make_pair(distance, distanceExpression);
    }
    void restoreValues(const std::any& snapshot) override {
        std::tie(distance, distanceExpression) =
            std::any_cast<std::pair<double, std::optional<units::Expression>>>(snapshot);
    }

    bool alone = true;
    std::string failure;
    mutable int applied = 0;
    double distance = 0;
    std::optional<units::Expression> distanceExpression;

private:
    std::vector<std::string> refs_;
};

inline std::unique_ptr<Thing> thing(std::string type, std::string id, std::string label = {}) {
    return std::make_unique<Thing>(std::move(type), std::move(id), std::move(label));
}

// How many features built a shape made of TestFeatures.
inline int vertexCount(const geometry::NamedShape& shape) {
    if (shape.isNull()) return 0;
    TopTools_IndexedMapOfShape vertices;
    TopExp::MapShapes(shape.shape(), TopAbs_VERTEX, vertices);
    return vertices.Extent();
}

} // namespace cad::test
