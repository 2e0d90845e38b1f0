// A command as data: its name and its ordered, typed arguments. This is what
// forms, the sketch session and agents send, and what the log and redo show.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace cad {

// Exactly four alternatives, in this order; a number given as an integer stays one.
using Value = std::variant<bool, std::int64_t, double, std::string>;

struct CommandRecord {
    std::string name;
    std::vector<std::pair<std::string, Value>> arguments; // names unique, in the order given

    CommandRecord() = default;
    explicit CommandRecord(std::string commandName) : name(std::move(commandName)) {}

    const Value* find(std::string_view argument) const;
    bool has(std::string_view argument) const { return find(argument) != nullptr; }
    // Replaces the value of an argument that is there, or appends a new one.
    CommandRecord& set(std::string_view argument, Value value);
    CommandRecord& set(std::string_view argument, const char* text) {
        return set(argument, Value(std::string(text)));
    }
    CommandRecord& set(std::string_view argument, double number) {
        return set(argument, Value(number));
    }
    // Any whole number is stored as an integer (bool is a flag, not a number).
    template <std::integral Int>
    requires(!std::same_as<Int, bool>) CommandRecord& set(std::string_view argument, Int number) {
        return set(argument, Value(static_cast<std::int64_t>(number)));
    }
    CommandRecord& set(std::string_view argument, bool flag) { return set(argument, Value(flag)); }
    void remove(std::string_view argument);

    // As an API call: extrude(sketch="Sketch1", distance=10, operation="join").
    std::string toCall() const;

    bool operator==(const CommandRecord&) const = default;
};

// One value as it appears in a call: true, 42, 0.1, "text with \"quotes\"".
std::string renderValue(const Value& value);
// Shortest decimal text that reads back to the same double, in any locale.
std::string formatShortest(double value);

} // namespace cad
