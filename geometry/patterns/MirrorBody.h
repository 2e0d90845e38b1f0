// A body mirrored across a plane, as a new solid that follows its source: an
// opposite-hand copy, or joined to or cut from a target.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {

class Document;

Result<geometry::NamedShape> computeMirrorBody(const Document& document,
                                               const nlohmann::json& parameters,
                                               const geometry::NamedShape& body,
                                               const std::string& featureName);

} // namespace cad
