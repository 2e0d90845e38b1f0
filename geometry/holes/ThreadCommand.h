// thread and edit_thread: put a standard thread on a cylindrical face of a body,
// and change its size, length or modeled setting afterwards.
#pragma once

#include "core/CommandRegistry.h"
#include "geometry/AppendFeatureCommand.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class ThreadCommand : public AppendFeatureCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

private:
    explicit ThreadCommand(CommandRecord record) : AppendFeatureCommand(std::move(record)) {}
    CommandResult firstRun(Document& document) override;
    std::string done(const Document& document, const FeatureObject& feature,
                     const GeometryObject& body) const override;

    std::string body_, face_, size_, name_;
    double length_ = 0;
    bool modeled_ = false;
};

class EditThreadCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit EditThreadCommand(CommandRecord record) : Command(std::move(record)) {}

    struct Values {
        std::string size;
        double length = 0;
        bool modeled = false;
    };

    std::string featureName_;
    std::optional<std::string> size_;
    std::optional<double> length_;
    std::optional<bool> modeled_;
    std::uint64_t featureSerial_ = 0;
    Values before_;
};

} // namespace cad
