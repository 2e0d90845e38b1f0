// extrude: sweeps a profile into a new body, or joins it to or cuts it from a body.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Document.h"
#include "core/Result.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class ExtrudeFeature;

class ExtrudeCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    explicit ExtrudeCommand(CommandRecord record);

    CommandResult firstRun(Document& document);
    // Puts the kept objects back (redo) or takes them out (undo and failures).
    void insert(Document& document);
    void remove(Document& document);

    std::unique_ptr<ExtrudeFeature> feature_; // the feature as read; becomes the document's
    std::string targetName_;                  // as given
    std::string bodyName_;                    // new body's name, as given

    // What execute added, kept while undone so redo brings back the same IDs.
    std::uint64_t featureSerial_ = 0, bodySerial_ = 0, targetSerial_ = 0;
    std::vector<Document::Taken> undone_; // feature (and new body), in the order they were added
    bool newBody_ = false;
};

} // namespace cad
