// Collecting a sketch's curves as cutters, and crossing a line or circle with them:
// analytically for lines, circles and arcs, through OpenCASCADE for splines.
#include "sketch/ops/SketchCutters.h"

#include "sketch/SketchCurves.h"

#include <Geom2dAPI_InterCurveCurve.hxx>
#include <Geom2d_Circle.hxx>
#include <Geom2d_Line.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <Standard_Failure.hxx>
#include <gp_Ax22d.hxx>
#include <gp_Lin2d.hxx>

namespace cad::ops {

namespace {

Bounded segment(Point2 a, Point2 b) {
    Bounded s;
    s.a = a;
    s.b = b;
    return s;
}

Bounded circle(Point2 centre, double radius, double from, double span) {
    Bounded c;
    c.circular = true;
    c.centre = centre;
    c.radius = radius;
    c.from = from;
    c.span = span;
    return c;
}

Point2 corner(const SketchPolygon& p, int k) {
    return polar(p.center, p.radius, radians(p.rotation) + 2 * std::numbers::pi * k / p.sides);
}

struct Collector {
    const SketchEntity& entity;
    std::vector<Cutter>& out;

    void add(Bounded shape, std::optional<SketchRef> on) const {
        out.push_back({entity.id, shape, {}, std::move(on)});
    }
    SketchRef whole() const { return {entity.id, {}}; }
    SketchRef part(std::string name) const { return {entity.id, std::move(name)}; }

    void operator()(const SketchLine& l) const { add(segment(l.start, l.end), whole()); }
    void operator()(const SketchCircle& c) const {
        add(circle(c.center, c.radius, 0, 2 * std::numbers::pi), whole());
    }
    void operator()(const SketchArc& a) const { add(arcSpan(a), whole()); }
    void operator()(const SketchPoint&) const {}
    void operator()(const SketchText&) const {} // lettering cuts nothing
    void operator()(const SketchRectangle& r) const {
        const Point2 bl = r.corner, br{bl.x + r.width, bl.y}, tr{br.x, bl.y + r.height},
                     tl{bl.x, tr.y};
        add(segment(bl, br), part("bottom"));
        add(segment(br, tr), part("right"));
        add(segment(tl, tr), part("top"));
        add(segment(bl, tl), part("left"));
    }
    void operator()(const SketchPolygon& p) const {
        for (int k = 0; k < p.sides; ++k)
            add(segment(corner(p, k), corner(p, (k + 1) % p.sides)),
                part("edge" + std::to_string(k)));
    }
    // A slot's sides and ends have no references of their own: they cut, but nothing
    // can be put on them.
    void operator()(const SketchSlot& s) const {
        const Point2 along = unit(s.end - s.start);
        if (norm(along) == 0) return;
        const double h = s.width / 2;
        const Point2 n = h * leftOf(along);
        const double angle = std::atan2(along.y, along.x);
        add(segment(s.start - n, s.end - n), std::nullopt);
        add(circle(s.end, h, angle - std::numbers::pi / 2, std::numbers::pi), std::nullopt);
        add(segment(s.end + n, s.start + n), std::nullopt);
        add(circle(s.start, h, angle + std::numbers::pi / 2, std::numbers::pi), std::nullopt);
    }
    void operator()(const SketchSpline& s) const {
        Handle(Geom2d_Curve) curve = interpolateSpline(s);
        if (!curve.IsNull()) out.push_back({entity.id, {}, curve, std::nullopt});
    }
};

Handle(Geom2d_Curve) carrierCurve(const Carrier& carrier) {
    if (carrier.circular)
        return new Geom2d_Circle(
            gp_Ax22d(gp_Pnt2d(carrier.centre.x, carrier.centre.y), gp_Dir2d(1, 0), gp_Dir2d(0, 1)),
            carrier.radius);
    // The line as a long trimmed curve: the intersector wants bounded curves.
    Handle(Geom2d_Line) line = new Geom2d_Line(gp_Lin2d(
        gp_Pnt2d(carrier.origin.x, carrier.origin.y), gp_Dir2d(carrier.along.x, carrier.along.y)));
    return new Geom2d_TrimmedCurve(line, -1e7, 1e7);
}

} // namespace

Bounded arcSpan(const SketchArc& arc) {
    const double start = radians(arc.startAngle), sweep = radians(arc.sweepAngle);
    return circle(arc.center, arc.radius, sweep >= 0 ? start : start + sweep, std::fabs(sweep));
}

std::vector<Cutter> sketchCutters(const std::vector<SketchEntity>& entities,
                                  std::string_view except) {
    std::vector<Cutter> out;
    for (const SketchEntity& e : entities)
        if (e.id != except) std::visit(Collector{e, out}, e.geometry);
    return out;
}

std::vector<Point2> crossings(const Carrier& carrier, const Cutter& cutter) {
    if (cutter.spline.IsNull()) return crossings(carrier, cutter.shape);
    std::vector<Point2> points;
    try {
        Geom2dAPI_InterCurveCurve intersector(carrierCurve(carrier), cutter.spline, 1e-9);
        for (int i = 1; i <= intersector.NbPoints(); ++i) {
            const gp_Pnt2d p = intersector.Point(i);
            points.push_back({p.X(), p.Y()});
        }
    } catch (const Standard_Failure&) {
        return {}; // a spline OpenCASCADE cannot cross is treated as not in the way
    }
    return points;
}

} // namespace cad::ops
