// set_material: what bodies or components are made of, or taking that off.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"
#include "geometry/materials/LookTargets.h"

#include <memory>
#include <string>
#include <vector>

namespace cad {

struct Material;

class SetMaterialCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    // With the objects' IDs and the material's id as the table spells it.
    CommandRecord record() const override;
    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit SetMaterialCommand(CommandRecord record) : Command(std::move(record)) {}

    std::vector<std::string> names_;     // as given
    const Material* material_ = nullptr; // null takes the material off
    std::vector<std::string> ids_;       // of the objects the last run changed
    SavedLooks saved_;
};

} // namespace cad
