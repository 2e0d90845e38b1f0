// Growing a split's tool. A face's surface is taken over its whole extent, bounded
// where it runs to infinity by a reach past the body; growing by a distance adds it
// to the face's parameter range, which is exact on planes and along straight sides.
#include "geometry/patterns/SplitTool.h"

#include "geometry/References.h"
#include "geometry/param/ParamFeature.h"

#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <Geom_Surface.hxx>
#include <Precision.hxx>
#include <TopoDS.hxx>
#include <gp_Pln.hxx>

#include <algorithm>
#include <cmath>

namespace cad {

using namespace geometry;

namespace {

struct Range {
    double low, high;
};

// One parameter direction of the grown face: a periodic one all the way round, else
// the face's range grown by `by` (or to the surface's own bounds when by is 0),
// never past the surface and never to infinity.
Range grown(Range face, Range surface, bool periodic, double by, double reach) {
    if (periodic) return surface;
    Range out = by > 0 ? Range{face.low - by, face.high + by} : surface;
    out.low = std::max({out.low, surface.low, face.low - reach});
    out.high = std::min({out.high, surface.high, face.high + reach});
    return out;
}

} // namespace

Result<TopoDS_Face> splittingFace(const Document& document, const nlohmann::json& parameters,
                                  const TopoDS_Shape& body, const ReferenceContext& context) {
    const std::string tool = parameterText(parameters, "tool");
    if (splitReferenceList(tool).empty())
        return fail("Pick what splits the body: a plane or a face.");
    Result<ResolvedReference> resolved = resolveReference(document, tool, context);
    if (!resolved) return Error(resolved);

    Bnd_Box box;
    BRepBndLib::Add(body, box);
    if (box.IsVoid()) return fail("There's no body to split.");
    const double reach = std::sqrt(box.SquareExtent()) + 10;
    const gp_Pnt middle((box.CornerMin().XYZ() + box.CornerMax().XYZ()) / 2);

    const TopoDS_Shape& shape = resolved->shape;
    if (!shape.IsNull() && shape.ShapeType() == TopAbs_FACE) {
        const TopoDS_Face& face = TopoDS::Face(shape);
        if (!parameterFlag(parameters, "extend", true)) return face;
        const Handle(Geom_Surface) surface = BRep_Tool::Surface(face);
        if (surface.IsNull()) return fail("There's nothing to split it with.");
        double fu1, fu2, fv1, fv2, su1, su2, sv1, sv2;
        BRepTools::UVBounds(face, fu1, fu2, fv1, fv2);
        surface->Bounds(su1, su2, sv1, sv2);
        double by = parameterNumber(parameters, "extend_by", 0);
        if (!std::isfinite(by) || by < 0) by = 0;
        const Range u = grown({fu1, fu2}, {su1, su2}, surface->IsUPeriodic(), by, reach);
        const Range v = grown({fv1, fv2}, {sv1, sv2}, surface->IsVPeriodic(), by, reach);
        BRepBuilderAPI_MakeFace made(surface, u.low, u.high, v.low, v.high, Precision::Confusion());
        if (!made.IsDone()) return fail("There's nothing to split it with.");
        return made.Face();
    }
    if (!shape.IsNull() || !resolved->plane) return fail("'" + tool + "' isn't a plane or a face.");

    // A plane: a square round the point nearest the body's middle, wider than the body.
    const gp_Pln plane(*resolved->plane);
    const gp_Vec offset(plane.Location(), middle);
    const double u = offset.Dot(gp_Vec(plane.XAxis().Direction()));
    const double v = offset.Dot(gp_Vec(plane.YAxis().Direction()));
    BRepBuilderAPI_MakeFace made(plane, u - reach, u + reach, v - reach, v + reach);
    if (!made.IsDone()) return fail("There's nothing to split it with.");
    return made.Face();
}

} // namespace cad
