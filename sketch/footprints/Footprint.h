// A footprint: a reusable piece of sketch (geometry with its constraints and
// dimensions) kept in the per-user library, and its file record.
#pragma once

#include "core/Result.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace cad {

// The sketch origin is the footprint's reference point; entities keep the IDs they
// had in the sketch they came from, and constraints refer to them by those IDs.
struct Footprint {
    std::string name;
    std::string description;
    std::vector<SketchEntity> entities;
    std::vector<SketchConstraint> constraints;
};

inline constexpr std::string_view kFootprintFormat = "korvel-footprint";
inline constexpr int kFootprintVersion = 1;
inline constexpr std::string_view kFootprintEnding = ".footprint.json";

// The file record: format, version, name, description, entities and constraints,
// the last two as a sketch's records in the project file.
nlohmann::ordered_json footprintToJson(const Footprint& footprint);
// `path` names the file in the sentences ("<path> isn't a Korvel Studio footprint.").
Result<Footprint> footprintFromJson(const nlohmann::json& record, const std::string& path);

// The name with each of <>:"/\|?* and every control character replaced by '_',
// followed by ".footprint.json".
std::string footprintFileName(std::string_view name);

// What a footprint holds, kinds in the order they first appear: "2 Circle, 1 Line".
std::string footprintContents(const Footprint& footprint);

} // namespace cad
