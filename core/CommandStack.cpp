// The undo and redo history. Commands undo themselves; the document is never
// snapshotted as a whole.
#include "core/CommandStack.h"

#include "core/Document.h"
#include "core/units/NameLookup.h"

#include <exception>

namespace cad {

namespace {

// Lengths and numbers typed as expressions see this document's parameters and unit.
units::ScopedParameterLookup expressionContext(const Document& document) {
    return units::ScopedParameterLookup(document.parameterLookup(), document.lengthUnit());
}

// Commands report failures as values; a slip that throws still becomes a sentence.
CommandResult guardedExecute(Command& command, Document& document) {
    try {
        return command.execute(document);
    } catch (const UncheckedResult& e) {
        // A failure that was read as a value still reaches the user as its sentence.
        return CommandResult::failure(e.what());
    } catch (const std::exception& e) {
        return CommandResult::failure(command.record().name + " failed unexpectedly: " + e.what());
    }
}

} // namespace

void CommandStack::announce(CommandEvent::Kind kind, const CommandRecord& record,
                            const std::string& message) {
    CommandEvent event{kind, record, message};
    for (const Listener& listener : listeners_) listener(event);
}

CommandResult CommandStack::tryOut(const CommandRecord& record) {
    withdrawTrial();
    auto context = expressionContext(document_);
    CommandRecord canonical = registry_.canonicalize(record, document_);
    Result<std::unique_ptr<Command>> command = registry_.create(canonical);
    if (!command) return CommandResult::failure(command.error());
    CommandResult result = guardedExecute(**command, document_);
    if (result.ok) trial_ = std::move(command).value();
    return result;
}

bool CommandStack::withdrawTrial() {
    if (!trial_) return false;
    auto context = expressionContext(document_);
    std::unique_ptr<Command> trial = std::move(trial_);
    trial->undo(document_);
    return true;
}

CommandResult CommandStack::execute(const CommandRecord& record) {
    withdrawTrial();
    auto context = expressionContext(document_);
    CommandRecord canonical = registry_.canonicalize(record, document_);
    Result<std::unique_ptr<Command>> command = registry_.create(canonical);
    if (!command) {
        announce(CommandEvent::Failed, canonical, command.error());
        return CommandResult::failure(command.error());
    }
    return execute(std::move(command).value());
}

CommandResult CommandStack::execute(std::unique_ptr<Command> command) {
    if (!command) return CommandResult::failure("There is no command to run.");
    withdrawTrial();
    auto context = expressionContext(document_);
    CommandResult result = guardedExecute(*command, document_);
    if (!result.ok) {
        announce(CommandEvent::Failed, command->record(), result.message);
        return result;
    }
    CommandRecord record = command->record();
    redoStack_.clear();
    if (groupDepth_ < 1 || !groupOpen_ || undoStack_.empty()) {
        Step step;
        step.commands.push_back(std::move(command));
        step.records.push_back(record);
        step.sequence = nextSequence_++;
        undoStack_.push_back(std::move(step));
        groupOpen_ = groupDepth_ > 0;
    } else {
        Step& step = undoStack_.back();
        step.commands.push_back(std::move(command));
        step.records.push_back(record);
        step.sequence = nextSequence_++;
    }
    announce(CommandEvent::Executed, record, result.message);
    return result;
}

bool CommandStack::undo() {
    withdrawTrial();
    if (undoStack_.empty()) return false;
    auto context = expressionContext(document_);
    Step step = std::move(undoStack_.back());
    undoStack_.pop_back();
    for (auto it = step.commands.rbegin(); it != step.commands.rend(); ++it) (*it)->undo(document_);
    groupOpen_ = false;
    std::vector<CommandRecord> records = step.records;
    redoStack_.push_back(std::move(step));
    for (auto it = records.rbegin(); it != records.rend(); ++it)
        announce(CommandEvent::Undone, *it, {});
    return true;
}

CommandResult CommandStack::redo() {
    withdrawTrial();
    if (redoStack_.empty()) return CommandResult::failure("Nothing to redo.");
    auto context = expressionContext(document_);
    Step& step = redoStack_.back();
    for (std::size_t i = 0; i < step.commands.size(); ++i) {
        CommandResult result = guardedExecute(*step.commands[i], document_);
        if (result.ok) continue;
        // Put the document back as it was before the redo; the step stays redoable.
        for (std::size_t j = i; j-- > 0;) step.commands[j]->undo(document_);
        announce(CommandEvent::Failed, step.records[i], result.message);
        return result;
    }
    Step done = std::move(step);
    redoStack_.pop_back();
    groupOpen_ = false;
    std::vector<CommandRecord> records = done.records;
    undoStack_.push_back(std::move(done));
    for (const CommandRecord& record : records) announce(CommandEvent::Redone, record, {});
    return CommandResult::success();
}

const CommandRecord* CommandStack::undoRecord() const {
    return undoStack_.empty() ? nullptr : &undoStack_.back().records.back();
}

const CommandRecord* CommandStack::redoRecord() const {
    return redoStack_.empty() ? nullptr : &redoStack_.back().records.back();
}

void CommandStack::beginGroup() {
    if (groupDepth_++ == 0) groupOpen_ = false;
}

void CommandStack::endGroup() {
    if (groupDepth_ > 0 && --groupDepth_ == 0) groupOpen_ = false;
}

void CommandStack::clear() {
    withdrawTrial();
    undoStack_.clear();
    redoStack_.clear();
    groupOpen_ = false;
}

} // namespace cad
