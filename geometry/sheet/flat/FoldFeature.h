// The Fold step of a body's history: the bent part back, carrying what was done to
// its blank since the Unfold before it; left open, the body stays flat.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {
class Document;
}

namespace cad::flat {

Result<geometry::NamedShape> computeFold(const Document& document, const nlohmann::json& parameters,
                                         const geometry::NamedShape& body,
                                         const std::string& featureName);

} // namespace cad::flat
