// edit_feature: changes the values of a feature; only the values given change,
// and the feature's body rebuilds.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"
#include "geometry/ExtrudeFeature.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class DressUpFeature;

class EditFeatureCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit EditFeatureCommand(CommandRecord record) : Command(std::move(record)) {}

    // The values an extrude keeps, to put back on undo.
    struct ExtrudeValues {
        double distance = 0, thickness = 0, distance2 = 0;
        ExtrudeOperation operation = ExtrudeOperation::NewBody;
        std::string thinSide, extent;
        std::map<std::string, units::Expression> expressions;
    };
    static ExtrudeValues valuesOf(const ExtrudeFeature& feature);
    static void restore(ExtrudeFeature& feature, const ExtrudeValues& values);
    // The values a fillet, chamfer or shell keeps; the flag is the tangent chain or
    // the shell's outward direction.
    struct DressUpValues {
        double value = 0;
        std::map<std::string, units::Expression> expressions;
        bool flag = false;
    };
    static DressUpValues valuesOf(DressUpFeature& feature);
    static void restore(DressUpFeature& feature, const DressUpValues& values);

    CommandResult editExtrude(Document& document, ExtrudeFeature& feature);
    CommandResult editDressUp(Document& document, DressUpFeature& feature);

    std::string featureName_;
    std::optional<double> distance_, radius_, thickness_, distance2_;
    std::optional<std::string> operation_, direction_, thinSide_, extent_;
    std::optional<bool> tangentChain_;

    std::uint64_t featureSerial_ = 0;
    ExtrudeValues before_;
    std::optional<DressUpValues> dressUpBefore_; // set when a dress-up feature was edited
};

} // namespace cad
