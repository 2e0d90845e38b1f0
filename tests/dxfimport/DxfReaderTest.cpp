// The DXF reader on hand-written files: units, bulges, arcs across zero, block
// references, mirrored entities, splines, ellipses, texts and damaged input.
#include "sketch/drawingimport/dxf/DxfReader.h"
#include "tests/dxfimport/DxfTestFiles.h"

#include <gtest/gtest.h>

#include <cmath>

namespace cad::drawingimport {
namespace {

using test::entitiesFile;
using test::lines;

ImportedDrawing read(const std::string& text) {
    Result<ImportedDrawing> r = readDxfText(text, "t.dxf");
    EXPECT_TRUE(r.ok()) << r.error();
    return r.ok() ? std::move(r).value() : ImportedDrawing{};
}

Vec2 endOf(const Piece& p) {
    if (p.kind != PieceKind::Arc) return p.points.back();
    const double a = (p.startAngle + p.sweepAngle) * M_PI / 180;
    return {p.center.x + p.radius * std::cos(a), p.center.y + p.radius * std::sin(a)};
}
Vec2 startOf(const Piece& p) {
    if (p.kind != PieceKind::Arc) return p.points.front();
    const double a = p.startAngle * M_PI / 180;
    return {p.center.x + p.radius * std::cos(a), p.center.y + p.radius * std::sin(a)};
}

#define EXPECT_AT(p, X, Y)                                                                         \
    do {                                                                                           \
        EXPECT_NEAR((p).x, X, 1e-9);                                                               \
        EXPECT_NEAR((p).y, Y, 1e-9);                                                               \
    } while (0)

TEST(DxfReader, HeaderUnitsScaleToMillimetres) {
    const std::pair<int, double> table[] = {{1, 25.4}, {2, 304.8},   {4, 1},      {5, 10},
                                            {6, 1000}, {8, 2.54e-5}, {9, 0.0254}, {10, 914.4},
                                            {14, 100}, {0, 1},       {3, 1},      {99, 1}};
    for (const auto& [code, mm] : table) {
        const ImportedDrawing d = read(entitiesFile(test::line(1, 2, 2, 2), {}, code));
        ASSERT_EQ(d.paths.size(), 1u);
        EXPECT_AT(d.paths[0].pieces[0].points[0], mm, 2 * mm);
        EXPECT_AT(d.paths[0].pieces[0].points[1], 2 * mm, 2 * mm);
    }
    EXPECT_AT(read(entitiesFile(test::line(0, 0, 3, 0))).paths[0].pieces[0].points[1], 3, 0);
}

TEST(DxfReader, PolylineBulgesBecomeArcsThatJoinTheirNeighbours) {
    // A 10 x 10 square whose right side bulges out into a half circle, closed by flag 1.
    const std::string lw =
        lines({"0",  "LWPOLYLINE", "90", "4",  "70", "1",  "10", "0",  "20", "0", "10", "10",
               "20", "0",          "42", "-1", "10", "10", "20", "10", "10", "0", "20", "10"});
    const ImportedDrawing d = read(entitiesFile(lw));
    ASSERT_EQ(d.paths.size(), 1u);
    const DrawingPath& path = d.paths[0];
    EXPECT_TRUE(path.closed);
    ASSERT_EQ(path.pieces.size(), 4u);
    const Piece& arc = path.pieces[1];
    ASSERT_EQ(arc.kind, PieceKind::Arc);
    EXPECT_AT(arc.center, 10, 5);
    EXPECT_NEAR(arc.radius, 5, 1e-9);
    EXPECT_NEAR(arc.sweepAngle, -180, 1e-9); // negative bulge: clockwise, out to x = 15
    for (std::size_t i = 0; i < 4; ++i) {
        const Vec2 end = endOf(path.pieces[i]);
        const Vec2 next = startOf(path.pieces[(i + 1) % 4]);
        EXPECT_NEAR(end.x, next.x, 1e-9) << i;
        EXPECT_NEAR(end.y, next.y, 1e-9) << i;
    }

    // The same outline as POLYLINE and VERTEX records; a quarter bulge (tan 22.5 degrees).
    const std::string poly = lines({"0",      "POLYLINE", "66", "1",  "70", "0",  "0",
                                    "VERTEX", "10",       "0",  "20", "0",  "42", "0.41421356237",
                                    "0",      "VERTEX",   "10", "10", "20", "0",  "0",
                                    "VERTEX", "10",       "10", "20", "10", "0",  "SEQEND"});
    const ImportedDrawing p = read(entitiesFile(poly));
    ASSERT_EQ(p.paths.size(), 1u);
    EXPECT_FALSE(p.paths[0].closed);
    ASSERT_EQ(p.paths[0].pieces.size(), 2u);
    EXPECT_NEAR(p.paths[0].pieces[0].sweepAngle, 90, 1e-6);
    // Counter-clockwise while heading along +x: the arc dips below, its centre above.
    EXPECT_NEAR(p.paths[0].pieces[0].center.x, 5, 1e-6);
    EXPECT_NEAR(p.paths[0].pieces[0].center.y, 5, 1e-6);

    // A polyface mesh is 3D and is left out.
    const std::string mesh = lines({"0", "POLYLINE", "70", "64", "0", "VERTEX", "10", "0", "20",
                                    "0", "0", "VERTEX", "10", "1", "20", "1", "0", "SEQEND"});
    EXPECT_FALSE(readDxfText(entitiesFile(mesh), "m.dxf").ok());
}

TEST(DxfReader, ArcsRunCounterClockwiseAcrossZero) {
    const std::string arc =
        lines({"0", "ARC", "10", "1", "20", "1", "40", "2", "50", "350", "51", "10"});
    const Piece p = read(entitiesFile(arc)).paths[0].pieces[0];
    EXPECT_EQ(p.kind, PieceKind::Arc);
    EXPECT_NEAR(p.sweepAngle, 20, 1e-9);
    EXPECT_NEAR(std::fmod(p.startAngle + 360, 360), 350, 1e-9);
    // Equal start and end angles close the circle.
    const std::string full = lines({"0", "ARC", "40", "2", "50", "30", "51", "30"});
    EXPECT_EQ(read(entitiesFile(full)).paths[0].pieces[0].kind, PieceKind::Circle);
}

TEST(DxfReader, InsertsPlaceBlocksByBasePointScaleRotationAndArray) {
    const std::string blocks = test::block("part", 1, 1, test::line(1, 1, 2, 1));
    const std::string insert =
        lines({"0", "INSERT", "2",  "PART", "10", "10", "20", "20", "41", "2",  "42",
               "3", "50",     "90", "70",   "2",  "71", "3",  "44", "5",  "45", "7"});
    const ImportedDrawing d = read(entitiesFile(insert, blocks));
    ASSERT_EQ(d.paths.size(), 6u);
    // Column and row gaps run along the block's rotated axes and are not scaled.
    EXPECT_AT(d.paths[0].pieces[0].points[0], 10, 20);
    EXPECT_AT(d.paths[0].pieces[0].points[1], 10, 22);
    EXPECT_AT(d.paths[1].pieces[0].points[0], 10, 25);
    EXPECT_AT(d.paths[2].pieces[0].points[0], 3, 20);
    EXPECT_AT(d.paths[5].pieces[0].points[1], -4, 27);
}

TEST(DxfReader, NestedInsertsStopAtSixteenLevelsAndMissingBlocksAreSkipped) {
    const std::string blocks = test::block(
        "Loop", 0, 0,
        test::line(0, 0, 1, 0) + lines({"0", "INSERT", "2", "loop", "10", "0", "20", "1"}));
    const std::string top = lines({"0", "INSERT", "2", "LOOP", "0", "INSERT", "2", "Missing"});
    const ImportedDrawing d = read(entitiesFile(top, blocks));
    ASSERT_EQ(d.paths.size(), 16u);
    EXPECT_AT(d.paths[15].pieces[0].points[0], 0, 15);
    // Arrays of arrays that would expand past what anyone could draw are refused.
    const std::string wide = lines({"0", "INSERT", "2", "W", "70", "30000", "71", "30000"});
    const std::string many = test::block("W", 0, 0, test::line(0, 0, 1, 0) + wide);
    const Result<ImportedDrawing> big = readDxfText(entitiesFile(wide, many), "big.dxf");
    ASSERT_FALSE(big.ok());
    EXPECT_EQ(big.error(), "big.dxf has too many pieces to import.");
}

TEST(DxfReader, NegativeExtrusionMirrorsObjectCoordinates) {
    const std::string arc = lines({"0", "ARC", "10", "5", "20", "0", "40", "1", "50", "0", "51",
                                   "90", "210", "0", "220", "0", "230", "-1"});
    const Piece p = read(entitiesFile(arc)).paths[0].pieces[0];
    ASSERT_EQ(p.kind, PieceKind::Arc);
    EXPECT_AT(p.center, -5, 0);
    EXPECT_AT(startOf(p), -6, 0);
    EXPECT_AT(endOf(p), -5, 1);
    // Lines and ellipses carry world coordinates: the line stays, the ellipse turns
    // clockwise, so its quarter from the major axis ends below the centre.
    const std::string world =
        lines({"0",   "LINE", "10",  "1",   "20", "2",       "11", "3",
               "21",  "4",    "230", "-1",  "0",  "ELLIPSE", "11", "10",
               "21",  "0",    "40",  "0.5", "41", "0",       "42", "1.5707963267948966",
               "230", "-1"});
    const ImportedDrawing w = read(entitiesFile(world));
    EXPECT_AT(w.paths[0].pieces[0].points[0], 1, 2);
    EXPECT_AT(w.paths[1].pieces[0].points.front(), 10, 0);
    EXPECT_AT(w.paths[1].pieces[0].points.back(), 0, -5);
    // A mirrored block reference mirrors what it inserts.
    const std::string blocks = test::block("B", 0, 0, test::line(1, 0, 2, 0));
    const std::string insert = lines({"0", "INSERT", "2", "B", "10", "3", "20", "0", "230", "-1"});
    const Piece l = read(entitiesFile(insert, blocks)).paths[0].pieces[0];
    EXPECT_AT(l.points[0], -4, 0);
    EXPECT_AT(l.points[1], -5, 0);
}

TEST(DxfReader, SplinesKeepFitPointsOrFollowTheirControlPoints) {
    const std::string fit = lines({"0", "SPLINE", "70", "8", "71", "3", "11", "0", "21", "0", "11",
                                   "1", "21", "1", "11", "2", "21", "0"});
    const Piece f = read(entitiesFile(fit)).paths[0].pieces[0];
    EXPECT_EQ(f.kind, PieceKind::Spline);
    EXPECT_EQ(f.points.size(), 3u);

    // A quadratic Bezier from (0,0) over (1,2) to (2,0) lies on y = 2x - x^2.
    const std::string bezier =
        lines({"0",  "SPLINE", "71", "2", "40", "0", "40", "0", "40", "0", "40", "1", "40", "1",
               "40", "1",      "10", "0", "20", "0", "10", "1", "20", "2", "10", "2", "20", "0"});
    const Piece b = read(entitiesFile(bezier)).paths[0].pieces[0];
    ASSERT_EQ(b.kind, PieceKind::Polyline);
    EXPECT_GE(b.points.size(), 16u);
    EXPECT_AT(b.points.front(), 0, 0);
    EXPECT_AT(b.points.back(), 2, 0);
    for (const Vec2& q : b.points) EXPECT_NEAR(q.y, 2 * q.x - q.x * q.x, 1e-9);

    // Weights make a rational quarter circle; a knot count that does not fit is replaced.
    for (const char* knots : {"40\n0\n40\n0\n40\n0\n40\n1\n40\n1\n40\n1\n", "40\n0\n40\n5\n"}) {
        const std::string rational =
            lines({"0", "SPLINE", "71", "2"}) + knots +
            lines({"10", "1", "20", "0", "41", "1", "10", "1", "20", "1", "41",
                   "0.70710678118654757", "10", "0", "20", "1", "41", "1"});
        const Piece r = read(entitiesFile(rational)).paths[0].pieces[0];
        EXPECT_AT(r.points.front(), 1, 0);
        EXPECT_AT(r.points.back(), 0, 1);
        for (const Vec2& q : r.points) EXPECT_NEAR(std::hypot(q.x, q.y), 1, 1e-9);
    }
}

TEST(DxfReader, EllipsesAreSampledOnTheCurveAndFullOnesClose) {
    const std::string full =
        lines({"0", "ELLIPSE", "10", "1", "20", "1", "11", "0", "21", "10", "40", "0.5"});
    const DrawingPath e = read(entitiesFile(full)).paths[0];
    EXPECT_TRUE(e.closed);
    const Piece& p = e.pieces[0];
    ASSERT_EQ(p.kind, PieceKind::Polyline);
    EXPECT_GE(p.points.size(), 32u);
    EXPECT_EQ(p.points.front().x, p.points.back().x);
    EXPECT_EQ(p.points.front().y, p.points.back().y);
    for (const Vec2& q : p.points) {
        // Major axis along y (length 10), minor along x (length 5).
        const double dx = (q.x - 1) / 5, dy = (q.y - 1) / 10;
        EXPECT_NEAR(dx * dx + dy * dy, 1, 1e-9);
    }
    const std::string quarter = lines({"0", "ELLIPSE", "11", "10", "21", "0", "40", "0.5", "41",
                                       "0", "42", "1.5707963267948966"});
    const DrawingPath q = read(entitiesFile(quarter)).paths[0];
    EXPECT_FALSE(q.closed);
    EXPECT_AT(q.pieces[0].points.front(), 10, 0);
    EXPECT_AT(q.pieces[0].points.back(), 0, 5);
}

TEST(DxfReader, TextsLoseTheirFormattingCodes) {
    const std::string text = lines({"0", "TEXT", "10", "1", "20", "2", "40", "2.5", "50", "30", "1",
                                    "%%d45 %%p1 %%c8 %%uA%%u \xB0"});
    const std::string mtext =
        lines({"0", "MTEXT", "10", "0", "20", "10", "40", "2", "71", "7", "3", "{\\fArial|b1;Hel",
               "1", "lo}\\PWorld\\~\\S1^2; \\\\ \\U+00E9"});
    const ImportedDrawing d = read(entitiesFile(text + mtext));
    ASSERT_EQ(d.texts.size(), 2u);
    EXPECT_EQ(d.texts[0].text, "\xC2\xB0"
                               "45 \xC2\xB1"
                               "1 \xE2\x8C\x80"
                               "8 A \xC2\xB0");
    EXPECT_AT(d.texts[0].position, 1, 2);
    EXPECT_NEAR(d.texts[0].height, 2.5, 1e-12);
    EXPECT_NEAR(d.texts[0].rotation, 30, 1e-9);
    EXPECT_EQ(d.texts[1].text, "Hello\nWorld 1/2 \\ \xC3\xA9");
    // Attached at the bottom: the first of two lines sits one line gap above it.
    EXPECT_AT(d.texts[1].position, 0, 10 + 2 * 5.0 / 3.0);
}

TEST(DxfReader, DamagedInputGetsASentence) {
    // CR LF line ends, spaces around codes and no EOF still read.
    const std::string loose = " 0\r\nSECTION\r\n  2\r\nENTITIES\r\n  0\r\nLINE\r\n 10\r\n1\r\n "
                              "20\r\n2\r\n 11\r\n3\r\n 21\r\n4";
    EXPECT_AT(read(loose).paths[0].pieces[0].points[1], 3, 4);

    const std::string badNumbers =
        test::line(0, 0, 1, 1) +
        lines({"0",  "LINE",   "10", "nan", "0", "LINE",       "11", "1e999",
               "0",  "CIRCLE", "40", "inf", "0", "LWPOLYLINE", "90", "999999999999",
               "10", "0",      "20", "x"});
    EXPECT_EQ(read(entitiesFile(badNumbers)).paths.size(), 1u);

    const std::pair<std::string, std::string> refused[] = {
        {"AutoCAD Binary DXF\r\n\x1a", "Binary DXF isn't supported; save it as ASCII DXF."},
        {"hello\nworld\n", "This doesn't look like an ASCII DXF file."},
        {"", "This doesn't look like an ASCII DXF file."},
        {entitiesFile(lines({"0", "HATCH", "10", "1"})), "e.dxf has no geometry I can import."}};
    for (const auto& [bytes, message] : refused) {
        const Result<ImportedDrawing> r = readDxfText(bytes, "e.dxf");
        ASSERT_FALSE(r.ok());
        EXPECT_EQ(r.error(), message);
    }
    EXPECT_EQ(readDxf("/nonexistent/x.dxf").error(), "Couldn't open /nonexistent/x.dxf");
}

} // namespace
} // namespace cad::drawingimport
