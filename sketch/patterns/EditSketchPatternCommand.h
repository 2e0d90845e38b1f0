// edit_sketch_pattern: changes the arguments a sketch pattern was made with, deletes
// its old copies and makes it again.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/patterns/SketchSnapshotCommand.h"

#include <memory>
#include <string>
#include <vector>

namespace cad {

class EditSketchPatternCommand : public SketchSnapshotCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    EditSketchPatternCommand(CommandRecord record, std::string sketch, std::string pattern)
        : SketchSnapshotCommand(std::move(record), std::move(sketch)),
          pattern_(std::move(pattern)) {}

protected:
    Result<std::string> change(const Document& document, const SketchObject& sketch,
                               Lists& lists) override;

private:
    std::string pattern_;
};

} // namespace cad
