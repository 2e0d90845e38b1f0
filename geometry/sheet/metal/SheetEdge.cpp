// Finding a sheet's outside edge: the reference resolved in the body as it was before
// the feature, its two faces flat and square, and which of them is the sheet's face
// told by measuring straight through the sheet from just inside the corner.
#include "geometry/sheet/metal/SheetEdge.h"

#include "core/units/Format.h"
#include "geometry/sheet/metal/SheetThickness.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopoDS.hxx>

#include <cmath>
#include <optional>
#include <vector>

namespace cad::sheet {

namespace {

// How far inside the corner the measuring ray starts.
constexpr double kInset = 1e-4;

double area(const TopoDS_Shape& face) {
    GProp_GProps props;
    BRepGProp::SurfaceProperties(face, props);
    return props.Mass();
}

bool sameThickness(double measured, double thickness) {
    return std::abs(measured - thickness) <= 1e-4 + 1e-6 * thickness;
}

} // namespace

Result<SheetEdge> findSheetEdge(const Document& document, const std::string& reference,
                                const geometry::NamedShape& body,
                                const geometry::ReferenceContext& context, double thickness) {
    if (geometry::splitReferenceList(reference).empty())
        return fail("Pick the edge the flange goes on.");
    Result<geometry::ResolvedReference> resolved =
        geometry::resolveReference(document, reference, context);
    if (!resolved) return Error(resolved);
    const TopoDS_Shape& shape = resolved->shape;
    if (shape.IsNull() || shape.ShapeType() != TopAbs_EDGE)
        return fail("'" + reference + "' isn't an edge.");
    try {
        const TopoDS_Edge& edge = TopoDS::Edge(shape);
        BRepAdaptor_Curve curve(edge);
        if (curve.GetType() != GeomAbs_Line) return fail("Pick a straight edge.");

        TopTools_IndexedDataMapOfShapeListOfShape edgeFaces;
        TopExp::MapShapesAndAncestors(body.shape(), TopAbs_EDGE, TopAbs_FACE, edgeFaces);
        const int index = edgeFaces.FindIndex(edge);
        if (index == 0) return fail("The edge isn't on the sheet.");
        // The faces as they lie in the body, so their normals point out of it.
        std::vector<TopoDS_Face> faces;
        for (const TopoDS_Shape& face : edgeFaces(index)) {
            bool seen = false;
            for (const TopoDS_Face& f : faces) seen = seen || f.IsSame(face);
            if (!seen) faces.push_back(TopoDS::Face(face));
        }
        if (faces.size() != 2) return fail("The edge isn't between two faces.");
        const std::optional<gp_Dir> n0 = flatFaceNormal(faces[0]);
        const std::optional<gp_Dir> n1 = flatFaceNormal(faces[1]);
        if (!n0 || !n1)
            return fail("Pick an edge between two flat faces: the sheet's face and its edge.");
        if (std::abs(n0->Dot(*n1)) > 1e-6)
            return fail("The faces at that edge aren't square to each other: an edge flange "
                        "goes on a sheet's square edge.");

        const gp_Pnt from = curve.Value(curve.FirstParameter());
        const gp_Pnt to = curve.Value(curve.LastParameter());
        const gp_Pnt middle = curve.Value((curve.FirstParameter() + curve.LastParameter()) / 2);
        // Through the sheet when `sheet` is the sheet's face and `side` its edge.
        auto across = [&](const gp_Dir& sheet, const gp_Dir& side) -> std::optional<double> {
            const gp_Pnt inside =
                middle.Translated(gp_Vec(sheet) * -kInset + gp_Vec(side) * -kInset);
            const std::optional<double> d = distanceAcross(body.shape(), inside, sheet.Reversed());
            if (!d) return std::nullopt;
            return *d + kInset;
        };
        const std::optional<double> t0 = across(*n0, *n1);
        const std::optional<double> t1 = across(*n1, *n0);

        int sheetFace = 0;
        double measured = 0;
        if (thickness > 0) {
            const bool fits0 = t0 && sameThickness(*t0, thickness);
            const bool fits1 = t1 && sameThickness(*t1, thickness);
            if (!fits0 && !fits1)
                return fail("Pick an edge along the sheet's outside: between a face and the "
                            "sheet's " +
                            units::formatNumber(thickness, units::Length::Millimeters) +
                            " mm edge.");
            // Both fit on a square bar: the wider face is the sheet's.
            sheetFace = fits0 && fits1 ? (area(faces[0]) >= area(faces[1]) ? 0 : 1) : fits0 ? 0 : 1;
            measured = thickness;
        } else {
            if (!t0 && !t1)
                return fail("Couldn't tell the sheet's thickness at that edge: give it.");
            sheetFace = t0 && (!t1 || *t0 <= *t1) ? 0 : 1;
            measured = sheetFace == 0 ? *t0 : *t1;
        }

        SheetEdge found;
        found.start = from;
        found.length = from.Distance(to);
        if (found.length < 1e-7) return fail("Pick a straight edge.");
        found.along = gp_Dir(gp_Vec(from, to));
        found.sheetNormal = sheetFace == 0 ? *n0 : *n1;
        found.outward = sheetFace == 0 ? *n1 : *n0;
        found.thickness = measured;
        return found;
    } catch (const Standard_Failure&) {
        return fail("Pick a straight edge.");
    }
}

} // namespace cad::sheet
