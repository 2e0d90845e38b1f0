// Reads a command's arguments for its factory, with one fixed sentence for each
// way an argument can be wrong ("extrude: 'distance' must be a length.").
#pragma once

#include "core/CommandRecord.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class ArgReader {
public:
    explicit ArgReader(const CommandRecord& record) : record_(record) {}

    // Fails on the first argument whose name is not in the list, naming the list.
    Result<void> allowOnly(const std::vector<std::string_view>& names) const;
    Result<void> allowDeclared(const std::vector<ArgSpec>& declared) const;

    bool has(std::string_view arg) const { return record_.has(arg); }

    // Millimetres: a number as is, or a string evaluated as a length expression.
    Result<double> length(std::string_view arg) const;
    Result<double> length(std::string_view arg, double fallback) const;
    Result<double> number(std::string_view arg) const;
    Result<double> number(std::string_view arg, double fallback) const;
    Result<double> angle(std::string_view arg) const; // degrees
    Result<double> angle(std::string_view arg, double fallback) const;
    Result<std::int64_t> integer(std::string_view arg) const;
    Result<std::int64_t> integer(std::string_view arg, std::int64_t fallback) const;
    Result<std::string> string(std::string_view arg) const;
    Result<std::string> string(std::string_view arg, std::string fallback) const;
    // The name or ID of an object; the command looks it up.
    Result<std::string> object(std::string_view arg) const;
    Result<bool> boolean(std::string_view arg) const;
    Result<bool> boolean(std::string_view arg, bool fallback) const;
    Result<std::string> choice(std::string_view arg, const std::vector<std::string>& choices) const;
    Result<std::string> choice(std::string_view arg, const std::vector<std::string>& choices,
                               std::string fallback) const;

private:
    Error error(std::string_view text) const;
    Result<double> readLength(std::string_view arg, const Value& value) const;
    Result<double> readNumber(std::string_view arg, const Value& value,
                              std::string_view kind) const;
    Result<std::int64_t> readInteger(std::string_view arg, const Value& value) const;
    Result<std::string> readString(std::string_view arg, const Value& value) const;
    Result<bool> readBoolean(std::string_view arg, const Value& value) const;
    Result<std::string> readChoice(std::string_view arg, const Value& value,
                                   const std::vector<std::string>& choices) const;

    const CommandRecord& record_;
};

// Refuses any declared argument given with a value its type does not take, with the
// sentence the matching reader would give. Unknown and missing arguments are left
// to the factory, which may word them its own way ("'across_flats' only applies to
// polygons.").
Result<void> checkArgumentTypes(const CommandRecord& record, const std::vector<ArgSpec>& declared);

// Refuses unknown argument names and missing required arguments, with the sentence
// the matching reader would give.
Result<void> checkArguments(const CommandRecord& record, const std::vector<ArgSpec>& declared);

} // namespace cad
