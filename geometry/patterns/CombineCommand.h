// combine: the Combine feature made by the feature command, then, unless the tools
// are kept, the tool bodies hidden, since they're used up.
#pragma once

#include "core/Command.h"
#include "core/Result.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace cad {

class CombineCommand : public Command {
public:
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    CombineCommand(CommandRecord record, std::unique_ptr<Command> made, bool keep)
        : Command(std::move(record)), made_(std::move(made)), keep_(keep) {}

    std::unique_ptr<Command> made_; // the feature command that adds the Combine
    bool keep_ = false;
    std::vector<std::uint64_t> hidden_; // the tools this command hid
};

} // namespace cad
