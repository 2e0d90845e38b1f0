// Executes commands against the document and keeps them for undo and redo.
// Listeners (the command log, the window) hear what happened as CommandEvents.
#pragma once

#include "core/Command.h"
#include "core/CommandRegistry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace cad {

class Document;

class CommandStack {
public:
    using Listener = std::function<void(const CommandEvent&)>;

    CommandStack(Document& document, const CommandRegistry& registry)
        : document_(document), registry_(registry) {}
    CommandStack(const CommandStack&) = delete;
    CommandStack& operator=(const CommandStack&) = delete;

    // Rewrites names to IDs, makes the command and executes it.
    CommandResult execute(const CommandRecord& record);
    // Executes a command made elsewhere (a form that builds one directly).
    CommandResult execute(std::unique_ptr<Command> command);
    bool undo();
    CommandResult redo();

    bool canUndo() const { return !undoStack_.empty(); }
    bool canRedo() const { return !redoStack_.empty(); }
    std::size_t undoCount() const { return undoStack_.size(); }
    std::size_t redoCount() const { return redoStack_.size(); }
    // The record of the step undo or redo would act on (its last command); null when none.
    const CommandRecord* undoRecord() const;
    // Where the history stands: the step undo would act on, 0 before any. A saved
    // document is unmodified exactly while the position is the one it was saved at.
    std::uint64_t position() const { return undoStack_.empty() ? 0 : undoStack_.back().sequence; }
    const CommandRecord* redoRecord() const;

    // A trial run outside the history, for a form's live edit: nothing is recorded or
    // announced, and the command stays applied until withdrawn. Anything else the
    // stack does first withdraws it, so the history never runs on top of a trial.
    CommandResult tryOut(const CommandRecord& record);
    // Undoes the trial run; false when there was none.
    bool withdrawTrial();
    bool hasTrial() const { return trial_ != nullptr; }

    // Commands executed between these form one step that undoes and redoes as a unit.
    void beginGroup();
    void endGroup();
    void clear();
    void addListener(Listener listener) { listeners_.push_back(std::move(listener)); }

    Document& document() { return document_; }
    const CommandRegistry& registry() const { return registry_; }

private:
    struct Step {
        std::vector<std::unique_ptr<Command>> commands;
        std::vector<CommandRecord> records;
        std::uint64_t sequence = 0;
    };

    void announce(CommandEvent::Kind kind, const CommandRecord& record, const std::string& message);

    Document& document_;
    const CommandRegistry& registry_;
    std::vector<Step> undoStack_;
    std::vector<Step> redoStack_;
    std::vector<Listener> listeners_;
    std::uint64_t nextSequence_ = 1;
    std::unique_ptr<Command> trial_;
    int groupDepth_ = 0;
    bool groupOpen_ = false;
};

} // namespace cad
