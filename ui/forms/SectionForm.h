// The Section Analysis form: the plane or flat face to cut along, how far the cut
// moves and leans from it, and which side goes; add_section for a new section,
// edit_section for one that exists. Either is tried live on the model.
#pragma once

#include "ui/forms/FormDefinition.h"

#include <string>
#include <vector>

namespace cad {
class Document;
class SectionObject;
} // namespace cad

namespace cad::ui {

// A selected plane or flat face is where it starts cutting.
FormDefinition sectionForm(const Document& document, const std::vector<std::string>& selection);
// "Edit Section1": the section's values; only what changed is sent.
FormDefinition editSectionForm(const Document& document, const SectionObject& section);

} // namespace cad::ui
