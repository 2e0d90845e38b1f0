// Naming swept faces, fusing pieces that touch, and checking the solid a sweep made.
#include "geometry/param/SweptSolid.h"

#include "geometry/Deadline.h"
#include "geometry/NameHistory.h"
#include "geometry/Naming.h"
#include "geometry/ShapeBoolean.h"

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBndLib.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepGProp.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>

#include <optional>

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

bool touches(const TopoDS_Shape& a, const Bnd_Box& boxA, const TopoDS_Shape& b,
             const Bnd_Box& boxB) {
    if (boxA.IsOut(boxB)) return false;
    BRepExtrema_DistShapeShape distance(a, b);
    return distance.IsDone() && distance.Value() < 1e-7;
}

std::optional<NamedShape> fuseAll(const std::vector<SweptPiece>& pieces) {
    BRepAlgoAPI_Fuse fuse;
    TopTools_ListOfShape arguments, tools;
    arguments.Append(pieces.front().solid);
    for (std::size_t i = 1; i < pieces.size(); ++i) tools.Append(pieces[i].solid);
    fuse.SetArguments(arguments);
    fuse.SetTools(tools);
    fuse.SetRunParallel(parallelBooleans());
    Handle(Deadline) deadline = new Deadline();
    fuse.Build(deadline->Start());
    if (!fuse.IsDone() || fuse.HasErrors()) return std::nullopt;

    std::vector<NamingEntry> entries;
    for (const SweptPiece& p : pieces) {
        std::vector<NamingEntry> carried = carryNames(p.entries, fuse);
        entries.insert(entries.end(), carried.begin(), carried.end());
    }
    TopoDS_Shape simplified = unifyWithNames(fuse.Shape(), entries);
    int solids = 0;
    TopoDS_Shape only;
    for (TopExp_Explorer e(simplified, TopAbs_SOLID); e.More(); e.Next(), ++solids)
        only = e.Current();
    NamedShape result(solids == 1 ? only : simplified);
    result.entries() = std::move(entries);
    return result;
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

NamedShape joinTouchingPieces(std::vector<SweptPiece> pieces) {
    if (pieces.empty()) return {};
    if (pieces.size() == 1) {
        NamedShape result(pieces.front().solid);
        result.entries() = std::move(pieces.front().entries);
        return result;
    }
    std::vector<Bnd_Box> boxes(pieces.size());
    for (std::size_t i = 0; i < pieces.size(); ++i) BRepBndLib::Add(pieces[i].solid, boxes[i]);
    bool anyTouch = false;
    for (std::size_t i = 0; i < pieces.size() && !anyTouch; ++i)
        for (std::size_t j = i + 1; j < pieces.size() && !anyTouch; ++j)
            anyTouch = touches(pieces[i].solid, boxes[i], pieces[j].solid, boxes[j]);
    if (anyTouch)
        if (std::optional<NamedShape> fused = fuseAll(pieces)) return std::move(*fused);

    TopoDS_Compound all;
    BRep_Builder builder;
    builder.MakeCompound(all);
    std::vector<NamingEntry> entries;
    for (SweptPiece& p : pieces) {
        builder.Add(all, p.solid);
        entries.insert(entries.end(), p.entries.begin(), p.entries.end());
    }
    NamedShape result(all);
    result.entries() = std::move(entries);
    return result;
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
