// create_sketch: a new, empty sketch on an origin plane, on a plane given by origin
// and normal, or on a reference plane or flat face that it then follows.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/OriginPlanes.h"
#include "core/Result.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class DocumentObject;

class CreateSketchCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit CreateSketchCommand(CommandRecord record) : Command(std::move(record)) {}

    std::optional<PlaneFrame> frame_; // known when reading (origin plane or origin/normal)
    std::string on_;                  // else resolved when executing
    std::string support_;
    std::string name_;

    // After the first run: the sketch made, kept while undone so redo brings back the same ID.
    std::unique_ptr<DocumentObject> undone_;
    std::size_t index_ = 0;
    std::uint64_t serial_ = 0;
};

} // namespace cad
