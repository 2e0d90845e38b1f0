// Bodies write their feature list and, when they have one, their base shape as
// BRep text in "shapes/"; features write their values and the expressions that
// drive them. A read base shape is named by direction again, as it was made.
#include "geometry/GeometryTypes.h"

#include "core/GeometryObject.h"
#include "core/ObjectTypes.h"
#include "geometry/DressUpFeatures.h"
#include "geometry/ExtrudeFeature.h"
#include "geometry/Naming.h"
#include "geometry/planes/PlaneRecords.h"

#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <Standard_Failure.hxx>

#include <cmath>
#include <sstream>
#include <tuple>
#include <type_traits>

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

using Expressions = std::map<std::string, units::Expression>;

void writeExpressions(const Expressions& expressions, ordered_json& r) {
    if (expressions.empty()) return;
    ordered_json out = ordered_json::object();
    for (const auto& [key, expression] : expressions)
        out[key] = units::expressionToJson(expression);
    r["expressions"] = out;
}

Result<void> readExpressions(const json& r, Expressions& out) {
    auto expressions = r.find("expressions");
    if (expressions == r.end()) return {};
    if (!expressions->is_object()) return fail("\"expressions\" must be an object");
    for (const auto& [key, record] : expressions->items()) {
        std::optional<units::Expression> expression = units::expressionFromJson(record);
        if (!expression) return fail("\"expressions\" must hold expression records");
        out[key] = *expression;
    }
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
    writeExpressions(f.expressions, r);
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
    return readExpressions(r, f.expressions);
}

Result<void> readBool(const json& r, const char* key, bool& out) {
    auto it = r.find(key);
    if (it == r.end()) return {};
    if (!it->is_boolean()) return fail(std::string("\"") + key + "\" must be true or false");
    out = it->get<bool>();
    return {};
}

Result<void> readNames(const json& r, const char* key, std::vector<std::string>& out) {
    const std::string problem = std::string("\"") + key + "\" must be a list of names";
    auto it = r.find(key);
    if (it == r.end() || !it->is_array()) return fail(problem);
    for (const json& name : *it) {
        if (!name.is_string()) return fail(problem);
        out.push_back(name.get<std::string>());
    }
    return {};
}

// Fillets and chamfers: the edges, the one value and the tangent chain; shells the
// faces, the thickness and the direction.
template <typename Feature> void writeDressUp(const Feature& f, ordered_json& r) {
    if constexpr (std::is_same_v<Feature, ShellFeature>) {
        r["faces"] = f.faces;
        r["thickness"] = f.thickness;
        r["outward"] = f.outward;
    } else {
        r["edges"] = f.edges;
        r[std::string(f.valueKey())] = f.value();
        r["tangent_chain"] = f.tangentChain;
    }
    writeExpressions(f.expressions, r);
}

template <typename Feature> Result<void> readDressUp(Feature& f, const json& r) {
    double value = 0;
    const std::string key(f.valueKey());
    if (Result<void> ok = readNumber(r, key.c_str(), value, true); !ok) return ok;
    f.setValue(value);
    if constexpr (std::is_same_v<Feature, ShellFeature>) {
        if (Result<void> ok = readNames(r, "faces", f.faces); !ok) return ok;
        if (Result<void> ok = readBool(r, "outward", f.outward); !ok) return ok;
    } else {
        if (Result<void> ok = readNames(r, "edges", f.edges); !ok) return ok;
        if (Result<void> ok = readBool(r, "tangent_chain", f.tangentChain); !ok) return ok;
    }
    return readExpressions(r, f.expressions);
}

template <typename Feature> ObjectType dressUpType(const char* word, const char* noun) {
    return {word, noun, [] { return std::make_unique<Feature>(); },
            [](const DocumentObject& o, ordered_json& r, SideFiles&) {
                writeDressUp(static_cast<const Feature&>(o), r);
            },
            [](DocumentObject& o, const json& r, const ArchiveReader&) {
                return readDressUp(static_cast<Feature&>(o), r);
            }};
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
    types.add(dressUpType<FilletFeature>("Fillet", "fillet"));
    types.add(dressUpType<ChamferFeature>("Chamfer", "chamfer"));
    types.add(dressUpType<ShellFeature>("Shell", "shell"));
    registerPlaneTypes(types);
}

} // namespace cad
