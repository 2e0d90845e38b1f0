// add_plane and edit_plane: a reference plane defined from existing geometry, and
// changes to its definition (only the arguments given change).
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"
#include "geometry/planes/AddedObject.h"
#include "geometry/planes/PlaneObject.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class PlaneCommand : public Command {
public:
    enum class Mode { Add, Edit };

    static std::vector<ArgSpec> arguments(Mode mode);
    static Result<std::unique_ptr<Command>> create(Mode mode, const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    PlaneCommand(Mode mode, CommandRecord record) : Command(std::move(record)), mode_(mode) {}

    CommandResult add(Document& document);
    CommandResult edit(Document& document);
    // The definition with the given arguments applied, references by ID.
    PlaneDefinition changed(const Document& document, PlaneDefinition definition);

    Mode mode_;
    std::string name_; // add: the new plane's name (may be empty); edit: the plane
    std::optional<std::string> kind_;
    std::optional<std::vector<std::string>> references_;
    std::optional<double> distance_, angle_, position_, size_;
    std::optional<bool> flip_;

    AddedObject added_;
    std::uint64_t editedSerial_ = 0;
    std::optional<PlaneObject> before_; // the edited plane as it was
};

} // namespace cad
