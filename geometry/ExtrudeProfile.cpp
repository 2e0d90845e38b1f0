// Prisms from profile faces, joined as swept pieces are: regions that touch are fused
// into one solid; islands stay separate solids of one compound without a boolean.
#include "geometry/ExtrudeProfile.h"

#include "geometry/Naming.h"
#include "geometry/SweptPieces.h"

#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <gp_Trsf.hxx>

#include <algorithm>
#include <memory>

namespace cad::geometry {

namespace {

constexpr const char* kNoPrism = "The geometry kernel could not extrude a profile.";

// One face swept along the vector, with the names of its faces.
Result<SweptPiece> makePrism(const TopoDS_Face& original, const TopoDS_Face& moved,
                             const Profile& profile, const gp_Vec& vector,
                             const std::string& feature) {
    // Names of the moved face's edges, from the original's (same order, same shapes).
    std::vector<std::string> names;
    for (TopExp_Explorer e(original, TopAbs_EDGE); e.More(); e.Next())
        names.push_back(profile.edgeName(e.Current()));
    std::string tag;
    for (const std::string& n : names)
        if (!n.empty() && (tag.empty() || n < tag)) tag = n;

    TopoDS_Face face = moved;
    for (int attempt = 0; attempt < 2; ++attempt) {
        BRepPrimAPI_MakePrism make(face, vector, Standard_False, Standard_True);
        make.Build();
        if (!make.IsDone()) return fail(kNoPrism);
        GProp_GProps props;
        BRepGProp::VolumeProperties(make.Shape(), props);
        if (props.Mass() < 0 && attempt == 0) {
            face = TopoDS::Face(moved.Reversed());
            continue;
        }
        SweptPiece prism;
        prism.solid = make.Shape();
        prism.entries.push_back({make.FirstShape(), feature + ".start", tag});
        prism.entries.push_back({make.LastShape(), feature + ".end", tag});
        std::size_t i = 0;
        for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next(), ++i) {
            const std::string& edgeName = i < names.size() ? names[i] : std::string();
            std::string side = feature + ".side." + (edgeName.empty() ? "edge" : edgeName);
            for (const TopoDS_Shape& generated : make.Generated(e.Current()))
                if (generated.ShapeType() == TopAbs_FACE)
                    prism.entries.push_back({generated, side, tag});
        }
        return prism;
    }
    return fail(kNoPrism);
}

} // namespace

Result<NamedShape> extrudeProfile(const Profile& profile, const gp_Vec& vector,
                                  std::string_view featureName, const gp_Vec& startOffset) {
    if (profile.faces.empty()) return fail("There is no profile to extrude.");
    if (vector.Magnitude() <= 1e-7) return fail("The extrusion distance must not be zero.");
    const std::string feature(featureName);
    try {
        TopLoc_Location move;
        if (startOffset.Magnitude() > 1e-7) {
            gp_Trsf shift;
            shift.SetTranslation(startOffset);
            move = TopLoc_Location(shift);
        }
        std::vector<SweptPiece> prisms;
        for (const TopoDS_Face& face : profile.faces) {
            TopoDS_Face moved = TopoDS::Face(face.Moved(move));
            Result<SweptPiece> prism = makePrism(face, moved, profile, vector, feature);
            if (!prism) return Error(prism);
            prisms.push_back(std::move(prism).value());
        }

        NamedShape result = joinTouchingPieces(std::move(prisms));
        finishNames(result);
        return result;
    } catch (const Standard_Failure&) {
        return fail(kNoPrism);
    }
}

} // namespace cad::geometry
