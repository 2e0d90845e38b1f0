// edit_sketch_entity: changes some values of one entity (omitted values stay), then
// re-solves the sketch with that entity held where it was put.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/SketchEditCommand.h"
#include "sketch/text/TextOptions.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class EditSketchEntityCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    // The values given, as read from the record (lengths in mm, angles in degrees).
    struct Changes {
        std::map<std::string, double, std::less<>> values;
        std::optional<int> sides;
        std::optional<std::vector<Point2>> points;
        std::optional<bool> closed;
        text::TextChanges text; // a text's options, its position and size included
    };

    EditSketchEntityCommand(CommandRecord record, std::string sketch, std::string entity,
                            Changes changes)
        : SketchEditCommand(std::move(record), std::move(sketch)), entity_(std::move(entity)),
          changes_(std::move(changes)) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    std::string entity_;
    Changes changes_;
};

} // namespace cad
