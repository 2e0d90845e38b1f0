// Reading SVG drawings: the visible shapes of an SVG file as paths of lines, arcs,
// circles and Bézier pieces in millimetres with y up (CSS pixels at 96 to the inch).
#pragma once

#include "core/Result.h"
#include "sketch/drawingimport/ImportedDrawing.h"

#include <string>
#include <string_view>

namespace cad::drawingimport {

// The drawing in the file at `path`, or a sentence naming the path.
Result<ImportedDrawing> readSvg(const std::string& path);

// The same from the file's bytes; `path` only names the drawing in messages.
Result<ImportedDrawing> readSvgText(std::string_view bytes, const std::string& path);

} // namespace cad::drawingimport
