// The PostScript-only Illustrator format: between "%%EndSetup" and "%%Trailer",
// numbers and Illustrator's path operators (m, l/L, c/C, v/V, y/Y and the painting
// operators), in points with y up.
#include "sketch/drawingimport/pdf/PdfReader.h"

#include "sketch/drawingimport/pdf/ContentTokens.h"
#include "sketch/drawingimport/pdf/PathRecorder.h"

#include <cmath>
#include <vector>

namespace cad::drawingimport {

namespace {

using namespace pdf;

constexpr std::size_t kMostOperands = 64;

// Where a line beginning with `comment` starts, or npos.
std::size_t lineStarting(std::string_view bytes, std::string_view comment) {
    for (std::size_t at = bytes.find(comment); at != std::string_view::npos;
         at = bytes.find(comment, at + 1)) {
        if (at == 0 || bytes[at - 1] == '\n' || bytes[at - 1] == '\r') return at;
    }
    return std::string_view::npos;
}

// The body: after the "%%EndSetup" line (or from the start), up to "%%Trailer".
std::string_view body(std::string_view bytes) {
    const std::size_t setup = lineStarting(bytes, "%%EndSetup");
    if (setup != std::string_view::npos) {
        std::size_t from = setup;
        while (from < bytes.size() && bytes[from] != '\n' && bytes[from] != '\r') ++from;
        bytes.remove_prefix(from);
    }
    const std::size_t trailer = lineStarting(bytes, "%%Trailer");
    if (trailer != std::string_view::npos) bytes = bytes.substr(0, trailer);
    return bytes;
}

} // namespace

Result<ImportedDrawing> readIllustratorPostScript(std::string_view bytes, const std::string& path,
                                                  const ReadLimits& limits) {
    ContentTokens tokens(body(bytes));
    PathRecorder recorder(limits);
    std::vector<double> operands;
    auto has = [&](std::size_t n) {
        if (operands.size() < n) return false;
        for (std::size_t i = operands.size() - n; i < operands.size(); ++i) {
            if (!std::isfinite(operands[i])) return false;
        }
        return true;
    };
    auto at = [&](std::size_t fromTop) { return operands[operands.size() - fromTop]; };
    for (Token t = tokens.next(); t.kind != TokenKind::End && !recorder.tooLarge();
         t = tokens.next()) {
        if (t.kind == TokenKind::Number) {
            if (operands.size() == kMostOperands) operands.erase(operands.begin());
            operands.push_back(t.number);
            continue;
        }
        if (t.kind == TokenKind::Name) continue;
        const std::string_view op = t.text;
        if (op == "m" && has(2)) {
            recorder.moveTo({at(2), at(1)});
        } else if ((op == "l" || op == "L") && has(2)) {
            recorder.lineTo({at(2), at(1)});
        } else if ((op == "c" || op == "C") && has(6)) {
            recorder.curveTo({at(6), at(5)}, {at(4), at(3)}, {at(2), at(1)});
        } else if ((op == "v" || op == "V") && has(4)) {
            recorder.curveFromCurrent({at(4), at(3)}, {at(2), at(1)});
        } else if ((op == "y" || op == "Y") && has(4)) {
            recorder.curveTo({at(4), at(3)}, {at(2), at(1)}, {at(2), at(1)});
        } else if (op == "f" || op == "s" || op == "b") {
            recorder.paint(true);
        } else if (op == "F" || op == "S" || op == "B") {
            recorder.paint(false);
        } else if (op == "n" || op == "N") {
            recorder.discard();
        }
        operands.clear();
    }
    if (recorder.tooLarge()) return fail(path + " has too many pieces to import.");
    ImportedDrawing drawing;
    drawing.paths = recorder.takePaths();
    if (drawing.paths.empty()) {
        return fail(path + " has no paths I can read (save it from Illustrator with \"Create PDF "
                           "Compatible File\").");
    }
    return drawing;
}

} // namespace cad::drawingimport
