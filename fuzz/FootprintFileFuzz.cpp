// libFuzzer target: any bytes read as a footprint file come back as a footprint or
// as a sentence; a footprint that reads is placed turned into an empty sketch, which
// either holds it or says why, never crashing or leaving non-finite geometry.
#include "sketch/footprints/Footprint.h"
#include "sketch/footprints/FootprintPlacement.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const nlohmann::json record = nlohmann::json::parse(text, nullptr, false);
    if (record.is_discarded()) return 0;
    const cad::Result<cad::Footprint> footprint = cad::footprintFromJson(record, "fuzz.json");
    if (!footprint) {
        if (footprint.error().empty()) std::abort(); // a refusal always says why
        return 0;
    }
    std::vector<cad::SketchEntity> entities;
    std::vector<cad::SketchConstraint> constraints;
    const auto placed = cad::placeFootprint(*footprint, {12.5, -3}, 90, entities, constraints);
    if (!placed) {
        if (placed.error().empty()) std::abort();
        return 0;
    }
    if (entities.size() != footprint->entities.size() + 1) std::abort(); // the copy and its anchor
    return 0;
}
