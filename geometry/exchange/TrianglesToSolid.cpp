// Triangles to a sewn shape: a planar face per usable triangle, sewn together;
// closed shells become solids with their volume outward, then coplanar faces
// are unified.
#include "geometry/exchange/TrianglesToSolid.h"

#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeSolid.hxx>
#include <BRepBuilderAPI_Sewing.hxx>
#include <BRepGProp.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <ShapeFix_Shell.hxx>
#include <ShapeFix_Solid.hxx>
#include <ShapeUpgrade_UnifySameDomain.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Shell.hxx>
#include <gp_Pln.hxx>
#include <gp_Vec.hxx>

#include <cmath>
#include <exception>

namespace cad::exchange {

namespace {

constexpr double kShortestEdge = 1e-9;
// Coordinates beyond this (a million kilometres) are no model's: the kernel's
// arithmetic loses every digit of a triangle's size there.
constexpr double kFarthest = 1e12;

bool usablePoint(const gp_Pnt& p) {
    return std::isfinite(p.X()) && std::isfinite(p.Y()) && std::isfinite(p.Z()) &&
           std::abs(p.X()) < kFarthest && std::abs(p.Y()) < kFarthest &&
           std::abs(p.Z()) < kFarthest;
}

bool usableTriangle(const Triangle& t) {
    for (const gp_Pnt& p : t)
        if (!usablePoint(p)) return false;
    const double ab = t[0].Distance(t[1]), bc = t[1].Distance(t[2]), ca = t[2].Distance(t[0]);
    if (ab < kShortestEdge || bc < kShortestEdge || ca < kShortestEdge) return false;
    // Corners in a line make no face: the sine of the angle at a corner vanishes.
    const gp_Vec normal = gp_Vec(t[0], t[1]).Crossed(gp_Vec(t[0], t[2]));
    return normal.Magnitude() > 1e-12 * ab * ca;
}

// A closed shell as a solid whose volume is positive; null when it cannot be made.
TopoDS_Shape solidOf(const TopoDS_Shell& shell) {
    BRepBuilderAPI_MakeSolid make(shell);
    if (!make.IsDone()) return {};
    Handle(ShapeFix_Solid) fix = new ShapeFix_Solid(make.Solid());
    // Each face is one flat triangle made just now: healing faces one by one only
    // costs time (most of it, on a big mesh). The shell's orientation is still fixed.
    fix->FixShellTool()->FixFaceMode() = 0;
    fix->Perform();
    TopoDS_Shape solid = fix->Solid();
    if (solid.IsNull()) return {};
    GProp_GProps props;
    BRepGProp::VolumeProperties(solid, props);
    if (props.Mass() < 0) solid.Reverse();
    return solid;
}

TopoDS_Shape sewn(const std::vector<Triangle>& triangles, double tolerance, int& added) {
    BRepBuilderAPI_Sewing sewing(tolerance, true, true, true, false);
    for (const Triangle& t : triangles) {
        if (!usableTriangle(t)) continue;
        BRepBuilderAPI_MakePolygon polygon(t[0], t[1], t[2], true);
        if (!polygon.IsDone()) continue;
        // The triangle's own plane, so the face need not search for one.
        const gp_Vec normal = gp_Vec(t[0], t[1]).Crossed(gp_Vec(t[0], t[2]));
        BRepBuilderAPI_MakeFace face(gp_Pln(t[0], gp_Dir(normal)), polygon.Wire(), true);
        if (!face.IsDone()) continue;
        sewing.Add(face.Face());
        ++added;
    }
    if (added == 0) return {};
    sewing.Perform();
    return sewing.SewedShape();
}

// Closed shells as solids, open shells and loose faces as they are.
TopoDS_Shape piecesOf(const TopoDS_Shape& shape) {
    std::vector<TopoDS_Shape> pieces;
    for (TopExp_Explorer shells(shape, TopAbs_SHELL); shells.More(); shells.Next()) {
        const TopoDS_Shell& shell = TopoDS::Shell(shells.Current());
        TopoDS_Shape solid = BRep_Tool::IsClosed(shell) ? solidOf(shell) : TopoDS_Shape();
        pieces.push_back(solid.IsNull() ? TopoDS_Shape(shell) : solid);
    }
    for (TopExp_Explorer faces(shape, TopAbs_FACE, TopAbs_SHELL); faces.More(); faces.Next())
        pieces.push_back(faces.Current());
    if (pieces.size() == 1) return pieces.front();
    BRep_Builder builder;
    TopoDS_Compound compound;
    builder.MakeCompound(compound);
    for (const TopoDS_Shape& piece : pieces) builder.Add(compound, piece);
    return compound;
}

} // namespace

double sewingTolerance(const std::vector<Triangle>& triangles) {
    Bnd_Box box;
    for (const Triangle& t : triangles)
        for (const gp_Pnt& p : t)
            if (usablePoint(p)) box.Add(p);
    if (box.IsVoid()) return 1e-6;
    const double diagonal = std::sqrt(box.SquareExtent());
    return diagonal > 0 && std::isfinite(diagonal) ? diagonal * 0.0001 : 1e-6;
}

Result<TopoDS_Shape> trianglesToSolid(const std::vector<Triangle>& triangles, double tolerance) {
    if (!(tolerance > 0) || !std::isfinite(tolerance)) tolerance = 1e-6;
    try {
        int added = 0;
        TopoDS_Shape shape = sewn(triangles, tolerance, added);
        if (added == 0) return fail("There are no usable triangles.");
        if (shape.IsNull()) return fail("The triangles couldn't be sewn together.");
        shape = piecesOf(shape);
        ShapeUpgrade_UnifySameDomain unify(shape, true, true, false);
        unify.Build();
        if (!unify.Shape().IsNull()) shape = unify.Shape();
        return shape;
    } catch (const Standard_Failure&) {
        return fail("The triangles couldn't be sewn together.");
    } catch (const std::exception&) {
        return fail("The triangles couldn't be sewn together.");
    }
}

} // namespace cad::exchange
