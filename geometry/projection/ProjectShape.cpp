// Projecting edges and vertices onto a sketch plane. Straight edges stay lines and
// circles square to the plane stay circles or arcs; anything else is sampled and
// becomes a fit-point spline (a line when the samples are in a line, as a circle
// seen edge-on is).
#include "geometry/projection/ProjectShape.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <GCPnts_QuasiUniformAbscissa.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <gp_Circ.hxx>
#include <gp_Pnt.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace cad::geometry {

namespace {

constexpr double kZero = 1e-7;
// Fit points along a free-form curve: enough for a smooth spline through them
// without turning one edge into hundreds of points.
constexpr int kSamples = 33;

class PlaneMap {
public:
    explicit PlaneMap(const PlaneFrame& frame)
        : origin_(frame.origin), x_(frame.xDirection), y_(frame.yDirection()),
          normal_(frame.normal[0], frame.normal[1], frame.normal[2]) {}

    Point2 operator()(const gp_Pnt& p) const {
        const double d[3] = {p.X() - origin_[0], p.Y() - origin_[1], p.Z() - origin_[2]};
        return {d[0] * x_[0] + d[1] * x_[1] + d[2] * x_[2],
                d[0] * y_[0] + d[1] * y_[1] + d[2] * y_[2]};
    }
    const gp_Dir& normal() const { return normal_; }

private:
    Vec3 origin_, x_, y_;
    gp_Dir normal_;
};

double distance(Point2 a, Point2 b) { return std::hypot(b.x - a.x, b.y - a.y); }

double degrees(double radians) { return radians * 180.0 / std::numbers::pi; }

// A circle whose axis is along the normal, either way, as a circle or an arc.
std::optional<SketchGeometry> squareCircle(const BRepAdaptor_Curve& curve, const PlaneMap& map) {
    const gp_Circ circle = curve.Circle();
    const double tilt = circle.Axis().Direction().Angle(map.normal());
    const bool facing = tilt <= 1e-9, opposite = tilt >= std::numbers::pi - 1e-9;
    if (!facing && !opposite) return std::nullopt;
    const Point2 centre = map(circle.Location());
    const double span = curve.LastParameter() - curve.FirstParameter();
    // Seen from the sketch's side the circle runs counter-clockwise when its axis
    // points the same way as the normal.
    const double sweep = degrees(span) * (facing ? 1.0 : -1.0);
    if (std::fabs(sweep) >= 359.999999) return SketchCircle{centre, circle.Radius()};
    const Point2 start = map(curve.Value(curve.FirstParameter()));
    const double startAngle = degrees(std::atan2(start.y - centre.y, start.x - centre.x));
    return SketchArc{centre, circle.Radius(), startAngle, sweep};
}

// Points sampled along the curve, projected, with repeats dropped.
std::vector<Point2> samples(const BRepAdaptor_Curve& curve, const PlaneMap& map) {
    std::vector<gp_Pnt> points;
    GCPnts_QuasiUniformAbscissa spread(curve, kSamples);
    if (spread.IsDone() && spread.NbPoints() >= 2) {
        for (int i = 1; i <= spread.NbPoints(); ++i)
            points.push_back(curve.Value(spread.Parameter(i)));
    } else {
        const double a = curve.FirstParameter(), b = curve.LastParameter();
        for (int i = 0; i < kSamples; ++i)
            points.push_back(curve.Value(a + (b - a) * i / (kSamples - 1)));
    }
    std::vector<Point2> out;
    for (const gp_Pnt& p : points) {
        const Point2 q = map(p);
        if (out.empty() || distance(out.back(), q) > kZero) out.push_back(q);
    }
    return out;
}

// The samples as a line when they all lie on one: from one extreme to the other.
std::optional<SketchLine> asLine(const std::vector<Point2>& points) {
    const Point2 a = points.front();
    Point2 far = a;
    for (const Point2& p : points)
        if (distance(a, p) > distance(a, far)) far = p;
    const double span = distance(a, far);
    const double ux = (far.x - a.x) / span, uy = (far.y - a.y) / span;
    double lo = 0, hi = 0;
    for (const Point2& p : points) {
        const double along = (p.x - a.x) * ux + (p.y - a.y) * uy;
        const double across = -(p.x - a.x) * uy + (p.y - a.y) * ux;
        if (std::fabs(across) > kZero * std::max(1.0, span)) return std::nullopt;
        lo = std::min(lo, along);
        hi = std::max(hi, along);
    }
    return SketchLine{{a.x + lo * ux, a.y + lo * uy}, {a.x + hi * ux, a.y + hi * uy}};
}

Result<ShapeProjection> projectEdge(const TopoDS_Edge& edge, const PlaneMap& map) {
    ShapeProjection out;
    if (BRep_Tool::Degenerated(edge)) {
        out.outcome = ShapeProjection::NoLength;
        return out;
    }
    BRepAdaptor_Curve curve(edge);
    if (!(GCPnts_AbscissaPoint::Length(curve) > kZero)) {
        out.outcome = ShapeProjection::NoLength;
        return out;
    }
    if (curve.GetType() == GeomAbs_Line) {
        const Point2 a = map(curve.Value(curve.FirstParameter()));
        const Point2 b = map(curve.Value(curve.LastParameter()));
        if (distance(a, b) < kZero)
            out.outcome = ShapeProjection::EndOn;
        else
            out.geometry = SketchLine{a, b};
        return out;
    }
    if (curve.GetType() == GeomAbs_Circle)
        if (std::optional<SketchGeometry> circle = squareCircle(curve, map)) {
            out.geometry = *circle;
            return out;
        }

    std::vector<Point2> points = samples(curve, map);
    if (points.size() < 2) {
        out.outcome = ShapeProjection::EndOn;
        return out;
    }
    if (std::optional<SketchLine> line = asLine(points)) {
        out.geometry = *line;
        return out;
    }
    const bool closed =
        curve.Value(curve.FirstParameter()).Distance(curve.Value(curve.LastParameter())) <= kZero;
    if (closed && points.size() > 3 && distance(points.front(), points.back()) <= 1e-6)
        points.pop_back();
    SketchEntity spline;
    spline.geometry = SketchSpline{std::move(points), closed};
    if (Result<void> valid = validateEntity(spline); !valid)
        return fail("The projected curve can't be drawn: " + valid.error());
    out.geometry = spline.geometry;
    return out;
}

} // namespace

std::string_view outcomeSentence(ShapeProjection::Outcome outcome) {
    switch (outcome) {
    case ShapeProjection::EndOn:
        return kEdgeEndOn;
    case ShapeProjection::NoLength:
        return kEdgeNoLength;
    case ShapeProjection::Made:
        break;
    }
    return {};
}

Result<ShapeProjection> projectShape(const PlaneFrame& plane, const TopoDS_Shape& shape) {
    if (shape.IsNull()) return fail("Nothing to project.");
    const PlaneMap map(plane);
    try {
        if (shape.ShapeType() == TopAbs_VERTEX) {
            ShapeProjection out;
            out.geometry = SketchPoint{map(BRep_Tool::Pnt(TopoDS::Vertex(shape)))};
            return out;
        }
        if (shape.ShapeType() == TopAbs_EDGE) return projectEdge(TopoDS::Edge(shape), map);
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel couldn't project that edge.");
    }
    return fail("Only edges and points can be projected one at a time.");
}

} // namespace cad::geometry
