// Writes and reads the "params" of Plane and Section records.
#include "geometry/planes/PlaneRecords.h"

#include "core/ObjectTypes.h"
#include "geometry/planes/PlaneObject.h"
#include "geometry/planes/SectionObject.h"

#include <cmath>
#include <tuple>

namespace cad {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

void writePlane(const PlaneObject& plane, ordered_json& record) {
    const PlaneDefinition& d = plane.definition;
    ordered_json params = ordered_json::object();
    params["kind"] = d.kind;
    params["references"] = d.references;
    params["distance"] = d.distance;
    params["angle"] = d.angle;
    params["position"] = d.position;
    params["flip"] = d.flip;
    params["size"] = d.size;
    record["params"] = params;
}

void writeSection(const SectionObject& section, ordered_json& record) {
    const SectionDefinition& d = section.definition;
    ordered_json params = ordered_json::object();
    params["references"] = d.references;
    params["distance"] = d.distance;
    params["tilt"] = d.tilt;
    params["turn"] = d.turn;
    params["flip"] = d.flip;
    record["params"] = params;
}

Result<const json*> paramsOf(const json& record) {
    auto params = record.find("params");
    if (params == record.end() || !params->is_object()) return fail("\"params\" must be an object");
    return &*params;
}

Result<void> readNumber(const json& params, const char* key, double& out) {
    auto it = params.find(key);
    if (it == params.end()) return {};
    if (!it->is_number() || !std::isfinite(it->get<double>()))
        return fail(std::string("params: \"") + key + "\" must be a number");
    out = it->get<double>();
    return {};
}

Result<void> readFlag(const json& params, bool& out) {
    auto it = params.find("flip");
    if (it == params.end()) return {};
    if (!it->is_boolean()) return fail("params: \"flip\" must be true or false");
    out = it->get<bool>();
    return {};
}

Result<void> readReferences(const json& params, std::vector<std::string>& out) {
    const char* problem = "params: \"references\" must be a list of references";
    auto it = params.find("references");
    if (it == params.end() || !it->is_array()) return fail(problem);
    for (const json& item : *it) {
        if (!item.is_string()) return fail(problem);
        out.push_back(item.get<std::string>());
    }
    return {};
}

Result<void> readPlane(PlaneObject& plane, const json& record) {
    Result<const json*> params = paramsOf(record);
    if (!params) return Error(params);
    PlaneDefinition& d = plane.definition;
    if (auto kind = (*params)->find("kind"); kind != (*params)->end()) {
        // Any word reads; one the application doesn't know fails the plane's compute.
        if (!kind->is_string()) return fail("params: \"kind\" must be text");
        d.kind = kind->get<std::string>();
    }
    if (Result<void> ok = readReferences(**params, d.references); !ok) return ok;
    for (auto [key, out] : {std::tuple{"distance", &d.distance}, std::tuple{"angle", &d.angle},
                            std::tuple{"position", &d.position}, std::tuple{"size", &d.size}})
        if (Result<void> ok = readNumber(**params, key, *out); !ok) return ok;
    return readFlag(**params, d.flip);
}

Result<void> readSection(SectionObject& section, const json& record) {
    Result<const json*> params = paramsOf(record);
    if (!params) return Error(params);
    SectionDefinition& d = section.definition;
    if (Result<void> ok = readReferences(**params, d.references); !ok) return ok;
    for (auto [key, out] : {std::tuple{"distance", &d.distance}, std::tuple{"tilt", &d.tilt},
                            std::tuple{"turn", &d.turn}})
        if (Result<void> ok = readNumber(**params, key, *out); !ok) return ok;
    return readFlag(**params, d.flip);
}

} // namespace

void registerPlaneTypes(ObjectTypes& types) {
    types.add({"Plane", "plane", [] { return std::make_unique<PlaneObject>(); },
               [](const DocumentObject& o, ordered_json& r, SideFiles&) {
                   writePlane(static_cast<const PlaneObject&>(o), r);
               },
               [](DocumentObject& o, const json& r, const ArchiveReader&) {
                   return readPlane(static_cast<PlaneObject&>(o), r);
               }});
    types.add({"Section", "section", [] { return std::make_unique<SectionObject>(); },
               [](const DocumentObject& o, ordered_json& r, SideFiles&) {
                   writeSection(static_cast<const SectionObject&>(o), r);
               },
               [](DocumentObject& o, const json& r, const ArchiveReader&) {
                   return readSection(static_cast<SectionObject&>(o), r);
               }});
}

} // namespace cad
