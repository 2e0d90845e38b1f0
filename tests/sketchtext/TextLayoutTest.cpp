// Text layout measured from the contours it makes: sizes (cap height, em, points),
// lines and alignment (justify puts a line's shortfall into its spaces), spacing
// options, fonts that are and aren't installed, and text following an arc.
#include "TextTestSupport.h"

#include "sketch/text/FontLibrary.h"

#include <numbers>

using namespace cad;
using namespace cad::testing;

namespace {

using TextLayoutModel = TextModel;

TEST(TextLayout, CapHeightEmAndVerticalAlignment) {
    // Capitals, round ones included, span the cap height.
    const Box capitals = boxOf(laidOut(words("HOSE")));
    EXPECT_NEAR(capitals.height(), 10, 1e-6);

    // Sized by the em, as a word processor does, capitals come out shorter.
    SketchText em = words("HOSE");
    em.sizeIs = TextSizeIs::FontSize;
    const Box byEm = boxOf(laidOut(em));
    EXPECT_LT(byEm.height(), 9.0);
    EXPECT_GT(byEm.height(), 5.0);

    // Top puts the cap line at the position's y, middle the capitals' middle.
    SketchText top = words("HOSE");
    top.position = {3, 7};
    top.valign = TextVAlign::Top;
    EXPECT_NEAR(boxOf(laidOut(top)).ymax, 7, 1e-6);
    top.valign = TextVAlign::Middle;
    EXPECT_NEAR(boxOf(laidOut(top)).middle().y, 7, 1e-6);
    top.valign = TextVAlign::Bottom; // the descender line: capitals stand above y
    EXPECT_GT(boxOf(laidOut(top)).ymin, 7 + 1);

    // Width and height scales stretch the letters about the position.
    SketchText wide = words("HOSE");
    wide.widthScale = 200;
    wide.heightScale = 50;
    const Box stretched = boxOf(laidOut(wide));
    EXPECT_NEAR(stretched.height(), 5, 1e-6);
    EXPECT_NEAR(stretched.width(), 2 * capitals.width(), 0.05 * capitals.width());
}

TEST(TextLayout, LinesAreLineSpacingPercentOfTheFontSizeApart) {
    SketchText two = words("H\nH");
    two.sizeIs = TextSizeIs::FontSize; // height is the em
    std::vector<Contour> contours = laidOut(two);
    EXPECT_NEAR(boxOf(contours, 0).ymin - boxOf(contours, 2).ymin, 12, 1e-6);
    EXPECT_NEAR(boxOf(contours, 0).xmin, boxOf(contours, 2).xmin, 1e-9);

    two.lineSpacing = 150;
    two.sizeIs = TextSizeIs::CapHeight;
    auto layout = text::layoutText(two, nullptr, text::FontChoice::Strict);
    ASSERT_TRUE(layout.ok());
    contours = (*layout)->contours;
    EXPECT_NEAR(boxOf(contours, 0).ymin - boxOf(contours, 2).ymin, 1.5 * (*layout)->fontSize, 1e-6);
}

TEST(TextLayout, JustifyFillsTheShortfallOfTheFirstLineIntoItsOneSpace) {
    // Line widths from where right alignment puts each line against left alignment.
    auto lines = [](TextAlign align) {
        SketchText t = words("A B\nAVENUE");
        t.align = align;
        return laidOut(t);
    };
    const std::vector<Contour> left = lines(TextAlign::Left), right = lines(TextAlign::Right),
                               center = lines(TextAlign::Center),
                               justify = lines(TextAlign::Justify);
    const int a = 0, b = 2, second = 4; // letter indices as written ("\n" is 3)
    const double width1 = boxOf(left, a).xmin - boxOf(right, a).xmin;
    const double width2 = boxOf(left, second).xmin - boxOf(right, second).xmin;
    ASSERT_GT(width2, width1 + 5);

    EXPECT_NEAR(boxOf(justify, a).xmin, boxOf(left, a).xmin, 1e-9);
    EXPECT_NEAR(boxOf(justify, b).xmin - boxOf(left, b).xmin, width2 - width1, 1e-6);
    EXPECT_NEAR(boxOf(justify, second).xmin, boxOf(left, second).xmin, 1e-9); // the last line
    EXPECT_NEAR(boxOf(justify, second + 5).xmax, boxOf(left, second + 5).xmax, 1e-9);

    // Centred lines sit half their width back from the position.
    EXPECT_NEAR(boxOf(left, a).xmin - boxOf(center, a).xmin, width1 / 2, 1e-6);
    EXPECT_NEAR(boxOf(left, second).xmin - boxOf(center, second).xmin, width2 / 2, 1e-6);
}

TEST(TextLayout, SpacingCapitalsAndTurns) {
    auto width = [](SketchText t) { return boxOf(laidOut(std::move(t))).width(); };
    SketchText av = words("AVAV");
    const double kerned = width(av);
    av.kerning = false;
    EXPECT_GT(width(av), kerned + 0.1); // A and V tuck into each other only when kerned
    av.kerning = true;
    av.tracking = 100; // a tenth of an em after each of the three first letters
    auto layout = text::layoutText(av, nullptr, text::FontChoice::Strict);
    ASSERT_TRUE(layout.ok());
    EXPECT_NEAR(width(av) - kerned, 3 * 0.1 * (*layout)->fontSize, 1e-6);

    SketchText lower = words("sketch"), upper = words("SKETCH");
    lower.allCaps = true;
    EXPECT_NEAR(boxOf(laidOut(lower)).width(), boxOf(laidOut(upper)).width(), 1e-9);

    // Turned a quarter about its position the text runs up the y axis.
    SketchText turned = words("HOSE");
    turned.position = {5, 5};
    turned.angle = 90;
    const Box up = boxOf(laidOut(turned)), flat = boxOf(laidOut(words("HOSE")));
    EXPECT_NEAR(up.height(), flat.width(), 1e-6);
    EXPECT_NEAR(up.xmax, 5 - flat.ymin, 1e-6);

    // A raised baseline lifts every letter; a turned letter keeps its place in line.
    SketchText raised = words("HOSE");
    raised.baselineShift = 2.5;
    EXPECT_NEAR(boxOf(laidOut(raised)).ymin, flat.ymin + 2.5, 1e-6);
    SketchText spun = words("I");
    spun.charRotation = 90;
    const Box lying = boxOf(laidOut(spun)), standing = boxOf(laidOut(words("I")));
    EXPECT_NEAR(lying.width(), standing.height(), 1e-6);
}

TEST(TextLayout, FontsMissingAndStandIns) {
    SketchText missing = words("Hello");
    missing.font = "Korvel Nowhere Sans";
    auto refused = text::layoutText(missing, nullptr, text::FontChoice::Strict);
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error(), "The font 'Korvel Nowhere Sans' isn't installed.");
    // Shown anyway, in the first fallback that is installed.
    EXPECT_TRUE(text::layoutText(missing, nullptr, text::FontChoice::Display).ok());

    // Arial lays out on every machine: itself, or Liberation Sans in its place.
    auto arial = text::loadFont("Arial", false, false);
    ASSERT_TRUE(arial.ok()) << arial.error();
    const std::string installed = (*arial)->installed();
    EXPECT_TRUE(installed == "Arial" || installed == "Liberation Sans") << installed;
    EXPECT_EQ(text::metricCompatibleFamily("times new roman"), "Liberation Serif");
    EXPECT_EQ(text::metricCompatibleFamily("Courier New"), "Liberation Mono");
    EXPECT_EQ(text::metricCompatibleFamily("Futura"), "");

    SketchText blank = words(" \n\t ");
    EXPECT_EQ(text::layoutText(blank, nullptr, text::FontChoice::Strict).error(),
              "The text is empty.");
}

TEST_F(TextLayoutModel, TextOnAnArcRunsAlongItAndBackWhenFlipped) {
    ok("add_arc", {{"sketch", "Sketch1"},
                   {"cx", 0},
                   {"cy", 0},
                   {"radius", 40},
                   {"start_angle", 0},
                   {"sweep_angle", 180}});
    ok("add_text", {{"sketch", "Sketch1"}, {"text", "AB"}, {"path", "Arc1"}, {"height", 5}});
    auto angleOf = [](const std::vector<Contour>& contours, int letter) {
        const Point2 m = boxOf(contours, letter).middle();
        return std::atan2(m.y, m.x) * 180 / std::numbers::pi;
    };
    std::vector<Contour> along = outlines("Text1");
    EXPECT_LT(angleOf(along, 0), angleOf(along, 1)); // counter-clockwise from the start
    EXPECT_LT(angleOf(along, 0), 20);
    const Point2 a = boxOf(along, 0).middle();
    EXPECT_NEAR(std::hypot(a.x, a.y), 40 - 2.5, 1.0); // letters stand on the arc, inward

    ok("edit_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Text1"}, {"path_flip", true}});
    std::vector<Contour> back = outlines("Text1");
    EXPECT_GT(angleOf(back, 0), angleOf(back, 1)); // now from the end, clockwise
    EXPECT_GT(angleOf(back, 0), 160);
    const Point2 flipped = boxOf(back, 0).middle();
    EXPECT_NEAR(std::hypot(flipped.x, flipped.y), 40 + 2.5, 1.0); // outside, upright

    // The text follows its path when the path changes.
    ok("edit_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Arc1"}, {"radius", 60}});
    const Point2 moved = boxOf(outlines("Text1"), 0).middle();
    EXPECT_NEAR(std::hypot(moved.x, moved.y), 60 + 2.5, 1.0);
}

} // namespace
