// Opens a PDF with qpdf (damaged cross-reference tables are its to repair), finds the
// first page and interprets its content; every qpdf exception stops here.
#include "sketch/drawingimport/pdf/PdfReader.h"

#include "sketch/drawingimport/pdf/PdfContent.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <fstream>
#include <iterator>

namespace cad::drawingimport {

namespace {

using namespace pdf;

Result<std::string> fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return fail("Couldn't open " + path);
    std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) return fail("Couldn't open " + path);
    return bytes;
}

Result<ImportedDrawing> firstPagePaths(QPDF& pdf, const std::string& path,
                                       const ReadLimits& limits) {
    std::vector<QPDFPageObjectHelper> pages;
    try {
        pages = QPDFPageDocumentHelper(pdf).getAllPages();
    } catch (...) {
        return fail(path + " has no pages.");
    }
    if (pages.empty()) return fail(path + " has no pages.");
    QPDFPageObjectHelper& page = pages.front();
    PathRecorder recorder(limits);
    PdfContent content(recorder, limits);
    try {
        const std::string bytes = pageContent(page.getObjectHandle().getKey("/Contents"));
        content.run(bytes, page.getAttribute("/Resources", false), Affine{}, 0);
    } catch (...) {
        // What was read before the damage is kept.
    }
    if (content.tooLarge() || recorder.tooLarge())
        return fail(path + " has too many pieces to import.");
    ImportedDrawing drawing;
    drawing.paths = recorder.takePaths();
    if (drawing.paths.empty()) return fail(path + " has no vector paths on its first page.");
    return drawing;
}

} // namespace

Result<ImportedDrawing> readPdfBytes(std::string_view bytes, const std::string& path,
                                     const ReadLimits& limits) {
    try {
        QPDF pdf;
        pdf.setSuppressWarnings(true);
        pdf.setAttemptRecovery(true);
        try {
            pdf.processMemoryFile(path.c_str(), bytes.data(), bytes.size());
        } catch (const QPDFExc& e) {
            if (e.getErrorCode() == qpdf_e_password)
                return fail(path + " is encrypted, and I can't open it without its password.");
            return fail(path + " has no PDF objects I can read.");
        }
        return firstPagePaths(pdf, path, limits);
    } catch (...) {
        return fail(path + " has no PDF objects I can read.");
    }
}

Result<ImportedDrawing> readPdf(const std::string& path) {
    const Result<std::string> bytes = fileBytes(path);
    if (!bytes) return Error(bytes);
    return readPdfBytes(*bytes, path);
}

Result<ImportedDrawing> readPdfOrIllustratorBytes(std::string_view bytes, const std::string& path) {
    const std::size_t pdfAt = bytes.find("%PDF");
    if (pdfAt != std::string_view::npos) {
        // qpdf looks for the header near the start; content saved further in is cut out.
        return readPdfBytes(pdfAt < 1024 ? bytes : bytes.substr(pdfAt), path);
    }
    if (bytes.find("%!PS-Adobe") != std::string_view::npos)
        return readIllustratorPostScript(bytes, path);
    return fail(path + " isn't a PDF or Illustrator file I can read.");
}

Result<ImportedDrawing> readPdfOrIllustrator(const std::string& path) {
    const Result<std::string> bytes = fileBytes(path);
    if (!bytes) return Error(bytes);
    return readPdfOrIllustratorBytes(*bytes, path);
}

Result<ImportedDrawing> readIllustrator(const std::string& path) {
    return readPdfOrIllustrator(path);
}

} // namespace cad::drawingimport
