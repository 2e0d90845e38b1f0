// Moving, mirroring and gathering named copies: names follow the faces through the
// kernel's history, and overlapping copies are fused before they meet a body.
#include "geometry/patterns/CopiedShapes.h"

#include "geometry/NameHistory.h"
#include "geometry/ShapeBoolean.h"

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepGProp.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Compound.hxx>

#include <algorithm>
#include <numeric>

namespace cad::geometry {

namespace {

// Whether any two boxes touch: sorted by their low x, each box is compared only with
// those that start before it ends.
bool anyTouch(const std::vector<Bnd_Box>& boxes) {
    std::vector<std::size_t> order(boxes.size());
    std::iota(order.begin(), order.end(), 0);
    auto low = [&](std::size_t i) { return boxes[i].CornerMin().X(); };
    auto high = [&](std::size_t i) { return boxes[i].CornerMax().X(); };
    std::sort(order.begin(), order.end(), [&](auto a, auto b) { return low(a) < low(b); });
    for (std::size_t a = 0; a < order.size(); ++a)
        for (std::size_t b = a + 1; b < order.size() && low(order[b]) <= high(order[a]); ++b)
            if (!boxes[order[a]].IsOut(boxes[order[b]])) return true;
    return false;
}

} // namespace

std::vector<NamingEntry> faceNamesToCopy(const NamedShape& source) {
    const NamedShape::Index& index = source.index();
    if (index.faces.IsEmpty()) return source.entries();
    std::vector<NamingEntry> names;
    for (int i = 1; i <= index.faces.Extent(); ++i)
        names.push_back({index.faces(i), index.faceNames[static_cast<std::size_t>(i - 1)], ""});
    return names;
}

Result<NamedShape> copyUnder(const NamedShape& source, const std::vector<NamingEntry>& names,
                             const gp_Trsf& motion, const std::string& prefix) {
    NamedShape copy;
    if (motion.IsNegative()) {
        // A mirror can't be a placement: the geometry is made again.
        BRepBuilderAPI_Transform made(source.shape(), motion, Standard_True);
        if (!made.IsDone()) return fail("The geometry kernel couldn't mirror the shape.");
        copy.setShape(made.Shape());
        for (NamingEntry& entry : carryNames(names, made))
            copy.addName(entry.subShape, prefix + entry.name, std::move(entry.tag));
        return copy;
    }
    const TopLoc_Location where(motion);
    copy.setShape(source.shape().Moved(where));
    for (const NamingEntry& entry : names)
        copy.addName(entry.subShape.Moved(where), prefix + entry.name, entry.tag);
    return copy;
}

Result<NamedShape> oneTool(std::vector<NamedShape> copies) {
    if (copies.empty()) return fail("There's nothing to repeat.");
    if (copies.size() == 1) return std::move(copies.front());
    std::vector<Bnd_Box> boxes(copies.size());
    for (std::size_t i = 0; i < copies.size(); ++i) BRepBndLib::Add(copies[i].shape(), boxes[i]);

    NamedShape tool;
    if (!anyTouch(boxes)) {
        TopoDS_Compound all;
        BRep_Builder builder;
        builder.MakeCompound(all);
        for (const NamedShape& copy : copies) {
            builder.Add(all, copy.shape());
            for (const NamingEntry& entry : copy.entries())
                tool.addName(entry.subShape, entry.name, entry.tag);
        }
        tool.setShape(all);
        return tool;
    }

    // Pieces of one argument must not overlap: fuse them, each its own argument.
    BRepAlgoAPI_Fuse fuse;
    TopTools_ListOfShape first, rest;
    first.Append(copies.front().shape());
    for (std::size_t i = 1; i < copies.size(); ++i) rest.Append(copies[i].shape());
    fuse.SetArguments(first);
    fuse.SetTools(rest);
    fuse.SetRunParallel(parallelBooleans());
    fuse.Build();
    if (!fuse.IsDone() || fuse.HasErrors())
        return fail("The geometry kernel couldn't join the copies together.");
    // Copies that touch come out as one solid: keep that solid alone.
    TopoDS_Shape fused = fuse.Shape();
    int solids = 0;
    for (TopExp_Explorer e(fuse.Shape(), TopAbs_SOLID); e.More(); e.Next(), ++solids)
        fused = e.Current();
    tool.setShape(solids == 1 ? fused : fuse.Shape());
    for (const NamedShape& copy : copies)
        for (NamingEntry& entry : carryNames(copy.entries(), fuse))
            tool.addName(entry.subShape, std::move(entry.name), std::move(entry.tag));
    return tool;
}

gp_Pnt centreOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    if (std::abs(props.Mass()) > 1e-12) return props.CentreOfMass();
    props = GProp_GProps();
    BRepGProp::SurfaceProperties(shape, props);
    if (props.Mass() > 1e-12) return props.CentreOfMass();
    props = GProp_GProps();
    BRepGProp::LinearProperties(shape, props);
    return props.CentreOfMass();
}

} // namespace cad::geometry
