// Laying one bend flat. A cylinder's laid side maps onto a strip by its angle times
// the neutral radius; a cone's onto a sector of its neutral cone. Edges that stay
// straight (or round) stay exact; others are followed by a spline through mapped
// points, closer than a micrometre.
#include "geometry/sheet/flat/BendStrip.h"

#include "geometry/sheet/flat/MappedCurve.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepClass3d_SolidClassifier.hxx>
#include <BRepTools.hxx>
#include <BRepTools_WireExplorer.hxx>
#include <BRep_Tool.hxx>
#include <GC_MakeArcOfCircle.hxx>
#include <Geom2d_Line.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <ShapeFix_Face.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Ax1.hxx>
#include <gp_Pln.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace cad::flat {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr const char* kCantLay = "A bend couldn't be laid flat.";
constexpr const char* kTooTight = "A bend's radius is smaller than the sheet's thickness allows.";

// The frame of a bend in the part as it is bent: its axis, which way its
// parameter turns, and the directions at the near wall.
struct Frame {
    gp_Pnt origin;
    gp_Dir x, y, along;        // the surface's own X, Y and main direction
    gp_Dir turn;               // the direction about which the surface's u increases
    gp_Dir opens;              // a cone: the way it widens (else `along`)
    double sinA = 0, cosA = 1; // a cone's half angle, taken positive

    gp_Vec radial(double u) const { return gp_Vec(x) * std::cos(u) + gp_Vec(y) * std::sin(u); }
    gp_Vec aroundAt(double u) const { return gp_Vec(x) * -std::sin(u) + gp_Vec(y) * std::cos(u); }
};

class Strip {
public:
    explicit Strip(const LaidBend& bend) : b_(bend) {
        const gp_Ax3& s = bend.surface;
        f_.origin = s.Location();
        f_.x = s.XDirection();
        f_.y = s.YDirection();
        f_.along = s.Direction();
        f_.turn = gp_Dir(gp_Vec(f_.x).Crossed(gp_Vec(f_.y)));
        f_.opens = f_.along;
        sign_ = bend.sweep < 0 ? -1 : 1;
        sigma_ = bend.skinInside ? 1 : -1;
        if (bend.kind == LaidBend::Kind::Cone) {
            f_.sinA = std::abs(std::sin(bend.semiAngle));
            f_.cosA = std::cos(bend.semiAngle);
            if (bend.semiAngle < 0) f_.opens.Reverse();
            apex_ = f_.origin.Translated(gp_Vec(f_.along) *
                                         (-bend.skinRadius * f_.cosA / std::sin(bend.semiAngle)));
            lambda_ = -sigma_ * bend.neutralDepth * f_.cosA / f_.sinA;
            nearPivot_ = apex_.Translated(generator(bend.startU) * lambda_);
            neutralApex_ =
                apex_.Translated(gp_Vec(f_.opens) * (-sigma_ * bend.neutralDepth / f_.sinA));
        }
        into_ = -outward(bend.startU);
        toward_ = f_.aroundAt(bend.startU) * sign_;
    }

    bool cone() const { return b_.kind == LaidBend::Kind::Cone; }

    // Away from the axis, square to the surface.
    gp_Vec normalAway(double u) const {
        if (!cone()) return f_.radial(u);
        return f_.radial(u) * f_.cosA - gp_Vec(f_.opens) * f_.sinA;
    }
    gp_Vec generator(double u) const { return f_.radial(u) * f_.sinA + gp_Vec(f_.opens) * f_.cosA; }
    // The laid side's outward normal.
    gp_Vec outward(double u) const { return normalAway(u) * -sigma_; }

    // A point of the laid side as the surface gives it.
    gp_Pnt skin(double u, double v) const {
        BRepAdaptor_Surface surface(b_.bent, false);
        return surface.Value(u, v);
    }
    // Its distance from the apex along the generator (cones).
    double slant(double v) const {
        const double radius = b_.skinRadius + v * std::sin(b_.semiAngle);
        return radius / f_.sinA;
    }
    double neutralRadius() const { return b_.skinRadius + sigma_ * b_.neutralDepth; }
    double sectorAngle() const { return std::abs(b_.sweep) * f_.sinA; }
    // A cone's strip is a sector: its width at `v` along the bend.
    double sectorWidth(double v) const { return (slant(v) - lambda_) * sectorAngle(); }

    // Where a point of the laid side goes flat, before the near wall's move.
    gp_Pnt develop(double u, double v) const {
        const double turned = sign_ * (u - b_.startU);
        if (!cone()) {
            const gp_Pnt near =
                f_.origin.Translated(f_.radial(b_.startU) * b_.skinRadius + gp_Vec(f_.along) * v);
            return near.Translated(toward_ * (turned * neutralRadius()));
        }
        const double phi = turned * f_.sinA;
        const double rho = slant(v) - lambda_;
        const gp_Vec g = generator(b_.startU);
        return nearPivot_.Translated((g * std::cos(phi) + toward_ * std::sin(phi)) * rho);
    }
    gp_Pnt flatPoint(double u, double v) const { return develop(u, v).Transformed(b_.nearWall); }

    // The move that lays the far walls flat, before the near wall's move.
    gp_Trsf farMove() const {
        gp_Trsf unbend;
        unbend.SetRotation(gp_Ax1(f_.origin, f_.turn), -b_.sweep);
        gp_Trsf spread;
        if (!cone()) {
            spread.SetTranslation(toward_ * (std::abs(b_.sweep) * neutralRadius()));
        } else {
            const gp_Vec n = outward(b_.startU);
            const double turnSign = n.Crossed(generator(b_.startU)).Dot(toward_) > 0 ? 1 : -1;
            spread.SetRotation(gp_Ax1(nearPivot_, gp_Dir(n)), turnSign * sectorAngle());
        }
        return spread * unbend;
    }

    // Back from the near wall's flat frame to the bend: a point `depth` into the sheet.
    std::optional<gp_Pnt> bend(const gp_Pnt& q) const {
        if (!cone()) {
            const gp_Pnt near = f_.origin.Translated(f_.radial(b_.startU) * b_.skinRadius);
            const gp_Vec rel(near, q);
            const double x = rel.Dot(toward_);
            const double length = std::abs(b_.sweep) * neutralRadius();
            if (x <= 0 || x >= length) return std::nullopt;
            const double u = b_.startU + sign_ * x / neutralRadius();
            const double depth = rel.Dot(into_);
            return f_.origin.Translated(gp_Vec(f_.along) * rel.Dot(gp_Vec(f_.along)) +
                                        f_.radial(u) * (b_.skinRadius + sigma_ * depth));
        }
        const gp_Vec rel(nearPivot_, q);
        const gp_Vec g = generator(b_.startU);
        const double a = rel.Dot(g), c = rel.Dot(toward_);
        const double phi = std::atan2(c, a);
        if (phi <= 0 || phi >= sectorAngle()) return std::nullopt;
        const double rho = std::hypot(a, c);
        const double depth = rel.Dot(into_);
        const double u = b_.startU + sign_ * phi / f_.sinA;
        return neutralApex_.Translated(generator(u) * rho +
                                       normalAway(u) * (sigma_ * (depth - b_.neutralDepth)));
    }
    // Before the strip (true) or past it (false), for a point outside it.
    bool beforeStrip(const gp_Pnt& q) const {
        if (!cone()) {
            const gp_Pnt near = f_.origin.Translated(f_.radial(b_.startU) * b_.skinRadius);
            return gp_Vec(near, q).Dot(toward_) <= 0;
        }
        const gp_Vec rel(nearPivot_, q);
        return std::atan2(rel.Dot(toward_), rel.Dot(generator(b_.startU))) <= 0;
    }

private:
    const LaidBend& b_;
    Frame f_;
    double sign_ = 1, sigma_ = 1;
    gp_Pnt apex_, nearPivot_, neutralApex_;
    double lambda_ = 0;
    gp_Vec into_, toward_;
};

// One edge of the laid side, mapped flat: straight, round or a spline close to it.
std::optional<TopoDS_Edge> mappedEdge(const TopoDS_Edge& edge, const TopoDS_Face& face,
                                      const Strip& strip) {
    double first = 0, last = 0;
    Handle(Geom2d_Curve) curve = BRep_Tool::CurveOnSurface(edge, face, first, last);
    if (curve.IsNull()) return std::nullopt;
    auto at = [&](double t) {
        const gp_Pnt2d uv = curve->Value(t);
        return strip.flatPoint(uv.X(), uv.Y());
    };
    const gp_Pnt start = at(first), end = at(last);

    Handle(Geom2d_Curve) basis = curve;
    while (basis->IsKind(STANDARD_TYPE(Geom2d_TrimmedCurve)))
        basis = Handle(Geom2d_TrimmedCurve)::DownCast(basis)->BasisCurve();
    if (auto line = Handle(Geom2d_Line)::DownCast(basis); !line.IsNull()) {
        const gp_Dir2d d = line->Direction();
        // A cylinder keeps every straight line in its parameters straight; a cone
        // only its generators, and turns its circles into arcs about the apex.
        if (!strip.cone() || std::abs(d.X()) < 1e-12) {
            if (start.Distance(end) < 1e-9) return std::nullopt;
            BRepBuilderAPI_MakeEdge made(start, end);
            if (made.IsDone()) return made.Edge();
        } else if (std::abs(d.Y()) < 1e-12 && start.Distance(end) > 1e-9) {
            GC_MakeArcOfCircle arc(start, at((first + last) / 2), end);
            if (arc.IsDone()) {
                BRepBuilderAPI_MakeEdge made(arc.Value());
                if (made.IsDone()) return made.Edge();
            }
        }
    }
    return edgeThrough(at, first, last);
}

std::optional<TopoDS_Wire> mappedWire(const TopoDS_Wire& wire, const TopoDS_Face& face,
                                      const Strip& strip) {
    BRepBuilderAPI_MakeWire made;
    for (BRepTools_WireExplorer e(wire, face); e.More(); e.Next()) {
        if (BRep_Tool::Degenerated(e.Current())) continue;
        std::optional<TopoDS_Edge> edge = mappedEdge(e.Current(), face, strip);
        if (!edge) continue; // collapsed to a point: nothing to draw
        edge->Orientation(e.Current().Orientation());
        made.Add(*edge);
        if (!made.IsDone()) return std::nullopt;
    }
    if (!made.IsDone()) return std::nullopt;
    return made.Wire();
}

// The laid side's face as a flat strip in the plane `plane` (facing its normal).
std::optional<TopoDS_Face> stripFace(const LaidBend& bend, const Strip& strip,
                                     const gp_Pln& plane) {
    const TopoDS_Wire outer = BRepTools::OuterWire(bend.bent);
    std::optional<TopoDS_Wire> outline = mappedWire(outer, bend.bent, strip);
    if (!outline) return std::nullopt;
    BRepBuilderAPI_MakeFace made(plane, *outline, Standard_True);
    if (!made.IsDone()) return std::nullopt;
    for (TopExp_Explorer e(bend.bent, TopAbs_WIRE); e.More(); e.Next()) {
        if (e.Current().IsSame(outer)) continue;
        std::optional<TopoDS_Wire> hole = mappedWire(TopoDS::Wire(e.Current()), bend.bent, strip);
        if (!hole) return std::nullopt;
        made.Add(*hole);
    }
    ShapeFix_Face fix(made.Face());
    fix.FixOrientationMode() = 1;
    fix.Perform();
    TopoDS_Face face = fix.Face();
    BRepAdaptor_Surface surface(face, false);
    if (surface.GetType() != GeomAbs_Plane) return std::nullopt;
    gp_Dir normal = surface.Plane().Position().Direct()
                        ? surface.Plane().Axis().Direction()
                        : surface.Plane().Axis().Direction().Reversed();
    if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
    if (normal.Dot(plane.Axis().Direction()) < 0) face.Reverse();
    return face;
}

} // namespace

Result<LaidBend> layBendFlat(const TopoDS_Shape& solid, const TopoDS_Face& face,
                             const TopoDS_Edge& edge, const gp_Trsf& nearWall, double thickness,
                             const sheet::SheetRules& rules) {
    LaidBend bend;
    bend.bent = face;
    bend.nearWall = nearWall;
    bend.thickness = thickness;
    BRepAdaptor_Surface surface(face, false);
    if (surface.GetType() == GeomAbs_Cylinder) {
        bend.surface = surface.Cylinder().Position();
        bend.skinRadius = surface.Cylinder().Radius();
    } else if (surface.GetType() == GeomAbs_Cone) {
        bend.kind = LaidBend::Kind::Cone;
        bend.surface = surface.Cone().Position();
        bend.skinRadius = surface.Cone().RefRadius();
        bend.semiAngle = surface.Cone().SemiAngle();
        if (std::abs(std::sin(bend.semiAngle)) < 1e-9)
            return fail("A conical bend's cone has no taper.");
    } else {
        return fail(kCantLay);
    }

    // Where the near wall meets it, and the far end of its turn.
    double first = 0, last = 0;
    Handle(Geom2d_Curve) along = BRep_Tool::CurveOnSurface(edge, face, first, last);
    if (along.IsNull()) return fail(kCantLay);
    double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
    BRepTools::UVBounds(face, u0, u1, v0, v1);
    const double startU = along->Value((first + last) / 2).X();
    if (std::abs(startU - u0) > 1e-6 && std::abs(startU - u1) > 1e-6) return fail(kCantLay);
    bend.startU = std::abs(startU - u0) <= std::abs(startU - u1) ? u0 : u1;
    bend.sweep = (bend.startU == u0 ? u1 : u0) - bend.startU;
    if (std::abs(bend.sweep) < 1e-9) return fail(kCantLay);

    // The material lies beyond the laid side, away from the axis or toward it.
    {
        Strip probe(bend);
        const double um = (u0 + u1) / 2, vm = (v0 + v1) / 2;
        const gp_Pnt middle = probe.skin(um, vm);
        const gp_Vec away = probe.normalAway(um);
        auto inside = [&](const gp_Vec& offset) {
            BRepClass3d_SolidClassifier classify(solid, middle.Translated(offset), 1e-7);
            return classify.State() == TopAbs_IN;
        };
        if (inside(away * (thickness / 2)))
            bend.skinInside = true;
        else if (inside(away * (-thickness / 2)))
            bend.skinInside = false;
        else
            return fail(kCantLay);
    }
    bend.up = bend.skinInside;

    const double turn = std::abs(bend.sweep);
    if (bend.kind == LaidBend::Kind::Cylinder) {
        bend.angle = turn * 180 / kPi;
        bend.innerRadius = bend.skinInside ? bend.skinRadius : bend.skinRadius - thickness;
        if (bend.innerRadius < -1e-7) return fail(kTooTight);
        bend.length = sheet::bendLength(rules, bend.angle, std::max(bend.innerRadius, 0.0));
        if (!(bend.length > 0)) return fail(kTooTight);
        const double neutral = bend.length / turn;
        bend.neutralDepth = bend.skinInside ? neutral - bend.skinRadius : bend.skinRadius - neutral;
        if (neutral <= 0) return fail(kTooTight);
    } else {
        Strip probe(bend);
        bend.angle =
            std::acos(std::clamp(probe.normalAway(u0).Dot(probe.normalAway(u1)), -1.0, 1.0)) * 180 /
            kPi;
        // Across a cone the radius changes; the narrower end must still take the sheet.
        const double cosA = std::cos(bend.semiAngle);
        const double narrow =
            std::min(probe.slant(v0), probe.slant(v1)) * std::abs(std::sin(bend.semiAngle)) / cosA;
        if (!bend.skinInside && narrow - thickness < -1e-7) return fail(kTooTight);
        bend.neutralDepth = (bend.skinInside ? rules.kFactor : 1 - rules.kFactor) * thickness;
        const double middle =
            (probe.slant(v0) + probe.slant(v1)) / 2 * std::abs(std::sin(bend.semiAngle)) / cosA;
        bend.innerRadius = bend.skinInside ? middle : middle - thickness;
    }

    try {
        Strip strip(bend);
        if (bend.kind == LaidBend::Kind::Cone) bend.length = strip.sectorWidth((v0 + v1) / 2);
        bend.farWall = nearWall * strip.farMove();
        for (int end = 0; end < 2; ++end) {
            const double v = end == 0 ? v0 : v1;
            bend.nearLine[end] = strip.flatPoint(bend.startU, v);
            bend.farLine[end] = strip.flatPoint(bend.startU + bend.sweep, v);
            bend.centreLine[end] = strip.flatPoint(bend.startU + bend.sweep / 2, v);
        }
        const gp_Dir normal = gp_Dir(strip.outward(bend.startU)).Transformed(nearWall);
        std::optional<TopoDS_Face> flat = stripFace(bend, strip, gp_Pln(bend.nearLine[0], normal));
        if (!flat) return fail(kCantLay);
        bend.flat = *flat;
    } catch (const Standard_Failure&) {
        return fail(kCantLay);
    }
    return bend;
}

gp_Pnt bentPoint(const LaidBend& bend, const gp_Pnt& flatPoint) {
    const Strip strip(bend);
    const gp_Pnt q = flatPoint.Transformed(bend.nearWall.Inverted());
    if (std::optional<gp_Pnt> onBend = strip.bend(q)) return *onBend;
    if (strip.beforeStrip(q)) return q;
    return flatPoint.Transformed(bend.farWall.Inverted());
}

} // namespace cad::flat
