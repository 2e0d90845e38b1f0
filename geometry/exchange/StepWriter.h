// Writing bodies to a STEP file (AP214, millimetres): each body a top-level part
// named as it is here. Colours are not written.
#pragma once

#include "core/Result.h"
#include "geometry/exchange/ExportBodies.h"

#include <string>
#include <vector>

namespace cad::exchange {

// "Nothing to export.", "The shapes couldn't be written as STEP.", "Couldn't write
// <path>". A failed write leaves any file already at `path` as it was.
Result<void> writeStep(const std::vector<ExportBody>& bodies, const std::string& path);

} // namespace cad::exchange
