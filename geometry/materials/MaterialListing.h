// The materials and appearances to choose from, as list_materials answers them.
#pragma once

#include <nlohmann/json.hpp>

namespace cad {

// {"materials": [...], "appearances": [...], "custom": ...}, both lists in table
// order; strengths and stiffness only where the table gives them.
nlohmann::ordered_json materialListing();

} // namespace cad
