// Turns sketch entities into OpenCASCADE 2D curves. Every curve runs the way the
// entity is drawn: an arc with a negative sweep runs clockwise.
#include "sketch/SketchCurves.h"

#include "sketch/text/TextLayout.h"

#include <GCE2d_MakeSegment.hxx>
#include <Geom2dAPI_Interpolate.hxx>
#include <Geom2d_Circle.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <Standard_Failure.hxx>
#include <TColgp_HArray1OfPnt2d.hxx>
#include <gp_Ax22d.hxx>
#include <gp_Circ2d.hxx>
#include <gp_Pnt2d.hxx>

#include <cmath>
#include <numbers>

namespace cad {

namespace {

gp_Pnt2d pnt(Point2 p) { return {p.x, p.y}; }

double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

Handle(Geom2d_Curve) segment(Point2 a, Point2 b) {
    if (std::hypot(b.x - a.x, b.y - a.y) <= 1e-7) return {};
    GCE2d_MakeSegment make(pnt(a), pnt(b));
    if (!make.IsDone()) return {};
    return Handle(Geom2d_Curve)(make.Value());
}

Handle(Geom2d_Circle) circle(Point2 c, double r) {
    return new Geom2d_Circle(gp_Ax22d(pnt(c), gp_Dir2d(1, 0), gp_Dir2d(0, 1)), r);
}

// An arc from `start` radians through `sweep` radians (negative: clockwise).
Handle(Geom2d_Curve) arc(Point2 c, double r, double start, double sweep) {
    if (sweep >= 0) return new Geom2d_TrimmedCurve(circle(c, r), start, start + sweep);
    Handle(Geom2d_TrimmedCurve) ccw = new Geom2d_TrimmedCurve(circle(c, r), start + sweep, start);
    ccw->Reverse();
    return ccw;
}

struct CurveMaker {
    std::vector<Handle(Geom2d_Curve)>& out;
    const std::vector<SketchEntity>* sketch = nullptr;

    void operator()(const SketchLine& l) const { out.push_back(segment(l.start, l.end)); }
    void operator()(const SketchCircle& c) const { out.push_back(circle(c.center, c.radius)); }
    void operator()(const SketchRectangle& r) const {
        const Point2 bl = r.corner, br{r.corner.x + r.width, r.corner.y},
                     tr{br.x, r.corner.y + r.height}, tl{r.corner.x, tr.y};
        for (auto [a, b] : {std::pair{bl, br}, {br, tr}, {tr, tl}, {tl, bl}})
            out.push_back(segment(a, b));
    }
    void operator()(const SketchPoint&) const {}
    void operator()(const SketchArc& a) const {
        out.push_back(arc(a.center, a.radius, radians(a.startAngle), radians(a.sweepAngle)));
    }
    void operator()(const SketchPolygon& p) const {
        auto corner = [&](int k) {
            double t = radians(p.rotation) + 2.0 * std::numbers::pi * k / p.sides;
            return Point2{p.center.x + p.radius * std::cos(t), p.center.y + p.radius * std::sin(t)};
        };
        for (int k = 0; k < p.sides; ++k)
            out.push_back(segment(corner(k), corner((k + 1) % p.sides)));
    }
    void operator()(const SketchSpline& s) const {
        Handle(Geom2d_BSplineCurve) curve = interpolateSpline(s);
        if (!curve.IsNull()) out.push_back(curve);
    }
    // Around the outline counter-clockwise: the right side, the end cap, the left side,
    // the start cap.
    void operator()(const SketchSlot& s) const {
        const double dx = s.end.x - s.start.x, dy = s.end.y - s.start.y;
        const double length = std::hypot(dx, dy);
        if (length <= 1e-7) return;
        const double h = s.width / 2;
        const Point2 n{-dy / length * h, dx / length * h}; // to the left of start -> end
        const double along = std::atan2(dy, dx);
        out.push_back(segment({s.start.x - n.x, s.start.y - n.y}, {s.end.x - n.x, s.end.y - n.y}));
        out.push_back(arc(s.end, h, along - std::numbers::pi / 2, std::numbers::pi));
        out.push_back(segment({s.end.x + n.x, s.end.y + n.y}, {s.start.x + n.x, s.start.y + n.y}));
        out.push_back(arc(s.start, h, along + std::numbers::pi / 2, std::numbers::pi));
    }
    // Contour after contour, each piece in its contour's order. A text that can't be
    // laid out (its font and every fallback missing) has no curves.
    void operator()(const SketchText& t) const {
        auto layout = text::layoutTextForSketch(t, sketch);
        if (!layout) return;
        for (const text::Contour& contour : (*layout)->contours)
            for (const text::OutlinePiece& piece : contour.pieces)
                if (Handle(Geom2d_Curve) curve = text::pieceCurve(piece); !curve.IsNull())
                    out.push_back(curve);
    }
};

} // namespace

Handle(Geom2d_BSplineCurve) interpolateSpline(const SketchSpline& spline) {
    const int count = static_cast<int>(spline.points.size());
    if (count < (spline.closed ? 3 : 2)) return {};
    try {
        Handle(TColgp_HArray1OfPnt2d) points = new TColgp_HArray1OfPnt2d(1, count);
        for (int i = 0; i < count; ++i)
            points->SetValue(i + 1, pnt(spline.points[static_cast<std::size_t>(i)]));
        Geom2dAPI_Interpolate interpolate(points, spline.closed, 1e-7);
        interpolate.Perform();
        if (!interpolate.IsDone()) return {};
        return interpolate.Curve();
    } catch (const Standard_Failure&) {
        return {};
    }
}

std::vector<SketchCurve> entityCurves(const SketchEntity& entity) {
    return entityCurves(entity, {});
}

std::vector<SketchCurve> entityCurves(const SketchEntity& entity,
                                      const std::vector<SketchEntity>& sketch) {
    std::vector<Handle(Geom2d_Curve)> curves;
    try {
        std::visit(CurveMaker{curves, &sketch}, entity.geometry);
    } catch (const Standard_Failure&) {
        return {}; // invalid values never reach a sketch; nothing to draw if they do
    }
    std::vector<SketchCurve> out;
    for (std::size_t i = 0; i < curves.size(); ++i)
        if (!curves[i].IsNull()) out.push_back({entity.id, static_cast<int>(i), curves[i]});
    return out;
}

std::vector<SketchCurve> sketchCurves(const std::vector<SketchEntity>& entities,
                                      bool withConstruction) {
    std::vector<SketchCurve> out;
    for (const SketchEntity& e : entities) {
        if (e.construction && !withConstruction) continue;
        for (SketchCurve& c : entityCurves(e, entities)) out.push_back(std::move(c));
    }
    return out;
}

} // namespace cad
