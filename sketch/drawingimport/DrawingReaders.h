// Choosing the reader of a drawing file by its extension and content.
#pragma once

#include "core/Result.h"
#include "sketch/drawingimport/DrawingToSketch.h"
#include "sketch/drawingimport/ImportedDrawing.h"

#include <string>

namespace cad::drawingimport {

struct DrawingFile {
    ImportedDrawing drawing;
    std::string format;        // "SVG", "DXF", "PDF" or "Illustrator", as messages say it
    DrawingPlace defaultPlace; // DXF keeps its own coordinates; the others go to the corner
};

// .svg, .dxf, .ai or .pdf (in any case); .ai and .pdf files are read as PDF when
// "%PDF" occurs anywhere in them, else as PostScript Illustrator when "%!PS-Adobe" does.
Result<DrawingFile> readDrawingFile(const std::string& path);

} // namespace cad::drawingimport
