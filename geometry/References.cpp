// Reference resolution: origin names, objects, body elements by final name, sketch
// curves, points and regions, and the element forms of the query tools.
#include "geometry/References.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/OriginPlanes.h"
#include "core/TextCase.h"
#include "geometry/SketchRegions.h"
#include "geometry/planes/PlaneObject.h"
#include "sketch/SketchCurves.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchReference.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <GeomAPI.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Pln.hxx>

#include <algorithm>

namespace cad::geometry {

namespace {

std::optional<ResolvedReference> originReference(std::string_view name) {
    if (std::optional<OriginPlane> plane = parseOriginPlane(name)) {
        PlaneFrame f = originPlaneFrame(*plane);
        ResolvedReference r;
        r.plane = gp_Ax3(gp_Pnt(f.origin[0], f.origin[1], f.origin[2]),
                         gp_Dir(f.normal[0], f.normal[1], f.normal[2]),
                         gp_Dir(f.xDirection[0], f.xDirection[1], f.xDirection[2]));
        r.point = r.plane->Location();
        return r;
    }
    struct Axis {
        const char* name;
        gp_Dir direction;
    };
    static const Axis axes[] = {
        {"X", gp_Dir(1, 0, 0)}, {"Y", gp_Dir(0, 1, 0)}, {"Z", gp_Dir(0, 0, 1)}};
    for (const Axis& a : axes) {
        if (equalsIgnoringCase(name, a.name) ||
            equalsIgnoringCase(name, std::string(a.name) + "Axis")) {
            ResolvedReference r;
            r.axis = gp_Ax1(gp_Pnt(0, 0, 0), a.direction);
            return r;
        }
    }
    if (equalsIgnoringCase(name, "Origin")) {
        ResolvedReference r;
        r.point = gp_Pnt(0, 0, 0);
        r.shape = BRepBuilderAPI_MakeVertex(*r.point).Vertex();
        return r;
    }
    return std::nullopt;
}

// Plane, axis or point of a face, edge or vertex, where it has one.
ResolvedReference describe(const TopoDS_Shape& shape) {
    ResolvedReference r;
    r.shape = shape;
    if (shape.IsNull()) return r;
    switch (shape.ShapeType()) {
    case TopAbs_FACE: {
        BRepAdaptor_Surface surface(TopoDS::Face(shape));
        if (surface.GetType() == GeomAbs_Plane) {
            // The outward normal: the plane's own normal, turned for a left-handed
            // placement and again for a reversed face.
            gp_Ax3 ax = surface.Plane().Position();
            if (!ax.Direct()) ax.ZReverse();
            if (shape.Orientation() == TopAbs_REVERSED) ax.ZReverse();
            r.plane = ax;
            r.point = ax.Location();
        } else if (surface.GetType() == GeomAbs_Cylinder) {
            r.axis = surface.Cylinder().Axis();
        } else if (surface.GetType() == GeomAbs_Cone) {
            r.axis = surface.Cone().Axis();
        } else if (surface.GetType() == GeomAbs_Sphere) {
            r.point = surface.Sphere().Location();
        }
        break;
    }
    case TopAbs_EDGE: {
        BRepAdaptor_Curve curve(TopoDS::Edge(shape));
        if (curve.GetType() == GeomAbs_Line) {
            r.axis = gp_Ax1(curve.Value(curve.FirstParameter()), curve.Line().Direction());
        } else if (curve.GetType() == GeomAbs_Circle) {
            r.axis = curve.Circle().Axis();
            r.point = curve.Circle().Location();
        }
        break;
    }
    case TopAbs_VERTEX:
        r.point = BRep_Tool::Pnt(TopoDS::Vertex(shape));
        break;
    default:
        break;
    }
    return r;
}

} // namespace

Result<const NamedShape*> referencedBodyShape(const Document& document, const GeometryObject& body,
                                              std::string_view text,
                                              const ReferenceContext& context) {
    const NamedShape* shape = nullptr;
    if (!context.featureId.empty() && context.bodyId == body.id) {
        if (std::find(body.features.begin(), body.features.end(), context.featureId) ==
            body.features.end())
            return fail("'" + std::string(text) + "': " + body.id + " has no feature " +
                        context.featureId + ".");
        shape = document.shapeBefore(context.featureId);
        if (!shape)
            return fail("'" + std::string(text) + "': " + body.id +
                        " hasn't been rebuilt that far yet.");
    } else {
        shape = document.shapeInProgress(body.id);
        if (!shape) shape = &body.shape;
    }
    if (shape->isNull()) return fail(body.id + " is empty.");
    return shape;
}

namespace {

TopoDS_Edge edgeOnSketch(const SketchObject& sketch, const Handle(Geom2d_Curve) & curve) {
    return BRepBuilderAPI_MakeEdge(GeomAPI::To3d(curve, gp_Pln(sketchPlane(sketch)))).Edge();
}

gp_Pnt modelPoint(const SketchObject& sketch, Point2 p) {
    Vec3 v = sketch.toModel(p);
    return gp_Pnt(v[0], v[1], v[2]);
}

Result<ResolvedReference> resolveInSketch(const SketchObject& sketch, std::string_view text,
                                          std::string_view rest) {
    if (rest.substr(0, 7) == "Region(") {
        Result<Profile> regions =
            buildSketchRegions(sketchPlane(sketch), sketchEdges(sketch), true);
        std::optional<Profile> region;
        if (regions) region = findRegion(*regions, rest);
        if (!region) return fail(sketch.id + " has no region bounded by those curves now.");
        ResolvedReference r = describe(region->faces.front());
        return r;
    }
    std::optional<SketchRef> ref = parseReference(rest);
    if (!ref) return fail("'" + std::string(text) + "': not a sketch reference.");
    Result<ResolvedRef> resolved = resolveReference(*ref, sketch.entities);
    if (!resolved) return fail(sketch.id + " has no " + std::string(rest));
    const gp_Dir normal(sketch.normal[0], sketch.normal[1], sketch.normal[2]);

    ResolvedReference r;
    switch (resolved->kind) {
    case ResolvedRef::Point: {
        r.point = modelPoint(sketch, pointAt(*resolved, sketch.entities));
        r.shape = BRepBuilderAPI_MakeVertex(*r.point).Vertex();
        return r;
    }
    case ResolvedRef::Line: {
        auto [a, b] = lineAt(*resolved, sketch.entities);
        gp_Pnt pa = modelPoint(sketch, a), pb = modelPoint(sketch, b);
        if (pa.Distance(pb) <= 1e-7) return fail("'" + std::string(text) + "' has no curve.");
        r.axis = gp_Ax1(pa, gp_Dir(gp_Vec(pa, pb)));
        if (resolved->entity >= 0) r.shape = BRepBuilderAPI_MakeEdge(pa, pb).Edge();
        return r;
    }
    case ResolvedRef::Circle: {
        auto [centre, radius] = circleAt(*resolved, sketch.entities);
        r.point = modelPoint(sketch, centre);
        r.axis = gp_Ax1(*r.point, normal);
        break;
    }
    case ResolvedRef::Entity:
        break;
    }
    // A whole entity: its curves as edges in model space.
    const SketchEntity& entity = sketch.entities[static_cast<std::size_t>(resolved->entity)];
    std::vector<SketchCurve> curves = entityCurves(entity);
    if (curves.empty()) return fail("'" + std::string(text) + "' has no curve.");
    if (curves.size() == 1) {
        r.shape = edgeOnSketch(sketch, curves.front().curve);
        return r;
    }
    TopoDS_Compound all;
    BRep_Builder builder;
    builder.MakeCompound(all);
    for (const SketchCurve& c : curves) builder.Add(all, edgeOnSketch(sketch, c.curve));
    r.shape = all;
    return r;
}

} // namespace

std::string objectPart(std::string_view reference) {
    std::string_view text = trimmed(reference);
    std::size_t slash = text.find('/');
    std::string_view head = trimmed(text.substr(0, slash));
    if (slash == std::string_view::npos && originReference(head)) return {};
    return std::string(head);
}

std::vector<std::string> referencedObjects(const std::vector<std::string>& references) {
    std::vector<std::string> ids;
    for (const std::string& reference : references) {
        std::string object = objectPart(reference);
        if (!object.empty() && std::find(ids.begin(), ids.end(), object) == ids.end())
            ids.push_back(std::move(object));
    }
    return ids;
}

std::vector<std::string> splitReferenceList(std::string_view text) { return splitList(text); }

Result<ResolvedReference> resolveReference(const Document& document, std::string_view text,
                                           const ReferenceContext& context) {
    text = trimmed(text);
    if (text.empty()) return fail("An empty reference.");
    try {
        std::size_t slash = text.find('/');
        if (slash == std::string_view::npos) {
            if (std::optional<ResolvedReference> origin = originReference(text)) return *origin;
            const DocumentObject* object = document.findByName(text);
            if (!object) return fail(document.lookupError(text));
            if (auto* body = dynamic_cast<const GeometryObject*>(object)) {
                Result<const NamedShape*> shape =
                    referencedBodyShape(document, *body, text, context);
                if (!shape) return Error(shape);
                ResolvedReference r;
                r.shape = (*shape)->shape();
                return r;
            }
            if (auto* sketch = dynamic_cast<const SketchObject*>(object)) {
                ResolvedReference r;
                r.plane = sketchPlane(*sketch);
                r.point = r.plane->Location();
                return r;
            }
            if (auto* plane = dynamic_cast<const PlaneObject*>(object)) {
                // A plane whose reference has gone keeps its last placement.
                if (!plane->placed) return fail(plane->id + " has no placement: " + plane->error);
                ResolvedReference r;
                r.plane = plane->placement;
                r.point = plane->placement.Location();
                return r;
            }
            return fail("'" + std::string(text) + "' isn't geometry that can be referenced.");
        }

        std::string_view head = trimmed(text.substr(0, slash));
        std::string_view rest = trimmed(text.substr(slash + 1));
        const DocumentObject* object = document.findByName(head);
        if (!object) return fail(document.lookupError(head));
        if (auto* sketch = dynamic_cast<const SketchObject*>(object))
            return resolveInSketch(*sketch, text, rest);
        if (auto* body = dynamic_cast<const GeometryObject*>(object)) {
            Result<const NamedShape*> shape = referencedBodyShape(document, *body, text, context);
            if (!shape) return Error(shape);
            std::optional<TopoDS_Shape> element = (*shape)->findByName(rest);
            if (!element)
                return fail("'" + std::string(text) + "': " + body->id +
                            " has no element with that name now.");
            return describe(*element);
        }
        return fail("'" + std::string(text) + "' isn't geometry that can be referenced.");
    } catch (const Standard_Failure&) {
        return fail("'" + std::string(text) + "' isn't geometry that can be referenced.");
    }
}

Result<TopoDS_Shape> resolveElement(const Document& document, std::string_view text) {
    text = trimmed(text);
    const std::string expected = "'" + std::string(text) +
                                 "': expected Body1, Body1/<name from get_body>, or Body1.faceN "
                                 "/ edgeN / vertexN.";
    auto findBody = [&](std::string_view name) -> Result<const GeometryObject*> {
        auto* body = document.findAs<GeometryObject>(name);
        if (!body) return fail("No body named '" + std::string(name) + "'.");
        if (body->shape.isNull()) return fail(body->id + " is empty.");
        return body;
    };

    std::size_t slash = text.find('/');
    if (slash != std::string_view::npos) {
        Result<const GeometryObject*> body = findBody(trimmed(text.substr(0, slash)));
        if (!body) return Error(body);
        std::optional<TopoDS_Shape> element =
            (*body)->shape.findByName(trimmed(text.substr(slash + 1)));
        if (!element)
            return fail(std::string(text) + " has no element with that name now (see get_body).");
        return *element;
    }

    std::size_t dot = text.rfind('.');
    if (dot != std::string_view::npos) {
        std::string_view part = text.substr(dot + 1);
        struct Kind {
            const char* word;
            TopAbs_ShapeEnum type;
        };
        static const Kind kinds[] = {
            {"face", TopAbs_FACE}, {"edge", TopAbs_EDGE}, {"vertex", TopAbs_VERTEX}};
        for (const Kind& k : kinds) {
            std::string_view word = k.word;
            if (part.size() <= word.size() || part.substr(0, word.size()) != word) continue;
            std::string_view digits = part.substr(word.size());
            if (!std::all_of(digits.begin(), digits.end(),
                             [](char c) { return c >= '0' && c <= '9'; }))
                continue;
            if (digits.size() > 9) return fail(expected);
            const int n = std::stoi(std::string(digits));
            Result<const GeometryObject*> body = findBody(text.substr(0, dot));
            if (!body) return Error(body);
            std::optional<TopoDS_Shape> element = (*body)->shape.elementByIndex(k.type, n);
            if (!element)
                return fail(std::string(text) + ": " + (*body)->id + " has no " + k.word + " " +
                            std::to_string(n) + " (see get_body).");
            return *element;
        }
    }

    if (document.findAs<GeometryObject>(text)) {
        Result<const GeometryObject*> body = findBody(text);
        if (!body) return Error(body);
        return (*body)->shape.shape();
    }
    if (text.find('.') == std::string_view::npos && !document.findByName(text))
        return fail("No body named '" + std::string(text) + "'.");
    return fail(expected);
}

} // namespace cad::geometry
