// The fillet panel (rounding or beveling edges picked in the view), the shell form
// (faces to open, wall thickness and side) and the edit of an existing fillet,
// chamfer or shell. Each is tried live on its body while it is filled in.
#pragma once

#include "ui/forms/FormDefinition.h"

#include <string>
#include <vector>

namespace cad {
class Document;
class DressUpFeature;
} // namespace cad

namespace cad::ui {

// The fillet panel; `chamfer` opens it bevelling. Selected edges fill its edge row.
FormDefinition filletForm(const Document& document, const std::vector<std::string>& selection,
                          bool chamfer);
// The shell form; selected faces become its openings.
FormDefinition shellForm(const Document& document, const std::vector<std::string>& selection);
// "Edit Fillet1": the value, and the tangent chain or the shell's side; the edges or
// faces are shown, not changed.
FormDefinition editDressUpForm(const Document& document, const DressUpFeature& feature);

} // namespace cad::ui
