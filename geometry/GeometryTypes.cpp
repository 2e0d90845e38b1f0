// Bodies write their feature list and, when they have one, their base shape as
// BRep text in "shapes/"; extrudes write their values and the expressions that
// drive them. A read base shape is named by direction again, as it was made.
#include "geometry/GeometryTypes.h"

#include "core/GeometryObject.h"
#include "core/ObjectTypes.h"
#include "geometry/ExtrudeFeature.h"
#include "geometry/Naming.h"

#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <Standard_Failure.hxx>

#include <cmath>
#include <sstream>
#include <tuple>

namespace cad {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

void writeBody(const GeometryObject& body, ordered_json& r, SideFiles& sideFiles) {
    if (body.hasBaseShape()) {
        const std::string entry = "shapes/" + fileSafeId(body.id) + ".brep";
        std::ostringstream text;
        BRepTools::Write(body.baseShape.shape(), text, Standard_False, Standard_False,
                         TopTools_FormatVersion_CURRENT);
        sideFiles[entry] = text.str();
        r["baseShape"] = entry;
    }
    r["features"] = body.features;
}

Result<void> readBody(GeometryObject& body, const json& r, const ArchiveReader& archive) {
    if (auto features = r.find("features"); features != r.end()) {
        if (!features->is_array()) return fail("feature names must be strings");
        for (const json& f : *features) {
            if (!f.is_string()) return fail("feature names must be strings");
            body.features.push_back(f.get<std::string>());
        }
    }
    auto base = r.find("baseShape");
    if (base == r.end()) return {};
    if (!base->is_string()) return fail("unreadable shape");
    const std::string entry = base->get<std::string>();
    Result<Bytes> bytes = archive.read(entry);
    if (!bytes) return fail("unreadable shape " + entry);
    try {
        TopoDS_Shape shape;
        std::istringstream text(*bytes);
        BRepTools::Read(shape, text, BRep_Builder());
        if (shape.IsNull()) return fail("unreadable shape " + entry);
        body.baseShape = geometry::nameFacesByDirection(shape, body.id);
    } catch (const Standard_Failure&) {
        return fail("unreadable shape " + entry);
    }
    body.shape = body.baseShape;
    return {};
}

void writeExtrude(const ExtrudeFeature& f, ordered_json& r) {
    r["sketch"] = f.profile;
    r["distance"] = f.distance;
    r["operation"] = std::string(extrudeOperationName(f.operation));
    r["thickness"] = f.thickness;
    r["thin_side"] = f.thinSide;
    r["extent"] = f.extent;
    r["distance2"] = f.distance2;
    if (!f.expressions.empty()) {
        ordered_json expressions = ordered_json::object();
        for (const auto& [key, expression] : f.expressions)
            expressions[key] = units::expressionToJson(expression);
        r["expressions"] = expressions;
    }
}

Result<void> readNumber(const json& r, const char* key, double& out, bool required) {
    auto it = r.find(key);
    if (it == r.end()) {
        if (required) return fail(std::string("\"") + key + "\" must be a number");
        return {};
    }
    if (!it->is_number() || !std::isfinite(it->get<double>()))
        return fail(std::string("\"") + key + "\" must be a number");
    out = it->get<double>();
    return {};
}

Result<void> readWord(const json& r, const char* key, std::string& out,
                      std::initializer_list<const char*> allowed) {
    auto it = r.find(key);
    if (it == r.end()) return {};
    if (it->is_string())
        for (const char* word : allowed)
            if (it->get<std::string>() == word) {
                out = word;
                return {};
            }
    std::string list;
    for (const char* word : allowed)
        list += std::string(list.empty() ? "" : ", ") + "\"" + word + "\"";
    return fail(std::string("\"") + key + "\" must be one of " + list);
}

Result<void> readExtrude(ExtrudeFeature& f, const json& r) {
    auto sketch = r.find("sketch");
    if (sketch == r.end() || !sketch->is_string()) return fail("\"sketch\" must be text");
    f.profile = sketch->get<std::string>();
    for (auto [key, out, required] :
         {std::tuple{"distance", &f.distance, true}, std::tuple{"thickness", &f.thickness, false},
          std::tuple{"distance2", &f.distance2, false}})
        if (Result<void> ok = readNumber(r, key, *out, required); !ok) return ok;
    std::string operation = std::string(extrudeOperationName(f.operation));
    if (Result<void> ok = readWord(r, "operation", operation, {"new_body", "join", "cut"}); !ok)
        return ok;
    f.operation = *parseExtrudeOperation(operation);
    if (Result<void> ok = readWord(r, "thin_side", f.thinSide, {"inside", "outside", "center"});
        !ok)
        return ok;
    if (Result<void> ok = readWord(r, "extent", f.extent, {"one_side", "two_sides", "symmetric"});
        !ok)
        return ok;
    if (auto expressions = r.find("expressions"); expressions != r.end()) {
        if (!expressions->is_object()) return fail("\"expressions\" must be an object");
        for (const auto& [key, record] : expressions->items()) {
            std::optional<units::Expression> expression = units::expressionFromJson(record);
            if (!expression) return fail("\"expressions\" must hold expression records");
            f.expressions[key] = *expression;
        }
    }
    return {};
}

} // namespace

void registerGeometryTypes(ObjectTypes& types) {
    types.add({"Body", "body", [] { return std::make_unique<GeometryObject>(); },
               [](const DocumentObject& o, ordered_json& r, SideFiles& sideFiles) {
                   writeBody(static_cast<const GeometryObject&>(o), r, sideFiles);
               },
               [](DocumentObject& o, const json& r, const ArchiveReader& archive) {
                   return readBody(static_cast<GeometryObject&>(o), r, archive);
               }});
    types.add({"Extrude", "extrude", [] { return std::make_unique<ExtrudeFeature>(); },
               [](const DocumentObject& o, ordered_json& r, SideFiles&) {
                   writeExtrude(static_cast<const ExtrudeFeature&>(o), r);
               },
               [](DocumentObject& o, const json& r, const ArchiveReader&) {
                   return readExtrude(static_cast<ExtrudeFeature&>(o), r);
               }});
}

} // namespace cad
