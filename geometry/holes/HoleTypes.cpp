// Holes write their sketch, points and options (a diameter or a size and fit, a
// depth or through); threads their face, size, length and modeled setting.
#include "geometry/holes/HoleTypes.h"

#include "core/ObjectTypes.h"
#include "geometry/holes/HoleFeature.h"
#include "geometry/holes/ThreadFeature.h"

#include <cmath>
#include <initializer_list>

namespace cad {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

std::string quoted(const char* key) { return std::string("\"") + key + "\""; }

Result<void> readNumber(const json& r, const char* key, double& out) {
    auto it = r.find(key);
    if (it == r.end()) return {};
    if (!it->is_number() || !std::isfinite(it->get<double>()))
        return fail(quoted(key) + " must be a number");
    out = it->get<double>();
    return {};
}

Result<void> readFlag(const json& r, const char* key, bool& out) {
    auto it = r.find(key);
    if (it == r.end()) return {};
    if (!it->is_boolean()) return fail(quoted(key) + " must be true or false");
    out = it->get<bool>();
    return {};
}

Result<void> readText(const json& r, const char* key, std::string& out, bool required) {
    auto it = r.find(key);
    if (it == r.end() && !required) return {};
    if (it == r.end() || !it->is_string()) return fail(quoted(key) + " must be text");
    out = it->get<std::string>();
    return {};
}

Result<void> readWord(const json& r, const char* key, std::string& out,
                      std::initializer_list<const char*> allowed) {
    std::string word = out;
    if (Result<void> ok = readText(r, key, word, false); !ok) return ok;
    for (const char* a : allowed)
        if (word == a) {
            out = word;
            return {};
        }
    std::string list;
    for (const char* a : allowed) list += std::string(list.empty() ? "" : ", ") + quoted(a);
    return fail(quoted(key) + " must be one of " + list);
}

void writeHole(const HoleFeature& f, ordered_json& r) {
    const HoleOptions& o = f.options;
    r["sketch"] = f.sketch;
    r["points"] = f.points;
    r["flip"] = f.flip;
    r["kind"] = o.kind;
    if (o.size.empty()) {
        r["diameter"] = o.diameter;
    } else {
        r["size"] = o.size;
        r["fit"] = o.fit;
    }
    if (o.through)
        r["through"] = true;
    else
        r["depth"] = o.depth;
    r["tipAngle"] = o.tipAngle;
    r["counterboreDiameter"] = o.counterboreDiameter;
    r["counterboreDepth"] = o.counterboreDepth;
    r["countersinkDiameter"] = o.countersinkDiameter;
    r["countersinkAngle"] = o.countersinkAngle;
    r["threadLength"] = o.threadLength;
    r["modeled"] = o.modeled;
}

Result<void> readHole(HoleFeature& f, const json& r) {
    HoleOptions& o = f.options;
    if (Result<void> ok = readText(r, "sketch", f.sketch, true); !ok) return ok;
    if (auto points = r.find("points"); points != r.end()) {
        if (!points->is_array()) return fail("\"points\" must be a list of point names");
        for (const json& p : *points) {
            if (!p.is_string()) return fail("\"points\" must be a list of point names");
            f.points.push_back(p.get<std::string>());
        }
    }
    if (Result<void> ok = readFlag(r, "flip", f.flip); !ok) return ok;
    if (Result<void> ok = readWord(r, "kind", o.kind, {"simple", "counterbore", "countersink"});
        !ok)
        return ok;
    if (Result<void> ok = readText(r, "size", o.size, false); !ok) return ok;
    if (Result<void> ok = readWord(r, "fit", o.fit, {"tapped", "close", "normal", "loose"}); !ok)
        return ok;
    if (Result<void> ok = readFlag(r, "through", o.through); !ok) return ok;
    for (auto [key, out] : {std::pair{"diameter", &o.diameter}, std::pair{"depth", &o.depth},
                            std::pair{"tipAngle", &o.tipAngle},
                            std::pair{"counterboreDiameter", &o.counterboreDiameter},
                            std::pair{"counterboreDepth", &o.counterboreDepth},
                            std::pair{"countersinkDiameter", &o.countersinkDiameter},
                            std::pair{"countersinkAngle", &o.countersinkAngle},
                            std::pair{"threadLength", &o.threadLength}})
        if (Result<void> ok = readNumber(r, key, *out); !ok) return ok;
    return readFlag(r, "modeled", o.modeled);
}

void writeThread(const ThreadFeature& f, ordered_json& r) {
    r["face"] = f.face;
    r["size"] = f.size;
    r["length"] = f.length;
    r["modeled"] = f.modeled;
}

Result<void> readThread(ThreadFeature& f, const json& r) {
    if (Result<void> ok = readText(r, "face", f.face, true); !ok) return ok;
    if (Result<void> ok = readText(r, "size", f.size, false); !ok) return ok;
    if (Result<void> ok = readNumber(r, "length", f.length); !ok) return ok;
    return readFlag(r, "modeled", f.modeled);
}

} // namespace

void registerHoleTypes(ObjectTypes& types) {
    types.add({"Hole", "hole", [] { return std::make_unique<HoleFeature>(); },
               [](const DocumentObject& o, ordered_json& r, SideFiles&) {
                   writeHole(static_cast<const HoleFeature&>(o), r);
               },
               [](DocumentObject& o, const json& r, const ArchiveReader&) {
                   return readHole(static_cast<HoleFeature&>(o), r);
               }});
    types.add({"Thread", "thread", [] { return std::make_unique<ThreadFeature>(); },
               [](const DocumentObject& o, ordered_json& r, SideFiles&) {
                   writeThread(static_cast<const ThreadFeature&>(o), r);
               },
               [](DocumentObject& o, const json& r, const ArchiveReader&) {
                   return readThread(static_cast<ThreadFeature&>(o), r);
               }});
}

} // namespace cad
