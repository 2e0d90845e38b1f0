// Resolving projection references: bodies' faces, edges and vertices by their
// persistent names, other sketches' curves and points, and the refusals (other
// kinds of reference, the sketch's own geometry, a dependency on itself).
#include "geometry/projection/ProjectionSources.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/OriginPlanes.h"
#include "core/TextCase.h"
#include "geometry/References.h"
#include "sketch/SketchObject.h"

#include <BRep_Tool.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>

#include <functional>
#include <set>

namespace cad::geometry {

namespace {

// Whether `object` is built from the sketch, directly or through other objects.
bool builtFrom(const Document& document, const DocumentObject& object,
               const std::string& sketchId) {
    std::set<std::string> seen;
    std::function<bool(const DocumentObject&)> reaches = [&](const DocumentObject& o) {
        for (const std::string& id : document.dependenciesOf(o)) {
            if (id == sketchId) return true;
            if (!seen.insert(id).second) continue;
            if (const DocumentObject* next = document.find(id); next && reaches(*next)) return true;
        }
        return false;
    };
    return reaches(object);
}

// The face's edges (each once, degenerate ones left out), following their own
// names where the body has them, else the face.
std::vector<SourcePiece> faceEdges(const TopoDS_Shape& face, const NamedShape* named,
                                   const std::string& prefix, const std::string& faceSource) {
    std::vector<SourcePiece> pieces;
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(face, TopAbs_EDGE, edges);
    for (int i = 1; i <= edges.Extent(); ++i) {
        const TopoDS_Edge& edge = TopoDS::Edge(edges(i));
        if (BRep_Tool::Degenerated(edge)) continue;
        const std::string name = named ? named->nameOf(edge) : std::string();
        pieces.push_back({name.empty() ? faceSource : prefix + name, edge});
    }
    return pieces;
}

// A resolved shape broken into what can be projected; empty when it is none of
// edge, vertex, face or a compound of edges.
std::optional<SourcePieces> piecesOfShape(const TopoDS_Shape& shape, const NamedShape* named,
                                          const std::string& prefix, const std::string& source) {
    SourcePieces out;
    switch (shape.ShapeType()) {
    case TopAbs_VERTEX:
    case TopAbs_EDGE:
        out.single = true;
        out.pieces.push_back({source, shape});
        return out;
    case TopAbs_FACE:
        out.pieces = faceEdges(shape, named, prefix, source);
        return out;
    case TopAbs_COMPOUND:
    case TopAbs_WIRE: {
        // A sketch curve of several pieces (a rectangle, a slot): all follow it.
        TopTools_IndexedMapOfShape edges;
        TopExp::MapShapes(shape, TopAbs_EDGE, edges);
        for (int i = 1; i <= edges.Extent(); ++i) out.pieces.push_back({source, edges(i)});
        return out;
    }
    default:
        return std::nullopt;
    }
}

} // namespace

Result<SourcePieces> sourcePieces(const Document& document, const SketchObject& sketch,
                                  std::string_view reference) {
    const std::string text(trimmed(reference));
    const std::string pick =
        "'" + text + "': pick edges, faces, points or sketch curves to project.";
    SourcePieces gone;
    gone.found = false;

    const std::size_t slash = text.find('/');
    const std::string head(trimmed(std::string_view(text).substr(0, slash)));
    const DocumentObject* object = document.findByName(head);
    if (slash == std::string::npos) {
        // A whole object or an origin name is not something to project.
        if (object || objectPart(text).empty()) return fail(pick);
        return gone;
    }
    if (!object) return gone;
    const auto* body = dynamic_cast<const GeometryObject*>(object);
    const auto* other = dynamic_cast<const SketchObject*>(object);
    if (!body && !other) return fail(pick);
    if (object == &sketch) return fail("A sketch can't project its own geometry.");
    if (builtFrom(document, *object, sketch.id))
        return fail(object->id + " is built from " + sketch.id +
                    "; projecting it would make the sketch depend on itself.");

    const std::string rest(trimmed(std::string_view(text).substr(slash + 1)));
    const std::string prefix = object->id + "/";
    const std::string source = prefix + rest;
    try {
        if (body) {
            Result<const NamedShape*> shape = referencedBodyShape(document, *body, source, {});
            if (!shape) return gone;
            std::optional<TopoDS_Shape> element = (*shape)->findByName(rest);
            if (!element || element->IsNull()) return gone;
            std::optional<SourcePieces> pieces = piecesOfShape(*element, *shape, prefix, source);
            if (!pieces) return fail(pick);
            return *pieces;
        }
        Result<ResolvedReference> resolved = resolveReference(document, source);
        if (!resolved) return gone;
        if (resolved->shape.IsNull()) return fail(pick); // an axis of the other sketch
        std::optional<SourcePieces> pieces =
            piecesOfShape(resolved->shape, nullptr, prefix, source);
        if (!pieces) return fail(pick);
        return *pieces;
    } catch (const Standard_Failure&) {
        return fail("'" + text + "' can't be projected.");
    }
}

} // namespace cad::geometry
