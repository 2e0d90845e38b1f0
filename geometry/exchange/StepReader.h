// Reading a STEP file's solids as parts with their product names, placements and
// surface colours, through an XCAF document that lives only during the call.
#pragma once

#include "core/Result.h"
#include "geometry/exchange/ImportedPart.h"

#include <string>
#include <vector>

namespace cad::exchange {

// Every solid of every free shape in file order; assemblies are walked with their
// instances' placements composed. A shape without solids gives its shells (or its
// faces when it has no shells). "No file at <path>", "Couldn't read <path> as
// STEP.", "<path>: nothing in it could be turned into shapes.", "<path> has no
// solids or surfaces.".
Result<std::vector<ImportedPart>> readStep(const std::string& path);

} // namespace cad::exchange
