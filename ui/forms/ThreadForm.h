// The thread form: a standard thread on a cylindrical face picked in the view, its
// size matched to the face unless one is chosen, over a length, marked or modeled;
// and the edit of a thread feature. Both are tried live on the body.
#pragma once

#include "ui/forms/FormDefinition.h"

#include <string>
#include <vector>

namespace cad {
class Document;
class ThreadFeature;
} // namespace cad

namespace cad::ui {

// A selected cylindrical face fills the face row.
FormDefinition threadForm(const Document& document, const std::vector<std::string>& selection);
FormDefinition editThreadForm(const Document& document, const ThreadFeature& feature);

} // namespace cad::ui
