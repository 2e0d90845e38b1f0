// The base of every command: one named change to a document that can undo
// itself. A command either succeeds completely or leaves the document as it was.
#pragma once

#include "core/CommandRecord.h"

#include <string>

namespace cad {

class Document;

struct CommandResult {
    bool ok = true;
    std::string message; // on success an optional note for the user; on failure the error

    static CommandResult success(std::string note = {}) { return {true, std::move(note)}; }
    static CommandResult failure(std::string error) { return {false, std::move(error)}; }
};

struct CommandEvent {
    enum Kind { Executed = 0, Undone = 1, Redone = 2, Failed = 3 };
    Kind kind = Executed;
    CommandRecord record;
    std::string message; // the result (Executed) or the error (Failed)
};

class Command {
public:
    explicit Command(CommandRecord record) : record_(std::move(record)) {}
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    // What really happened: a command that refines its arguments while executing
    // (the ID it created, say) returns the refined record.
    virtual CommandRecord record() const { return record_; }
    virtual CommandResult execute(Document& document) = 0;
    // Reverts a successful execute; cannot fail.
    virtual void undo(Document& document) = 0;

protected:
    CommandRecord record_;
};

} // namespace cad
