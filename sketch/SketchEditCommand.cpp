// Snapshot and restore around a sketch edit, and the lookups every sketch command
// shares.
#include "sketch/SketchEditCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "sketch/SketchReference.h"

namespace cad {

Result<SketchObject*> findSketch(const Document& document, const std::string& name) {
    if (auto* sketch = document.findAs<SketchObject>(name)) return sketch;
    return fail("No sketch named '" + name + "' exists.");
}

Result<void> checkConstraintReferences(const std::vector<SketchEntity>& entities,
                                       const std::vector<SketchConstraint>& constraints) {
    for (const SketchConstraint& c : constraints)
        for (const SketchRef& ref : c.refs)
            if (Result<ResolvedRef> r = resolveReference(ref, entities); !r)
                return r.withPrefix(c.id + ": ");
    return {};
}

Result<SketchItem> readSketchItem(const CommandRecord& record, const std::vector<ArgSpec>& declared,
                                  const char* key) {
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(declared); !ok) return Error(ok);
    Result<std::string> sketch = reader.string("sketch");
    if (!sketch) return Error(sketch);
    Result<std::string> item = reader.string(key);
    if (!item) return Error(item);
    return SketchItem{*sketch, *item};
}

CommandResult SketchEditCommand::execute(Document& document) {
    Result<SketchObject*> found = findSketch(document, sketch_);
    if (!found) return CommandResult::failure(found.error());
    SketchObject& sketch = **found;

    Lists work{sketch.entities, sketch.constraints};
    Result<std::string> message = edit(sketch, work);
    if (!message) return CommandResult::failure(message.error());

    serial_ = sketch.serial;
    before_.entities = std::exchange(sketch.entities, std::move(work.entities));
    before_.constraints = std::exchange(sketch.constraints, std::move(work.constraints));
    document.notifyChanged(sketch);
    return CommandResult::success(std::move(message).value());
}

void SketchEditCommand::undo(Document& document) {
    auto* sketch = dynamic_cast<SketchObject*>(document.findBySerial(serial_));
    if (!sketch) return;
    sketch->entities = std::move(before_.entities);
    sketch->constraints = std::move(before_.constraints);
    before_ = {};
    document.notifyChanged(*sketch);
}

} // namespace cad
