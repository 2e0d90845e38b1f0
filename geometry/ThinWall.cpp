// Thin walls: regions grown and shrunk by offsets and subtracted; open chains
// offset to one side (the left of their direction, or the right when reversed)
// and closed into bands. Wall edges are named after the nearest sketch curve.
#include "geometry/ThinWall.h"

#include "geometry/Deadline.h"
#include "geometry/NameHistory.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepGProp.hxx>
#include <BRepOffsetAPI_MakeOffset.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <ShapeAnalysis_FreeBounds.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_HSequenceOfShape.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Pln.hxx>

#include <limits>
#include <optional>

namespace cad::geometry {

namespace {

constexpr const char* kTooThick =
    "The wall is too thick for the curves' tightest bends; make it thinner.";

double area(const TopoDS_Shape& face) {
    GProp_GProps props;
    BRepGProp::SurfaceProperties(face, props);
    return std::abs(props.Mass());
}

double signedArea(const gp_Pln& plane, const TopoDS_Wire& wire) {
    BRepBuilderAPI_MakeFace make(plane, wire, Standard_True);
    if (!make.IsDone()) return 0;
    GProp_GProps props;
    BRepGProp::SurfaceProperties(make.Face(), props);
    return props.Mass();
}

// A face on the plane bounded by the wires: the one enclosing the most area is the
// outline, turned to run counter-clockwise about the plane's normal; the others are
// holes, turned the other way.
std::optional<TopoDS_Face> faceFromWires(const gp_Pln& plane,
                                         const std::vector<TopoDS_Wire>& wires) {
    if (wires.empty()) return std::nullopt;
    std::vector<double> areas;
    std::size_t outer = 0;
    for (std::size_t i = 0; i < wires.size(); ++i) {
        areas.push_back(signedArea(plane, wires[i]));
        if (std::abs(areas[i]) > std::abs(areas[outer])) outer = i;
    }
    if (std::abs(areas[outer]) <= 1e-12) return std::nullopt;
    auto turned = [&](std::size_t i, bool counterClockwise) {
        bool isCcw = areas[i] > 0;
        return isCcw == counterClockwise ? wires[i] : TopoDS::Wire(wires[i].Reversed());
    };
    BRepBuilderAPI_MakeFace make(plane, turned(outer, true), Standard_True);
    for (std::size_t i = 0; i < wires.size(); ++i)
        if (i != outer && std::abs(areas[i]) > 1e-12) make.Add(turned(i, false));
    if (!make.IsDone()) return std::nullopt;
    return make.Face();
}

// The region moved out (positive) or in (negative) by the amount; nothing when
// the kernel makes nothing of it.
std::optional<TopoDS_Face> grown(const gp_Pln& plane, const TopoDS_Face& region, double amount) {
    if (std::abs(amount) <= 1e-7) return region;
    try {
        BRepOffsetAPI_MakeOffset offset(region, GeomAbs_Arc, Standard_False);
        offset.Perform(amount, 0);
        if (!offset.IsDone()) return std::nullopt;
        std::vector<TopoDS_Wire> wires;
        for (TopExp_Explorer e(offset.Shape(), TopAbs_WIRE); e.More(); e.Next())
            wires.push_back(TopoDS::Wire(e.Current()));
        std::optional<TopoDS_Face> face = faceFromWires(plane, wires);
        if (!face || area(*face) <= 1e-12) return std::nullopt;
        return face;
    } catch (const Standard_Failure&) {
        return std::nullopt;
    }
}

Result<std::vector<TopoDS_Face>> regionWall(const gp_Pln& sketchPlane, const TopoDS_Face& region,
                                            double outer, double inner) {
    // A face taken from a body lies in its own plane, not necessarily the sketch's.
    BRepAdaptor_Surface surface(region, false);
    const gp_Pln plane = surface.GetType() == GeomAbs_Plane ? surface.Plane() : sketchPlane;
    std::optional<TopoDS_Face> big = grown(plane, region, outer);
    if (!big) return fail("The region can't be grown by that much.");
    std::optional<TopoDS_Face> small = grown(plane, region, inner);
    if (!small) return std::vector<TopoDS_Face>{*big};
    BRepAlgoAPI_Cut cut(*big, *small);
    if (!cut.IsDone() || cut.HasErrors())
        return fail("The geometry kernel could not make the wall.");
    std::vector<TopoDS_Face> faces;
    for (TopExp_Explorer e(cut.Shape(), TopAbs_FACE); e.More(); e.Next())
        faces.push_back(TopoDS::Face(e.Current()));
    return faces;
}

// The two ends of an open wire (vertices used by one edge only).
std::vector<TopoDS_Vertex> wireEnds(const TopoDS_Wire& wire) {
    TopTools_IndexedDataMapOfShapeListOfShape vertexEdges;
    TopExp::MapShapesAndAncestors(wire, TopAbs_VERTEX, TopAbs_EDGE, vertexEdges);
    std::vector<TopoDS_Vertex> ends;
    for (int i = 1; i <= vertexEdges.Extent(); ++i)
        if (vertexEdges(i).Extent() == 1) ends.push_back(TopoDS::Vertex(vertexEdges.FindKey(i)));
    return ends;
}

// The band between an open wire and its offset to the wire's left.
Result<TopoDS_Face> band(const gp_Pln& plane, const TopoDS_Wire& wire, double amount) {
    TopoDS_Face support = BRepBuilderAPI_MakeFace(plane);
    BRepOffsetAPI_MakeOffset offset;
    offset.Init(support, GeomAbs_Arc, Standard_True);
    offset.AddWire(wire);
    try {
        offset.Perform(amount, 0);
    } catch (const Standard_Failure&) {
        return fail(kTooThick);
    }
    if (!offset.IsDone()) return fail(kTooThick);
    TopExp_Explorer first(offset.Shape(), TopAbs_WIRE);
    if (!first.More()) return fail(kTooThick);
    const TopoDS_Wire parallel = TopoDS::Wire(first.Current());

    Handle(TopTools_HSequenceOfShape) edges = new TopTools_HSequenceOfShape;
    for (TopExp_Explorer e(wire, TopAbs_EDGE); e.More(); e.Next()) edges->Append(e.Current());
    for (TopExp_Explorer e(parallel, TopAbs_EDGE); e.More(); e.Next()) edges->Append(e.Current());
    std::vector<TopoDS_Vertex> ends = wireEnds(wire), offsetEnds = wireEnds(parallel);
    if (ends.size() == 2 && offsetEnds.size() == 2) {
        for (const TopoDS_Vertex& end : ends) {
            gp_Pnt p = BRep_Tool::Pnt(end);
            gp_Pnt a = BRep_Tool::Pnt(offsetEnds[0]), b = BRep_Tool::Pnt(offsetEnds[1]);
            gp_Pnt q = p.Distance(a) <= p.Distance(b) ? a : b;
            if (p.Distance(q) <= 1e-7) continue;
            BRepBuilderAPI_MakeEdge cap(p, q);
            if (!cap.IsDone())
                return fail("The geometry kernel could not make the open curves' wall.");
            edges->Append(cap.Edge());
        }
    }
    Handle(TopTools_HSequenceOfShape) wires;
    ShapeAnalysis_FreeBounds::ConnectEdgesToWires(edges, 1e-6, Standard_False, wires);
    if (wires.IsNull() || wires->Length() < 1) return fail("The open curves' wall doesn't close.");
    std::vector<TopoDS_Wire> loops;
    for (int i = 1; i <= wires->Length(); ++i) {
        const TopoDS_Wire& w = TopoDS::Wire(wires->Value(i));
        if (!BRep_Tool::IsClosed(w)) return fail("The open curves' wall doesn't close.");
        loops.push_back(w);
    }
    std::optional<TopoDS_Face> face = faceFromWires(plane, loops);
    if (!face) return fail("The geometry kernel could not make the open curves' wall.");
    return *face;
}

Result<std::vector<TopoDS_Face>> chainWall(const gp_Pln& plane, const TopoDS_Wire& wire,
                                           double left, double right) {
    std::vector<TopoDS_Face> halves;
    if (left > 0) {
        Result<TopoDS_Face> half = band(plane, wire, left);
        if (!half) return Error(half);
        halves.push_back(*half);
    }
    if (right > 0) {
        Result<TopoDS_Face> half = band(plane, TopoDS::Wire(wire.Reversed()), right);
        if (!half) return Error(half);
        halves.push_back(*half);
    }
    if (halves.size() < 2) return halves;

    BRepAlgoAPI_Fuse fuse(halves[0], halves[1]);
    if (!fuse.IsDone() || fuse.HasErrors())
        return fail("The geometry kernel could not join the wall's halves.");
    std::vector<NamingEntry> none;
    TopoDS_Shape joined = unifyWithNames(fuse.Shape(), none);
    std::vector<TopoDS_Face> faces;
    for (TopExp_Explorer e(joined, TopAbs_FACE); e.More(); e.Next())
        faces.push_back(TopoDS::Face(e.Current()));
    return faces;
}

std::string nearestCurveName(const TopoDS_Edge& edge, double thickness,
                             const std::vector<NamedEdge>& curves) {
    BRepAdaptor_Curve curve(edge);
    gp_Pnt middle = curve.Value((curve.FirstParameter() + curve.LastParameter()) / 2);
    TopoDS_Vertex probe = BRepBuilderAPI_MakeVertex(middle);
    double best = std::numeric_limits<double>::infinity();
    const NamedEdge* nearest = nullptr;
    for (const NamedEdge& c : curves) {
        BRepExtrema_DistShapeShape distance(probe, c.edge);
        if (!distance.IsDone() || distance.Value() >= best) continue;
        best = distance.Value();
        nearest = &c;
    }
    if (!nearest) return {};
    if (best < 1e-6) return nearest->name;
    if (best > 0.49 * thickness && best < 1.01 * thickness + 1e-6) return nearest->name + ".offset";
    return nearest->name + ".end";
}

} // namespace

ThinSide parseThinSide(std::string_view text) {
    if (text == "outside") return ThinSide::Outside;
    if (text == "center") return ThinSide::Center;
    return ThinSide::Inside;
}

Result<Profile> makeThinWall(const gp_Ax3& plane, const Profile& regions,
                             const std::vector<NamedEdge>& openChains, double thickness,
                             ThinSide side, const std::vector<NamedEdge>& curves) {
    const double t = thickness;
    if (t <= 1e-7) return fail("A thin wall needs a thickness.");
    const gp_Pln pln(plane);
    Profile wall;
    try {
        const double outer = side == ThinSide::Inside ? 0 : side == ThinSide::Outside ? t : t / 2;
        const double inner = side == ThinSide::Inside ? -t : side == ThinSide::Outside ? 0 : -t / 2;
        for (const TopoDS_Face& region : regions.faces) {
            Result<std::vector<TopoDS_Face>> faces = regionWall(pln, region, outer, inner);
            if (!faces) return Error(faces);
            wall.faces.insert(wall.faces.end(), faces->begin(), faces->end());
        }

        std::vector<TopoDS_Face> openWall;
        if (!openChains.empty()) {
            Handle(TopTools_HSequenceOfShape) edges = new TopTools_HSequenceOfShape;
            for (const NamedEdge& c : openChains) edges->Append(c.edge);
            Handle(TopTools_HSequenceOfShape) wires;
            ShapeAnalysis_FreeBounds::ConnectEdgesToWires(edges, 1e-6, Standard_False, wires);
            const double left = side == ThinSide::Inside    ? t
                                : side == ThinSide::Outside ? 0
                                                            : t / 2;
            const double right = side == ThinSide::Inside    ? 0
                                 : side == ThinSide::Outside ? t
                                                             : t / 2;
            for (int i = 1; !wires.IsNull() && i <= wires->Length(); ++i) {
                Result<std::vector<TopoDS_Face>> faces =
                    chainWall(pln, TopoDS::Wire(wires->Value(i)), left, right);
                if (!faces) return Error(faces);
                openWall.insert(openWall.end(), faces->begin(), faces->end());
            }
        }
        for (const TopoDS_Face& face : openWall)
            if (!BRepCheck_Analyzer(face).IsValid()) return fail(kTooThick);
        wall.faces.insert(wall.faces.end(), openWall.begin(), openWall.end());
        if (wall.faces.empty()) return fail("There is nothing to make a wall from.");

        for (const TopoDS_Face& face : wall.faces)
            for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
                const TopoDS_Edge& edge = TopoDS::Edge(e.Current());
                if (!wall.edgeName(edge).empty()) continue;
                std::string name = nearestCurveName(edge, t, curves);
                if (!name.empty()) wall.edgeNames.emplace_back(edge, std::move(name));
            }
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not make the wall.");
    }
    return wall;
}

} // namespace cad::geometry
