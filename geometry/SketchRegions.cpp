// Region building: split a margin-padded face on the sketch plane with every curve,
// name the pieces after their curves, find the outside by a point in the margin and
// flood levels across the curves (even-odd fill).
#include "geometry/SketchRegions.h"

#include "sketch/SketchCurves.h"
#include "sketch/SketchObject.h"

#include <BRepAlgoAPI_Splitter.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepClass_FaceClassifier.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <ElSLib.hxx>
#include <GeomAPI.hxx>
#include <GeomAPI_ProjectPointOnCurve.hxx>
#include <Geom_Curve.hxx>
#include <NCollection_DataMap.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Pln.hxx>

#include <algorithm>
#include <array>
#include <numeric>

namespace cad::geometry {

namespace {

constexpr const char* kNoGeometry = "The sketch has no geometry to make a profile from.";
constexpr const char* kNoLoops =
    "The sketch has no closed loops: close the outline so it encloses an area.";

// The name a piece of an entity's outline carries: the sketch reference that picks
// that curve ("Rectangle1.top", "Polygon1.edge2"), or the entity itself.
std::string curveName(const SketchEntity& entity, int piece) {
    static constexpr std::array<const char*, 4> sides{"bottom", "right", "top", "left"};
    switch (entity.kind()) {
    case EntityKind::Rectangle:
        return entity.id + "." + sides[static_cast<std::size_t>(piece) % sides.size()];
    case EntityKind::Polygon:
        return entity.id + ".edge" + std::to_string(piece);
    default:
        return entity.id;
    }
}

// Groups of curves joined end to end (end points closer than 1e-7).
int countChains(const std::vector<NamedEdge>& curves) {
    std::vector<gp_Pnt> points;
    std::vector<int> owner;
    for (std::size_t i = 0; i < curves.size(); ++i) {
        TopoDS_Vertex a, b;
        TopExp::Vertices(curves[i].edge, a, b);
        if (!a.IsNull()) points.push_back(BRep_Tool::Pnt(a)), owner.push_back(static_cast<int>(i));
        if (!b.IsNull()) points.push_back(BRep_Tool::Pnt(b)), owner.push_back(static_cast<int>(i));
    }
    std::vector<int> parent(curves.size());
    std::iota(parent.begin(), parent.end(), 0);
    auto root = [&](int x) {
        while (parent[static_cast<std::size_t>(x)] != x)
            x = parent[static_cast<std::size_t>(x)] =
                parent[static_cast<std::size_t>(parent[static_cast<std::size_t>(x)])];
        return x;
    };
    for (std::size_t i = 0; i < points.size(); ++i)
        for (std::size_t j = i + 1; j < points.size(); ++j)
            if (points[i].Distance(points[j]) < 1e-7)
                parent[static_cast<std::size_t>(root(owner[i]))] = root(owner[j]);
    int chains = 0;
    for (std::size_t i = 0; i < curves.size(); ++i)
        chains += root(static_cast<int>(i)) == static_cast<int>(i);
    return chains;
}

// Where a piece starts along its curve, to number the pieces in the curve's own order.
double pieceStart(const TopoDS_Edge& piece, const Handle(Geom_Curve) & curve) {
    double f = 0, l = 0;
    Handle(Geom_Curve) own = BRep_Tool::Curve(piece, f, l);
    if (!own.IsNull() && own == curve) return std::min(f, l);
    TopoDS_Vertex a = TopExp::FirstVertex(piece, Standard_True);
    if (a.IsNull() || curve.IsNull()) return 0;
    GeomAPI_ProjectPointOnCurve project(BRep_Tool::Pnt(a), curve);
    return project.NbPoints() > 0 ? project.LowerDistanceParameter() : 0;
}

using PieceMap = NCollection_DataMap<TopoDS_Shape, int, TopTools_ShapeMapHasher>;

struct SplitSketch {
    TopTools_IndexedMapOfShape faces; // explorer order
    std::vector<int> levels;          // -1: never reached
    int outer = 0;                    // index into faces, from 1
    Profile pieces;                   // every piece with its name
    PieceMap pieceCurve;              // piece -> index of the curve it came from
    int chains = 0;
};

Result<SplitSketch> splitSketch(const gp_Ax3& plane, const std::vector<NamedEdge>& curves) {
    if (curves.empty()) return fail(kNoGeometry);
    SplitSketch split;
    split.chains = countChains(curves);

    TopoDS_Compound all;
    BRep_Builder builder;
    builder.MakeCompound(all);
    for (const NamedEdge& c : curves) builder.Add(all, c.edge);
    Bnd_Box box;
    BRepBndLib::Add(all, box, Standard_True);
    double xmin, ymin, zmin, xmax, ymax, zmax;
    box.Get(xmin, ymin, zmin, xmax, ymax, zmax);
    double umin = 1e300, umax = -1e300, vmin = 1e300, vmax = -1e300;
    for (double x : {xmin, xmax})
        for (double y : {ymin, ymax})
            for (double z : {zmin, zmax}) {
                double u = 0, v = 0;
                ElSLib::PlaneParameters(plane, gp_Pnt(x, y, z), u, v);
                umin = std::min(umin, u), umax = std::max(umax, u);
                vmin = std::min(vmin, v), vmax = std::max(vmax, v);
            }
    const double size = std::max(umax - umin, vmax - vmin);
    const double margin = size * 0.1 + 1.0;
    gp_Pln pln(plane);
    TopoDS_Face big =
        BRepBuilderAPI_MakeFace(pln, umin - margin, umax + margin, vmin - margin, vmax + margin);

    BRepAlgoAPI_Splitter splitter;
    TopTools_ListOfShape arguments, tools;
    arguments.Append(big);
    for (const NamedEdge& c : curves) tools.Append(c.edge);
    splitter.SetArguments(arguments);
    splitter.SetTools(tools);
    splitter.Build();
    if (!splitter.IsDone() || splitter.HasErrors())
        return fail("The geometry kernel could not split the sketch into regions.");

    // Name the pieces: a curve that stays whole keeps its bare name.
    for (std::size_t i = 0; i < curves.size(); ++i) {
        const TopoDS_Edge& edge = curves[i].edge;
        std::vector<TopoDS_Edge> pieces;
        for (const TopoDS_Shape& s : splitter.Modified(edge))
            if (s.ShapeType() == TopAbs_EDGE) pieces.push_back(TopoDS::Edge(s));
        if (pieces.empty() && !splitter.IsDeleted(edge)) pieces.push_back(edge);
        double f = 0, l = 0;
        Handle(Geom_Curve) curve = BRep_Tool::Curve(edge, f, l);
        std::vector<std::pair<double, TopoDS_Edge>> ordered;
        for (const TopoDS_Edge& p : pieces) ordered.emplace_back(pieceStart(p, curve), p);
        std::stable_sort(ordered.begin(), ordered.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        for (std::size_t k = 0; k < ordered.size(); ++k) {
            const TopoDS_Edge& piece = ordered[k].second;
            if (split.pieceCurve.IsBound(piece)) continue; // an overlapping curve named it
            split.pieceCurve.Bind(piece, static_cast<int>(i));
            std::string name = curves[i].name;
            if (ordered.size() > 1) name += "[" + std::to_string(k + 1) + "]";
            split.pieces.edgeNames.emplace_back(piece, std::move(name));
        }
    }

    TopoDS_Shape result = splitter.Shape();
    TopExp::MapShapes(result, TopAbs_FACE, split.faces);
    TopTools_IndexedDataMapOfShapeListOfShape edgeFaces;
    TopExp::MapShapesAndAncestors(result, TopAbs_EDGE, TopAbs_FACE, edgeFaces);

    // The outside: the face holding a point in the margin band.
    gp_Pnt outside = ElSLib::PlaneValue(umin - margin / 2, vmin - margin / 2, plane);
    for (int i = 1; i <= split.faces.Extent() && split.outer == 0; ++i) {
        BRepClass_FaceClassifier classify(TopoDS::Face(split.faces(i)), outside, 1e-7,
                                          Standard_False, 0.1);
        if (classify.State() == TopAbs_IN) split.outer = i;
    }
    if (split.outer == 0) return fail("Could not tell inside from outside in the sketch regions.");

    split.levels.assign(static_cast<std::size_t>(split.faces.Extent()), -1);
    split.levels[static_cast<std::size_t>(split.outer - 1)] = 0;
    std::vector<int> stack{split.outer};
    while (!stack.empty()) {
        int at = stack.back();
        stack.pop_back();
        const int level = split.levels[static_cast<std::size_t>(at - 1)];
        for (TopExp_Explorer e(split.faces(at), TopAbs_EDGE); e.More(); e.Next()) {
            TopAbs_Orientation o = e.Current().Orientation();
            if (o == TopAbs_INTERNAL || o == TopAbs_EXTERNAL) continue;
            if (!split.pieceCurve.IsBound(e.Current())) continue;
            int ei = edgeFaces.FindIndex(e.Current());
            if (ei < 1) continue;
            for (const TopoDS_Shape& next : edgeFaces(ei)) {
                int ni = split.faces.FindIndex(next);
                if (ni < 1 || split.levels[static_cast<std::size_t>(ni - 1)] >= 0) continue;
                split.levels[static_cast<std::size_t>(ni - 1)] = 1 - level;
                stack.push_back(ni);
            }
        }
    }
    return split;
}

} // namespace

gp_Ax3 sketchPlane(const SketchObject& sketch) {
    const PlaneFrame f = sketch.frame();
    return gp_Ax3(gp_Pnt(f.origin[0], f.origin[1], f.origin[2]),
                  gp_Dir(f.normal[0], f.normal[1], f.normal[2]),
                  gp_Dir(f.xDirection[0], f.xDirection[1], f.xDirection[2]));
}

std::vector<NamedEdge> sketchEdges(const SketchObject& sketch) {
    gp_Pln plane(sketchPlane(sketch));
    std::vector<NamedEdge> out;
    for (const SketchEntity& entity : sketch.entities) {
        if (entity.construction) continue;
        // With the sketch: text laid on a path follows it.
        for (const SketchCurve& c : entityCurves(entity, sketch.entities)) {
            Handle(Geom_Curve) curve = GeomAPI::To3d(c.curve, plane);
            BRepBuilderAPI_MakeEdge make(curve);
            if (!make.IsDone()) continue;
            out.push_back({make.Edge(), curveName(entity, c.piece)});
        }
    }
    return out;
}

Result<Profile> buildSketchRegions(const gp_Ax3& plane, const std::vector<NamedEdge>& curves,
                                   bool allBounded) {
    Result<SplitSketch> split = splitSketch(plane, curves);
    if (!split) return Error(split);
    Profile profile;
    for (int i = 1; i <= split->faces.Extent(); ++i) {
        int level = split->levels[static_cast<std::size_t>(i - 1)];
        bool region = level == 1 || (allBounded && level == 0 && i != split->outer);
        if (!region) continue;
        const TopoDS_Face& face = TopoDS::Face(split->faces(i));
        profile.faces.push_back(face);
        for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
            std::string name = split->pieces.edgeName(e.Current());
            if (!name.empty()) profile.edgeNames.emplace_back(TopoDS::Edge(e.Current()), name);
        }
    }
    if (profile.faces.empty()) return fail(split->chains > 0 ? kNoLoops : kNoGeometry);
    return profile;
}

Result<std::vector<NamedEdge>> openCurves(const gp_Ax3& plane,
                                          const std::vector<NamedEdge>& curves) {
    Result<SplitSketch> split = splitSketch(plane, curves);
    if (!split) return Error(split);
    std::vector<bool> bounds(curves.size(), false);
    for (int i = 1; i <= split->faces.Extent(); ++i) {
        if (i == split->outer) continue;
        for (TopExp_Explorer e(split->faces(i), TopAbs_EDGE); e.More(); e.Next()) {
            TopAbs_Orientation o = e.Current().Orientation();
            if (o == TopAbs_INTERNAL || o == TopAbs_EXTERNAL) continue;
            if (const int* curve = split->pieceCurve.Seek(e.Current()))
                bounds[static_cast<std::size_t>(*curve)] = true;
        }
    }
    std::vector<NamedEdge> open;
    for (std::size_t i = 0; i < curves.size(); ++i)
        if (!bounds[i]) open.push_back(curves[i]);
    return open;
}

} // namespace cad::geometry
