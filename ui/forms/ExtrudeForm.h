// The Extrude forms: a new extrude from a profile picked in the view (or taken from
// the selection) with a preview of the swept solid, and the edit of an existing one,
// tried live on the model.
#pragma once

#include "core/Result.h"
#include "ui/forms/FormDefinition.h"

#include <string>
#include <vector>

namespace cad {
class Document;
class ExtrudeFeature;
} // namespace cad

namespace cad::ui {

// What a clicked or selected reference gives a profile: a region or a flat face as
// it is, a sketch's curve (or the sketch) as the whole sketch; a sentence otherwise.
Result<std::string> profileReference(const Document& document, const std::string& reference);

FormDefinition extrudeForm(const Document& document, const std::vector<std::string>& selection);
FormDefinition editExtrudeForm(const Document& document, const ExtrudeFeature& feature);

} // namespace cad::ui
