// Sweep: the profile's regions carried along a path of connected curves, turning
// with it or keeping their orientation.
#include "geometry/param/FeatureReferences.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ProfileFeatures.h"
#include "geometry/param/SweptSolid.h"

#include <BRepOffsetAPI_MakePipe.hxx>
#include <Standard_Failure.hxx>

namespace cad {

using namespace geometry;

Result<NamedShape> computeSweep(const Document& document, const nlohmann::json& parameters,
                                const NamedShape&, const std::string& featureName) {
    const ReferenceContext context = featureContext(document, featureName);
    const char* kernelFailure = "The geometry kernel could not sweep the profile along that path.";
    try {
        Result<TopoDS_Wire> path = pathWire(document, parameterText(parameters, "path"), context);
        if (!path) return Error(path);
        Result<Profile> profile =
            featureProfile(document, parameterText(parameters, "sketch"), context);
        if (!profile) return Error(profile);
        if (profile->faces.empty()) return fail("There is no profile to sweep.");

        const GeomFill_Trihedron mode = parameterFlag(parameters, "follow", true)
                                            ? GeomFill_IsCorrectedFrenet
                                            : GeomFill_IsFixed;
        const TopoDS_Wire& spine = *path;
        MakeSweep make = [&](const TopoDS_Face& face) {
            return std::unique_ptr<BRepPrimAPI_MakeSweep>(
                new BRepOffsetAPI_MakePipe(spine, face, mode, Standard_False));
        };
        Result<std::vector<SweptPiece>> pieces =
            sweepFaces(*profile, profile->faces, make, true, featureName, kernelFailure);
        if (!pieces) return Error(pieces);
        return checkedSolid(
            joinTouchingPieces(std::move(pieces).value()), "The sweep made no solid.",
            "The sweep doesn't make a valid solid (does the profile cross itself or the path?).");
    } catch (const Standard_Failure&) {
        return fail(kernelFailure);
    }
}

} // namespace cad
