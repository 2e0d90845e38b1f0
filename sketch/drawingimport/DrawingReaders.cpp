// The reader dispatch of drawing import: extension first, then, for .ai and .pdf,
// what the file holds.
#include "sketch/drawingimport/DrawingReaders.h"

#include "core/TextCase.h"
#include "sketch/drawingimport/dxf/DxfReader.h"
#include "sketch/drawingimport/pdf/PdfReader.h"
#include "sketch/drawingimport/svg/SvgReader.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace cad::drawingimport {

namespace {

Result<std::string> wholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return fail("Couldn't open " + path);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) return fail("Couldn't open " + path);
    return bytes;
}

Result<DrawingFile> withFormat(Result<ImportedDrawing> read, std::string format,
                               DrawingPlace place) {
    if (!read) return Error(read);
    return DrawingFile{std::move(read).value(), std::move(format), place};
}

} // namespace

Result<DrawingFile> readDrawingFile(const std::string& path) {
    const std::string extension = toLowerAscii(std::filesystem::path(path).extension().string());
    if (extension != ".svg" && extension != ".dxf" && extension != ".ai" && extension != ".pdf")
        return fail("Import .svg, .dxf, .ai or .pdf files.");
    Result<std::string> bytes = wholeFile(path);
    if (!bytes) return Error(bytes);
    if (extension == ".svg")
        return withFormat(readSvgText(*bytes, path), "SVG", DrawingPlace::Corner);
    if (extension == ".dxf")
        return withFormat(readDxfText(*bytes, path), "DXF", DrawingPlace::File);
    const std::string format = extension == ".ai" ? "Illustrator" : "PDF";
    if (bytes->find("%PDF") != std::string::npos)
        return withFormat(readPdfBytes(*bytes, path), format, DrawingPlace::Corner);
    if (bytes->find("%!PS-Adobe") != std::string::npos)
        return withFormat(readIllustratorPostScript(*bytes, path), format, DrawingPlace::Corner);
    return fail(path + " isn't a PDF or Illustrator file I can read.");
}

} // namespace cad::drawingimport
