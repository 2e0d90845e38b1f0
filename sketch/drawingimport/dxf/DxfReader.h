// The ASCII DXF reader: lines, circles, arcs, polylines, splines, ellipses, points,
// texts and block references of a DXF file as an ImportedDrawing in millimetres.
#pragma once

#include "core/Result.h"
#include "sketch/drawingimport/ImportedDrawing.h"

#include <string>
#include <string_view>

namespace cad::drawingimport {

// Reads the file at `path`; failures name the file or say what is wrong with it.
Result<ImportedDrawing> readDxf(const std::string& path);

// Reads DXF text already in memory; `path` only names the file in messages.
Result<ImportedDrawing> readDxfText(std::string_view bytes, const std::string& path,
                                    const ReadLimits& limits = {});

} // namespace cad::drawingimport
