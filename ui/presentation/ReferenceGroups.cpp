// What one click takes: a sketch line or arc with the lines and arcs joined to it
// end to end, a body edge with the edges that continue it tangentially.
#include "ui/presentation/ReferencePicker.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchReference.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Vertex.hxx>

#include <cmath>
#include <deque>
#include <numbers>
#include <optional>
#include <utility>

namespace cad::ui {

namespace {

// Joined ends may differ by what the solver leaves over.
constexpr double kJoinTolerance = 1e-6;
// Edges whose directions at a shared vertex differ by less than this continue each other.
constexpr double kTangentTolerance = 0.01; // radians

// Where a line or an arc starts and ends; nothing for other kinds.
std::optional<std::pair<Point2, Point2>> curveEnds(const std::vector<SketchEntity>& entities,
                                                   std::size_t index) {
    const int at = static_cast<int>(index);
    switch (entities[index].kind()) {
    case EntityKind::Line:
        return std::pair{pointAt({ResolvedRef::Point, at, 0}, entities),
                         pointAt({ResolvedRef::Point, at, 1}, entities)};
    case EntityKind::Arc:
        return std::pair{pointAt({ResolvedRef::Point, at, 1}, entities),
                         pointAt({ResolvedRef::Point, at, 2}, entities)};
    default:
        return std::nullopt;
    }
}

bool joined(Point2 a, Point2 b) { return std::hypot(a.x - b.x, a.y - b.y) <= kJoinTolerance; }

// The clicked line or arc first, then every line and arc reachable from it through
// shared ends, in sketch order. Construction curves chain only with construction.
std::vector<std::string> sketchChain(const SketchObject& sketch, const std::string& prefix,
                                     const SketchEntity& start) {
    std::vector<std::optional<std::pair<Point2, Point2>>> ends;
    std::size_t first = 0;
    for (std::size_t i = 0; i < sketch.entities.size(); ++i) {
        const SketchEntity& e = sketch.entities[i];
        ends.push_back(e.construction == start.construction ? curveEnds(sketch.entities, i)
                                                            : std::nullopt);
        if (&e == &start) first = i;
    }
    std::vector<bool> inChain(ends.size(), false);
    inChain[first] = true;
    std::deque<std::size_t> open{first};
    while (!open.empty()) {
        const auto [a1, a2] = *ends[open.front()];
        open.pop_front();
        for (std::size_t j = 0; j < ends.size(); ++j) {
            if (inChain[j] || !ends[j]) continue;
            const auto [b1, b2] = *ends[j];
            if (joined(a1, b1) || joined(a1, b2) || joined(a2, b1) || joined(a2, b2)) {
                inChain[j] = true;
                open.push_back(j);
            }
        }
    }
    std::vector<std::string> out{prefix + start.id};
    for (std::size_t j = 0; j < ends.size(); ++j)
        if (inChain[j] && j != first) out.push_back(prefix + sketch.entities[j].id);
    return out;
}

// The edge's direction where it meets the vertex.
std::optional<gp_Dir> tangentAt(const TopoDS_Edge& edge, const TopoDS_Vertex& vertex) {
    try {
        BRepAdaptor_Curve curve(edge);
        gp_Pnt p;
        gp_Vec d;
        curve.D1(BRep_Tool::Parameter(vertex, edge), p, d);
        if (d.Magnitude() < 1e-12) return std::nullopt;
        return gp_Dir(d);
    } catch (const Standard_Failure&) {
        return std::nullopt;
    }
}

bool continuesTangentially(const TopoDS_Edge& a, const TopoDS_Edge& b) {
    TopExp_Explorer va(a, TopAbs_VERTEX);
    for (; va.More(); va.Next()) {
        const TopoDS_Vertex& v = TopoDS::Vertex(va.Current());
        for (TopExp_Explorer vb(b, TopAbs_VERTEX); vb.More(); vb.Next()) {
            if (!v.IsSame(vb.Current())) continue;
            const auto ta = tangentAt(a, v), tb = tangentAt(b, TopoDS::Vertex(vb.Current()));
            if (!ta || !tb) continue;
            const double angle = ta->Angle(*tb);
            if (angle < kTangentTolerance || std::numbers::pi - angle < kTangentTolerance)
                return true;
        }
    }
    return false;
}

// The clicked edge first, then the edges of its tangent chain in the body's edge
// order. Candidates are the edges of the faces next to each edge of the chain.
std::vector<std::string> tangentChain(const GeometryObject& body, const std::string& prefix,
                                      const std::string& piece, const TopoDS_Edge& start) {
    const TopoDS_Shape& shape = body.shape.shape();
    TopTools_IndexedDataMapOfShapeListOfShape edgeFaces;
    TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, edgeFaces);
    TopTools_IndexedMapOfShape chain;
    chain.Add(start);
    for (int i = 1; i <= chain.Extent(); ++i) {
        const TopoDS_Edge current = TopoDS::Edge(chain(i));
        const int row = edgeFaces.FindIndex(current);
        if (row == 0) continue;
        for (const TopoDS_Shape& face : edgeFaces(row))
            for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
                const TopoDS_Edge& next = TopoDS::Edge(e.Current());
                if (chain.Contains(next) || BRep_Tool::Degenerated(next)) continue;
                if (continuesTangentially(current, next)) chain.Add(next);
            }
    }
    std::vector<std::string> out{prefix + piece};
    for (const auto& [edge, name] : body.shape.names(TopAbs_EDGE))
        if (!edge.IsSame(start) && chain.Contains(edge) && !name.empty())
            out.push_back(prefix + name);
    return out;
}

} // namespace

std::vector<std::string> expandReference(const Document& document, const std::string& reference) {
    const auto slash = reference.find('/');
    if (slash == std::string::npos) return {reference};
    const std::string_view objectName = trimmed(std::string_view(reference).substr(0, slash));
    const std::string piece(trimmed(std::string_view(reference).substr(slash + 1)));
    const std::string prefix = reference.substr(0, slash + 1);
    DocumentObject* object = document.findByName(objectName);

    if (const auto* sketch = dynamic_cast<const SketchObject*>(object)) {
        const std::optional<SketchRef> ref = parseReference(piece);
        if (!ref || !ref->part.empty()) return {reference};
        const SketchEntity* entity = sketch->findEntity(ref->entity);
        if (!entity || (entity->kind() != EntityKind::Line && entity->kind() != EntityKind::Arc))
            return {reference};
        return sketchChain(*sketch, prefix, *entity);
    }
    if (const auto* body = dynamic_cast<const GeometryObject*>(object);
        body && !body->shape.isNull()) {
        const std::optional<TopoDS_Shape> element = body->shape.findByName(piece);
        if (!element || element->ShapeType() != TopAbs_EDGE) return {reference};
        return tangentChain(*body, prefix, piece, TopoDS::Edge(*element));
    }
    return {reference};
}

} // namespace cad::ui
