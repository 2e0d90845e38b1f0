// libFuzzer target: any bytes given to the SVG reader come back as a drawing or as a
// sentence, never as a crash or a hang; a drawing holds only finite numbers.
#include "sketch/drawingimport/svg/SvgReader.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const cad::Result<cad::drawingimport::ImportedDrawing> drawing =
        cad::drawingimport::readSvgText(bytes, "fuzz.svg");
    if (!drawing) {
        if (drawing.error().empty()) std::abort(); // a failure always says why
        return 0;
    }
    if (drawing->paths.empty()) std::abort();
    for (const auto& path : drawing->paths) {
        if (path.pieces.empty()) std::abort();
        for (const auto& piece : path.pieces) {
            for (const auto& p : piece.points)
                if (!std::isfinite(p.x) || !std::isfinite(p.y)) std::abort();
            if (!std::isfinite(piece.center.x) || !std::isfinite(piece.center.y) ||
                !std::isfinite(piece.radius) || !std::isfinite(piece.startAngle) ||
                !std::isfinite(piece.sweepAngle))
                std::abort();
        }
    }
    return 0;
}
