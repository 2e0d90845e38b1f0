// Flat faces, smooth joins and the thickness across a sheet, read from its faces: a
// ray from just inside a flat face, straight through the material, must come out
// through a flat face turned the other way.
#include "geometry/sheet/flat/SheetFaces.h"

#include "geometry/sheet/metal/SheetThickness.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepClass3d_SolidClassifier.hxx>
#include <BRepClass_FaceClassifier.hxx>
#include <BRepGProp.hxx>
#include <BRepGProp_Face.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <Geom2d_Curve.hxx>
#include <IntCurvesFace_ShapeIntersector.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Lin.hxx>

#include <cmath>
#include <limits>
#include <map>

namespace cad::flat {

namespace {

// How far inside the face a ray starts, so it never runs along the face itself.
constexpr double kInset = 1e-4;

// The first face a ray from inside the solid meets, and how far away.
std::optional<FaceAcross> firstFaceMet(IntCurvesFace_ShapeIntersector& hits, const gp_Pnt& from,
                                       const gp_Dir& direction) {
    const std::optional<sheet::FaceMet> met = sheet::firstFaceMet(hits, from, direction);
    if (!met) return std::nullopt;
    return FaceAcross{met->face, met->distance};
}

} // namespace

std::optional<gp_Dir> flatNormal(const TopoDS_Face& face) {
    BRepAdaptor_Surface surface(face, false);
    if (surface.GetType() != GeomAbs_Plane) return std::nullopt;
    const gp_Ax3 position = surface.Plane().Position();
    gp_Dir normal = position.Direct() ? position.Direction() : position.Direction().Reversed();
    if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
    return normal;
}

double faceArea(const TopoDS_Shape& face) {
    GProp_GProps props;
    BRepGProp::SurfaceProperties(face, props);
    return props.Mass();
}

TopoDS_Face largestFlatFace(const TopoDS_Shape& shape) {
    TopoDS_Face largest;
    double largestArea = 0;
    for (TopExp_Explorer e(shape, TopAbs_FACE); e.More(); e.Next()) {
        const TopoDS_Face& face = TopoDS::Face(e.Current());
        if (!flatNormal(face)) continue;
        const double a = faceArea(face);
        if (a > largestArea * (1 + 1e-9)) {
            largestArea = a;
            largest = face;
        }
    }
    return largest;
}

std::vector<gp_Pnt> pointsInside(const TopoDS_Face& face, int wanted) {
    std::vector<gp_Pnt> points;
    double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
    BRepTools::UVBounds(face, u0, u1, v0, v1);
    BRepAdaptor_Surface surface(face);
    const double tolerance = BRep_Tool::Tolerance(face);
    for (int n : {1, 3, 5, 9, 17}) {
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                // The middle of an odd grid was tried by the coarser one already.
                if (n > 1 && 2 * i + 1 == n && 2 * j + 1 == n) continue;
                const double u = u0 + (u1 - u0) * (i + 0.5) / n;
                const double v = v0 + (v1 - v0) * (j + 0.5) / n;
                BRepClass_FaceClassifier classifier(face, gp_Pnt2d(u, v), tolerance);
                if (classifier.State() != TopAbs_IN) continue;
                points.push_back(surface.Value(u, v));
                if (static_cast<int>(points.size()) >= wanted) return points;
            }
        }
    }
    return points;
}

bool meetSmoothly(const TopoDS_Face& a, const TopoDS_Face& b, const TopoDS_Edge& edge) {
    auto normal = [&](const TopoDS_Face& face) -> std::optional<gp_Vec> {
        double first = 0, last = 0;
        Handle(Geom2d_Curve) curve = BRep_Tool::CurveOnSurface(edge, face, first, last);
        if (curve.IsNull()) return std::nullopt;
        const gp_Pnt2d uv = curve->Value((first + last) / 2);
        BRepGProp_Face props(face);
        gp_Pnt p;
        gp_Vec n;
        props.Normal(uv.X(), uv.Y(), p, n);
        if (n.Magnitude() < 1e-12) return std::nullopt;
        return n.Normalized();
    };
    const std::optional<gp_Vec> na = normal(a), nb = normal(b);
    return na && nb && na->Dot(*nb) > 1 - 1e-6;
}

std::optional<FaceAcross> faceAcross(const TopoDS_Shape& solid, const TopoDS_Face& face) {
    const std::optional<gp_Dir> outward = flatNormal(face);
    if (!outward) return std::nullopt;
    const gp_Dir into = outward->Reversed();
    try {
        IntCurvesFace_ShapeIntersector hits;
        hits.Load(solid, 1e-7);
        // Distances found (rounded to 1e-6 mm), how often, and the face of the first.
        std::map<long long, std::pair<int, FaceAcross>> found;
        for (const gp_Pnt& on : pointsInside(face, 5)) {
            const gp_Pnt start = on.Translated(gp_Vec(into) * kInset);
            BRepClass3d_SolidClassifier inside(solid, start, 1e-7);
            if (inside.State() != TopAbs_IN) continue;
            std::optional<FaceAcross> met = firstFaceMet(hits, start, into);
            if (!met) continue;
            const std::optional<gp_Dir> normal = flatNormal(met->face);
            if (!normal || !normal->IsParallel(into, 1e-6) || normal->Dot(into) < 0) continue;
            met->distance += kInset;
            auto& entry = found[std::llround(met->distance * 1e6)];
            if (entry.first++ == 0) entry.second = *met;
        }
        const std::pair<int, FaceAcross>* best = nullptr;
        for (const auto& [key, entry] : found)
            if (!best || entry.first > best->first) best = &entry;
        if (!best) return std::nullopt;
        return best->second;
    } catch (const Standard_Failure&) {
        return std::nullopt;
    }
}

} // namespace cad::flat
