// Making a feature's tool again for its copies: each kind that shapes a body by one
// solid gives it, with the way it meets the body; any other feature is refused.
#include "geometry/patterns/FeatureTools.h"

#include "core/Document.h"
#include "geometry/ExtrudeFeature.h"
#include "geometry/holes/HoleFeature.h"
#include "geometry/holes/HoleTool.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"
#include "geometry/patterns/CopiedShapes.h"

namespace cad {

using geometry::BooleanKind;
using geometry::NamedShape;

namespace {

bool isProfileKind(const std::string& typeId) {
    return typeId == "Revolve" || typeId == "Sweep" || typeId == "Loft";
}

// Every hole of the feature, one tool each, as the feature itself drills them.
Result<FeatureTool> holeTools(const Document& document, const HoleFeature& hole,
                              const NamedShape& body) {
    Result<ResolvedHole> drill = resolveHole(hole.options);
    if (!drill) return Error(drill);
    if (Result<void> ok = checkResolvedHole(*drill); !ok) return Error(ok);
    Result<std::vector<HoleFeature::Placement>> places = hole.placements(document);
    if (!places) return Error(places);
    if (places->empty()) return fail("There's nowhere to put a hole: the sketch has no points.");

    const NamedShape* before = document.shapeBefore(hole.id);
    const TopoDS_Shape& into = before && !before->isNull() ? before->shape() : body.shape();
    std::vector<NamedShape> tools;
    for (const HoleFeature::Placement& place : *places) {
        const double depth = drill->through ? throughDepth(into, place.axis, *drill) : drill->depth;
        Result<NamedShape> tool = holeTool(*drill, place.axis, depth, hole.id);
        if (!tool) return Error(tool);
        if (drill->modeled) {
            tool = threadedHoleTool(*tool, *drill, place.axis, depth, hole.id, place.point);
            if (!tool) return Error(tool);
        }
        tools.push_back(std::move(tool).value());
    }
    Result<NamedShape> all = geometry::oneTool(std::move(tools));
    if (!all) return Error(all);
    return FeatureTool{std::move(all).value(), BooleanKind::Cut};
}

} // namespace

Result<FeatureTool> featureTool(const Document& document, const std::string& name,
                                const NamedShape& body) {
    auto* feature =
        dynamic_cast<const FeatureObject*>(document.findMatching(name, [](const DocumentObject& o) {
            return dynamic_cast<const FeatureObject*>(&o) != nullptr;
        }));
    if (!feature) return fail("There's no feature named '" + name + "'.");

    if (auto* extrude = dynamic_cast<const ExtrudeFeature*>(feature)) {
        Result<NamedShape> tool = extrude->tool(document);
        if (!tool) return Error(tool);
        const BooleanKind kind =
            extrude->operation == ExtrudeOperation::Cut ? BooleanKind::Cut : BooleanKind::Join;
        return FeatureTool{std::move(tool).value(), kind};
    }
    if (auto* hole = dynamic_cast<const HoleFeature*>(feature))
        return holeTools(document, *hole, body);
    auto* param = dynamic_cast<const ParamFeature*>(feature);
    const ParamFeatureType* type = param ? paramFeatureTypes().find(param->typeId) : nullptr;
    if (type && type->compute && isProfileKind(param->typeId)) {
        if (param->operation == "intersect")
            return fail(param->id + " intersects; that can't be repeated.");
        const NamedShape* before = document.shapeBefore(param->id);
        Result<NamedShape> tool =
            type->compute(document, param->parameters, before ? *before : body, param->id);
        if (!tool) return Error(tool);
        const BooleanKind kind = param->operation == "cut" ? BooleanKind::Cut : BooleanKind::Join;
        return FeatureTool{std::move(tool).value(), kind};
    }
    return fail(feature->id + " (" + std::string(feature->typeName()) +
                ") can't be repeated; pattern the features that make the shape (extrude, "
                "revolve, sweep, loft, hole), or the whole body.");
}

} // namespace cad
