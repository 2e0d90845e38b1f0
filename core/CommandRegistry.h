// Every command the system knows, with its English description and declared
// arguments. Records are checked, names rewritten to IDs, and commands made here.
#pragma once

#include "core/Command.h"
#include "core/Result.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class Document;

// Values are fixed: they appear in the tool schemas agents read.
enum class ArgType {
    Length = 0, // mm, or a string with units or an expression
    Number = 1,
    Angle = 2, // degrees
    Integer = 3,
    String = 4,
    Boolean = 5,
    SketchReference = 6, // "Line1.end", "Rectangle1.top"
    Text = 7,            // a further string kind, treated like String
};

struct ArgSpec {
    std::string name;
    ArgType type = ArgType::String;
    bool required = false;
    std::string description;
    std::vector<std::string> choices; // allowed values of a string; empty = free text
    // For an argument naming an object: "sketch", "body", "feature", or any other
    // word for any object; empty = not an object reference.
    std::string refersTo;
};

using CommandFactory = std::function<Result<std::unique_ptr<Command>>(const CommandRecord&)>;

// A factory that makes command class C from the record as given.
template <typename C> CommandFactory makeCommand() {
    return [](const CommandRecord& record) -> Result<std::unique_ptr<Command>> {
        return std::unique_ptr<Command>(std::make_unique<C>(record));
    };
}

class CommandRegistry {
public:
    struct Entry {
        std::string name;
        std::string description;
        CommandFactory factory;
        std::vector<ArgSpec> arguments;
    };

    void add(std::string name, std::string description, std::vector<ArgSpec> arguments,
             CommandFactory factory);
    // As add, with a factory that first refuses unknown argument names and missing
    // required arguments with the standard sentences.
    void addChecked(std::string name, std::string description, std::vector<ArgSpec> arguments,
                    CommandFactory factory);
    const Entry* find(std::string_view name) const;
    const std::vector<Entry>& entries() const { return entries_; }

    // The record with object names replaced by IDs; names that match nothing stay,
    // so the command's own lookup reports them.
    CommandRecord canonicalize(const CommandRecord& record, const Document& document) const;
    Result<std::unique_ptr<Command>> create(const CommandRecord& record) const;

private:
    std::vector<Entry> entries_;
};

} // namespace cad
