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

Result<void> writeDrawing(const Drawing& drawing, const std::string& path) {
    if (!isDrawingPath(path)) return fail("Export as .dxf or .svg.");
    return extensionOf(path) == ".dxf" ? writeDxf(drawing, path) : writeSvg(drawing, path);
}

Result<std::string> exportSketch(const SketchObject& sketch, const std::string& path,
                                 units::Length unit, bool includeConstruction) {
    Result<void> written =
        writeDrawing(sketchDrawing(sketch.entities, unit, includeConstruction), path);
    if (!written) return Error(written);
    return "Wrote " + path + ".";
}

} // namespace cad::drawing
