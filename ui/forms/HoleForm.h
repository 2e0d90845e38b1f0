// The hole panel: simple, counterbored or countersunk holes at a sketch's points or
// where a flat face is clicked, sized by a thread size and fit or by a diameter, to a
// depth or through, previewed as the solids they cut; and the edit of a hole feature,
// tried live on its body.
#pragma once

#include "ui/forms/FormDefinition.h"

#include <string>
#include <vector>

namespace cad {
class Document;
class HoleFeature;
} // namespace cad

namespace cad::ui {

// A selected sketch (or its points) places the holes; otherwise clicks do.
FormDefinition holeForm(const Document& document, const std::vector<std::string>& selection);
FormDefinition editHoleForm(const Document& document, const HoleFeature& feature);

} // namespace cad::ui
