// Glyph outlines as geometry: every contour closed and simple (one region of its own,
// checked by the region builder), the regions' area equal to what FreeType reads from
// the font file, and lettering that extrudes to one valid body of the right height.
#include "TextTestSupport.h"

#include "sketch/text/FontLibrary.h"

#include <BRepCheck_Analyzer.hxx>

using namespace cad;
using namespace cad::testing;

namespace {

using TextGeometry = TextModel;

TEST(GlyphGeometry, EveryContourIsClosedAndSimple) {
    SketchText t = words("Hello, gB@8 ÆØ%");
    t.italic = true;
    t.angle = 17;
    const std::vector<Contour> contours = laidOut(t);
    ASSERT_GT(contours.size(), 20u);
    for (std::size_t i = 0; i < contours.size(); ++i) {
        const Contour& c = contours[i];
        ASSERT_FALSE(c.pieces.empty());
        // End to end, and back to the start.
        for (std::size_t k = 0; k < c.pieces.size(); ++k) {
            const Point2 end = c.pieces[k].end();
            const Point2 next = c.pieces[(k + 1) % c.pieces.size()].start();
            ASSERT_LT(std::hypot(end.x - next.x, end.y - next.y), 1e-9) << "contour " << i;
        }
        // Alone, a simple loop bounds exactly one region, of the loop's own area; a
        // loop that crossed itself would make two or more.
        Result<geometry::Profile> alone =
            geometry::buildSketchRegions(gp_Ax3(), edgesOf({c}), false);
        ASSERT_TRUE(alone.ok()) << "contour " << i << ": " << alone.error();
        ASSERT_EQ(alone->faces.size(), 1u) << "contour " << i;
        EXPECT_NEAR(faceArea(alone->faces.front()), std::fabs(signedArea(c)),
                    1e-4 * std::fabs(signedArea(c)) + 1e-9)
            << "contour " << i;
    }
}

TEST(GlyphGeometry, RegionsEncloseTheAreaFreeTypeReadsFromTheFont) {
    auto font = text::loadFont("Liberation Sans", false, false);
    ASSERT_TRUE(font.ok()) << font.error();
    for (char32_t c : {U'B', U'g', U'8'}) {
        const FreeTypeArea expected = freeTypeArea((*font)->file(), c);
        ASSERT_GT(expected.area, 0) << static_cast<char>(c);

        SketchText glyph = words(std::string(1, static_cast<char>(c)));
        glyph.font = "Liberation Sans";
        glyph.sizeIs = TextSizeIs::FontSize; // 10 mm to the em
        glyph.position = {-3, 2};
        Result<geometry::Profile> regions =
            geometry::buildSketchRegions(gp_Ax3(), edgesOf(laidOut(glyph)), false);
        ASSERT_TRUE(regions.ok()) << regions.error();
        double area = 0;
        for (const TopoDS_Face& face : regions->faces) area += faceArea(face);
        const double scale = 10 / expected.unitsPerEm;
        EXPECT_NEAR(area, expected.area * scale * scale, 2e-5 * area) << static_cast<char>(c);
    }
}

TEST_F(TextGeometry, HelloExtrudesToOneValidBodyAsTallAsTheCapHeight) {
    ok("add_text", {{"sketch", "Sketch1"}, {"text", "HELLO"}, {"height", 10}});
    EXPECT_EQ(ok("extrude", {{"sketch", "Sketch1"}, {"distance", 2}}),
              "Created Body1 with Extrude1.");
    GeometryObject* made = body("Body1");
    ASSERT_NE(made, nullptr);
    const TopoDS_Shape& shape = made->shape.shape();
    EXPECT_TRUE(BRepCheck_Analyzer(shape).IsValid());
    EXPECT_EQ(count(shape, TopAbs_SOLID), 5); // H, E, L, L and O (its hole inside it)
    const std::array<double, 6> b = bounds(shape);
    EXPECT_NEAR(b[4] - b[1], 10, 0.1);
    EXPECT_NEAR(b[5] - b[2], 2, 1e-6);

    // The body follows the text when it changes.
    ok("edit_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Text1"}, {"height", 20}});
    EXPECT_NEAR(bounds(body("Body1")->shape.shape())[4] - bounds(body("Body1")->shape.shape())[1],
                20, 0.2);
}

} // namespace
