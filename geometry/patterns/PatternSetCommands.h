// pattern_bodies and edit_pattern: a pattern set of whole bodies, each copy a body
// of its own that follows its source, and changing the set's layout afterwards.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/Document.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace cad {

class PatternCopiesCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    using Command::Command;
    CommandResult firstRun(Document& document);
    std::string done(const Document& document) const;

    nlohmann::json values_ = nlohmann::json::object(); // the keys given, as read
    std::uint64_t setSerial_ = 0;
    std::vector<std::uint64_t> added_;    // the set, then each copy's body and feature
    std::vector<Document::Taken> undone_; // what undo took out, kept for redo
};

class EditPatternCommand : public Command {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    using Command::Command;
    CommandResult firstRun(Document& document);
    // Forward: the removed copies out, the added ones in, the new values; back: the
    // reverse. Rebuilds the copies and returns their failure.
    std::string apply(Document& document, bool forward);

    struct ValueChange {
        std::uint64_t serial = 0; // a kept copy's feature
        nlohmann::json before, after;
    };

    std::string setName_;
    nlohmann::json values_ = nlohmann::json::object();
    std::uint64_t setSerial_ = 0;
    nlohmann::json setBefore_, setAfter_;
    std::vector<std::string> copiesBefore_, copiesAfter_;
    std::vector<ValueChange> changes_;
    std::vector<std::uint64_t> added_, removed_;
    std::vector<Document::Taken> addedTaken_, removedTaken_;
    bool done_ = false;
};

} // namespace cad
