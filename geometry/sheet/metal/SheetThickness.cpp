// Measuring a sheet: a ray from just inside a flat face, straight through the
// material, must come out through a flat face turned the other way.
#include "geometry/sheet/metal/SheetThickness.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepClass3d_SolidClassifier.hxx>
#include <BRepClass_FaceClassifier.hxx>
#include <BRepGProp.hxx>
#include <BRepTools.hxx>
#include <GProp_GProps.hxx>
#include <IntCurvesFace_ShapeIntersector.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Lin.hxx>
#include <gp_Pln.hxx>

#include <limits>

namespace cad::sheet {

namespace {

constexpr const char* kNotASheet = "This body isn't a sheet: there's no face across from its "
                                   "largest face. Give the thickness.";

// How far inside the face the ray starts, so it never runs along the face itself.
constexpr double kInset = 1e-4;

// A point well inside the face (not on its boundary): the middle of its parameter
// box when that is on the face, else the first of ever finer grids that is.
std::optional<gp_Pnt> pointInside(const TopoDS_Face& face) {
    double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
    BRepTools::UVBounds(face, u0, u1, v0, v1);
    BRepAdaptor_Surface surface(face);
    for (int n : {1, 3, 5, 9, 17}) {
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                const double u = u0 + (u1 - u0) * (i + 0.5) / n;
                const double v = v0 + (v1 - v0) * (j + 0.5) / n;
                BRepClass_FaceClassifier classifier(face, gp_Pnt2d(u, v), 1e-7);
                if (classifier.State() == TopAbs_IN) return surface.Value(u, v);
            }
        }
    }
    return std::nullopt;
}

double area(const TopoDS_Shape& face) {
    GProp_GProps props;
    BRepGProp::SurfaceProperties(face, props);
    return props.Mass();
}

} // namespace

std::optional<gp_Dir> flatFaceNormal(const TopoDS_Face& face) {
    BRepAdaptor_Surface surface(face, false);
    if (surface.GetType() != GeomAbs_Plane) return std::nullopt;
    const gp_Ax3 position = surface.Plane().Position();
    gp_Dir normal = position.Direct() ? position.Direction() : position.Direction().Reversed();
    if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
    return normal;
}

std::optional<FaceMet> firstFaceMet(IntCurvesFace_ShapeIntersector& hits, const gp_Pnt& from,
                                    const gp_Dir& direction) {
    hits.Perform(gp_Lin(from, direction), 0, std::numeric_limits<double>::max());
    if (!hits.IsDone()) return std::nullopt;
    int nearest = 0;
    double distance = std::numeric_limits<double>::max();
    for (int i = 1; i <= hits.NbPnt(); ++i) {
        const double w = hits.WParameter(i);
        if (w > 1e-9 && w < distance) {
            distance = w;
            nearest = i;
        }
    }
    if (nearest == 0) return std::nullopt;
    return FaceMet{hits.Face(nearest), distance};
}

std::optional<double> distanceAcross(const TopoDS_Shape& shape, const gp_Pnt& from,
                                     const gp_Dir& direction) {
    try {
        BRepClass3d_SolidClassifier inside(shape, from, 1e-7);
        if (inside.State() != TopAbs_IN) return std::nullopt;
        IntCurvesFace_ShapeIntersector hits;
        hits.Load(shape, 1e-7);
        const std::optional<FaceMet> met = firstFaceMet(hits, from, direction);
        if (!met) return std::nullopt;
        const std::optional<gp_Dir> normal = flatFaceNormal(met->face);
        if (!normal || !normal->IsParallel(direction, 1e-6) || normal->Dot(direction) < 0)
            return std::nullopt;
        return met->distance;
    } catch (const Standard_Failure&) {
        return std::nullopt;
    }
}

Result<double> measureSheetThickness(const TopoDS_Shape& shape) {
    if (shape.IsNull()) return fail(kNotASheet);
    try {
        TopoDS_Face largest;
        double largestArea = 0;
        for (TopExp_Explorer e(shape, TopAbs_FACE); e.More(); e.Next()) {
            const TopoDS_Face& face = TopoDS::Face(e.Current());
            if (!flatFaceNormal(face)) continue;
            const double a = area(face);
            if (a > largestArea) {
                largestArea = a;
                largest = face;
            }
        }
        if (largest.IsNull()) return fail(kNotASheet);
        const std::optional<gp_Pnt> on = pointInside(largest);
        if (!on) return fail(kNotASheet);
        const gp_Dir into = flatFaceNormal(largest)->Reversed();
        const gp_Pnt start = on->Translated(gp_Vec(into) * kInset);
        const std::optional<double> across = distanceAcross(shape, start, into);
        if (!across) return fail(kNotASheet);
        return *across + kInset;
    } catch (const Standard_Failure&) {
        return fail(kNotASheet);
    }
}

} // namespace cad::sheet
