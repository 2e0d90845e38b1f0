// The forms that work inside the sketch being edited: the sketch patterns (a row or
// grid, around a centre, along a path of the sketch's curves), their edits, and
// projecting other geometry onto the sketch. Their geometry picks go through the
// sketch session; the commands are tried live on the sketch as the rows change.
#pragma once

#include "ui/forms/FormDefinition.h"
#include "ui/forms/FormFields.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cad {
class Document;
}
namespace cad::rendering {
class ViewportTool;
}

namespace cad::ui {

// What the forms see of the sketch being edited, given by the window.
struct SketchFormHost {
    // The edited sketch's ID; empty when no sketch is edited.
    std::function<std::string()> sketch;
    // The entities selected in it, which a new pattern starts from.
    std::function<std::vector<std::string>()> selection;
    // Picks in the sketch: each click on what `what` allows hands a reference to
    // `picked`; `marked` lists what the row holds now. stopPick ends them.
    std::function<void(SketchPick what, std::function<void(const std::string&)> picked,
                       std::function<std::vector<std::string>()> marked)>
        startPick;
    std::function<void()> stopPick;
    // The tool the view goes back to when a form stops picking in it (the sketch
    // session while a sketch is edited); null or unset: none.
    std::function<rendering::ViewportTool*()> restingTool;
};

// Kind 0 rectangular, 1 circular, 2 path; none for another kind. The geometry row
// starts with the selected entities.
std::optional<FormDefinition> sketchPatternForm(const Document& document, const std::string& sketch,
                                                int kind, const std::vector<std::string>& selection);
// "Edit Pattern1": the pattern's values; edit_sketch_pattern with what changed. None
// when the sketch has no such pattern.
std::optional<FormDefinition> editSketchPatternForm(const Document& document,
                                                    const std::string& sketch,
                                                    const std::string& pattern);
// Edges, faces, points and other sketches' curves brought onto the sketch; project.
FormDefinition projectForm(const std::string& sketch);

} // namespace cad::ui
