// Joining swept pieces: a fuse only when two of them touch, under the kernel's time
// limit, with the same-surface faces it splits merged again and the names carried.
#include "geometry/SweptPieces.h"

#include "geometry/Deadline.h"
#include "geometry/NameHistory.h"
#include "geometry/Naming.h"
#include "geometry/ShapeBoolean.h"

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBndLib.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Compound.hxx>

#include <optional>

namespace cad::geometry {

namespace {

bool touches(const TopoDS_Shape& a, const Bnd_Box& boxA, const TopoDS_Shape& b,
             const Bnd_Box& boxB) {
    if (boxA.IsOut(boxB)) return false;
    BRepExtrema_DistShapeShape distance(a, b);
    return distance.IsDone() && distance.Value() < 1e-7;
}

// Fuses the pieces into one shape; nothing when the kernel can't.
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

} // namespace cad::geometry
