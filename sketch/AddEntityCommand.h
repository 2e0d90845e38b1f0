// The add commands (add_line, add_circle, ... add_slot, add_text): one new entity
// each, made from the arguments and checked when the command is read (text is laid
// out when it is added, against the sketch it goes into); adding never solves.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/SketchEditCommand.h"

#include <memory>
#include <optional>
#include <vector>

namespace cad {

class AddEntityCommand : public SketchEditCommand {
public:
    // The declared arguments and the factory of each add command, by kind.
    static std::vector<ArgSpec> arguments(EntityKind kind);
    static Result<std::unique_ptr<Command>> create(EntityKind kind, const CommandRecord& record);

    AddEntityCommand(CommandRecord record, std::string sketch, SketchEntity entity)
        : SketchEditCommand(std::move(record), std::move(sketch)), entity_(std::move(entity)) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    SketchEntity entity_; // the new entity; it has its ID once the command has run
};

// The named variants the window's own tools build.
class AddLineCommand : public AddEntityCommand {
public:
    using AddEntityCommand::AddEntityCommand;
};
class AddRectangleCommand : public AddEntityCommand {
public:
    using AddEntityCommand::AddEntityCommand;
};
class AddCircleCommand : public AddEntityCommand {
public:
    using AddEntityCommand::AddEntityCommand;
};

} // namespace cad
