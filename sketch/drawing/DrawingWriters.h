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

// Write the file through a temporary one beside it, so that a failed write leaves
// an existing file as it was: "Couldn't write <path>." when it cannot be written.
Result<void> writeDrawingFile(const std::string& path, const std::string& text);
Result<void> writeDxf(const Drawing& drawing, const std::string& path);
Result<void> writeSvg(const Drawing& drawing, const std::string& path);

} // namespace cad::drawing
