// The PDF and Illustrator readers: the vector paths of a PDF's first page, of an
// Illustrator file saved with PDF content, or of a PostScript-only Illustrator file,
// as an ImportedDrawing in millimetres.
#pragma once

#include "core/Result.h"
#include "sketch/drawingimport/ImportedDrawing.h"

#include <string>
#include <string_view>

namespace cad::drawingimport {

// The first page's paths of the PDF at `path`.
Result<ImportedDrawing> readPdf(const std::string& path);
Result<ImportedDrawing> readPdfBytes(std::string_view bytes, const std::string& path,
                                     const ReadLimits& limits = {});

// An Illustrator file: PDF content when "%PDF" occurs anywhere in it, else the
// PostScript body when "%!PS-Adobe" does, else refused.
Result<ImportedDrawing> readIllustrator(const std::string& path);

// The PostScript-only Illustrator format: the path operators between "%%EndSetup"
// and "%%Trailer".
Result<ImportedDrawing> readIllustratorPostScript(std::string_view bytes, const std::string& path,
                                                  const ReadLimits& limits = {});

// The reader for a .pdf or .ai file, chosen by its content as readIllustrator does
// (a .pdf file is searched the same way). Messages call the format "PDF" for .pdf and
// "Illustrator" for .ai; that word is the caller's.
Result<ImportedDrawing> readPdfOrIllustrator(const std::string& path);
Result<ImportedDrawing> readPdfOrIllustratorBytes(std::string_view bytes, const std::string& path);

} // namespace cad::drawingimport
