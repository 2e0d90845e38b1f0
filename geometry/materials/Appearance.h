// An appearance as objects store it: the id of a preset, or a custom colour written
// "#rrggbb" with an optional finish ("#3a7bd5/glossy"). Reading the text gives the
// look to draw with.
#pragma once

#include "core/Result.h"
#include "geometry/materials/MaterialTables.h"

#include <string>
#include <string_view>

namespace cad {

struct Appearance {
    std::string text;     // as stored: the preset's id, or the custom colour in lower case
    std::string name;     // the preset's name, or "Custom"
    std::string category; // the preset's category; custom colours are "Other"
    Color color;
    Finish finish = Finish::Matte;
    double opacity = 1;
};

// What list_materials says about custom colours.
inline constexpr std::string_view kCustomAppearanceHint =
    "Any color as \"#rrggbb\", with an optional finish: \"#3a7bd5/glossy\".";

// The look an appearance text names: a preset by id (exactly, else ignoring case),
// or a custom colour; a custom colour without a finish is matte. Anything else
// fails with the sentence that points to list_materials.
Result<Appearance> readAppearance(std::string_view text);

} // namespace cad
