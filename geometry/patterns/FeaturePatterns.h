// Patterns and mirrors inside a body: the tools of the features listed (or the
// whole body) copied by the layout and met with the body the way each feature does.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {

class Document;

Result<geometry::NamedShape> computeRectangularPattern(const Document& document,
                                                       const nlohmann::json& parameters,
                                                       const geometry::NamedShape& body,
                                                       const std::string& featureName);
Result<geometry::NamedShape> computeCircularPattern(const Document& document,
                                                    const nlohmann::json& parameters,
                                                    const geometry::NamedShape& body,
                                                    const std::string& featureName);
Result<geometry::NamedShape> computePathPattern(const Document& document,
                                                const nlohmann::json& parameters,
                                                const geometry::NamedShape& body,
                                                const std::string& featureName);
Result<geometry::NamedShape> computeMirror(const Document& document,
                                           const nlohmann::json& parameters,
                                           const geometry::NamedShape& body,
                                           const std::string& featureName);

} // namespace cad
