// The sketch operations as commands: trim, extend, offset, mirror, move_entities,
// group, ungroup, explode and text_to_outlines. Each works on copies of the sketch's
// lists, which replace the sketch's only when everything succeeded; undo puts back
// the lists from before.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/SketchEditCommand.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class SketchOperationCommand : public SketchEditCommand {
public:
    // The declared arguments of one operation, by its command name.
    static std::vector<ArgSpec> arguments(std::string_view operation);
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    struct Arguments {
        std::vector<std::string> entities; // the listed entities, or the one entity
        std::optional<Point2> point;       // x and y: a spot, a side, or how far to move
        double distance = 0;               // offset
        std::string line;                  // mirror
    };

    SketchOperationCommand(CommandRecord record, std::string sketch, Arguments arguments)
        : SketchEditCommand(std::move(record), std::move(sketch)),
          arguments_(std::move(arguments)) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    // The operation itself on the working copies.
    Result<std::string> run(Lists& lists) const;

    Arguments arguments_;
};

} // namespace cad
