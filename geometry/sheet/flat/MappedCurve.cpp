// Interpolating splines through carried points, doubled until close enough.
#include "geometry/sheet/flat/MappedCurve.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <GeomAPI_Interpolate.hxx>
#include <GeomAPI_ProjectPointOnCurve.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Standard_Failure.hxx>
#include <TColgp_HArray1OfPnt.hxx>

#include <algorithm>
#include <vector>

namespace cad::flat {

namespace {

constexpr double kTolerance = 1e-5;
constexpr int kMostPoints = 1024;

Handle(Geom_BSplineCurve) splineThrough(const std::vector<gp_Pnt>& points, bool periodic) {
    const int n = static_cast<int>(points.size()) - (periodic ? 1 : 0);
    Handle(TColgp_HArray1OfPnt) array = new TColgp_HArray1OfPnt(1, n);
    for (int i = 0; i < n; ++i) array->SetValue(i + 1, points[static_cast<std::size_t>(i)]);
    GeomAPI_Interpolate interpolate(array, periodic ? Standard_True : Standard_False, 1e-9);
    interpolate.Perform();
    if (!interpolate.IsDone()) return nullptr;
    return interpolate.Curve();
}

// How far the spline strays from the exact curve halfway between the points.
double straying(const Handle(Geom_BSplineCurve) & spline, const std::function<gp_Pnt(double)>& at,
                double first, double last, int n) {
    double worst = 0;
    for (int i = 0; i < n; ++i) {
        const gp_Pnt exact = at(first + (last - first) * (i + 0.5) / n);
        GeomAPI_ProjectPointOnCurve projection(exact, spline);
        if (projection.NbPoints() == 0) return 1e300;
        worst = std::max(worst, projection.LowerDistance());
        if (worst > kTolerance) break;
    }
    return worst;
}

} // namespace

std::optional<TopoDS_Edge> edgeThrough(const std::function<gp_Pnt(double)>& at, double first,
                                       double last) {
    try {
        const gp_Pnt start = at(first), middle = at((first + last) / 2), end = at(last);
        if (start.Distance(end) < 1e-9 && start.Distance(middle) < 1e-9) return std::nullopt;
        const bool closed = start.Distance(end) < 1e-9;
        for (int n = 8; n <= kMostPoints; n *= 2) {
            std::vector<gp_Pnt> points;
            for (int i = 0; i <= n; ++i) points.push_back(at(first + (last - first) * i / n));
            Handle(Geom_BSplineCurve) spline = splineThrough(points, closed);
            if (spline.IsNull()) return std::nullopt;
            if (n < kMostPoints && straying(spline, at, first, last, n) > kTolerance) continue;
            BRepBuilderAPI_MakeEdge made(spline);
            if (!made.IsDone()) return std::nullopt;
            return made.Edge();
        }
    } catch (const Standard_Failure&) {}
    return std::nullopt;
}

} // namespace cad::flat
