// The text kind in the sketch model: its checks in order, its one solver point (the
// position) and how references name it, and its curves, which are its glyph outlines.
#include "sketch/SketchCurves.h"
#include "sketch/SketchEntity.h"
#include "sketch/SketchReference.h"

#include <gtest/gtest.h>

using namespace cad;

namespace {

SketchEntity textEntity(std::string words) {
    SketchText t;
    t.text = std::move(words);
    t.position = {3, 4};
    return {"Text1", t, false, "", ""};
}

TEST(TextEntity, ChecksComeInOrderWithTheirSentences) {
    EXPECT_TRUE(validateEntity(textEntity("Hi")).ok());
    auto check = [](auto change) {
        SketchEntity e = textEntity("Hi");
        change(std::get<SketchText>(e.geometry));
        return validateEntity(e).error();
    };
    EXPECT_EQ(check([](SketchText& t) { t.tracking = std::nan(""); }), "Text needs finite values.");
    EXPECT_EQ(check([](SketchText& t) { t.height = 0, t.text = " "; }),
              "The text height must be greater than zero.");
    EXPECT_EQ(check([](SketchText& t) { t.lineSpacing = -1; }),
              "The text's scales and line spacing must be greater than zero.");
    EXPECT_EQ(check([](SketchText& t) { t.heightScale = 0; }),
              "The text's scales and line spacing must be greater than zero.");
    EXPECT_EQ(check([](SketchText& t) { t.text = " \t\n\r\n"; }), "The text is empty.");
}

TEST(TextEntity, ThePositionIsItsOnlyPoint) {
    std::vector<SketchEntity> sketch{textEntity("Hi")};
    EXPECT_EQ(entityKindName(sketch[0]), "Text");
    EXPECT_EQ(nextEntityId(sketch, "Text"), "Text2");
    EXPECT_EQ(entityParameters(sketch[0]), (std::vector<double>{3, 4}));
    setEntityParameters(sketch[0], {-1, 2});
    EXPECT_EQ(std::get<SketchText>(sketch[0].geometry).position, (Point2{-1, 2}));
    EXPECT_EQ(std::get<SketchText>(sketch[0].geometry).text, "Hi"); // the rest untouched

    for (const char* reference : {"Text1", "Text1.position"}) {
        Result<ResolvedRef> r = resolveReference(*parseReference(reference), sketch);
        ASSERT_TRUE(r.ok()) << reference;
        EXPECT_EQ(r->kind, ResolvedRef::Point);
        EXPECT_EQ(pointAt(*r, sketch), (Point2{-1, 2}));
    }
    EXPECT_EQ(resolveReference(*parseReference("Text1.start"), sketch).error(),
              "Text1.start: no such part of a Text.");
    std::vector<NamedPoint> points = namedPoints(sketch);
    ASSERT_EQ(points.size(), 1u);
    EXPECT_EQ(points[0].reference, "Text1.position");
}

TEST(TextEntity, CurvesAreTheGlyphOutlinesUnlessConstruction) {
    SketchEntity hi = textEntity("Hi");
    const std::size_t pieces = entityCurves(hi).size();
    EXPECT_GE(pieces, 12u + 4u); // H's twelve sides, i's stem and dot
    for (const SketchCurve& c : entityCurves(hi)) EXPECT_EQ(c.entity, "Text1");

    // A path the text can't find leaves it straight; construction text makes no profile.
    SketchEntity onPath = hi;
    std::get<SketchText>(onPath.geometry).path = "Arc7";
    EXPECT_EQ(entityCurves(onPath, {onPath}).size(), pieces);
    onPath.construction = true;
    EXPECT_TRUE(sketchCurves({onPath}).empty());
    EXPECT_EQ(sketchCurves({onPath}, true).size(), pieces);
}

} // namespace
