// The Mirror form: features mirrored inside their body (mirror_features), or bodies
// each mirrored into a body of its own (mirror_body), across a plane or flat face.
#pragma once

#include "ui/forms/FormDefinition.h"

#include <string>
#include <vector>

namespace cad {
class Document;
}

namespace cad::ui {

// Selected whole bodies start it on bodies, selected faces on the features that made
// them; a selected plane is the mirror plane.
FormDefinition mirrorForm(const Document& document, const std::vector<std::string>& selection);

} // namespace cad::ui
