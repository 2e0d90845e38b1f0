// Revolve: the profile's regions turned about a straight axis, a full turn or part
// of one, on one side of the sketch or split evenly across it.
#include "geometry/param/FeatureReferences.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ProfileFeatures.h"
#include "geometry/param/SweptSolid.h"

#include <BRepPrimAPI_MakeRevol.hxx>
#include <Standard_Failure.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <gp_Trsf.hxx>

#include <cmath>
#include <numbers>

namespace cad {

using namespace geometry;

Result<NamedShape> computeRevolve(const Document& document, const nlohmann::json& parameters,
                                  const NamedShape&, const std::string& featureName) {
    const ReferenceContext context = featureContext(document, featureName);
    Result<Profile> profile =
        featureProfile(document, parameterText(parameters, "sketch"), context);
    if (!profile) return Error(profile);
    Result<gp_Ax1> axis = straightAxis(document, parameterText(parameters, "axis"), context);
    if (!axis) return Error(axis);

    if (profile->faces.empty()) return fail("There is no profile to revolve.");
    double angle = parameterNumber(parameters, "angle", 360.0);
    if (!std::isfinite(angle) || std::abs(angle) < 1e-12)
        return fail("The angle must not be zero.");
    const bool full = std::abs(angle) >= 360.0;
    if (full) angle = 360.0;
    const double toRadians = std::numbers::pi / 180.0;

    try {
        // Split evenly: start half the angle back.
        TopLoc_Location start;
        if (parameterFlag(parameters, "symmetric", false) && !full) {
            gp_Trsf turn;
            turn.SetRotation(*axis, -angle / 2 * toRadians);
            start = TopLoc_Location(turn);
        }
        std::vector<TopoDS_Face> faces;
        for (const TopoDS_Face& face : profile->faces)
            faces.push_back(TopoDS::Face(face.Moved(start)));

        // A negative angle turns the same amount about the reversed axis.
        const gp_Ax1 about = angle < 0 ? axis->Reversed() : *axis;
        const double radians = std::abs(angle) * toRadians;
        MakeSweep make = [&](const TopoDS_Face& face) {
            return std::unique_ptr<BRepPrimAPI_MakeSweep>(
                new BRepPrimAPI_MakeRevol(face, about, radians, Standard_False));
        };
        const char* kernelFailure = "The geometry kernel could not revolve a profile.";
        Result<std::vector<SweptPiece>> pieces =
            sweepFaces(*profile, faces, make, !full, featureName, kernelFailure);
        if (!pieces) return Error(pieces);
        return checkedSolid(
            joinTouchingPieces(std::move(pieces).value()), "The revolve made no solid.",
            "The revolve doesn't make a valid solid (does the profile cross itself or the axis?).");
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not revolve a profile.");
    }
}

} // namespace cad
