// Unfold's compute, the rules a body is laid flat with, and the blank's face names.
#include "geometry/sheet/flat/UnfoldFeature.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/Naming.h"
#include "geometry/materials/BodyMaterial.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/sheet/flat/SheetFaces.h"

#include <BRepAdaptor_Surface.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Pln.hxx>

namespace cad::flat {

UnfoldOptions unfoldOptionsFor(const Document& document, const GeometryObject* body,
                               const std::string& fixedFace) {
    UnfoldOptions options;
    options.fixedFace = fixedFace;
    if (body) {
        if (std::optional<sheet::SheetRules> rules = sheet::sheetRulesOf(document, *body)) {
            options.rules = *rules;
            options.measureThickness = false;
        } else {
            options.rules.kFactor = kFactorOf(document, *body);
        }
    }
    return options;
}

geometry::NamedShape namedBlank(const Unfolding& unfolding, const std::string& featureName) {
    geometry::NamedShape named(unfolding.blank);
    const gp_Pln plane(unfolding.plane);
    const gp_Dir outward = unfolding.plane.Direction();
    const std::string fixed =
        unfolding.fixedName.empty() ? featureName + ".fixed" : unfolding.fixedName;
    const std::string back =
        unfolding.acrossName.empty() ? featureName + ".back" : unfolding.acrossName;
    for (TopExp_Explorer e(unfolding.blank, TopAbs_FACE); e.More(); e.Next()) {
        const TopoDS_Face& face = TopoDS::Face(e.Current());
        const std::optional<gp_Dir> normal = flatNormal(face);
        std::string name = featureName + ".side";
        if (normal && normal->IsParallel(outward, 1e-9)) {
            const double depth = plane.Distance(BRepAdaptor_Surface(face).Value(0, 0));
            if (normal->Dot(outward) > 0 && depth < 1e-6)
                name = fixed;
            else if (normal->Dot(outward) < 0 && std::abs(depth - unfolding.thickness) < 1e-6)
                name = back;
        }
        named.addName(face, name);
    }
    geometry::finishNames(named);
    return named;
}

Result<geometry::NamedShape> computeUnfold(const Document& document,
                                           const nlohmann::json& parameters,
                                           const geometry::NamedShape& body,
                                           const std::string& featureName) {
    if (body.isNull()) return fail("There's nothing to unfold.");
    const UnfoldOptions options = unfoldOptionsFor(document, document.bodyOfFeature(featureName),
                                                   parameterText(parameters, "face"));
    Result<Unfolding> unfolding = unfoldSheet(body, options);
    if (!unfolding) return Error(unfolding);
    if (unfolding->bends.empty()) return fail("There's nothing to unfold.");
    return namedBlank(*unfolding, featureName);
}

Result<Unfolding> unfoldingOf(const Document& document, const ParamFeature& unfold) {
    const geometry::NamedShape* before = document.shapeBefore(unfold.id);
    if (!before || before->isNull() || !unfold.error.empty())
        return fail(unfold.displayName() + " hasn't been worked out yet.");
    const UnfoldOptions options = unfoldOptionsFor(document, document.bodyOfFeature(unfold.id),
                                                   parameterText(unfold.parameters, "face"));
    return unfoldSheet(*before, options);
}

const ParamFeature* openUnfold(const Document& document, const GeometryObject& body) {
    const ParamFeature* open = nullptr;
    for (const std::string& id : body.features) {
        const auto* feature = document.findAs<ParamFeature>(id);
        if (!feature || !document.isActive(*feature)) continue;
        if (feature->typeId == "Unfold")
            open = feature;
        else if (feature->typeId == "Fold" && !parameterFlag(feature->parameters, "open", false))
            open = nullptr;
    }
    return open;
}

} // namespace cad::flat
