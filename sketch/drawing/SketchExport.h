// Writing a sketch to a DXF or SVG file, the writer chosen by the path's extension.
// Shared by the export_sketch tool and the window's sketch export.
#pragma once

#include "core/Result.h"
#include "core/units/Length.h"
#include "sketch/drawing/Drawing.h"

#include <string>

namespace cad {
class SketchObject;
}

namespace cad::drawing {

// Whether the path ends in .dxf or .svg (any letter case).
bool isDrawingPath(const std::string& path);

// A drawing written by the path's extension: "Export as .dxf or .svg." for another,
// else the writer's answer.
Result<void> writeDrawing(const Drawing& drawing, const std::string& path);

// "Wrote <path>.", or "Export as .dxf or .svg." for another extension, or the
// writer's "Couldn't write <path>." (the old file is then left as it was).
Result<std::string> exportSketch(const SketchObject& sketch, const std::string& path,
                                 units::Length unit, bool includeConstruction);

} // namespace cad::drawing
