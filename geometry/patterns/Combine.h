// Combining bodies: the target joined with, cut by or intersected with other bodies,
// a cut optionally leaving room round each tool.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {

class Document;

Result<geometry::NamedShape> computeCombine(const Document& document,
                                            const nlohmann::json& parameters,
                                            const geometry::NamedShape& body,
                                            const std::string& featureName);

} // namespace cad
