// Small helpers the geometry commands share: name checks and expression binding.
#pragma once

#include "core/CommandRecord.h"
#include "core/units/Expression.h"

#include <optional>
#include <string>
#include <string_view>

namespace cad {

class Document;

// Whether any object has this name as its ID or label (ignoring case).
bool nameTaken(const Document& document, std::string_view name);

// A name that would break references: one with '/' or a line break.
bool badObjectName(std::string_view name);

// The expression a length argument follows when it was typed with names in it.
std::optional<units::Expression> boundExpression(const Value* value, const Document& document);

} // namespace cad
