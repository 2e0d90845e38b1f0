// Named parameters: the name rules, who uses a parameter, renaming through every
// expression, and re-evaluating every value that follows an expression.
#pragma once

#include "core/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace cad {

class Document;
class CommandRegistry;

Result<void> validateParameterName(std::string_view name);
// The parameters (by name) and values ("Extrude1.distance") whose expressions use `name`.
std::vector<std::string> parameterUsers(const Document& document, std::string_view name);
void renameParameterEverywhere(Document& document, std::string_view from, std::string_view to);
// Evaluates every expression-driven value, writes the results back, re-solves and
// rebuilds what changed; returns the problems (the caller decides what to keep).
std::vector<std::string> recomputeExpressions(Document& document);

void registerParameterCommands(CommandRegistry& registry);

} // namespace cad
