// move_sketch_point: drags one named point to a position; the solver moves the
// geometry tied to it as little as it can.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/SketchEditCommand.h"

#include <memory>
#include <vector>

namespace cad {

class MoveSketchPointCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    MoveSketchPointCommand(CommandRecord record, std::string sketch, SketchRef point, Point2 target)
        : SketchEditCommand(std::move(record), std::move(sketch)), point_(std::move(point)),
          target_(target) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    SketchRef point_;
    Point2 target_;
};

} // namespace cad
