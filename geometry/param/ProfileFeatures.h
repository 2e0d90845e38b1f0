// The parametric kinds that turn profiles into solids: revolve, sweep and loft.
// Each is a table entry (ProfileFeatures.cpp) and a compute function.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {

class Document;
class ParamFeatureTypes;

// Adds Revolve, Sweep and Loft, in that order.
void registerProfileFeatureTypes(ParamFeatureTypes& types);

Result<geometry::NamedShape> computeRevolve(const Document& document,
                                            const nlohmann::json& parameters,
                                            const geometry::NamedShape& body,
                                            const std::string& featureName);
Result<geometry::NamedShape> computeSweep(const Document& document,
                                          const nlohmann::json& parameters,
                                          const geometry::NamedShape& body,
                                          const std::string& featureName);
Result<geometry::NamedShape> computeLoft(const Document& document, const nlohmann::json& parameters,
                                         const geometry::NamedShape& body,
                                         const std::string& featureName);

} // namespace cad
