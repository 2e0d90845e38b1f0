// hole and edit_hole: drill holes at a sketch's points into a body, and change a
// hole feature's options afterwards.
#pragma once

#include "core/CommandRegistry.h"
#include "geometry/AppendFeatureCommand.h"
#include "geometry/holes/HoleFeature.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

// The hole options a record gives; what it leaves out stays as it was.
struct HoleChanges {
    std::optional<std::string> size, fit, kind;
    std::optional<double> diameter, depth, tipAngle, counterboreDiameter, counterboreDepth,
        countersinkDiameter, countersinkAngle, threadLength;
    std::optional<bool> through, modeled, flip;
    std::optional<std::vector<std::string>> points;

    bool empty() const;
    // A diameter given without a size turns a sized hole into a plain one.
    void applyTo(HoleFeature& feature) const;
};

class HoleCommand : public AppendFeatureCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

private:
    explicit HoleCommand(CommandRecord record) : AppendFeatureCommand(std::move(record)) {}
    CommandResult firstRun(Document& document) override;
    std::string done(const Document& document, const FeatureObject& feature,
                     const GeometryObject& body) const override;

    std::string sketch_, target_, name_;
    HoleChanges changes_;
};

class EditHoleCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit EditHoleCommand(CommandRecord record) : Command(std::move(record)) {}

    struct Values {
        std::vector<std::string> points;
        bool flip = false;
        HoleOptions options;
    };

    std::string featureName_;
    HoleChanges changes_;
    std::uint64_t featureSerial_ = 0;
    Values before_;
};

} // namespace cad
