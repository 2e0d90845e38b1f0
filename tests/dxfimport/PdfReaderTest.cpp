// The PDF and Illustrator readers: PDFs drawn by librsvg and written by hand (then
// compressed, damaged or encrypted through qpdf), and small PostScript files.
#include "sketch/drawingimport/pdf/PdfReader.h"

#include <gtest/gtest.h>
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

namespace cad::drawingimport {
namespace {

constexpr double kMm = 25.4 / 72;

struct Box {
    double minX = 1e300, minY = 1e300, maxX = -1e300, maxY = -1e300;
};
Box bounds(const DrawingPath& path) {
    Box b;
    for (const Piece& piece : path.pieces) {
        for (const Vec2& p : piece.points) {
            b.minX = std::min(b.minX, p.x), b.maxX = std::max(b.maxX, p.x);
            b.minY = std::min(b.minY, p.y), b.maxY = std::max(b.maxY, p.y);
        }
    }
    return b;
}

std::string stream(const std::string& dict, const std::string& data) {
    return "<< " + dict + " /Length " + std::to_string(data.size()) + " >>\nstream\n" + data +
           "\nendstream";
}

// A PDF with correct offsets; objects are numbered from 1 in order.
std::string pdfFile(const std::vector<std::string>& objects) {
    std::string out = "%PDF-1.4\n";
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        offsets.push_back(out.size());
        out += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::size_t xref = out.size();
    out += "xref\n0 " + std::to_string(objects.size() + 1) + "\n0000000000 65535 f \n";
    for (std::size_t offset : offsets) {
        char line[32];
        std::snprintf(line, sizeof line, "%010zu 00000 n \n", offset);
        out += line;
    }
    out += "trailer\n<< /Size " + std::to_string(objects.size() + 1) +
           " /Root 1 0 R >>\nstartxref\n" + std::to_string(xref) + "\n%%EOF\n";
    return out;
}

std::string onePage(const std::string& contents, const std::string& resources,
                    std::vector<std::string> more) {
    std::vector<std::string> objects = {
        "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents " + contents +
            " /Resources " + resources + " >>"};
    objects.insert(objects.end(), more.begin(), more.end());
    return pdfFile(objects);
}

// The drawing page: a doubled triangle closed by h, a discarded curve, a filled
// rectangle, an inline image whose data looks like operators, a form moved by its
// Matrix, and a form that draws itself; its content is split over two streams.
std::string drawingPdf() {
    const std::string first = "q 2 0 0 2 0 0 cm 10 10 m 20 10 l 20 20";
    const std::string second =
        " l h S Q 1 1 m 5 5 l 9 1 9 9 1 9 c n 0 0 10 10 re f\n"
        "BI /W 1 /H 1 /BPC 8 /CS /G ID \x01 300 300 m 400 400 l S EI\n/F1 Do /Me Do";
    return onePage("[4 0 R 5 0 R]", "<< /XObject << /F1 6 0 R /Me 7 0 R >> >>",
                   {stream("", first), stream("", second),
                    stream("/Type /XObject /Subtype /Form /BBox [0 0 100 100] "
                           "/Matrix [1 0 0 1 100 0]",
                           "0 0 m 72 0 l S"),
                    stream("/Type /XObject /Subtype /Form /BBox [0 0 100 100] "
                           "/Matrix [1 0 0 1 0 10] /Resources << /XObject << /Me 7 0 R >> >>",
                           "500 0 m 510 0 l S /Me Do")});
}

std::string rewritten(const std::string& pdf, bool encrypt) {
    QPDF q;
    q.setSuppressWarnings(true);
    q.processMemoryFile("in", pdf.data(), pdf.size());
    QPDFWriter w(q);
    w.setOutputMemory();
    w.setStaticID(true);
    w.setStreamDataMode(qpdf_s_compress);
    if (encrypt)
        w.setR6EncryptionParameters("secret", "owner", true, true, true, true, true, true,
                                    qpdf_r3p_full, true);
    w.write();
    const std::shared_ptr<Buffer> out = w.getBufferSharedPointer();
    return std::string(reinterpret_cast<const char*>(out->getBuffer()), out->getSize());
}

void expectDrawingPage(const Result<ImportedDrawing>& d) {
    ASSERT_TRUE(d.ok()) << d.error();
    // Triangle, rectangle, the moved form's line and eight levels of the self-drawing form.
    ASSERT_EQ(d->paths.size(), 11u);
    const DrawingPath& tri = d->paths[0];
    EXPECT_TRUE(tri.closed);
    ASSERT_EQ(tri.pieces.size(), 3u);
    EXPECT_NEAR(tri.pieces[0].points[0].x, 20 * kMm, 1e-9);
    EXPECT_NEAR(tri.pieces[2].points[1].y, 20 * kMm, 1e-9);
    const Box rect = bounds(d->paths[1]);
    EXPECT_TRUE(d->paths[1].closed);
    EXPECT_EQ(d->paths[1].pieces.size(), 4u);
    EXPECT_NEAR(rect.maxX - rect.minX, 10 * kMm, 1e-9);
    EXPECT_NEAR(d->paths[2].pieces[0].points[0].x, 100 * kMm, 1e-9);
    EXPECT_NEAR(d->paths[2].pieces[0].points[1].x, 172 * kMm, 1e-9);
    EXPECT_NEAR(d->paths[10].pieces[0].points[0].y, 80 * kMm, 1e-9);
}

TEST(PdfReader, ContentOperatorsFormsAndStreamsAsWrittenOrCompressed) {
    const std::string plain = drawingPdf();
    expectDrawingPage(readPdfBytes(plain, "p.pdf"));
    const std::string compressed = rewritten(plain, false);
    EXPECT_NE(compressed.find("/FlateDecode"), std::string::npos);
    expectDrawingPage(readPdfBytes(compressed, "p.pdf"));
    // A wrong cross-reference offset is repaired by qpdf.
    std::string damaged = plain;
    damaged.replace(damaged.rfind("startxref\n") + 10, 3, "999");
    expectDrawingPage(readPdfBytes(damaged, "p.pdf"));
}

TEST(PdfReader, RefusalsSaySentences) {
    const std::string noPages =
        pdfFile({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [] /Count 0 >>"});
    const std::string textOnly =
        onePage("4 0 R", "<< >>", {stream("", "BT /F1 12 Tf 72 72 Td (Hello m l) Tj ET")});
    const std::pair<std::string, std::string> cases[] = {
        {noPages, "x.pdf has no pages."},
        {textOnly, "x.pdf has no vector paths on its first page."},
        {"%PDF-1.4\nnothing here at all\n", "x.pdf has no PDF objects I can read."},
        {rewritten(drawingPdf(), true),
         "x.pdf is encrypted, and I can't open it without its password."},
    };
    for (const auto& [bytes, message] : cases) {
        const Result<ImportedDrawing> r = readPdfBytes(bytes, "x.pdf");
        ASSERT_FALSE(r.ok());
        EXPECT_EQ(r.error(), message);
    }
    EXPECT_EQ(readPdf("/nonexistent/x.pdf").error(), "Couldn't open /nonexistent/x.pdf");
}

class RsvgPdf : public ::testing::Test {
protected:
    std::string make(const std::string& name, const std::string& svg) {
        const std::filesystem::path dir = std::filesystem::temp_directory_path();
        const std::string in = (dir / (name + ".svg")).string();
        const std::string out = (dir / (name + ".pdf")).string();
        std::ofstream(in) << svg;
        const std::string command = "rsvg-convert -f pdf -o '" + out + "' '" + in + "'";
        if (std::system(command.c_str()) != 0) return {};
        return out;
    }
};

TEST_F(RsvgPdf, SizesComeOutInMillimetres) {
    const std::string pdf = make(
        "korvel-dxfpdf-shapes",
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="100mm" height="50mm" viewBox="0 0 100 50">)"
        R"(<rect x="10" y="10" width="30" height="20" fill="none" stroke="black"/>)"
        R"(<circle cx="70" cy="25" r="10" fill="red"/></svg>)");
    if (pdf.empty()) GTEST_SKIP() << "rsvg-convert is not installed";
    const Result<ImportedDrawing> d = readPdfOrIllustrator(pdf);
    ASSERT_TRUE(d.ok()) << d.error();
    ASSERT_EQ(d->paths.size(), 2u);
    const Box rect = bounds(d->paths[0]);
    EXPECT_NEAR(rect.maxX - rect.minX, 30, 0.01);
    EXPECT_NEAR(rect.maxY - rect.minY, 20, 0.01);
    EXPECT_NEAR(rect.maxY, 40, 0.01); // SVG's y = 10 from the top of a 50 mm page
    const Box circle = bounds(d->paths[1]);
    EXPECT_NEAR(circle.maxX - circle.minX, 20, 0.01);
    EXPECT_EQ(d->paths[1].pieces[0].kind, PieceKind::Cubic);

    for (
        const char* body :
        {R"(<text x="10" y="30" font-size="12">Hello</text>)",
         R"(<image width="10" height="10" href="data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mP8z8BQDwAEhQGAhKmMIQAAAABJRU5ErkJggg=="/>)"}) {
        const std::string other = make(
            "korvel-dxfpdf-nopaths",
            std::string(R"(<svg xmlns="http://www.w3.org/2000/svg" width="100mm" height="50mm">)") +
                body + "</svg>");
        EXPECT_EQ(readPdf(other).error(), other + " has no vector paths on its first page.");
    }
}

TEST(IllustratorReader, PostScriptBodyPathsInMillimetres) {
    const std::string ai = "%!PS-Adobe-3.0\n%%Creator: Adobe Illustrator(R) 8.0\n"
                           "%%BeginProlog\n/m {moveto} def 0 0 m 9 9 l S\n%%EndSetup\r\n"
                           "72 72 m\n144 72 L\n144 144 l\nf\n"
                           "% 1 1 m 2 2 l S\n"
                           "0 0 m 10 0 10 10 0 10 c 5 5 20 20 v S\n"
                           "(string 3 3 m) pop 1 1 m 2 2 l n\n"
                           "%%Trailer\n5 5 m 6 6 l S\n";
    const Result<ImportedDrawing> d = readIllustratorPostScript(ai, "a.ai");
    ASSERT_TRUE(d.ok()) << d.error();
    ASSERT_EQ(d->paths.size(), 2u);
    EXPECT_TRUE(d->paths[0].closed);
    ASSERT_EQ(d->paths[0].pieces.size(), 3u);
    EXPECT_NEAR(d->paths[0].pieces[0].points[1].x, 50.8, 1e-9);
    EXPECT_NEAR(d->paths[0].pieces[2].points[1].y, 25.4, 1e-9);
    EXPECT_FALSE(d->paths[1].closed);
    ASSERT_EQ(d->paths[1].pieces.size(), 2u);
    const Piece& v = d->paths[1].pieces[1];
    EXPECT_EQ(v.kind, PieceKind::Cubic);
    EXPECT_NEAR(v.points[1].y, v.points[0].y, 1e-12); // "v": first control at the start
    EXPECT_NEAR(v.points[3].x, 20 * kMm, 1e-9);

    EXPECT_EQ(readIllustratorPostScript("%!PS-Adobe-3.0\n%%EndSetup\n1 1 m n\n", "e.ai").error(),
              "e.ai has no paths I can read (save it from Illustrator with \"Create PDF "
              "Compatible File\").");
}

TEST(IllustratorReader, ContentPicksTheReader) {
    EXPECT_TRUE(readPdfOrIllustratorBytes("junk before " + drawingPdf(), "a.ai").ok());
    EXPECT_TRUE(readPdfOrIllustratorBytes("%!PS-Adobe-2.0\n1 1 m 2 2 l S\n", "a.ai").ok());
    EXPECT_EQ(readPdfOrIllustratorBytes("GIF89a", "a.ai").error(),
              "a.ai isn't a PDF or Illustrator file I can read.");
    EXPECT_EQ(readIllustrator("/nonexistent/a.ai").error(), "Couldn't open /nonexistent/a.ai");
}

} // namespace
} // namespace cad::drawingimport
