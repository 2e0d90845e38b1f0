// Body summaries, get_body and measure: OpenCASCADE's mass properties, bounding
// boxes and minimum distances over the shapes that persistent references name.
#include "mcp/BodyTools.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/References.h"
#include "geometry/materials/BodyMaterial.h"
#include "mcp/McpHost.h"
#include "mcp/QueryTools.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepBndLib.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepGProp.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <ElCLib.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <gp_Lin.hxx>

#include <cmath>
#include <deque>
#include <numbers>
#include <optional>

namespace cad::mcp {

namespace {

using ordered_json = nlohmann::ordered_json;

ordered_json triple(const gp_XYZ& v) {
    return ordered_json::array({roundMeasure(v.X()), roundMeasure(v.Y()), roundMeasure(v.Z())});
}

ordered_json pointObject(const gp_Pnt& p) {
    ordered_json o = ordered_json::object();
    o["x"] = roundMeasure(p.X());
    o["y"] = roundMeasure(p.Y());
    o["z"] = roundMeasure(p.Z());
    return o;
}

bool hasSolid(const TopoDS_Shape& shape) {
    return !shape.IsNull() && TopExp_Explorer(shape, TopAbs_SOLID).More();
}

// What a face, edge or vertex is and measures, plus the direction and centre other
// shapes are compared with.
struct Described {
    ordered_json json = ordered_json::object();
    std::optional<gp_Dir> planeNormal;
    std::optional<gp_Dir> lineDirection;
    std::optional<gp_Ax1> axis;
    std::optional<gp_Pnt> center;
};

const char* surfaceKind(GeomAbs_SurfaceType type) {
    switch (type) {
    case GeomAbs_Plane:
        return "plane";
    case GeomAbs_Cylinder:
        return "cylinder";
    case GeomAbs_Cone:
        return "cone";
    case GeomAbs_Sphere:
        return "sphere";
    case GeomAbs_Torus:
        return "torus";
    case GeomAbs_SurfaceOfRevolution:
        return "revolved";
    case GeomAbs_SurfaceOfExtrusion:
        return "extruded";
    case GeomAbs_BezierSurface:
    case GeomAbs_BSplineSurface:
        return "freeform";
    default:
        return "other";
    }
}

const char* curveKind(GeomAbs_CurveType type) {
    switch (type) {
    case GeomAbs_Line:
        return "line";
    case GeomAbs_Circle:
        return "circle";
    case GeomAbs_Ellipse:
        return "ellipse";
    case GeomAbs_BezierCurve:
    case GeomAbs_BSplineCurve:
        return "spline";
    default:
        return "other";
    }
}

void addRound(ordered_json& json, gp_Ax1 axis, double radius, bool whole, gp_Pnt center) {
    json["radius_mm"] = roundMeasure(radius);
    json["diameter_mm"] = roundMeasure(2 * radius);
    json["whole_circle"] = whole;
    json["center"] = triple(center.XYZ());
    json["axis"] = triple(axis.Direction().XYZ());
}

Described describeFace(const TopoDS_Face& face) {
    Described d;
    BRepAdaptor_Surface surface(face);
    GProp_GProps props;
    BRepGProp::SurfaceProperties(face, props);
    d.json["kind"] = surfaceKind(surface.GetType());
    d.json["area_mm2"] = roundMeasure(props.Mass());
    const gp_Pnt centroid = props.CentreOfMass();
    const bool whole =
        surface.LastUParameter() - surface.FirstUParameter() >= 2 * std::numbers::pi - 1e-9;
    switch (surface.GetType()) {
    case GeomAbs_Plane: {
        gp_Dir normal = surface.Plane().Axis().Direction();
        if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
        d.planeNormal = normal;
        d.json["normal"] = triple(normal.XYZ());
        d.json["center"] = triple(centroid.XYZ());
        break;
    }
    case GeomAbs_Cylinder: {
        gp_Ax1 axis = surface.Cylinder().Axis();
        gp_Pnt center = ElCLib::Value(ElCLib::Parameter(gp_Lin(axis), centroid), gp_Lin(axis));
        d.axis = axis;
        d.center = center;
        addRound(d.json, axis, surface.Cylinder().Radius(), whole, center);
        break;
    }
    case GeomAbs_Cone: {
        gp_Ax1 axis = surface.Cone().Axis();
        d.axis = axis;
        d.json["axis"] = triple(axis.Direction().XYZ());
        d.json["apex"] = triple(surface.Cone().Apex().XYZ());
        d.json["half_angle_degrees"] =
            roundMeasure(surface.Cone().SemiAngle() * 180 / std::numbers::pi);
        break;
    }
    case GeomAbs_Sphere:
        d.center = surface.Sphere().Location();
        d.json["center"] = triple(surface.Sphere().Location().XYZ());
        d.json["radius_mm"] = roundMeasure(surface.Sphere().Radius());
        break;
    case GeomAbs_Torus:
        d.axis = surface.Torus().Axis();
        d.json["axis"] = triple(surface.Torus().Axis().Direction().XYZ());
        d.json["center"] = triple(surface.Torus().Location().XYZ());
        d.json["major_radius_mm"] = roundMeasure(surface.Torus().MajorRadius());
        d.json["minor_radius_mm"] = roundMeasure(surface.Torus().MinorRadius());
        break;
    default:
        d.json["center"] = triple(centroid.XYZ());
    }
    return d;
}

Described describeEdge(const TopoDS_Edge& edge) {
    Described d;
    GProp_GProps props;
    BRepGProp::LinearProperties(edge, props);
    if (BRep_Tool::Degenerated(edge)) {
        d.json["kind"] = "degenerate";
        return d;
    }
    BRepAdaptor_Curve curve(edge);
    d.json["kind"] = curveKind(curve.GetType());
    d.json["length_mm"] = roundMeasure(props.Mass());
    if (curve.GetType() == GeomAbs_Line) {
        gp_Pnt a = curve.Value(curve.FirstParameter()), b = curve.Value(curve.LastParameter());
        gp_Dir direction = curve.Line().Direction();
        if (edge.Orientation() == TopAbs_REVERSED) {
            std::swap(a, b);
            direction.Reverse();
        }
        d.lineDirection = direction;
        d.json["start"] = triple(a.XYZ());
        d.json["end"] = triple(b.XYZ());
        d.json["direction"] = triple(direction.XYZ());
    } else if (curve.GetType() == GeomAbs_Circle) {
        const gp_Circ circle = curve.Circle();
        d.axis = circle.Axis();
        d.center = circle.Location();
        addRound(d.json, circle.Axis(), circle.Radius(),
                 curve.LastParameter() - curve.FirstParameter() >= 2 * std::numbers::pi - 1e-9,
                 circle.Location());
    }
    return d;
}

Described describe(const TopoDS_Shape& shape) {
    switch (shape.ShapeType()) {
    case TopAbs_FACE:
        return describeFace(TopoDS::Face(shape));
    case TopAbs_EDGE:
        return describeEdge(TopoDS::Edge(shape));
    case TopAbs_VERTEX: {
        Described d;
        gp_Pnt p = BRep_Tool::Pnt(TopoDS::Vertex(shape));
        d.center = p;
        d.json["kind"] = "vertex";
        d.json["position"] = triple(p.XYZ());
        return d;
    }
    default: {
        Described d;
        GProp_GProps volume, area;
        BRepGProp::VolumeProperties(shape, volume);
        BRepGProp::SurfaceProperties(shape, area);
        d.json["kind"] = hasSolid(shape) ? "body" : "shape";
        d.json["volume_mm3"] = roundMeasure(volume.Mass());
        d.json["surface_area_mm2"] = roundMeasure(area.Mass());
        return d;
    }
    }
}

// Acute angle between two undirected directions, in degrees.
double acuteAngle(const gp_Dir& a, const gp_Dir& b) {
    double angle = a.Angle(b) * 180 / std::numbers::pi;
    return angle > 90 ? 180 - angle : angle;
}

std::optional<double> angleBetween(const Described& a, const Described& b) {
    auto lineLike = [](const Described& d) -> std::optional<gp_Dir> {
        if (d.lineDirection) return d.lineDirection;
        if (d.axis) return d.axis->Direction();
        return std::nullopt;
    };
    if (a.planeNormal && b.planeNormal) return acuteAngle(*a.planeNormal, *b.planeNormal);
    std::optional<gp_Dir> la = lineLike(a), lb = lineLike(b);
    if (la && lb) return acuteAngle(*la, *lb);
    if (a.planeNormal && lb) return 90 - acuteAngle(*a.planeNormal, *lb);
    if (la && b.planeNormal) return 90 - acuteAngle(*la, *b.planeNormal);
    return std::nullopt;
}

std::optional<double> centerDistance(const Described& a, const Described& b) {
    if (a.axis && b.axis && a.axis->IsParallel(*b.axis, 1e-9))
        return gp_Lin(*a.axis).Distance(b.axis->Location());
    if (a.center && b.center &&
        (a.axis || b.axis ||
         (a.json.value("kind", "") == "sphere" && b.json.value("kind", "") == "sphere")))
        return a.center->Distance(*b.center);
    return std::nullopt;
}

ordered_json measureTwo(const TopoDS_Shape& a, const TopoDS_Shape& b) {
    BRepExtrema_DistShapeShape distance(a, b);
    if (!distance.IsDone() || distance.NbSolution() < 1) return nullptr;
    const gp_Pnt p = distance.PointOnShape1(1), q = distance.PointOnShape2(1);
    ordered_json out = ordered_json::object();
    out["distance_mm"] = roundMeasure(distance.Value());
    out["closest_points"] = ordered_json::array({pointObject(p), pointObject(q)});
    out["delta_mm"] = pointObject(gp_Pnt(q.XYZ() - p.XYZ()));
    Described da = describe(a), db = describe(b);
    if (std::optional<double> angle = angleBetween(da, db))
        out["angle_degrees"] = roundMeasure(*angle);
    if (std::optional<double> centers = centerDistance(da, db))
        out["center_distance_mm"] = roundMeasure(*centers);
    return out;
}

// One item of get_body's face, edge or vertex list.
ordered_json elementItem(const GeometryObject& body, const TopoDS_Shape& element,
                         const std::string& name, const char* word, int index) {
    ordered_json item = ordered_json::object();
    item["ref"] =
        name.empty() ? body.id + "." + word + std::to_string(index) : body.id + "/" + name;
    Described d = describe(element);
    for (auto it = d.json.begin(); it != d.json.end(); ++it) item[it.key()] = it.value();
    if (element.ShapeType() == TopAbs_FACE && !name.empty()) {
        auto look = body.faceAppearances.find(name);
        if (look == body.faceAppearances.end())
            look = body.faceAppearances.find(body.id + "/" + name);
        if (look != body.faceAppearances.end()) item["appearance"] = look->second;
    }
    return item;
}

} // namespace

namespace {

struct ShapeMeasures {
    double volume = 0, area = 0;
    gp_Pnt centerOfMass, boundsMin, boundsMax;
    int faces = 0;
};

// Mass properties take most of get_document's time. Shapes never change once
// made (a rebuild makes new ones), so the last few measured are remembered;
// holding the shape keeps its identity from being reused.
const ShapeMeasures& measureShape(const TopoDS_Shape& shape) {
    struct Entry {
        TopoDS_Shape shape;
        ShapeMeasures measures;
    };
    constexpr std::size_t kRemembered = 64;
    thread_local std::deque<Entry> remembered;
    for (const Entry& e : remembered)
        if (e.shape.IsEqual(shape)) return e.measures;

    ShapeMeasures m;
    GProp_GProps volume, area;
    BRepGProp::VolumeProperties(shape, volume);
    BRepGProp::SurfaceProperties(shape, area);
    Bnd_Box box;
    BRepBndLib::AddOptimal(shape, box, false, false);
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(shape, TopAbs_FACE, faces);
    m.volume = volume.Mass();
    m.area = area.Mass();
    m.centerOfMass = volume.CentreOfMass();
    m.boundsMin = box.CornerMin();
    m.boundsMax = box.CornerMax();
    m.faces = faces.Extent();
    if (remembered.size() == kRemembered) remembered.pop_front();
    remembered.push_back({shape, m});
    return remembered.back().measures;
}

// The material keys of a summary: the material that applies, and with a listed one
// its density and the mass of `volume` (none for an empty body).
void addMaterialKeys(ordered_json& s, const Document& document, const GeometryObject& body,
                     const double* volume) {
    const std::string id = materialIdOf(document, body);
    if (id.empty()) return;
    const Material* material = findMaterial(id);
    s["material"] = material ? std::string(material->id) : id;
    if (!material) return;
    s["density_kg_m3"] = roundMeasure(material->densityKgM3);
    if (!volume) return;
    const double kilograms = massKilograms(material->densityKgM3, *volume);
    s["mass_kg"] = roundMeasure(kilograms);
    s["mass_lb"] = roundMeasure(kilograms / kKilogramsPerPound);
}

} // namespace

ordered_json bodySummary(const GeometryObject& body, const Document& document) {
    ordered_json s = ordered_json::object();
    const TopoDS_Shape& shape = body.shape.shape();
    const bool empty = !hasSolid(shape);
    s["empty"] = empty;
    try {
        if (!empty) {
            const ShapeMeasures& m = measureShape(shape);
            s["volume_mm3"] = roundMeasure(m.volume);
            s["surface_area_mm2"] = roundMeasure(m.area);
            s["bounds"] =
                ordered_json::array({triple(m.boundsMin.XYZ()), triple(m.boundsMax.XYZ())});
            s["faces"] = m.faces;
            addMaterialKeys(s, document, body, &m.volume);
            s["center_of_mass"] = triple(m.centerOfMass.XYZ());
        } else {
            addMaterialKeys(s, document, body, nullptr);
        }
    } catch (const Standard_Failure&) {
        s["error"] = "Couldn't measure " + body.id + ".";
    }
    s["appearance"] = body.appearance;
    return s;
}

ToolAnswer getBodyTool(McpHost& host, const ToolArguments& arguments) {
    if (Result<void> allowed = arguments.allow({"body"}); !allowed)
        return ToolAnswer::failure(allowed.error());
    Result<std::string> name = ArgReader(arguments.record()).string("body");
    if (!name) return ToolAnswer::failure(name.error());
    const auto* body = host.document().findAs<GeometryObject>(*name);
    if (!body) return ToolAnswer::failure("No body named '" + *name + "'.");

    ordered_json answer = ordered_json::object();
    answer["body"] = body->id;
    answer["label"] = body->label;
    answer["measured"] = bodySummary(*body, host.document());
    struct Kind {
        const char* key;
        const char* word;
        TopAbs_ShapeEnum type;
    };
    try {
        for (const Kind& kind :
             {Kind{"faces", "face", TopAbs_FACE}, Kind{"edges", "edge", TopAbs_EDGE},
              Kind{"vertices", "vertex", TopAbs_VERTEX}}) {
            ordered_json list = ordered_json::array();
            int index = 0;
            if (!body->shape.isNull())
                for (const auto& [element, elementName] : body->shape.names(kind.type))
                    list.push_back(elementItem(*body, element, elementName, kind.word, ++index));
            answer[kind.key] = std::move(list);
        }
    } catch (const Standard_Failure&) {
        return ToolAnswer::failure("Couldn't read the faces and edges of " + body->id + ".");
    }
    return ToolAnswer::success(toolJsonText(answer));
}

ToolAnswer measureTool(McpHost& host, const ToolArguments& arguments) {
    if (Result<void> allowed = arguments.allow({"a", "b"}); !allowed)
        return ToolAnswer::failure(allowed.error());
    ArgReader args(arguments.record());
    Result<std::string> a = args.string("a");
    if (!a) return ToolAnswer::failure(a.error());
    Result<std::string> b = args.string("b", "");
    if (!b) return ToolAnswer::failure(b.error());

    Result<TopoDS_Shape> first = geometry::resolveElement(host.document(), *a);
    if (!first) return ToolAnswer::failure(first.error());
    std::optional<TopoDS_Shape> second;
    if (!b->empty()) {
        Result<TopoDS_Shape> resolved = geometry::resolveElement(host.document(), *b);
        if (!resolved) return ToolAnswer::failure(resolved.error());
        second = *resolved;
    }
    if (!second) {
        try {
            return ToolAnswer::success(toolJsonText(describe(*first).json));
        } catch (const Standard_Failure&) {
            return ToolAnswer::failure("Couldn't measure " + *a + ".");
        }
    }
    try {
        ordered_json between = measureTwo(*first, *second);
        if (between.is_null()) return ToolAnswer::failure("Couldn't measure between those shapes.");
        return ToolAnswer::success(toolJsonText(between));
    } catch (const Standard_Failure&) {
        return ToolAnswer::failure("Couldn't measure between those shapes.");
    }
}

} // namespace cad::mcp
