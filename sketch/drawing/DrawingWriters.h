// The two file formats a flat drawing leaves in: AutoCAD R12 DXF and SVG, both in
// the drawing's own unit, written the same whatever the user's locale.
#pragma once

#include "core/Result.h"
#include "sketch/drawing/Drawing.h"

#include <string>

namespace cad::drawing {

// The file's text.
std::string dxfText(const Drawing& drawing);
std::string svgText(const Drawing& drawing);

// Write the file; "Couldn't write <path>." when it cannot be opened or written.
Result<void> writeDxf(const Drawing& drawing, const std::string& path);
Result<void> writeSvg(const Drawing& drawing, const std::string& path);

} // namespace cad::drawing
