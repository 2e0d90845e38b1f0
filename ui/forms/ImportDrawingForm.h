// The Import Drawing form: a drawing file already read, scaled to a width, placed
// centred, at the corner or as in the file, as construction or not; on a new sketch
// on the chosen plane when none is being edited.
#pragma once

#include "core/OriginPlanes.h"
#include "sketch/drawingimport/DrawingReaders.h"
#include "ui/forms/FormDefinition.h"

#include <array>
#include <functional>
#include <optional>
#include <string>

namespace cad {
class Document;
}

namespace cad::ui {

struct DrawingImportSource {
    std::string path; // absolute
    drawingimport::DrawingFile file;
    // The sketch it goes into; empty: a new sketch on the plane the form asks for.
    std::string sketch;
    // Where the file was dropped, in the coordinates of a sketch on `plane`; unset or
    // none when it was chosen in a dialog or the drop missed the plane.
    std::function<std::optional<std::array<double, 2>>(const PlaneFrame& plane)> droppedAt;
};

FormDefinition importDrawingForm(const Document& document, DrawingImportSource source);

} // namespace cad::ui
