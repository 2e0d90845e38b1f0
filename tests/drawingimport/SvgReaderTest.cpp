// The SVG reader: units, viewBox, transforms, use, exact arcs and circles, what is
// left out as invisible, and the sentences for what can't be read.
#include "sketch/drawingimport/svg/SvgReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace cad::drawingimport {
namespace {

constexpr double kTol = 1e-9;

std::string svg(const std::string& attributes, const std::string& body) {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" "
           "xmlns:xlink=\"http://www.w3.org/1999/xlink\" " +
           attributes + ">" + body + "</svg>";
}

ImportedDrawing read(const std::string& text) {
    Result<ImportedDrawing> drawing = readSvgText(text, "t.svg");
    EXPECT_TRUE(drawing.ok()) << (drawing ? "" : drawing.error());
    return drawing ? std::move(drawing).value() : ImportedDrawing{};
}

TEST(SvgReader, UnitsAndViewBoxGiveMillimetresWithYUp) {
    // 96 px to the inch; mm, cm, in and pt on shapes; y flipped.
    ImportedDrawing d = read(svg("width=\"10cm\" height=\"2in\"",
                                 "<line x1=\"0\" y1=\"0\" x2=\"96\" y2=\"0\" stroke=\"black\"/>"
                                 "<rect x=\"10mm\" y=\"1cm\" width=\"72pt\" height=\"1in\"/>"));
    ASSERT_EQ(d.paths.size(), 2u);
    EXPECT_NEAR(d.paths[0].pieces[0].points[1].x, 25.4, kTol);
    const Piece& top = d.paths[1].pieces[0];
    EXPECT_NEAR(top.points[0].x, 10, kTol);
    EXPECT_NEAR(top.points[0].y, -10, kTol);
    EXPECT_NEAR(top.points[1].x, 35.4, kTol);
    EXPECT_TRUE(d.paths[1].closed);
    EXPECT_NEAR(d.paths[1].pieces[1].points[1].y, -35.4, kTol);

    // A 200 x 100 mm page showing a 10-unit square viewBox: meet scales by 10 and
    // centres it; without a size the viewBox itself is in pixels.
    d = read(svg("width=\"200mm\" height=\"100mm\" viewBox=\"0 0 10 10\"",
                 "<rect width=\"10\" height=\"10\"/>"));
    EXPECT_NEAR(d.paths[0].pieces[0].points[0].x, 50, kTol);
    EXPECT_NEAR(d.paths[0].pieces[0].points[1].x, 150, kTol);
    EXPECT_NEAR(d.paths[0].pieces[1].points[1].y, -100, kTol);
    d = read(svg("viewBox=\"0 0 96 96\"", "<line x2=\"96\" y2=\"0\" stroke=\"red\"/>"));
    EXPECT_NEAR(d.paths[0].pieces[0].points[1].x, 25.4, kTol);
}

TEST(SvgReader, NestedTransformsAndUse) {
    const std::string mm = "width=\"100mm\" height=\"100mm\" viewBox=\"0 0 100 100\"";
    ImportedDrawing d = read(svg(mm, "<g transform=\"translate(50,50)\"><g transform=\"rotate(90) "
                                     "scale(2)\"><rect width=\"10\" height=\"5\"/>"
                                     "<circle cx=\"10\" r=\"3\"/></g></g>"));
    ASSERT_EQ(d.paths.size(), 2u);
    EXPECT_NEAR(d.paths[0].pieces[0].points[1].x, 50, kTol);
    EXPECT_NEAR(d.paths[0].pieces[0].points[1].y, -70, kTol);
    EXPECT_NEAR(d.paths[0].pieces[1].points[1].x, 40, kTol);
    const Piece& circle = d.paths[1].pieces[0];
    ASSERT_EQ(circle.kind, PieceKind::Circle);
    EXPECT_NEAR(circle.center.x, 50, kTol);
    EXPECT_NEAR(circle.center.y, -70, kTol);
    EXPECT_NEAR(circle.radius, 6, kTol);

    // use by xlink:href and by plain href, with x/y and a transform; a use of itself stops.
    d = read(svg(mm, "<defs><circle id=\"dot\" r=\"5\"/></defs>"
                     "<use xlink:href=\"#dot\" x=\"20\" y=\"20\"/>"
                     "<use href=\"#dot\" transform=\"translate(60,20) scale(2)\"/>"
                     "<g id=\"loop\"><use href=\"#loop\"/><use href=\"#dot\"/></g>"));
    ASSERT_EQ(d.paths.size(), 4u);
    EXPECT_NEAR(d.paths[0].pieces[0].center.x, 20, kTol);
    EXPECT_NEAR(d.paths[0].pieces[0].center.y, -20, kTol);
    EXPECT_NEAR(d.paths[1].pieces[0].center.x, 60, kTol);
    EXPECT_NEAR(d.paths[1].pieces[0].radius, 10, kTol);
}

TEST(SvgReader, ArcsStayExactUnlessTransformedOutOfRound) {
    const std::string mm = "width=\"100mm\" height=\"100mm\" viewBox=\"0 0 100 100\"";
    // Relative arc, smooth cubic and quadratic shorthands, H and V.
    ImportedDrawing d = read(svg(
        mm, "<path fill=\"none\" stroke=\"#000\" d=\"M10 50 A20 20 0 0 1 50 50 a20 20 0 1 1 40 0 "
            "h-10 v10 c0 5 5 5 5 0 s5 -5 5 0 q5 5 10 0 t10 0 z\"/>"));
    ASSERT_EQ(d.paths.size(), 1u);
    const auto& p = d.paths[0].pieces;
    ASSERT_EQ(p[0].kind, PieceKind::Arc);
    EXPECT_NEAR(p[0].center.x, 30, kTol);
    EXPECT_NEAR(p[0].center.y, -50, kTol);
    EXPECT_NEAR(p[0].radius, 20, kTol);
    EXPECT_NEAR(std::abs(p[0].sweepAngle), 180, 1e-9);
    EXPECT_LT(p[0].sweepAngle, 0); // clockwise once y points up
    EXPECT_EQ(p[1].kind, PieceKind::Arc);
    EXPECT_NEAR(p[1].center.x, 70, kTol);
    EXPECT_EQ(p[2].kind, PieceKind::Segment);
    EXPECT_NEAR(p[3].points[1].y, -60, kTol);
    ASSERT_EQ(p[5].kind, PieceKind::Cubic);
    EXPECT_NEAR(p[5].points[1].x, p[4].points[3].x * 2 - p[4].points[2].x, kTol); // reflected
    ASSERT_EQ(p[7].kind, PieceKind::Quadratic);
    EXPECT_NEAR(p[7].points[1].y, -55, kTol); // the control point reflected
    EXPECT_TRUE(d.paths[0].closed);
    for (std::size_t k = 1; k < p.size(); ++k) { // each piece starts where the last ended
        if (p[k].kind == PieceKind::Arc || p[k - 1].kind == PieceKind::Arc) continue;
        EXPECT_NEAR(p[k].points.front().x, p[k - 1].points.back().x, kTol);
    }

    // Uniformly scaled and rotated: still an arc; stretched: cubics (one per quarter).
    d = read(svg(mm, "<path transform=\"rotate(30) scale(2)\" d=\"M0 0 A5 5 0 0 1 10 0\"/>"
                     "<path transform=\"scale(2 1)\" d=\"M0 0 A5 5 0 0 1 10 0\"/>"
                     "<ellipse cx=\"50\" cy=\"50\" rx=\"10\" ry=\"5\"/>"));
    EXPECT_EQ(d.paths[0].pieces[0].kind, PieceKind::Arc);
    EXPECT_NEAR(d.paths[0].pieces[0].radius, 10, kTol);
    ASSERT_EQ(d.paths[1].pieces.size(), 2u);
    EXPECT_EQ(d.paths[1].pieces[0].kind, PieceKind::Cubic);
    EXPECT_EQ(d.paths[2].pieces.size(), 4u);

    // Mirrored, the arc turns the other way: over the top from (0, 0) to (-10, 0).
    d = read(svg(mm, "<path transform=\"scale(-1 1)\" d=\"M0 0 A5 5 0 0 1 10 0\"/>"));
    const Piece& mirrored = d.paths[0].pieces[0];
    EXPECT_NEAR(mirrored.center.x, -5, kTol);
    EXPECT_NEAR(mirrored.startAngle, 0, kTol);
    EXPECT_NEAR(mirrored.sweepAngle, 180, 1e-9);
}

TEST(SvgReader, OnlyVisibleShapes) {
    const std::string hidden = "<rect width=\"5\" height=\"5\" style=\"display:none\"/>"
                               "<g display=\"none\"><circle r=\"3\" stroke=\"red\"/></g>"
                               "<circle r=\"4\" fill=\"none\"/>"
                               "<symbol id=\"s\"><circle r=\"7\"/></symbol>";
    Result<ImportedDrawing> none = readSvgText(svg("", hidden), "/x/none.svg");
    ASSERT_FALSE(none.ok());
    EXPECT_EQ(none.error(), "/x/none.svg has no visible shapes.");

    // Stroked under an unfilled group, and filled black by default despite attributes
    // and properties the reader doesn't know.
    ImportedDrawing d =
        read(svg("", hidden + "<g fill=\"none\"><circle r=\"6\" style=\"stroke: blue\"/></g>"
                              "<circle r=\"2\" foo=\"bar\" style=\"mix-blend-mode: x\"/>"));
    ASSERT_EQ(d.paths.size(), 2u);
    EXPECT_NEAR(d.paths[0].pieces[0].radius, 6 * 25.4 / 96, kTol);

    // Markup inside comments and CDATA isn't nesting.
    std::string comments;
    for (int i = 0; i < 300; ++i) comments += "<!-- <g> --><style><![CDATA[ <g> ]]></style>";
    EXPECT_EQ(read(svg("", comments + "<circle r=\"1\"/>")).paths.size(), 1u);
}

TEST(SvgReader, RefusesWhatIsNotSvg) {
    std::string deep = "<svg>";
    for (int i = 0; i < 300; ++i) deep += "<g>";
    for (const std::string& text : {std::string("hello"), std::string("<html><body/></html>"),
                                    std::string("<svg><g>"), std::string(), deep}) {
        Result<ImportedDrawing> d = readSvgText(text, "p.svg");
        ASSERT_FALSE(d.ok()) << text.substr(0, 40);
        EXPECT_EQ(d.error(), "p.svg isn't an SVG drawing I can read.");
    }
    EXPECT_EQ(readSvg("/nonexistent/a.svg").error(), "Couldn't open /nonexistent/a.svg");
}

} // namespace
} // namespace cad::drawingimport
