// Fold's compute: find the Unfold it closes, lay the part flat again as that Unfold
// did, and cut and join what changed flat into the bent part it started from.
#include "geometry/sheet/flat/FoldFeature.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/sheet/flat/FoldPieces.h"
#include "geometry/sheet/flat/UnfoldFeature.h"

namespace cad::flat {

namespace {

// The last active Unfold before the feature that no Fold has closed yet.
const ParamFeature* unfoldBefore(const Document& document, const GeometryObject& body,
                                 const std::string& featureId) {
    const ParamFeature* unfold = nullptr;
    for (const std::string& id : body.features) {
        if (id == featureId) break;
        const auto* feature = document.findAs<ParamFeature>(id);
        if (!feature || !document.isActive(*feature)) continue;
        if (feature->typeId == "Unfold")
            unfold = feature;
        else if (feature->typeId == "Fold")
            unfold = nullptr;
    }
    return unfold;
}

} // namespace

Result<geometry::NamedShape> computeFold(const Document& document, const nlohmann::json& parameters,
                                         const geometry::NamedShape& body,
                                         const std::string& featureName) {
    const GeometryObject* owner = document.bodyOfFeature(featureName);
    if (!owner) return fail("A fold belongs to a body.");
    const ParamFeature* unfold = unfoldBefore(document, *owner, featureName);
    if (!unfold) return fail("There's no Unfold before this fold.");
    const geometry::NamedShape* bent = document.shapeBefore(unfold->id);
    if (!bent || bent->isNull() || !unfold->error.empty() || body.isNull())
        return fail(unfold->displayName() + " hasn't been worked out yet.");
    if (parameterFlag(parameters, "open", false)) return body;

    Result<Unfolding> unfolding = unfoldingOf(document, *unfold);
    if (!unfolding) return Error(unfolding);
    Result<CarriedWork> work = carryBack(*unfolding, body, featureName);
    if (!work) return Error(work);

    geometry::NamedShape folded = *bent;
    for (const geometry::NamedShape& piece : work->added) {
        Result<geometry::NamedShape> joined =
            geometry::shapeBoolean(folded, piece, geometry::BooleanKind::Join);
        if (!joined) return Error(joined);
        folded = std::move(joined).value();
    }
    for (const geometry::NamedShape& piece : work->cuts) {
        Result<geometry::NamedShape> cut =
            geometry::shapeBoolean(folded, piece, geometry::BooleanKind::Cut);
        if (!cut) return Error(cut);
        folded = std::move(cut).value();
    }
    return folded;
}

} // namespace cad::flat
