// Triangles to a shape: a planar face per usable triangle, joined directly where
// corners are shared and sewn where they are not.
// Closed shells become solids with their volume outward, then coplanar faces are
// unified (skipped when no two neighbouring triangles share a plane).
#include "geometry/exchange/TrianglesToSolid.h"

#include "geometry/exchange/KernelLeaks.h"
#include "geometry/exchange/MeshShells.h"

#include <BRepBuilderAPI_MakeSolid.hxx>
#include <BRepBuilderAPI_Sewing.hxx>
#include <BRepGProp.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <Geom2d_Curve.hxx>
#include <ShapeFix_Shell.hxx>
#include <ShapeFix_Solid.hxx>
#include <ShapeUpgrade_UnifySameDomain.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Solid.hxx>
#include <gp_Vec.hxx>

#include <algorithm>
#include <cmath>
#include <exception>
#include <numeric>

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

// Whether every edge of every face has its curve on that face. Sewing with a
// tolerance larger than some triangles collapses edges into points and leaves
// curves the face merging would read unmade, so such a shape is left unmerged.
bool curvesOnFacesComplete(const TopoDS_Shape& shape) {
    for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next()) {
        const TopoDS_Face& face = TopoDS::Face(faces.Current());
        for (TopExp_Explorer edges(face, TopAbs_EDGE); edges.More(); edges.Next()) {
            double first = 0, last = 0;
            if (BRep_Tool::CurveOnSurface(TopoDS::Edge(edges.Current()), face, first, last)
                    .IsNull())
                return false;
        }
    }
    return true;
}

// The shells sewn along their unpaired edges.
TopoDS_Shape sewn(const std::vector<MeshShell>& shells, double tolerance) {
    BRepBuilderAPI_Sewing sewing(tolerance, true, true, true, false);
    for (const MeshShell& shell : shells) sewing.Add(shell.shell);
    sewing.Perform();
    return sewing.SewedShape();
}

// A closed shell, already consistently wound, as a solid with positive volume.
TopoDS_Shape solidOfWound(const MeshShell& mesh) {
    BRep_Builder builder;
    TopoDS_Solid solid;
    builder.MakeSolid(solid);
    builder.Add(solid, mesh.shell);
    if (mesh.volume < 0) solid.Reverse();
    return solid;
}

TopoDS_Shape compoundOf(const std::vector<TopoDS_Shape>& pieces) {
    if (pieces.size() == 1) return pieces.front();
    BRep_Builder builder;
    TopoDS_Compound compound;
    builder.MakeCompound(compound);
    for (const TopoDS_Shape& piece : pieces) builder.Add(compound, piece);
    return compound;
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
    return compoundOf(pieces);
}

double distanceToSegment(const gp_Pnt& p, const std::array<gp_Pnt, 2>& segment) {
    const gp_Vec along(segment[0], segment[1]);
    const double length2 = along.SquareMagnitude();
    const double t =
        length2 > 0 ? std::clamp(gp_Vec(segment[0], p).Dot(along) / length2, 0.0, 1.0) : 0.0;
    return p.Distance(segment[0].Translated(along * t));
}

// One edge lies along the other within the tolerance: sewing would join them.
bool alongEachOther(const std::array<gp_Pnt, 2>& a, const std::array<gp_Pnt, 2>& b,
                    double tolerance) {
    return (distanceToSegment(a[0], b) <= tolerance && distanceToSegment(a[1], b) <= tolerance) ||
           (distanceToSegment(b[0], a) <= tolerance && distanceToSegment(b[1], a) <= tolerance);
}

// Whether sewing could join anything: some unpaired edge lies along another. The
// edges around a real hole (a missing triangle) only meet end to end, and sewing a
// large shell to learn that takes minutes.
bool anythingToSew(const std::vector<std::array<gp_Pnt, 2>>& unpaired, double tolerance) {
    std::vector<Bnd_Box> boxes(unpaired.size());
    for (std::size_t i = 0; i < unpaired.size(); ++i) {
        boxes[i].Add(unpaired[i][0]);
        boxes[i].Add(unpaired[i][1]);
        boxes[i].Enlarge(tolerance);
    }
    // Sweep along x: each edge meets only those whose boxes start before it ends.
    std::vector<std::size_t> order(unpaired.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    auto low = [&](std::size_t i) { return boxes[i].CornerMin().X(); };
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return low(a) < low(b); });
    for (std::size_t i = 0; i < order.size(); ++i) {
        const double high = boxes[order[i]].CornerMax().X();
        for (std::size_t j = i + 1; j < order.size() && low(order[j]) <= high; ++j)
            if (!boxes[order[i]].IsOut(boxes[order[j]]) &&
                alongEachOther(unpaired[order[i]], unpaired[order[j]], tolerance))
                return true;
    }
    return false;
}

// The mesh as solids and shells: straight from its shared corners (a well-made
// STL needs nothing more), else sewn along the edges that do not pair, which
// closes small gaps and turns triangles wound the wrong way.
TopoDS_Shape shapeOf(const std::vector<Triangle>& usable, double tolerance, bool& mergeable) {
    const MeshShells mesh = meshShells(usable);
    if (anythingToSew(mesh.unpaired, tolerance)) {
        const KernelLeaksIgnored sewingLeaksOnDegenerateInput;
        const TopoDS_Shape shape = sewn(mesh.shells, tolerance);
        if (shape.IsNull()) return shape;
        mergeable = curvesOnFacesComplete(shape);
        return piecesOf(shape);
    }
    mergeable = std::any_of(mesh.shells.begin(), mesh.shells.end(),
                            [](const MeshShell& shell) { return shell.coplanarNeighbours; });
    std::vector<TopoDS_Shape> pieces;
    for (const MeshShell& shell : mesh.shells)
        pieces.push_back(shell.closed ? solidOfWound(shell) : TopoDS_Shape(shell.shell));
    return compoundOf(pieces);
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
    std::vector<Triangle> usable;
    usable.reserve(triangles.size());
    for (const Triangle& t : triangles)
        if (usableTriangle(t)) usable.push_back(t);
    if (usable.empty()) return fail("There are no usable triangles.");
    try {
        bool mergeable = true;
        TopoDS_Shape shape = shapeOf(usable, tolerance, mergeable);
        if (shape.IsNull()) return fail("The triangles couldn't be sewn together.");
        if (mergeable) {
            ShapeUpgrade_UnifySameDomain unify(shape, true, true, false);
            unify.Build();
            if (!unify.Shape().IsNull()) shape = unify.Shape();
        }
        return shape;
    } catch (const Standard_Failure&) {
        return fail("The triangles couldn't be sewn together.");
    } catch (const std::exception&) {
        return fail("The triangles couldn't be sewn together.");
    }
}

} // namespace cad::exchange
