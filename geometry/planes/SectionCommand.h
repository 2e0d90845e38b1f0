// add_section and edit_section: a section analysis cut along a plane or flat face,
// and changes to it (only the arguments given change).
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"
#include "geometry/planes/AddedObject.h"
#include "geometry/planes/SectionObject.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class SectionCommand : public Command {
public:
    enum class Mode { Add, Edit };

    static std::vector<ArgSpec> arguments(Mode mode);
    static Result<std::unique_ptr<Command>> create(Mode mode, const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    SectionCommand(Mode mode, CommandRecord record) : Command(std::move(record)), mode_(mode) {}

    CommandResult add(Document& document);
    CommandResult edit(Document& document);
    // The definition with the given arguments applied, references by ID.
    SectionDefinition changed(const Document& document, SectionDefinition definition);

    Mode mode_;
    std::string name_; // add: the new section's name (may be empty); edit: the section
    std::optional<std::vector<std::string>> references_;
    std::optional<double> distance_, tilt_, turn_;
    std::optional<bool> flip_;

    AddedObject added_;
    std::uint64_t editedSerial_ = 0;
    std::optional<SectionObject> before_; // the edited section as it was
};

} // namespace cad
