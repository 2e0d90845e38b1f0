// The Box form: sizes, corner and name of a new box, previewed as it is typed. The
// corner starts beside the bodies already there.
#pragma once

#include "ui/forms/FormDefinition.h"

#include <optional>

namespace cad {
class Document;
}

namespace cad::ui {

// Where a new box goes so it doesn't land inside what exists: x just past the largest
// bounding-box maximum x of the bodies plus 20 mm; nothing when there are no bodies.
std::optional<double> boxPlacementX(const Document& document);

FormDefinition boxForm(const Document& document);

} // namespace cad::ui
