// Frozen shapes: a fixed BRep in place of history that can't be rebuilt here,
// replacing a body's shape (frozen) or starting a new body (frozen_body).
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {

class Document;

// The shape of parameters["brep"] (OCCT BRep text), its faces named by direction
// after the feature ("Frozen1.top", "Frozen1.face[2]").
Result<geometry::NamedShape> computeFrozen(const Document& document,
                                           const nlohmann::json& parameters,
                                           const geometry::NamedShape& body,
                                           const std::string& featureName);

} // namespace cad
