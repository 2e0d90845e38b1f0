// The finish step of naming: faces take the first name a feature gave them, equal
// names are told apart by tag and centroid, edges and vertices are named after the
// faces that meet there. Also the direction names of boxes and imported shapes.
#include "geometry/Naming.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepGProp.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Pln.hxx>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace cad::geometry {

namespace {

using Key = std::array<double, 3>;

double roundKey(double v) { return std::round(v * 10000.0) / 10000.0; }
Key keyOf(const gp_Pnt& p) { return {roundKey(p.X()), roundKey(p.Y()), roundKey(p.Z())}; }

// Distinct names in byte order, joined with ", ".
std::string joinSorted(std::vector<std::string> names) {
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    std::string out;
    for (const std::string& n : names) {
        if (!out.empty()) out += ", ";
        out += n;
    }
    return out;
}

// Within each group of equal names the first (by tag, then key) keeps the bare
// name and the k-th becomes name[k]. Keys are computed for shared names only.
void numberDuplicates(std::vector<std::string>& names, const std::vector<std::string>& tags,
                      const std::function<Key(int)>& keyAt) {
    std::unordered_map<std::string, std::vector<int>> groups;
    for (int i = 0; i < static_cast<int>(names.size()); ++i)
        groups[names[static_cast<std::size_t>(i)]].push_back(i);
    for (auto& group : groups) {
        const std::vector<int>& members = group.second; // a plain reference: lambdas may capture it
        if (members.size() < 2) continue;
        std::vector<Key> keys(members.size());
        for (std::size_t m = 0; m < members.size(); ++m) keys[m] = keyAt(members[m]);
        std::vector<std::size_t> order(members.size());
        for (std::size_t m = 0; m < order.size(); ++m) order[m] = m;
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            const std::string& ta = tags[static_cast<std::size_t>(members[a])];
            const std::string& tb = tags[static_cast<std::size_t>(members[b])];
            if (ta != tb) return ta < tb;
            return keys[a] < keys[b];
        });
        for (std::size_t k = 1; k < order.size(); ++k)
            names[static_cast<std::size_t>(members[order[k]])] =
                group.first + "[" + std::to_string(k + 1) + "]";
    }
}

// The final names of the faces in an ancestor list, as "Edge(...)" wants them.
std::string facesText(const TopTools_ListOfShape& ancestors,
                      const TopTools_IndexedMapOfShape& faces,
                      const std::vector<std::string>& faceNames) {
    std::vector<std::string> names;
    for (const TopoDS_Shape& f : ancestors) {
        int i = faces.FindIndex(f);
        if (i > 0) names.push_back(faceNames[static_cast<std::size_t>(i - 1)]);
    }
    return joinSorted(std::move(names));
}

Key edgeKey(const TopoDS_Edge& edge) {
    if (BRep_Tool::Degenerated(edge)) return keyOf(BRep_Tool::Pnt(TopExp::FirstVertex(edge)));
    BRepAdaptor_Curve curve(edge);
    return keyOf(curve.Value((curve.FirstParameter() + curve.LastParameter()) / 2.0));
}

} // namespace

void finishNames(NamedShape& named) {
    NamedShape::Index index;
    const TopoDS_Shape& shape = named.shape();
    if (shape.IsNull()) {
        named.setIndex(std::move(index));
        return;
    }
    TopExp::MapShapes(shape, TopAbs_FACE, index.faces);
    TopExp::MapShapes(shape, TopAbs_EDGE, index.edges);
    TopExp::MapShapes(shape, TopAbs_VERTEX, index.vertices);
    TopTools_IndexedDataMapOfShapeListOfShape edgeFaces, vertexFaces;
    TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, edgeFaces);
    TopExp::MapShapesAndAncestors(shape, TopAbs_VERTEX, TopAbs_FACE, vertexFaces);

    // Faces: the first entry that names a face wins.
    const auto faceCount = static_cast<std::size_t>(index.faces.Extent());
    std::vector<std::string> names(faceCount);
    std::vector<std::string> tags(faceCount);
    std::vector<bool> named_(faceCount, false);
    for (const NamingEntry& entry : named.entries()) {
        if (entry.subShape.IsNull() || entry.subShape.ShapeType() != TopAbs_FACE) continue;
        int i = index.faces.FindIndex(entry.subShape);
        if (i < 1 || named_[static_cast<std::size_t>(i - 1)]) continue;
        named_[static_cast<std::size_t>(i - 1)] = true;
        names[static_cast<std::size_t>(i - 1)] = entry.name;
        tags[static_cast<std::size_t>(i - 1)] = entry.tag;
    }
    for (std::size_t i = 0; i < faceCount; ++i)
        if (!named_[i]) names[i] = "Face";

    // Faces sharing a name without a tag are told apart by their neighbours' names.
    std::unordered_map<std::string, int> counts;
    for (const std::string& n : names) ++counts[n];
    std::vector<std::string> neighbourTags = tags;
    for (std::size_t i = 0; i < faceCount; ++i) {
        if (counts[names[i]] < 2 || !tags[i].empty()) continue;
        const TopoDS_Shape& face = index.faces(static_cast<int>(i + 1));
        std::vector<std::string> neighbours;
        for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
            int ei = edgeFaces.FindIndex(e.Current());
            if (ei < 1) continue;
            for (const TopoDS_Shape& other : edgeFaces(ei)) {
                if (other.IsSame(face)) continue;
                int oi = index.faces.FindIndex(other);
                if (oi > 0) neighbours.push_back(names[static_cast<std::size_t>(oi - 1)]);
            }
        }
        neighbourTags[i] = "(" + joinSorted(std::move(neighbours)) + ")";
    }
    numberDuplicates(names, neighbourTags, [&](int i) {
        GProp_GProps props;
        BRepGProp::SurfaceProperties(index.faces(i + 1), props);
        return keyOf(props.CentreOfMass());
    });
    index.faceNames = std::move(names);

    // Edges and vertices: after the faces that meet there.
    const auto edgeCount = static_cast<std::size_t>(index.edges.Extent());
    std::vector<std::string> edgeNames(edgeCount);
    for (std::size_t i = 0; i < edgeCount; ++i) {
        const TopoDS_Shape& edge = index.edges(static_cast<int>(i + 1));
        int ai = edgeFaces.FindIndex(edge);
        edgeNames[i] =
            "Edge(" + (ai > 0 ? facesText(edgeFaces(ai), index.faces, index.faceNames) : "") + ")";
    }
    numberDuplicates(edgeNames, std::vector<std::string>(edgeCount),
                     [&](int i) { return edgeKey(TopoDS::Edge(index.edges(i + 1))); });
    index.edgeNames = std::move(edgeNames);

    const auto vertexCount = static_cast<std::size_t>(index.vertices.Extent());
    std::vector<std::string> vertexNames(vertexCount);
    for (std::size_t i = 0; i < vertexCount; ++i) {
        const TopoDS_Shape& vertex = index.vertices(static_cast<int>(i + 1));
        int ai = vertexFaces.FindIndex(vertex);
        vertexNames[i] = "Vertex(" +
                         (ai > 0 ? facesText(vertexFaces(ai), index.faces, index.faceNames) : "") +
                         ")";
    }
    numberDuplicates(vertexNames, std::vector<std::string>(vertexCount), [&](int i) {
        return keyOf(BRep_Tool::Pnt(TopoDS::Vertex(index.vertices(i + 1))));
    });
    index.vertexNames = std::move(vertexNames);

    for (std::size_t i = 0; i < faceCount; ++i)
        index.byName.emplace(index.faceNames[i], index.faces(static_cast<int>(i + 1)));
    for (std::size_t i = 0; i < edgeCount; ++i)
        index.byName.emplace(index.edgeNames[i], index.edges(static_cast<int>(i + 1)));
    for (std::size_t i = 0; i < vertexCount; ++i)
        index.byName.emplace(index.vertexNames[i], index.vertices(static_cast<int>(i + 1)));
    named.setIndex(std::move(index));
}

NamedShape nameFacesByDirection(const TopoDS_Shape& shape, std::string_view prefix) {
    struct Role {
        gp_Dir direction;
        const char* word;
    };
    static const Role roles[] = {{gp_Dir(0, 0, 1), "top"},    {gp_Dir(0, 0, -1), "bottom"},
                                 {gp_Dir(0, -1, 0), "front"}, {gp_Dir(0, 1, 0), "back"},
                                 {gp_Dir(-1, 0, 0), "left"},  {gp_Dir(1, 0, 0), "right"}};
    NamedShape named(shape);
    TopTools_IndexedMapOfShape faces;
    if (!shape.IsNull()) TopExp::MapShapes(shape, TopAbs_FACE, faces);
    const std::string base(prefix);
    for (int i = 1; i <= faces.Extent(); ++i) {
        const TopoDS_Face& face = TopoDS::Face(faces(i));
        std::string role = "face";
        BRepAdaptor_Surface surface(face, false);
        if (surface.GetType() == GeomAbs_Plane) {
            gp_Pln plane = surface.Plane();
            gp_Dir normal = plane.Axis().Direction();
            if (!plane.Position().Direct()) normal.Reverse();
            if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
            for (const Role& r : roles)
                if (normal.Angle(r.direction) <= 1e-9) role = r.word;
        }
        named.addName(face, base + "." + role);
    }
    finishNames(named);
    return named;
}

} // namespace cad::geometry
