// The compute functions of the sheet metal kinds: what a SheetFlange, SheetRules,
// EdgeFlange or Hem feature makes from its parameters and the body so far.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {
class Document;
}

namespace cad::sheet {

// A plate from closed regions, else a bent part from the sketch's open lines: the
// new solid (the feature's operation then meets it with the body).
Result<geometry::NamedShape> computeSheetFlange(const Document& document,
                                                const nlohmann::json& parameters,
                                                const geometry::NamedShape& body,
                                                const std::string& featureName);

// The body unchanged, once its rules read well (thickness 0 measured).
Result<geometry::NamedShape> computeSheetRules(const Document& document,
                                               const nlohmann::json& parameters,
                                               const geometry::NamedShape& body,
                                               const std::string& featureName);

// The body with a bend and a wall joined on a straight outside edge.
Result<geometry::NamedShape> computeEdgeFlange(const Document& document,
                                               const nlohmann::json& parameters,
                                               const geometry::NamedShape& body,
                                               const std::string& featureName);

// The body with an edge folded right back over (or under) the sheet.
Result<geometry::NamedShape> computeHem(const Document& document, const nlohmann::json& parameters,
                                        const geometry::NamedShape& body,
                                        const std::string& featureName);

} // namespace cad::sheet
