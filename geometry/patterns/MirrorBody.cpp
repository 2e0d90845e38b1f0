// The source body's current shape mirrored; the copy's faces are named by the way
// they face, after the feature ("Mirror1.left").
#include "geometry/patterns/MirrorBody.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "geometry/Naming.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/patterns/PatternLayout.h"

#include <BRepBuilderAPI_Transform.hxx>
#include <Standard_Failure.hxx>

namespace cad {

using namespace geometry;

Result<NamedShape> computeMirrorBody(const Document& document, const nlohmann::json& parameters,
                                     const NamedShape&, const std::string& featureName) {
    const ReferenceContext context = featureContext(document, featureName);
    const std::string source = std::string(trimmed(parameterText(parameters, "source")));
    if (source.empty()) return fail("Pick the body to mirror.");
    auto* original = document.findAs<GeometryObject>(source);
    if (!original) return fail("'" + source + "' has no shape to mirror.");
    Result<const NamedShape*> shape = referencedBodyShape(document, *original, source, context);
    if (!shape) return fail("'" + source + "' has no shape to mirror.");
    Result<gp_Trsf> mirror = mirrorMotion(document, parameterText(parameters, "plane"), context);
    if (!mirror) return Error(mirror);

    TopoDS_Shape mirrored;
    try {
        BRepBuilderAPI_Transform made((*shape)->shape(), *mirror, Standard_True);
        if (!made.IsDone()) return fail("The geometry kernel couldn't mirror the body.");
        mirrored = made.Shape();
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel couldn't mirror the body.");
    }
    if (mirrored.IsNull()) return fail("There's nothing to mirror.");
    return nameFacesByDirection(mirrored, featureName);
}

} // namespace cad
