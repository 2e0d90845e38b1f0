// Each kind of reference plane built from its resolved references, the sentences
// that say why a definition fixes no plane, and the half-width it is drawn with.
#include "geometry/planes/PlaneGeometry.h"

#include "core/Document.h"
#include "core/OriginPlanes.h"
#include "geometry/SketchRegions.h"
#include "sketch/SketchObject.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepBndLib.hxx>
#include <BRepTools.hxx>
#include <Bnd_Box.hxx>
#include <ElSLib.hxx>
#include <Extrema_ExtPC.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS.hxx>
#include <gp_Lin.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad::geometry {

namespace {

constexpr double kTiny = 1e-9; // directions, cross products
constexpr double kOnIt = 1e-7; // mm: a point on a line, axis or centre

std::string quoted(const std::string& text) { return "'" + text + "'"; }
double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

gp_Ax3 rightHanded(const gp_Ax3& ax) {
    // Keeps the normal and Y; a left-handed placement turns its X round.
    return gp_Ax3(ax.Location(), ax.Direction(),
                  ax.Direct() ? ax.XDirection() : ax.XDirection().Reversed());
}

gp_Ax3 frameAxes(const PlaneFrame& f) {
    return gp_Ax3(gp_Pnt(f.origin[0], f.origin[1], f.origin[2]),
                  gp_Dir(f.normal[0], f.normal[1], f.normal[2]),
                  gp_Dir(f.xDirection[0], f.xDirection[1], f.xDirection[2]));
}

// A straight line: an origin axis, a sketch line or a straight edge (not the axis
// of a circle or cylinder).
std::optional<gp_Ax1> lineOf(const ResolvedReference& r) {
    if (!r.axis) return std::nullopt;
    if (r.shape.IsNull()) return r.axis;
    if (r.shape.ShapeType() == TopAbs_EDGE &&
        BRepAdaptor_Curve(TopoDS::Edge(r.shape)).GetType() == GeomAbs_Line)
        return r.axis;
    return std::nullopt;
}

// A point and nothing more: a vertex, a sketch point, the origin.
std::optional<gp_Pnt> pointOf(const ResolvedReference& r) {
    if (!r.point || r.plane || r.axis) return std::nullopt;
    return r.point;
}

double diagonal(const TopoDS_Shape& shape) {
    Bnd_Box box;
    BRepBndLib::Add(shape, box, Standard_True);
    if (box.IsVoid() || box.IsOpen()) return 0;
    double x0, y0, z0, x1, y1, z1;
    box.Get(x0, y0, z0, x1, y1, z1); // the gap is included on both sides
    return std::sqrt((x1 - x0) * (x1 - x0) + (y1 - y0) * (y1 - y0) + (z1 - z0) * (z1 - z0));
}

// The references of one definition, resolved when a kind asks for them; the shapes
// they carry give the fitted size.
class Inputs {
public:
    Inputs(const Document& document, const PlaneDefinition& definition)
        : document_(document), definition_(definition) {}

    std::size_t count() const { return definition_.references.size(); }
    const std::string& text(std::size_t i) const { return definition_.references[i]; }
    const Document& document() const { return document_; }
    const PlaneDefinition& definition() const { return definition_; }

    Result<ResolvedReference> get(std::size_t i) {
        Result<ResolvedReference> r = resolveReference(document_, text(i));
        if (r && !r->shape.IsNull()) largest_ = std::max(largest_, diagonal(r->shape));
        return r;
    }
    double largestDiagonal() const { return largest_; }

    Result<gp_Ax3> flat(std::size_t i) {
        Result<ResolvedReference> r = get(i);
        if (!r) return Error(r);
        std::optional<gp_Ax3> plane = flatPlane(*r);
        if (!plane) return fail(quoted(text(i)) + " isn't a plane or flat face.");
        return *plane;
    }
    Result<gp_Ax1> line(std::size_t i) {
        Result<ResolvedReference> r = get(i);
        if (!r) return Error(r);
        std::optional<gp_Ax1> l = lineOf(*r);
        if (!l) return fail(quoted(text(i)) + " isn't a straight edge, line or axis.");
        return *l;
    }
    Result<gp_Pnt> point(std::size_t i) {
        Result<ResolvedReference> r = get(i);
        if (!r) return Error(r);
        std::optional<gp_Pnt> p = pointOf(*r);
        if (!p) return fail(quoted(text(i)) + " isn't a point.");
        return *p;
    }

private:
    const Document& document_;
    const PlaneDefinition& definition_;
    double largest_ = 0;
};

Result<gp_Ax3> offsetPlane(Inputs& in) {
    Result<gp_Ax3> base = in.flat(0);
    if (!base) return base;
    return base->Translated(gp_Vec(base->Direction()) * in.definition().distance);
}

// What an angle is measured from when no plane is given: the sketch a sketch line
// lies in, else the first origin plane the line lies flattest in.
gp_Ax3 defaultAngleBase(const Inputs& in, const gp_Dir& line) {
    const std::string& text = in.text(0);
    if (text.find('/') != std::string::npos)
        if (auto* sketch = in.document().findAs<SketchObject>(objectPart(text)))
            return sketchPlane(*sketch);
    gp_Ax3 best;
    double flattest = 2;
    for (OriginPlane p : {OriginPlane::XY, OriginPlane::XZ, OriginPlane::YZ}) {
        gp_Ax3 ax = frameAxes(originPlaneFrame(p));
        const double along = std::fabs(ax.Direction().Dot(line));
        if (along < flattest - kTiny) {
            flattest = along;
            best = ax;
        }
    }
    return best;
}

Result<gp_Ax3> anglePlane(Inputs& in) {
    Result<gp_Ax1> line = in.line(0);
    if (!line) return Error(line);
    const gp_Dir d = line->Direction();
    gp_Ax3 base;
    if (in.count() > 1) {
        Result<gp_Ax3> given = in.flat(1);
        if (!given) return given;
        base = *given;
    } else {
        base = defaultAngleBase(in, d);
    }
    // The base normal squared to the line is the normal at angle 0.
    const gp_Vec nb(base.Direction());
    const gp_Vec square = nb - gp_Vec(d) * nb.Dot(gp_Vec(d));
    if (square.Magnitude() < kTiny)
        return fail("The line is perpendicular to the plane it's measured from.");
    const gp_Dir normal =
        gp_Dir(square).Rotated(gp_Ax1(gp::Origin(), d), radians(in.definition().angle));
    // The origin: the base plane's origin brought onto the line.
    const gp_Pnt a = line->Location();
    const gp_Pnt origin = a.Translated(gp_Vec(d) * gp_Vec(a, base.Location()).Dot(gp_Vec(d)));
    return gp_Ax3(origin, normal, d);
}

Result<gp_Ax3> midPlane(Inputs& in) {
    Result<gp_Ax3> first = in.flat(0);
    if (!first) return first;
    Result<gp_Ax3> second = in.flat(1);
    if (!second) return second;
    const gp_Vec n1(first->Direction()), n2(second->Direction());
    const gp_Pnt o1 = first->Location(), o2 = second->Location();
    if (n1.Crossed(n2).Magnitude() < kTiny) {
        // Parallel: halfway between them, facing as the first.
        const double gap = gp_Vec(o1, o2).Dot(n1);
        return gp_Ax3(o1.Translated(n1 * (gap / 2)), first->Direction(), first->XDirection());
    }
    // Crossing: the plane through their common line that halves the narrower angle
    // between them; faces meeting square at an outside edge get the one through the
    // solid (n1 - n2).
    const gp_Vec sum = n1 + n2, difference = n1 - n2;
    const gp_Vec bisector = sum.Magnitude() > difference.Magnitude() + kTiny ? sum : difference;
    // The point of the common line nearest the middle of the two origins.
    const gp_XYZ m = (o1.XYZ() + o2.XYZ()) / 2;
    const double k = n1.Dot(n2);
    const double e1 = n1.XYZ().Dot(o1.XYZ() - m), e2 = n2.XYZ().Dot(o2.XYZ() - m);
    const double det = 1 - k * k;
    const double a = (e1 - k * e2) / det, b = (e2 - k * e1) / det;
    const gp_Pnt onBoth(m + n1.XYZ() * a + n2.XYZ() * b);
    return gp_Ax3(onBoth, gp_Dir(bisector), gp_Dir(n1.Crossed(n2)));
}

Result<gp_Ax3> threePointPlane(Inputs& in, double& spread) {
    gp_Pnt p[3];
    for (std::size_t i = 0; i < 3; ++i) {
        Result<gp_Pnt> point = in.point(i);
        if (!point) return Error(point);
        p[i] = *point;
    }
    const gp_Vec ab(p[0], p[1]), ac(p[0], p[2]);
    const gp_Vec normal = ab.Crossed(ac);
    if (normal.Magnitude() < kTiny) return fail("The three points are in a line.");
    spread = std::max({p[0].Distance(p[1]), p[0].Distance(p[2]), p[1].Distance(p[2])});
    const gp_Pnt centroid((p[0].XYZ() + p[1].XYZ() + p[2].XYZ()) / 3);
    return gp_Ax3(centroid, gp_Dir(normal), gp_Dir(ab));
}

Result<gp_Ax3> throughPlane(Inputs& in) {
    Result<gp_Ax1> line = in.line(0);
    if (!line) return Error(line);
    Result<ResolvedReference> other = in.get(1);
    if (!other) return Error(other);
    const gp_Vec d1(line->Direction());
    const gp_Pnt a1 = line->Location();
    gp_Vec normal;
    if (std::optional<gp_Ax1> second = lineOf(*other)) {
        const gp_Vec d2(second->Direction());
        const gp_Vec across(a1, second->Location());
        normal = d1.Crossed(d2);
        if (normal.Magnitude() < kTiny) {
            // Parallel lines: the plane holds both, unless they are one line.
            const gp_Vec gap = across - d1 * across.Dot(d1);
            if (gap.Magnitude() < kOnIt)
                return fail("The two lines are one line: that doesn't fix a plane.");
            normal = d1.Crossed(gap);
        } else if (std::fabs(across.Dot(normal.Normalized())) > kOnIt) {
            return fail("The two lines don't lie in one plane.");
        }
    } else if (std::optional<gp_Pnt> point = pointOf(*other)) {
        const gp_Vec toPoint(a1, *point);
        const gp_Vec gap = toPoint - d1 * toPoint.Dot(d1);
        if (gap.Magnitude() < kOnIt)
            return fail("The point is on the line: that doesn't fix a plane.");
        normal = d1.Crossed(gap);
    } else {
        return fail(quoted(in.text(1)) + " isn't a line or a point.");
    }
    return gp_Ax3(a1, gp_Dir(normal), gp_Dir(d1));
}

Result<gp_Ax3> tangentPlane(Inputs& in) {
    Result<ResolvedReference> r = in.get(0);
    if (!r) return Error(r);
    const std::string notRound = quoted(in.text(0)) + " isn't a cylindrical or spherical face.";
    if (r->shape.IsNull() || r->shape.ShapeType() != TopAbs_FACE) return fail(notRound);
    const TopoDS_Face& face = TopoDS::Face(r->shape);
    BRepAdaptor_Surface surface(face);
    const GeomAbs_SurfaceType type = surface.GetType();
    if (type != GeomAbs_Cylinder && type != GeomAbs_Cone && type != GeomAbs_Sphere)
        return fail(notRound);

    double u = 0, v = 0;
    if (in.count() > 1) {
        Result<gp_Pnt> at = in.point(1);
        if (!at) return Error(at);
        const char* onAxis = "The point is on the axis: no tangent plane there.";
        if (type == GeomAbs_Cylinder) {
            if (gp_Lin(surface.Cylinder().Axis()).Distance(*at) < kOnIt) return fail(onAxis);
            ElSLib::Parameters(surface.Cylinder(), *at, u, v);
        } else if (type == GeomAbs_Cone) {
            if (gp_Lin(surface.Cone().Axis()).Distance(*at) < kOnIt) return fail(onAxis);
            ElSLib::Parameters(surface.Cone(), *at, u, v);
        } else {
            if (surface.Sphere().Location().Distance(*at) < kOnIt) return fail(onAxis);
            ElSLib::Parameters(surface.Sphere(), *at, u, v);
        }
    } else {
        // At the angle round the axis, halfway along the face.
        double u0, u1, v0, v1;
        BRepTools::UVBounds(face, u0, u1, v0, v1);
        u = radians(in.definition().angle);
        v = (v0 + v1) / 2;
    }
    gp_Pnt touch;
    gp_Vec du, dv;
    surface.D1(u, v, touch, du, dv);
    gp_Vec normal = du.Crossed(dv);
    if (normal.Magnitude() < kTiny) return fail("The face has no tangent plane there.");
    normal.Normalize();
    if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
    // X runs along the face (the cylinder's or cone's length, the sphere's meridian).
    gp_Vec along = dv - normal * dv.Dot(normal);
    if (along.Magnitude() < kTiny) along = du - normal * du.Dot(normal);
    return gp_Ax3(touch, gp_Dir(normal), gp_Dir(along));
}

Result<gp_Ax3> normalPlane(Inputs& in) {
    Result<ResolvedReference> r = in.get(0);
    if (!r) return Error(r);
    if (r->shape.IsNull() || r->shape.ShapeType() != TopAbs_EDGE)
        return fail(quoted(in.text(0)) + " isn't a curve.");
    const TopoDS_Edge& edge = TopoDS::Edge(r->shape);
    BRepAdaptor_Curve curve(edge);
    const bool reversed = edge.Orientation() == TopAbs_REVERSED;
    const double first = curve.FirstParameter(), last = curve.LastParameter();
    double t = first;
    if (in.count() > 1) {
        Result<gp_Pnt> at = in.point(1);
        if (!at) return Error(at);
        Extrema_ExtPC nearest(*at, curve);
        if (!nearest.IsDone() || nearest.NbExt() == 0)
            return fail("The point doesn't project onto the curve.");
        int best = 1;
        for (int i = 2; i <= nearest.NbExt(); ++i)
            if (nearest.SquareDistance(i) < nearest.SquareDistance(best)) best = i;
        t = nearest.Point(best).Parameter();
    } else {
        // The position is a share of the curve's length from its start.
        const double share = reversed ? 1 - in.definition().position : in.definition().position;
        const double length = GCPnts_AbscissaPoint::Length(curve);
        GCPnts_AbscissaPoint along(curve, share * length, first);
        t = along.IsDone() ? along.Parameter() : first + share * (last - first);
    }
    gp_Pnt at;
    gp_Vec tangent;
    curve.D1(t, at, tangent);
    if (reversed) tangent.Reverse();
    if (tangent.Magnitude() < kTiny) return fail("The curve has no direction there.");
    return gp_Ax3(at, gp_Dir(tangent));
}

struct KindRule {
    const char* kind;
    std::size_t least, most;
    const char* needs;
};

const KindRule kRules[] = {
    {"offset", 1, 1, "offset needs a plane or flat face to start from"},
    {"angle", 1, 2, "at an angle needs a line to turn about"},
    {"midplane", 2, 2, "midway needs two planes or flat faces"},
    {"three_points", 3, 3, "through three points needs three points"},
    {"through", 2, 2, "through a line needs the line and a second line or a point"},
    {"tangent", 1, 2, "tangent needs a cylinder, cone or sphere face"},
    {"normal", 1, 2, "normal to a curve needs the curve"},
};

} // namespace

std::optional<gp_Ax3> flatPlane(const ResolvedReference& reference) {
    if (!reference.plane) return std::nullopt;
    if (!reference.shape.IsNull() && reference.shape.ShapeType() != TopAbs_FACE)
        return std::nullopt;
    return rightHanded(*reference.plane);
}

bool samePlacement(const gp_Ax3& a, const gp_Ax3& b) {
    return a.Location().XYZ().IsEqual(b.Location().XYZ(), 1e-12) &&
           a.Direction().XYZ().IsEqual(b.Direction().XYZ(), 1e-12) &&
           a.XDirection().XYZ().IsEqual(b.XDirection().XYZ(), 1e-12);
}

gp_Ax3 flipped(const gp_Ax3& placement) {
    return gp_Ax3(placement.Location(), placement.Direction().Reversed(), placement.XDirection());
}

std::optional<std::string> definitionProblem(const PlaneDefinition& definition) {
    const KindRule* rule = nullptr;
    for (const KindRule& r : kRules)
        if (definition.kind == r.kind) rule = &r;
    if (!rule) return "Unknown plane kind '" + definition.kind + "'.";
    const std::size_t n = definition.references.size();
    if (n < rule->least) return std::string(rule->needs) + ".";
    if (n > rule->most)
        return definition.kind + " takes at most " + std::to_string(rule->most) +
               (rule->most == 1 ? " reference." : " references.");
    if (definition.kind == "normal" && !(definition.position >= 0 && definition.position <= 1))
        return "The position along the curve must be from 0 to 1.";
    return std::nullopt;
}

Result<PlacedPlane> computePlane(const Document& document, const PlaneDefinition& definition) {
    if (std::optional<std::string> problem = definitionProblem(definition)) return fail(*problem);
    Inputs in(document, definition);
    try {
        const std::string& kind = definition.kind;
        double spread = 0; // three points: the longest distance between them
        Result<gp_Ax3> placed = kind == "offset"         ? offsetPlane(in)
                                : kind == "angle"        ? anglePlane(in)
                                : kind == "midplane"     ? midPlane(in)
                                : kind == "three_points" ? threePointPlane(in, spread)
                                : kind == "through"      ? throughPlane(in)
                                : kind == "tangent"      ? tangentPlane(in)
                                                         : normalPlane(in);
        if (!placed) return Error(placed);
        PlacedPlane result;
        result.placement = definition.flip ? flipped(*placed) : *placed;
        const double fitted = kind == "three_points" ? 0.7 * spread : 0.6 * in.largestDiagonal();
        result.halfWidth = definition.size > 0 ? definition.size : std::clamp(fitted, 10.0, 500.0);
        return result;
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not place the plane.");
    }
}

} // namespace cad::geometry
