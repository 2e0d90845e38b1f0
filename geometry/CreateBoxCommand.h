// create_box: a solid box body from a corner, its faces named by direction.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"

#include <memory>
#include <string>
#include <vector>

namespace cad {

class DocumentObject;

class CreateBoxCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit CreateBoxCommand(CommandRecord record) : Command(std::move(record)) {}

    double width_ = 0, depth_ = 0, height_ = 0;
    double x_ = 0, y_ = 0, z_ = 0;
    std::string name_;

    std::uint64_t serial_ = 0;
    std::unique_ptr<DocumentObject> undone_; // kept while undone, so redo brings back the same body
    std::size_t index_ = 0;
};

} // namespace cad
