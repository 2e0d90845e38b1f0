// fillet, chamfer and shell: one command class that adds a dress-up feature to the
// end of a body's history.
#pragma once

#include "geometry/AppendFeatureCommand.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"

#include <memory>
#include <string>
#include <vector>

namespace cad {

class DressUpFeature;

class FilletCommand : public AppendFeatureCommand {
public:
    enum class Kind { Fillet = 0, Chamfer = 1, Shell = 2 };

    static std::vector<ArgSpec> arguments(Kind kind);
    static Result<std::unique_ptr<Command>> create(Kind kind, const CommandRecord& record);

private:
    FilletCommand(Kind kind, CommandRecord record)
        : AppendFeatureCommand(std::move(record)), kind_(kind) {}

    CommandResult firstRun(Document& document) override;
    std::string done(const Document& document, const FeatureObject& feature,
                     const GeometryObject& body) const override;
    std::unique_ptr<DressUpFeature> makeFeature(std::vector<std::string> names) const;

    Kind kind_;
    std::string bodyName_;
    std::vector<std::string> names_; // edges, or the shell's faces, as given
    double value_ = 0;
    bool outward_ = false;
    bool tangentChain_ = true;
    std::string featureName_;
};

} // namespace cad
