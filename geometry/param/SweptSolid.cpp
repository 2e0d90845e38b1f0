// Naming swept faces and checking the solid a sweep made.
#include "geometry/param/SweptSolid.h"

#include "geometry/Naming.h"

#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace cad::geometry {

std::vector<std::string> edgeNamesOf(const TopoDS_Shape& shape, const Profile& profile) {
    std::vector<std::string> names;
    for (TopExp_Explorer e(shape, TopAbs_EDGE); e.More(); e.Next())
        names.push_back(profile.edgeName(e.Current()));
    return names;
}

std::string smallestName(const std::vector<std::string>& names) {
    std::string smallest;
    for (const std::string& n : names)
        if (!n.empty() && (smallest.empty() || n < smallest)) smallest = n;
    return smallest;
}

std::vector<NamingEntry> sideNames(BRepBuilderAPI_MakeShape& operation, const TopoDS_Shape& swept,
                                   const std::vector<std::string>& names,
                                   const std::string& feature, const std::string& side,
                                   const std::string& tag) {
    std::vector<NamingEntry> entries;
    std::size_t i = 0;
    for (TopExp_Explorer e(swept, TopAbs_EDGE); e.More(); e.Next(), ++i) {
        const std::string& edgeName = i < names.size() ? names[i] : std::string();
        const std::string name =
            feature + "." + side + "." + (edgeName.empty() ? "edge" : edgeName);
        for (const TopoDS_Shape& generated : operation.Generated(e.Current()))
            if (generated.ShapeType() == TopAbs_FACE) entries.push_back({generated, name, tag});
    }
    return entries;
}

namespace {

double volumeOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.Mass();
}

Result<SweptPiece> sweepOne(const TopoDS_Face& moved, const std::vector<std::string>& names,
                            const MakeSweep& make, bool ends, const std::string& feature,
                            const char* kernelFailure) {
    const std::string tag = smallestName(names);
    TopoDS_Face face = moved;
    for (int attempt = 0; attempt < 2; ++attempt) {
        std::unique_ptr<BRepPrimAPI_MakeSweep> sweep = make(face);
        if (!sweep) return fail(kernelFailure);
        sweep->Build();
        if (!sweep->IsDone() || sweep->Shape().IsNull()) return fail(kernelFailure);
        if (volumeOf(sweep->Shape()) < 0 && attempt == 0) {
            face = TopoDS::Face(moved.Reversed());
            continue;
        }
        SweptPiece piece;
        piece.solid = sweep->Shape();
        if (ends) {
            piece.entries.push_back({sweep->FirstShape(), feature + ".start", tag});
            piece.entries.push_back({sweep->LastShape(), feature + ".end", tag});
        }
        std::vector<NamingEntry> sides = sideNames(*sweep, face, names, feature, "side", tag);
        piece.entries.insert(piece.entries.end(), sides.begin(), sides.end());
        return piece;
    }
    return fail(kernelFailure);
}

} // namespace

Result<std::vector<SweptPiece>> sweepFaces(const Profile& profile,
                                           const std::vector<TopoDS_Face>& faces,
                                           const MakeSweep& make, bool ends,
                                           const std::string& feature, const char* kernelFailure) {
    std::vector<SweptPiece> pieces;
    for (std::size_t i = 0; i < faces.size() && i < profile.faces.size(); ++i) {
        // The moved face has the original's edges in the same order, moved: their
        // names come from the original.
        Result<SweptPiece> piece = sweepOne(faces[i], edgeNamesOf(profile.faces[i], profile), make,
                                            ends, feature, kernelFailure);
        if (!piece) return Error(piece);
        pieces.push_back(std::move(piece).value());
    }
    return pieces;
}

Result<NamedShape> checkedSolid(NamedShape shape, const char* noSolid, const char* invalid) {
    if (shape.isNull()) return fail(noSolid);
    TopExp_Explorer solids(shape.shape(), TopAbs_SOLID);
    if (!solids.More()) return fail(noSolid);
    BRepCheck_Analyzer analyzer(shape.shape());
    if (!analyzer.IsValid()) return fail(invalid);
    finishNames(shape);
    return shape;
}

} // namespace cad::geometry
