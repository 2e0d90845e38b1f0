// The base of the commands that change a sketch's entities and constraints: the
// edit works on copies of the lists, which replace the sketch's only on success;
// undo puts back the lists from before.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"
#include "sketch/SketchObject.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cad {

class Document;

// The sketch a command names (by ID or display name), or "No sketch named ...".
Result<SketchObject*> findSketch(const Document& document, const std::string& name);

// Ok when every constraint's references resolve; otherwise the first constraint
// that doesn't, as its ID, ": " and the resolution message.
Result<void> checkConstraintReferences(const std::vector<SketchEntity>& entities,
                                       const std::vector<SketchConstraint>& constraints);

// A sketch and one named item of it ("Line3", "Coincident2"), as a command names them.
struct SketchItem {
    std::string sketch;
    std::string item;
};
// Refuses undeclared arguments, then reads "sketch" and the item's key, in that order.
Result<SketchItem> readSketchItem(const CommandRecord& record, const std::vector<ArgSpec>& declared,
                                  const char* key);

class SketchEditCommand : public Command {
public:
    SketchEditCommand(CommandRecord record, std::string sketch)
        : Command(std::move(record)), sketch_(std::move(sketch)) {}

    CommandResult execute(Document& document) final;
    void undo(Document& document) final;

protected:
    struct Lists {
        std::vector<SketchEntity> entities;
        std::vector<SketchConstraint> constraints;
    };
    // The edit itself, made on copies of the sketch's lists: the success message, or
    // why it can't be done (the lists are then thrown away).
    virtual Result<std::string> edit(const SketchObject& sketch, Lists& lists) = 0;

private:
    std::string sketch_;
    std::uint64_t serial_ = 0;
    Lists before_;
};

} // namespace cad
