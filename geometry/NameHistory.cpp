// Name carrying through booleans and the same-domain simplifier.
#include "geometry/NameHistory.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRep_Tool.hxx>
#include <ShapeUpgrade_UnifySameDomain.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>

namespace cad::geometry {

namespace {

// Whether two faces might lie on one surface. Planes are compared exactly enough;
// other surfaces of one kind are assumed to (the simplifier then decides).
bool maySharePlane(const TopoDS_Face& a, const TopoDS_Face& b) {
    BRepAdaptor_Surface sa(a, false), sb(b, false);
    if (sa.GetType() != sb.GetType()) return false;
    if (sa.GetType() != GeomAbs_Plane) return true;
    const gp_Pln pa = sa.Plane(), pb = sb.Plane();
    if (!pa.Axis().IsParallel(pb.Axis(), 1e-9)) return false;
    return pa.Distance(pb.Location()) < 1e-6;
}

// Whether two edges might lie on one curve; lines are compared, other curves of one
// kind are assumed to.
bool mayShareCurve(const TopoDS_Edge& a, const TopoDS_Edge& b) {
    if (BRep_Tool::Degenerated(a) || BRep_Tool::Degenerated(b)) return true;
    BRepAdaptor_Curve ca(a), cb(b);
    if (ca.GetType() != cb.GetType()) return false;
    if (ca.GetType() != GeomAbs_Line) return true;
    const gp_Lin la = ca.Line(), lb = cb.Line();
    if (!la.Direction().IsParallel(lb.Direction(), 1e-9)) return false;
    return la.Distance(lb.Location()) < 1e-6;
}

bool anythingToUnify(const TopoDS_Shape& shape, const TopTools_IndexedMapOfShape& unchanged) {
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(shape, TopAbs_FACE, faces);
    TopTools_IndexedDataMapOfShapeListOfShape edgeFaces, vertexEdges;
    TopExp::MapShapesAndUniqueAncestors(shape, TopAbs_EDGE, TopAbs_FACE, edgeFaces);
    TopExp::MapShapesAndUniqueAncestors(shape, TopAbs_VERTEX, TopAbs_EDGE, vertexEdges);
    for (int i = 1; i <= faces.Extent(); ++i) {
        if (unchanged.Contains(faces(i))) continue;
        const TopoDS_Face& face = TopoDS::Face(faces(i));
        for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
            for (const TopoDS_Shape& other : edgeFaces.FindFromKey(e.Current()))
                if (!other.IsSame(face) && maySharePlane(face, TopoDS::Face(other))) return true;
        }
        for (TopExp_Explorer v(face, TopAbs_VERTEX); v.More(); v.Next()) {
            const TopTools_ListOfShape& edges = vertexEdges.FindFromKey(v.Current());
            if (edges.Extent() == 2 &&
                mayShareCurve(TopoDS::Edge(edges.First()), TopoDS::Edge(edges.Last())))
                return true;
        }
    }
    return false;
}

} // namespace

std::vector<NamingEntry> carryNames(const std::vector<NamingEntry>& entries,
                                    BRepBuilderAPI_MakeShape& operation) {
    std::vector<NamingEntry> out;
    out.reserve(entries.size());
    for (const NamingEntry& entry : entries) {
        if (entry.subShape.IsNull() || entry.subShape.ShapeType() != TopAbs_FACE) continue;
        const TopTools_ListOfShape& modified = operation.Modified(entry.subShape);
        if (!modified.IsEmpty()) {
            for (const TopoDS_Shape& face : modified)
                if (face.ShapeType() == TopAbs_FACE) out.push_back({face, entry.name, entry.tag});
        } else if (!operation.IsDeleted(entry.subShape)) {
            out.push_back(entry);
        }
    }
    return out;
}

std::vector<NamingEntry> carryNames(const std::vector<NamingEntry>& entries,
                                    const Handle(BRepTools_History) & history) {
    if (history.IsNull()) return entries;
    std::vector<NamingEntry> out;
    out.reserve(entries.size());
    for (const NamingEntry& entry : entries) {
        if (entry.subShape.IsNull() || entry.subShape.ShapeType() != TopAbs_FACE) continue;
        if (history->IsRemoved(entry.subShape)) continue;
        const TopTools_ListOfShape& modified = history->Modified(entry.subShape);
        if (modified.IsEmpty()) {
            out.push_back(entry);
            continue;
        }
        for (const TopoDS_Shape& face : modified)
            if (face.ShapeType() == TopAbs_FACE) out.push_back({face, entry.name, entry.tag});
    }
    return out;
}

TopoDS_Shape unifyWithNames(const TopoDS_Shape& shape, std::vector<NamingEntry>& entries) {
    ShapeUpgrade_UnifySameDomain unify(shape, Standard_True, Standard_True, Standard_False);
    unify.Build();
    entries = carryNames(entries, unify.History());
    return unify.Shape();
}

TopoDS_Shape unifyChangedWithNames(const TopoDS_Shape& shape, std::vector<NamingEntry>& entries,
                                   const TopTools_IndexedMapOfShape& unchanged) {
    if (!anythingToUnify(shape, unchanged)) return shape;
    return unifyWithNames(shape, entries);
}

void dropStaleEntries(NamedShape& named) {
    TopTools_IndexedMapOfShape faces;
    if (!named.isNull()) TopExp::MapShapes(named.shape(), TopAbs_FACE, faces);
    std::vector<NamingEntry>& entries = named.entries();
    std::erase_if(entries, [&](const NamingEntry& e) { return !faces.Contains(e.subShape); });
}

} // namespace cad::geometry
