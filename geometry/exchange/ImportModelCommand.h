// import_model: a STEP file's solids or an STL mesh brought in as new bodies, in
// place, with the parts' names and colours; one undo step for all of them.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/DocumentObject.h"
#include "core/Result.h"
#include "core/units/Length.h"
#include "geometry/exchange/ImportedPart.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace cad::exchange {

// The parts of a .step, .stp or .stl file (by its extension, ignoring case); the
// unit only applies to STL.
Result<std::vector<ImportedPart>> readModelFile(const std::string& path, units::Length unit);

class ImportModelCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit ImportModelCommand(CommandRecord record) : Command(std::move(record)) {}

    std::string path_;
    units::Length unit_ = units::Length::Millimeters;

    struct Added {
        std::uint64_t serial = 0;
        std::unique_ptr<DocumentObject> undone; // kept while undone, so redo brings it back
        std::size_t index = 0;
    };
    std::vector<Added> added_;
};

} // namespace cad::exchange
