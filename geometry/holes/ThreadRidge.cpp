// The thread ridge: a helix drawn as a line on a cylinder's (angle, height) plane,
// the thread profile swept along it with the axis as binormal, closed into a solid
// and cut into bands the booleans handle well.
#include "geometry/holes/ThreadRidge.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepLib.hxx>
#include <BRepOffsetAPI_MakePipeShell.hxx>
#include <GCE2d_MakeSegment.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <Geom_CylindricalSurface.hxx>
#include <ShapeUpgrade_ShapeDivideArea.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Dir2d.hxx>
#include <gp_Lin2d.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad {

namespace {

constexpr double kTan30 = 0.57735026918962576;
constexpr double kMostTurns = 1000;

gp_Pnt inHalfPlane(const gp_Ax3& frame, double radius, double axial) {
    return frame.Location().Translated(gp_Vec(frame.XDirection()) * radius +
                                       gp_Vec(frame.Direction()) * axial);
}

} // namespace

Result<TopoDS_Shape> threadRidge(const gp_Ax3& frame, double length, double pitch, double r1,
                                 double r2, double crestFlat) {
    if (!(length > 1e-7) || !(pitch > 1e-7)) return fail("A thread needs a pitch and a length.");
    // Past this many turns the sweep and the booleans would run for minutes.
    if (length / pitch > kMostTurns)
        return fail("The thread is too long to model; make it cosmetic or shorter.");
    const double top = std::max(crestFlat, 0.0);
    const double base = 2 * std::abs(r2 - r1) * kTan30 + top;
    if (!(base < pitch)) return fail("The thread's profile is too deep for its pitch.");

    const char* notSwept = "The thread couldn't be swept.";
    try {
        // One turn rises one pitch: the helix is a straight line on the unrolled cylinder.
        Handle(Geom_CylindricalSurface) cylinder = new Geom_CylindricalSurface(frame, r1);
        const double turn = 2 * std::numbers::pi;
        gp_Lin2d line(gp_Pnt2d(0, 0), gp_Dir2d(turn, pitch));
        const double end = std::hypot(turn, pitch) * length / pitch;
        GCE2d_MakeSegment segment(line, 0.0, end);
        if (!segment.IsDone()) return fail(notSwept);
        BRepBuilderAPI_MakeEdge edge(segment.Value(), cylinder);
        if (!edge.IsDone()) return fail(notSwept);
        TopoDS_Edge helix = edge.Edge();
        BRepLib::BuildCurves3d(helix);
        BRepBuilderAPI_MakeWire spine(helix);
        if (!spine.IsDone()) return fail(notSwept);

        BRepBuilderAPI_MakePolygon outline;
        outline.Add(inHalfPlane(frame, r1, -base / 2));
        outline.Add(inHalfPlane(frame, r1, base / 2));
        outline.Add(inHalfPlane(frame, r2, top / 2));
        if (top > 1e-9) outline.Add(inHalfPlane(frame, r2, -top / 2));
        outline.Close();
        if (!outline.IsDone()) return fail(notSwept);

        BRepOffsetAPI_MakePipeShell pipe(spine.Wire());
        pipe.SetMode(frame.Direction());
        pipe.Add(outline.Wire(), Standard_False, Standard_False);
        pipe.Build();
        if (!pipe.IsDone() || !pipe.MakeSolid()) return fail(notSwept);
        TopoDS_Shape swept = pipe.Shape();
        TopExp_Explorer solid(swept, TopAbs_SOLID);
        if (!solid.More()) return fail(notSwept);

        ShapeUpgrade_ShapeDivideArea divide(solid.Current());
        divide.MaxArea() = turn * std::max(r1, r2) * pitch;
        if (divide.Perform()) {
            TopoDS_Shape divided = divide.Result();
            if (!divided.IsNull()) return divided;
        }
        return solid.Current();
    } catch (const Standard_Failure&) {
        return fail(notSwept);
    }
}

} // namespace cad
