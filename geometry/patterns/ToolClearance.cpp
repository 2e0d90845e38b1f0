// Growing a tool for clearance: an offset for the sides, then the ends trimmed back
// by a slab across the axis, or pushed out by joining copies moved along it.
#include "geometry/patterns/ToolClearance.h"

#include "geometry/NameHistory.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/patterns/CopiedShapes.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBndLib.hxx>
#include <BRepGProp.hxx>
#include <BRepOffsetAPI_MakeOffsetShape.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <gp_Ax3.hxx>

#include <cmath>

namespace cad::geometry {

namespace {

struct Extent {
    double low, high;
};

// How far the shape reaches along the direction, measured from the origin.
Extent extentAlong(const TopoDS_Shape& shape, const gp_Dir& axis) {
    gp_Trsf toAxis;
    toAxis.SetTransformation(gp_Ax3(gp::Origin(), axis));
    Bnd_Box box;
    BRepBndLib::AddOptimal(shape.Moved(TopLoc_Location(toAxis)), box, Standard_False,
                           Standard_False);
    return {box.CornerMin().Z(), box.CornerMax().Z()};
}

// Everything between two planes across the axis, far wider than the shape.
TopoDS_Shape slab(const TopoDS_Shape& shape, const gp_Dir& axis, Extent extent) {
    Bnd_Box box;
    BRepBndLib::Add(shape, box);
    const double reach = std::sqrt(box.SquareExtent()) + 10;
    const gp_XYZ middle = (box.CornerMin().XYZ() + box.CornerMax().XYZ()) / 2;
    const gp_Ax2 frame(gp::Origin(), axis);
    const gp_XYZ across = middle - axis.XYZ() * middle.Dot(axis.XYZ());
    const gp_Pnt corner(across + axis.XYZ() * extent.low - frame.XDirection().XYZ() * reach -
                        frame.YDirection().XYZ() * reach);
    return BRepPrimAPI_MakeBox(gp_Ax2(corner, axis, frame.XDirection()), 2 * reach, 2 * reach,
                               extent.high - extent.low)
        .Shape();
}

} // namespace

Result<NamedShape> grownTool(const NamedShape& tool, double radial, double axial,
                             const gp_Dir& axis, const std::string& failure) {
    try {
        std::vector<NamingEntry> names = faceNamesToCopy(tool);
        TopoDS_Shape shape = tool.shape();
        if (radial > 0) {
            BRepOffsetAPI_MakeOffsetShape offset;
            offset.PerformByJoin(shape, radial, 1e-6, BRepOffset_Skin, Standard_False,
                                 Standard_False, GeomAbs_Intersection);
            if (!offset.IsDone()) return fail(failure);
            names = carryNames(names, offset);
            shape = offset.Shape();
        }
        const double extra = axial - radial;
        if (extra < -1e-9) {
            const Extent ends = extentAlong(tool.shape(), axis);
            BRepAlgoAPI_Common common(shape,
                                      slab(shape, axis, {ends.low - axial, ends.high + axial}));
            if (!common.IsDone() || common.HasErrors()) return fail(failure);
            names = carryNames(names, common);
            shape = common.Shape();
        } else if (extra > 1e-9) {
            BRepAlgoAPI_Fuse fuse;
            TopTools_ListOfShape arguments, tools;
            arguments.Append(shape);
            std::vector<NamingEntry> moved;
            for (double along : {extra, -extra}) {
                gp_Trsf shift;
                shift.SetTranslation(gp_Vec(axis) * along);
                const TopLoc_Location where(shift);
                tools.Append(shape.Moved(where));
                for (const NamingEntry& entry : names)
                    moved.push_back({entry.subShape.Moved(where), entry.name, entry.tag});
            }
            fuse.SetArguments(arguments);
            fuse.SetTools(tools);
            fuse.Build();
            if (!fuse.IsDone() || fuse.HasErrors()) return fail(failure);
            names.insert(names.end(), moved.begin(), moved.end());
            names = carryNames(names, fuse);
            shape = unifyWithNames(fuse.Shape(), names);
        }
        NamedShape grown(shape);
        grown.entries() = std::move(names);
        return grown;
    } catch (const Standard_Failure&) {
        return fail(failure);
    }
}

std::optional<gp_Dir> ownAxis(const TopoDS_Shape& tool) {
    std::optional<gp_Dir> axis;
    double largest = 0;
    for (TopExp_Explorer e(tool, TopAbs_FACE); e.More(); e.Next()) {
        BRepAdaptor_Surface surface(TopoDS::Face(e.Current()));
        if (surface.GetType() != GeomAbs_Cylinder) continue;
        GProp_GProps props;
        BRepGProp::SurfaceProperties(e.Current(), props);
        if (props.Mass() > largest) {
            largest = props.Mass();
            axis = surface.Cylinder().Axis().Direction();
        }
    }
    return axis;
}

} // namespace cad::geometry
