// The undo record of commands that rework a sketch as a whole (patterns, their edits,
// projection): the sketch's entities, constraints and patterns from before the
// change, put back exactly on undo. The change works on copies, which replace the
// sketch's lists only when it succeeds.
#pragma once

#include "core/Command.h"
#include "core/Result.h"
#include "sketch/SketchObject.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cad {

class SketchSnapshotCommand : public Command {
public:
    SketchSnapshotCommand(CommandRecord record, std::string sketch)
        : Command(std::move(record)), sketch_(std::move(sketch)) {}

    CommandResult execute(Document& document) final;
    void undo(Document& document) final;

protected:
    struct Lists {
        std::vector<SketchEntity> entities;
        std::vector<SketchConstraint> constraints;
        std::vector<SketchPattern> patterns;
    };
    // The change itself, made on copies of the sketch's lists: the success message,
    // or why it can't be done (the copies are then thrown away).
    virtual Result<std::string> change(const Document& document, const SketchObject& sketch,
                                       Lists& lists) = 0;

private:
    std::string sketch_;
    std::uint64_t serial_ = 0;
    Lists before_;
    std::vector<ProjectionProblem> problemsBefore_; // what the sketch reported of its projections
};

} // namespace cad
