// The Reference Plane form: the kind of plane, the picks that kind is defined from,
// its distance, angle or position, and flip; add_plane for a new plane, edit_plane
// for one that exists. Either is tried live on the model.
#pragma once

#include "ui/forms/FormDefinition.h"

#include <string>
#include <vector>

namespace cad {
class Document;
class PlaneObject;
} // namespace cad

namespace cad::ui {

// Starts on the first kind the whole selection defines (two planes: midway), else
// offset from what fits.
FormDefinition planeForm(const Document& document, const std::vector<std::string>& selection);
// "Edit Plane1": the plane's kind, references and values; only what changed is sent.
FormDefinition editPlaneForm(const Document& document, const PlaneObject& plane);

} // namespace cad::ui
