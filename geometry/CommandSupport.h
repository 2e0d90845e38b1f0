// Small helpers the geometry commands share: name checks and expression binding.
#pragma once

#include "core/CommandRecord.h"
#include "core/Result.h"
#include "core/units/Expression.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace cad {

class Document;

// Whether any object has this name as its ID or label (ignoring case).
bool nameTaken(const Document& document, std::string_view name);

// A name that would break references: one with '/' or a line break.
bool badObjectName(std::string_view name);

// An optional argument that must be one of a few words: none when absent, else the
// word, or the command's name, ": " and `error` when it is something else.
Result<std::optional<std::string>> word(const CommandRecord& record, std::string_view arg,
                                        std::initializer_list<std::string_view> allowed,
                                        const char* error);

// The expression a length argument follows when it was typed with names in it.
std::optional<units::Expression> boundExpression(const Value* value, const Document& document);

} // namespace cad
