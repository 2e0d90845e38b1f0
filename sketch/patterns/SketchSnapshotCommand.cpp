// Running a sketch-wide change on copies and keeping the lists from before for undo.
#include "sketch/patterns/SketchSnapshotCommand.h"

#include "core/Document.h"
#include "sketch/SketchEditCommand.h"

#include <utility>

namespace cad {

CommandResult SketchSnapshotCommand::execute(Document& document) {
    Result<SketchObject*> found = findSketch(document, sketch_);
    if (!found) return CommandResult::failure(found.error());
    SketchObject& sketch = **found;

    Lists work{sketch.entities, sketch.constraints, sketch.patterns};
    Result<std::string> message = change(document, sketch, work);
    if (!message) return CommandResult::failure(message.error());

    serial_ = sketch.serial;
    before_.entities = std::exchange(sketch.entities, std::move(work.entities));
    before_.constraints = std::exchange(sketch.constraints, std::move(work.constraints));
    before_.patterns = std::exchange(sketch.patterns, std::move(work.patterns));
    problemsBefore_ = sketch.projectionProblems;
    document.notifyChanged(sketch);
    return CommandResult::success(std::move(message).value());
}

void SketchSnapshotCommand::undo(Document& document) {
    auto* sketch = dynamic_cast<SketchObject*>(document.findBySerial(serial_));
    if (!sketch) return;
    sketch->entities = std::move(before_.entities);
    sketch->constraints = std::move(before_.constraints);
    sketch->patterns = std::move(before_.patterns);
    sketch->projectionProblems = std::move(problemsBefore_);
    before_ = {};
    document.notifyChanged(*sketch);
}

} // namespace cad
