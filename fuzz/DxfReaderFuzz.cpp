// libFuzzer target: any bytes given to the DXF reader come back as a drawing or as a
// sentence, never as a crash or a hang; a drawing holds only finite numbers.
#include "sketch/drawingimport/dxf/DxfReader.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

// A sixteenth of the real limits: the same code paths, but inputs built to reach
// them (forms or blocks drawing themselves) end in milliseconds.
constexpr cad::drawingimport::ReadLimits kLimits{1.0 / 16};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const cad::Result<cad::drawingimport::ImportedDrawing> drawing =
        cad::drawingimport::readDxfText(bytes, "fuzz.dxf", kLimits);
    if (!drawing) {
        if (drawing.error().empty()) std::abort(); // a failure always says why
        return 0;
    }
    if (drawing->paths.empty() && drawing->texts.empty()) std::abort();
    for (const auto& path : drawing->paths) {
        if (path.pieces.empty()) std::abort();
        for (const auto& piece : path.pieces) {
            for (const auto& p : piece.points) {
                if (!std::isfinite(p.x) || !std::isfinite(p.y)) std::abort();
            }
            if (!std::isfinite(piece.radius) || !std::isfinite(piece.sweepAngle)) std::abort();
        }
    }
    return 0;
}
