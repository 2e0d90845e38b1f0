// The editor of every parametric kind ("edit_revolve", ...): only the keys given
// change, and the feature's body rebuilds from the feature on.
#pragma once

#include "core/Command.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace cad {

class EditParamFeatureCommand : public Command {
public:
    static Result<std::unique_ptr<Command>> create(const std::string& typeId,
                                                   const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    EditParamFeatureCommand(std::string typeId, CommandRecord record)
        : Command(std::move(record)), typeId_(std::move(typeId)) {}

    std::string typeId_;
    std::string featureName_;
    nlohmann::json values_ = nlohmann::json::object(); // the keys given, as read

    std::uint64_t featureSerial_ = 0;
    nlohmann::json before_; // the feature's parameters before the change
};

} // namespace cad
