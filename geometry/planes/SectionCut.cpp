// A body cut along a section plane: a slab beyond the plane, just larger than the
// body, is cut away, and the plane's face in common with the body gives the caps.
#include "geometry/planes/SectionCut.h"

#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <ElSLib.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Pln.hxx>

#include <algorithm>
#include <cmath>
#include <limits>

namespace cad::geometry {

Result<SectionCut> cutAlong(const gp_Ax3& plane, const TopoDS_Shape& body) {
    if (body.IsNull()) return fail("There is no shape to cut.");
    SectionCut cut;
    cut.plane = plane;
    BRep_Builder builder;
    TopoDS_Compound caps;
    builder.MakeCompound(caps);
    cut.caps = caps; // empty until the plane meets the body
    try {
        Bnd_Box box;
        BRepBndLib::Add(body, box);
        if (box.IsVoid()) {
            cut.kept = body;
            return cut;
        }
        // The box's corners in the plane's coordinates, and how far beyond it they reach.
        const gp_Pln pln(plane);
        const gp_Vec normal(plane.Direction());
        double x[2], y[2], z[2];
        box.Get(x[0], y[0], z[0], x[1], y[1], z[1]);
        constexpr double inf = std::numeric_limits<double>::infinity();
        double u0 = inf, u1 = -inf, v0 = inf, v1 = -inf, lowest = inf, highest = -inf;
        for (int corner = 0; corner < 8; ++corner) {
            const gp_Pnt p(x[corner & 1], y[(corner >> 1) & 1], z[(corner >> 2) & 1]);
            double u = 0, v = 0;
            ElSLib::Parameters(pln, p, u, v);
            u0 = std::min(u0, u), u1 = std::max(u1, u), v0 = std::min(v0, v), v1 = std::max(v1, v);
            const double beyond = gp_Vec(plane.Location(), p).Dot(normal);
            lowest = std::min(lowest, beyond), highest = std::max(highest, beyond);
        }
        if (highest <= 0) { // all of it on the side that stays
            cut.kept = body;
            return cut;
        }
        if (lowest >= 0) return cut; // all of it cut away

        const double margin = 1 + 0.01 * std::sqrt(box.SquareExtent());
        const TopoDS_Face face =
            BRepBuilderAPI_MakeFace(pln, u0 - margin, u1 + margin, v0 - margin, v1 + margin);
        const TopoDS_Shape slab = BRepPrimAPI_MakePrism(face, normal * (highest + margin)).Shape();
        BRepAlgoAPI_Cut kept(body, slab);
        BRepAlgoAPI_Common common(body, face);
        if (!kept.IsDone() || !common.IsDone())
            return fail("The geometry kernel could not cut the body along the section.");
        cut.kept = kept.Shape();
        for (TopExp_Explorer f(common.Shape(), TopAbs_FACE); f.More(); f.Next())
            builder.Add(caps, f.Current());
        cut.caps = caps;
        return cut;
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not cut the body along the section.");
    }
}

Result<SectionCut> cutAlong(const SectionObject& section, const TopoDS_Shape& body) {
    if (!section.placed) return fail(section.id + " has no cut plane: " + section.error);
    return cutAlong(section.placement, body);
}

} // namespace cad::geometry
