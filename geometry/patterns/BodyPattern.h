// Patterns of whole bodies: copies of source bodies laid out as a pattern, as a
// solid of their own. A pattern set makes one such feature per copy, each a body.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {

class Document;

// The copies of parameters["bodies"] by the pattern keys; parameters["copy"] picks
// one copy (its faces keep the source's names), else all of them together (their
// faces named "<feature>.copy<n>.<name>"). A copy whose pattern set is rolled back
// is empty, as the set is not there yet.
Result<geometry::NamedShape> computePatternBody(const Document& document,
                                                const nlohmann::json& parameters,
                                                const geometry::NamedShape& body,
                                                const std::string& featureName);

} // namespace cad
