// Argument reading shared by the plane and section commands: values given as
// numbers or as text with units, flags, and reference lists stored by object ID.
#pragma once

#include "core/CommandRecord.h"
#include "core/Result.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class Document;

enum class ValueKind { Length, Number };

// None when absent; else the value in mm (lengths) or as given (numbers, degrees).
// Text that doesn't read: "<command>: '<key>' must be a number: <text>".
Result<std::optional<double>> optionalValue(const CommandRecord& record, std::string_view key,
                                            ValueKind kind);
// None when absent; else the flag, or "<command>: 'flip' must be true or false.".
Result<std::optional<bool>> optionalFlag(const CommandRecord& record, std::string_view key);
// None when absent; else the ';'-separated items, or `missing` (after the command's
// name) when it is not text or lists nothing.
Result<std::optional<std::vector<std::string>>>
optionalReferences(const CommandRecord& record, std::string_view key, std::string_view missing);

// The reference with its object named by ID ("Base/Extrude1.end" -> "Body1/Extrude1.end"),
// so a later rename doesn't cut it loose; origin names and unknown objects stay.
std::string referenceById(const Document& document, std::string_view reference);
std::string joinReferences(const std::vector<std::string>& references);

// An edit that would define an object from itself, directly or through planes and
// sketches that follow it: the sentence, else "". Bodies don't count: a plane on a
// body's face carrying a sketch the same body is built from is the usual pattern.
std::string circularProblem(const Document& document, const std::string& id,
                            const std::vector<std::string>& references);

// A name a new object may take: "" when it may, else the sentence.
std::string nameProblem(const Document& document, const std::string& name);

} // namespace cad
