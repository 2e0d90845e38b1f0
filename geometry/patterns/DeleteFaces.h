// Deleting faces from a body: the faces round them grow or shrink to close the gap,
// taking a fillet, a boss or a pocket back off.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace cad {

class Document;

Result<geometry::NamedShape> computeDeleteFaces(const Document& document,
                                                const nlohmann::json& parameters,
                                                const geometry::NamedShape& body,
                                                const std::string& featureName);

// The objects a delete_faces list names outside the body ("Body1/Fillet1.face"
// names Body1; a bare face name names none).
std::vector<std::string> deleteFacesDependencies(const nlohmann::json& parameters);

} // namespace cad
