// Reading place_footprint's arguments, finding the footprint in the library and
// placing it on copies of the sketch's lists.
#include "sketch/footprints/PlaceFootprintCommand.h"

#include "core/ArgReader.h"
#include "core/TextCase.h"
#include "sketch/footprints/FootprintLibrary.h"
#include "sketch/footprints/FootprintPlacement.h"

namespace cad {

std::vector<ArgSpec> PlaceFootprintCommand::arguments() {
    using T = ArgType;
    return {{"sketch", T::String, true, "The sketch's ID or name.", {}, "sketch"},
            {"footprint", T::String, true, "Its name in the library.", {}, ""},
            {"x", T::Length, false, "Default 0.", {}, ""},
            {"y", T::Length, false, "Default 0.", {}, ""},
            {"angle",
             T::Angle,
             false,
             "Degrees counter-clockwise (rectangles: multiples of 90). Default 0.",
             {},
             ""}};
}

Result<std::unique_ptr<Command>> PlaceFootprintCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    const Error missing = fail("place_footprint: give the sketch and the footprint's name.");
    Result<std::string> sketch = reader.string("sketch", "");
    Result<std::string> footprint = reader.string("footprint", "");
    if (!sketch || !footprint || trimmed(*sketch).empty() || footprint->empty()) return missing;
    Result<double> x = reader.length("x", 0.0);
    if (!x) return Error(x);
    Result<double> y = reader.length("y", 0.0);
    if (!y) return Error(y);
    Result<double> angle = reader.angle("angle", 0.0);
    if (!angle) return Error(angle);
    return std::unique_ptr<Command>(std::make_unique<PlaceFootprintCommand>(
        record, std::string(trimmed(*sketch)), *footprint, Point2{*x, *y}, *angle));
}

Result<std::string> PlaceFootprintCommand::edit(const SketchObject& sketch, Lists& lists) {
    if (!footprint_) {
        Result<StoredFootprint> found = FootprintLibrary().find(name_);
        if (!found) return Error(found);
        footprint_ = std::move(found->footprint);
    }
    Result<FootprintPlacement> placed =
        placeFootprint(*footprint_, at_, angle_, lists.entities, lists.constraints);
    if (!placed) return Error(placed);
    std::string message = "Placed '" + name_ + "' in " + sketch.id + "; its reference point is " +
                          placed->anchor + ".";
    if (placed->leftOut > 0)
        message +=
            " " + std::to_string(placed->leftOut) +
            " horizontal/vertical constraint(s) couldn't follow the angle and were left out.";
    return message;
}

void registerFootprintCommands(CommandRegistry& registry) {
    registry.add("place_footprint",
                 "Place a saved footprint (sketch geometry with its dimensions, e.g. a switch's "
                 "mounting holes) in a sketch: its reference point goes at (x, y), turned by "
                 "angle. A construction anchor point marks the reference point; dimension it to "
                 "position the copy. See list_footprints / save_footprint.",
                 PlaceFootprintCommand::arguments(), &PlaceFootprintCommand::create);
}

} // namespace cad
