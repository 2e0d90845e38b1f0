// Footprint records in and out of JSON, with the entity and constraint records the
// project file uses, and the file name a footprint is stored under.
#include "sketch/footprints/Footprint.h"

#include "sketch/SketchJson.h"

#include <algorithm>
#include <set>
#include <utility>

namespace cad {

namespace {

using json = nlohmann::json;
using ordered_json = nlohmann::ordered_json;

// A string member, or empty when absent; false when present and not a string.
bool readText(const json& record, const char* key, std::string& out) {
    auto it = record.find(key);
    if (it == record.end()) return true;
    if (!it->is_string()) return false;
    out = it->get<std::string>();
    return true;
}

} // namespace

ordered_json footprintToJson(const Footprint& footprint) {
    ordered_json r = ordered_json::object();
    r["format"] = std::string(kFootprintFormat);
    r["version"] = kFootprintVersion;
    r["name"] = footprint.name;
    r["description"] = footprint.description;
    ordered_json entities = ordered_json::array();
    for (const SketchEntity& e : footprint.entities) entities.push_back(entityToJson(e));
    r["entities"] = std::move(entities);
    ordered_json constraints = ordered_json::array();
    for (const SketchConstraint& c : footprint.constraints)
        constraints.push_back(constraintToJson(c));
    r["constraints"] = std::move(constraints);
    return r;
}

Result<Footprint> footprintFromJson(const json& record, const std::string& path) {
    const auto format = record.is_object() ? record.find("format") : record.end();
    if (!record.is_object() || format == record.end() || !format->is_string() ||
        format->get<std::string>() != kFootprintFormat)
        return fail(path + " isn't a Korvel Studio footprint.");
    auto broken = [&](const std::string& why) { return fail(path + ": " + why + "."); };

    Footprint footprint;
    if (!readText(record, "name", footprint.name) ||
        !readText(record, "description", footprint.description))
        return broken("\"name\" and \"description\" must be text");
    std::set<std::string, std::less<>> ids;
    if (auto list = record.find("entities"); list != record.end()) {
        if (!list->is_array()) return broken("\"entities\" must be a list");
        for (const json& item : *list) {
            Result<SketchEntity> entity = entityFromJson(item);
            if (!entity) return broken(entity.error());
            if (!ids.insert(entity->id).second)
                return fail("footprint: duplicate entity \"" + entity->id + "\"");
            footprint.entities.push_back(std::move(entity).value());
        }
    }
    if (auto list = record.find("constraints"); list != record.end()) {
        if (!list->is_array()) return broken("\"constraints\" must be a list");
        for (const json& item : *list) {
            Result<SketchConstraint> constraint = constraintFromJson(item);
            if (!constraint) return broken(constraint.error());
            footprint.constraints.push_back(std::move(constraint).value());
        }
    }
    return footprint;
}

std::string footprintFileName(std::string_view name) {
    std::string file(name);
    for (char& c : file) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || std::string_view("<>:\"/\\|?*").find(c) != std::string_view::npos)
            c = '_';
    }
    return file + std::string(kFootprintEnding);
}

std::string footprintContents(const Footprint& footprint) {
    std::vector<std::pair<std::string_view, int>> counts;
    for (const SketchEntity& e : footprint.entities) {
        const std::string_view kind = entityKindName(e);
        auto it = std::find_if(counts.begin(), counts.end(),
                               [&](const auto& c) { return c.first == kind; });
        if (it == counts.end())
            counts.emplace_back(kind, 1);
        else
            ++it->second;
    }
    std::string text;
    for (const auto& [kind, n] : counts) {
        if (!text.empty()) text += ", ";
        text += std::to_string(n) + " " + std::string(kind);
    }
    return text;
}

} // namespace cad
