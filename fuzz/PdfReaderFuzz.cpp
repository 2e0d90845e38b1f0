// libFuzzer target: bytes given to the PDF reader (even first byte) or to the
// PostScript Illustrator reader (odd first byte) come back as a drawing or as a
// sentence, never as a crash, a hang or an escaped qpdf exception.
#include "sketch/drawingimport/pdf/PdfReader.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

// A small share of the real limits: the same code paths, but inputs built to reach
// them (forms drawing themselves to depth 8) end in milliseconds.
constexpr cad::drawingimport::ReadLimits kLimits{1.0 / 128};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const bool postScript = data[0] % 2 == 1;
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    const cad::Result<cad::drawingimport::ImportedDrawing> drawing =
        postScript ? cad::drawingimport::readIllustratorPostScript(bytes, "fuzz.ai", kLimits)
                   : cad::drawingimport::readPdfBytes(bytes, "fuzz.pdf", kLimits);
    if (!drawing) {
        if (drawing.error().empty()) std::abort(); // a failure always says why
        return 0;
    }
    if (drawing->paths.empty()) std::abort();
    for (const auto& path : drawing->paths) {
        if (path.pieces.empty()) std::abort();
        for (const auto& piece : path.pieces) {
            for (const auto& p : piece.points) {
                if (!std::isfinite(p.x) || !std::isfinite(p.y)) std::abort();
            }
        }
    }
    return 0;
}
