// The sketch export: the sketch as a drawing in the chosen unit, then the DXF or SVG
// writer by the file's extension.
#include "sketch/drawing/SketchExport.h"

#include "core/TextCase.h"
#include "sketch/SketchObject.h"
#include "sketch/drawing/DrawingWriters.h"
#include "sketch/drawing/SketchDrawing.h"

#include <filesystem>

namespace cad::drawing {

namespace {

std::string extensionOf(const std::string& path) {
    return toLowerAscii(std::filesystem::path(path).extension().string());
}

} // namespace

bool isDrawingPath(const std::string& path) {
    const std::string extension = extensionOf(path);
    return extension == ".dxf" || extension == ".svg";
}

Result<std::string> exportSketch(const SketchObject& sketch, const std::string& path,
                                 units::Length unit, bool includeConstruction) {
    if (!isDrawingPath(path)) return fail("Export as .dxf or .svg.");
    const Drawing drawing = sketchDrawing(sketch.entities, unit, includeConstruction);
    Result<void> written = extensionOf(path) == ".dxf" ? writeDxf(drawing, path)
                                                        : writeSvg(drawing, path);
    if (!written) return Error(written);
    return "Wrote " + path + ".";
}

} // namespace cad::drawing
