// The drawing of a flat solid: every face parallel to the plane is moved into it and
// all are joined, so what the sheet covers anywhere through its thickness is cut
// round, and only openings through every layer count as holes.
#include "geometry/sheet/flat/FlatDrawing.h"

#include "geometry/ShapeBoolean.h"
#include "geometry/sheet/flat/SheetFaces.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepGProp.hxx>
#include <BRepTools.hxx>
#include <BRepTools_WireExplorer.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_QuasiUniformDeflection.hxx>
#include <GProp_GProps.hxx>
#include <ShapeUpgrade_UnifySameDomain.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace cad::flat {

using drawing::DrawingItem;
using drawing::DrawingPoint;
using drawing::ItemKind;

namespace {

constexpr double kPi = std::numbers::pi;
// How far a polyline may stray from the curve it follows.
constexpr double kDeflection = 0.001;
constexpr const char* kEmpty = "The flat pattern came out empty.";

double degrees(double radians) {
    const double d = radians * 180 / kPi;
    return d - 360 * std::floor(d / 360);
}

// What tells one loop from another: its box in the plane and its length.
struct LoopKey {
    std::array<double, 4> box{};
    double length = 0;
    bool same(const LoopKey& other) const {
        for (std::size_t i = 0; i < box.size(); ++i)
            if (std::abs(box[i] - other.box[i]) > 1e-4) return false;
        return std::abs(length - other.length) <= 1e-4 * std::max(1.0, length);
    }
};

LoopKey keyOf(const TopoDS_Wire& wire, const gp_Ax3& plane) {
    LoopKey key;
    key.box = {1e300, 1e300, -1e300, -1e300};
    for (TopExp_Explorer e(wire, TopAbs_EDGE); e.More(); e.Next()) {
        const BRepAdaptor_Curve curve(TopoDS::Edge(e.Current()));
        for (int i = 0; i <= 16; ++i) {
            const double t =
                curve.FirstParameter() + (curve.LastParameter() - curve.FirstParameter()) * i / 16;
            const DrawingPoint p = onPlane(plane, curve.Value(t));
            key.box = {std::min(key.box[0], p.x), std::min(key.box[1], p.y),
                       std::max(key.box[2], p.x), std::max(key.box[3], p.y)};
        }
    }
    GProp_GProps props;
    BRepGProp::LinearProperties(wire, props);
    key.length = props.Mass();
    return key;
}

bool closes(const TopoDS_Wire& wire) {
    TopoDS_Vertex first, last;
    TopExp::Vertices(wire, first, last);
    if (first.IsNull() || last.IsNull()) return false;
    return first.IsSame(last) ||
           BRep_Tool::Pnt(first).Distance(BRep_Tool::Pnt(last)) <= BRep_Tool::Tolerance(first);
}

void drawWire(const TopoDS_Wire& wire, const TopoDS_Face& face, const gp_Ax3& plane,
              const std::string& layer, drawing::Drawing& into) {
    for (BRepTools_WireExplorer e(wire, face); e.More(); e.Next())
        if (!BRep_Tool::Degenerated(e.Current())) drawEdge(e.Current(), plane, layer, into);
}

// A face parallel to the plane, and how deep behind it it lies.
struct Layer {
    TopoDS_Face face;
    double depth = 0;
};

// What the sheet covers, seen square to the plane: its parallel faces moved into
// the plane and joined.
Result<std::vector<TopoDS_Face>> coverage(const std::vector<Layer>& layers, const gp_Ax3& plane) {
    TopTools_ListOfShape arguments, tools;
    for (const Layer& layer : layers) {
        gp_Trsf lift;
        lift.SetTranslation(gp_Vec(plane.Direction()) * layer.depth);
        const TopoDS_Shape moved =
            BRepBuilderAPI_Transform(layer.face, lift, Standard_True).Shape();
        (arguments.IsEmpty() ? arguments : tools).Append(moved);
    }
    TopoDS_Shape joined = arguments.First();
    if (!tools.IsEmpty()) {
        BRepAlgoAPI_Fuse fuse;
        fuse.SetArguments(arguments);
        fuse.SetTools(tools);
        fuse.SetRunParallel(geometry::parallelBooleans());
        fuse.SetFuzzyValue(1e-6);
        fuse.Build();
        if (!fuse.IsDone() || fuse.HasErrors()) return fail("The sheet's outline isn't flat.");
        joined = fuse.Shape();
    }
    ShapeUpgrade_UnifySameDomain unify(joined, Standard_True, Standard_True, Standard_False);
    unify.Build();
    std::vector<TopoDS_Face> faces;
    for (TopExp_Explorer e(unify.Shape(), TopAbs_FACE); e.More(); e.Next())
        faces.push_back(TopoDS::Face(e.Current()));
    if (faces.empty()) return fail(kEmpty);
    return faces;
}

} // namespace

DrawingPoint onPlane(const gp_Ax3& plane, const gp_Pnt& point) {
    const gp_Vec rel(plane.Location(), point);
    return {rel.Dot(gp_Vec(plane.XDirection())), rel.Dot(gp_Vec(plane.YDirection()))};
}

void drawEdge(const TopoDS_Edge& edge, const gp_Ax3& plane, const std::string& layer,
              drawing::Drawing& into) {
    const BRepAdaptor_Curve curve(edge);
    const double first = curve.FirstParameter(), last = curve.LastParameter();
    if (curve.GetType() == GeomAbs_Line) {
        into.items.push_back(
            {ItemKind::Line,
             layer,
             {onPlane(plane, curve.Value(first)), onPlane(plane, curve.Value(last))}});
        return;
    }
    if (curve.GetType() == GeomAbs_Circle) {
        const gp_Circ circle = curve.Circle();
        const double facing = circle.Axis().Direction().Dot(plane.Direction());
        if (std::abs(std::abs(facing) - 1) < 1e-9) {
            DrawingItem item{ItemKind::Circle, layer, {onPlane(plane, circle.Location())}};
            item.radius = circle.Radius();
            if (std::abs(last - first - 2 * kPi) > 1e-9) {
                const DrawingPoint c = item.points.front();
                auto angleOf = [&](double t) {
                    const DrawingPoint p = onPlane(plane, curve.Value(t));
                    return degrees(std::atan2(p.y - c.y, p.x - c.x));
                };
                item.kind = ItemKind::Arc;
                // Counter-clockwise as seen: the circle's own way when it faces us.
                item.startAngle = angleOf(facing > 0 ? first : last);
                item.endAngle = angleOf(facing > 0 ? last : first);
            }
            into.items.push_back(std::move(item));
            return;
        }
    }
    GCPnts_QuasiUniformDeflection points(curve, kDeflection, first, last);
    DrawingItem line{ItemKind::Polyline, layer, {}};
    if (points.IsDone())
        for (int i = 1; i <= points.NbPoints(); ++i)
            line.points.push_back(onPlane(plane, points.Value(i)));
    if (line.points.size() < 2) return;
    const DrawingPoint a = line.points.front(), b = line.points.back();
    if (std::hypot(a.x - b.x, a.y - b.y) < 1e-9) {
        line.points.pop_back();
        line.closed = true;
    }
    into.items.push_back(std::move(line));
}

Result<FlatOutline> drawFlat(const TopoDS_Shape& solid, const gp_Ax3& plane, double thickness) {
    if (solid.IsNull()) return fail(kEmpty);
    try {
        std::vector<Layer> layers;
        for (TopExp_Explorer e(solid, TopAbs_FACE); e.More(); e.Next()) {
            const TopoDS_Face& face = TopoDS::Face(e.Current());
            const std::optional<gp_Dir> normal = flatNormal(face);
            if (!normal || !normal->IsParallel(plane.Direction(), 1e-9)) continue;
            const gp_Pnt on = BRepAdaptor_Surface(face).Value(0, 0);
            layers.push_back({face, gp_Vec(on, plane.Location()).Dot(gp_Vec(plane.Direction()))});
        }
        if (layers.empty()) return fail(kEmpty);
        Result<std::vector<TopoDS_Face>> covered = coverage(layers, plane);
        if (!covered) return Error(covered);

        FlatOutline out;
        std::vector<LoopKey> cutLoops;
        for (const TopoDS_Face& face : *covered) {
            if (BRepAdaptor_Surface(face, false).GetType() != GeomAbs_Plane)
                return fail("The sheet's outline isn't flat.");
            const TopoDS_Wire outer = BRepTools::OuterWire(face);
            for (TopExp_Explorer w(face, TopAbs_WIRE); w.More(); w.Next()) {
                const TopoDS_Wire& wire = TopoDS::Wire(w.Current());
                if (!closes(wire)) return fail("The sheet's outline doesn't close.");
                const bool isOuter = wire.IsSame(outer);
                drawWire(wire, face, plane, isOuter ? "CUT_OUTSIDE" : "CUT_INSIDE", out.drawing);
                if (!isOuter) ++out.holes;
                cutLoops.push_back(keyOf(wire, plane));
            }
        }
        // Loops of the two faces that are no cut: pockets and engraving.
        for (const Layer& layer : layers) {
            if (std::abs(layer.depth) > 1e-6 && std::abs(layer.depth - thickness) > 1e-6) continue;
            for (TopExp_Explorer w(layer.face, TopAbs_WIRE); w.More(); w.Next()) {
                const TopoDS_Wire& wire = TopoDS::Wire(w.Current());
                const LoopKey key = keyOf(wire, plane);
                bool cut = false;
                for (const LoopKey& loop : cutLoops) cut = cut || loop.same(key);
                if (cut) continue;
                cutLoops.push_back(key); // once, though both faces show it
                drawWire(wire, layer.face, plane, "ENGRAVE", out.drawing);
            }
        }
        return out;
    } catch (const Standard_Failure&) {
        return fail(kEmpty);
    }
}

} // namespace cad::flat
