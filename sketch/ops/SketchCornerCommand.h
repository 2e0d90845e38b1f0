// sketch_fillet and sketch_chamfer: rounding or bevelling the corner where exactly
// two lines meet. The lines are cut back, a tangent arc or a bevel line joins them,
// and a construction point keeps the sharp corner for the dimensions that used it.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/SketchEditCommand.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace cad {

class SketchCornerCommand : public SketchEditCommand {
public:
    // The declared arguments of sketch_fillet or sketch_chamfer.
    static std::vector<ArgSpec> arguments(std::string_view command);
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    // A fillet's radius, or a chamfer's distance along the first line (and along the
    // second, unless `second` is given).
    SketchCornerCommand(CommandRecord record, std::string sketch, SketchRef corner, double size,
                        std::optional<double> second)
        : SketchEditCommand(std::move(record), std::move(sketch)), corner_(std::move(corner)),
          size_(size), second_(second) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    SketchRef corner_;
    double size_;
    std::optional<double> second_;
};

} // namespace cad
