// set_appearance: paints faces, whole bodies or components with an appearance, or
// takes appearances off.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"
#include "geometry/materials/LookTargets.h"

#include <memory>
#include <string>
#include <vector>

namespace cad {

class SetAppearanceCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit SetAppearanceCommand(CommandRecord record) : Command(std::move(record)) {}

    // One target found in the document: a face of a body by its persistent name, or a
    // whole body or component (no face).
    struct Target {
        DocumentObject* object = nullptr;
        std::string face;
    };
    Result<Target> findTarget(const Document& document, const std::string& text) const;

    std::vector<std::string> targets_; // as given
    std::string appearance_;           // as stored; empty takes appearances off
    SavedLooks saved_;
};

} // namespace cad
