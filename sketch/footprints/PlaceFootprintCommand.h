// place_footprint: a copy of a library footprint in a sketch, at (x, y) and turned
// by an angle, tied to a construction anchor point. One undoable step.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/SketchEditCommand.h"
#include "sketch/footprints/Footprint.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class PlaceFootprintCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    PlaceFootprintCommand(CommandRecord record, std::string sketch, std::string footprint,
                          Point2 at, double angle)
        : SketchEditCommand(std::move(record), std::move(sketch)), name_(std::move(footprint)),
          at_(at), angle_(angle) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    std::string name_;
    Point2 at_;
    double angle_;
    // Read from the library the first time, so a redo places the same copy even
    // when the library changed in between.
    std::optional<Footprint> footprint_;
};

// Adds "place_footprint" with its description and arguments.
void registerFootprintCommands(CommandRegistry& registry);

} // namespace cad
