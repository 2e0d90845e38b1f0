// The flat pattern of bodies: bends up and down with their lines where the formula
// puts them, the K-factor and thickness given instead of the rules, a plain plate's
// cut and engraved loops, and a body left flat by an Unfold.
#include "FlatTestModel.h"

#include "geometry/sheet/flat/FlatPattern.h"

#include <algorithm>

namespace cad::testing {
namespace {

using drawing::ItemKind;

class FlatPatterns : public FlatModel {
protected:
    flat::FlatPattern pattern(const std::string& id, flat::FlatOptions options = {}) {
        Result<flat::FlatPattern> made = flat::flatPattern(document, *body(id), options);
        EXPECT_TRUE(made) << made.error();
        return made ? *made : flat::FlatPattern{};
    }
    static std::size_t onLayer(const flat::FlatPattern& p, const char* layer, ItemKind kind) {
        return static_cast<std::size_t>(std::count_if(
            p.drawing.items.begin(), p.drawing.items.end(),
            [&](const drawing::DrawingItem& i) { return i.layer == layer && i.kind == kind; }));
    }
};

TEST_F(FlatPatterns, AZReportsOneBendUpAndOneDownWithTheirLines) {
    // No rules: K 0.44 and the thickness measured (1.5).
    addBody(document, SheetPath(1.5, 25)
                          .straight(40)
                          .bend(90, 1, true)
                          .straight(15)
                          .bend(90, 3, false)
                          .straight(20)
                          .shape());
    const flat::FlatPattern p = pattern("Body1", {"Sheet.bottom", {}, {}});
    const double first = pi / 2 * (1 + 0.44 * 1.5), second = pi / 2 * (3 + 0.44 * 1.5);
    EXPECT_NEAR(std::max(p.width, p.height), 40 + first + 15 + second + 20, 1e-6);
    EXPECT_NEAR(std::min(p.width, p.height), 25, 1e-6);
    EXPECT_NEAR(p.thickness, 1.5, 1e-6);
    EXPECT_EQ(p.holes, 0);
    ASSERT_EQ(p.bends.size(), 2u);
    // Seen from below, the first flange turns away and the second back toward us.
    EXPECT_FALSE(p.bends[0].up);
    EXPECT_TRUE(p.bends[1].up);
    EXPECT_NEAR(p.bends[0].innerRadius, 1, 1e-9);
    EXPECT_NEAR(p.bends[1].innerRadius, 3, 1e-9);
    EXPECT_NEAR(p.bends[1].angle, 90, 1e-9);
    // Each bend's middle line runs across the blank, half its strip past the wall.
    const auto along = [&](const drawing::DrawingPoint& q) {
        return p.width > p.height ? q.x : q.y;
    };
    const double end = std::max(p.width, p.height);
    const double a0 = std::min(along(p.bends[0].from), end - along(p.bends[0].from));
    EXPECT_NEAR(a0, 40 + first / 2, 1e-6);
    EXPECT_NEAR(
        std::hypot(p.bends[0].to.x - p.bends[0].from.x, p.bends[0].to.y - p.bends[0].from.y), 25,
        1e-6);
    EXPECT_EQ(onLayer(p, "BEND", ItemKind::Line), 4u);
    // Seen from the other side the directions swap.
    const flat::FlatPattern top = pattern("Body1", {"Sheet.top", {}, {}});
    ASSERT_EQ(top.bends.size(), 2u);
    EXPECT_TRUE(top.bends[0].up);

    // Given K and thickness win over the measured and default ones.
    const flat::FlatPattern given = pattern("Body1", {"Sheet.bottom", 0.5, 1.5});
    EXPECT_NEAR(std::max(given.width, given.height), 75 + pi / 2 * (1 + 0.75) + pi / 2 * (3 + 0.75),
                1e-6);
    EXPECT_EQ(flat::flatPattern(document, *body("Body1"), {"", 1.5, {}}).error(),
              "The K-factor is between 0 and 1.");
}

TEST_F(FlatPatterns, APlateShowsHolesToCutAndPocketsToEngrave) {
    std::string sketch = sketchWithRectangles({{0, 0, 60, 30}});
    ok("add_circle", {{"sketch", sketch}, {"cx", 10}, {"cy", 15}, {"radius", 4}});
    ok("extrude", {{"sketch", sketch}, {"distance", 3}});
    sketch = sketchWithRectangles({{30, 10, 50, 20}}, 3);
    ok("extrude",
       {{"sketch", sketch}, {"distance", -1}, {"operation", "cut"}, {"target", "Body1"}});

    const flat::FlatPattern p = pattern("Body1");
    EXPECT_NEAR(p.width, 60, 1e-9);
    EXPECT_NEAR(p.height, 30, 1e-9);
    EXPECT_NEAR(p.thickness, 3, 1e-6);
    EXPECT_EQ(p.holes, 1);
    EXPECT_TRUE(p.bends.empty());
    EXPECT_EQ(onLayer(p, "CUT_OUTSIDE", ItemKind::Line), 4u);
    EXPECT_EQ(onLayer(p, "CUT_INSIDE", ItemKind::Circle), 1u);
    EXPECT_EQ(onLayer(p, "ENGRAVE", ItemKind::Line), 4u);
    // The lower left corner is at the origin.
    const drawing::DrawingBounds box = drawing::drawingBounds(p.drawing);
    EXPECT_NEAR(box.minX, 0, 1e-9);
    EXPECT_NEAR(box.minY, 0, 1e-9);

    EXPECT_EQ(flat::flatPattern(document, GeometryObject(), {}).error(), "Nothing to lay flat.");
}

TEST_F(FlatPatterns, ABodyLeftFlatByAnUnfoldKeepsItsBendLines) {
    lBracket();
    ok("unfold", {{"body", "Body1"}, {"face", "Sheet.bottom"}});
    cutHole(10, 10, 2);
    const flat::FlatPattern p = pattern("Body1");
    EXPECT_EQ(p.holes, 1);
    ASSERT_EQ(p.bends.size(), 1u);
    EXPECT_NEAR(p.bends[0].angle, 90, 1e-9);
    EXPECT_NEAR(std::max(p.width, p.height), 50 + quarterBend(), 1e-6);
    EXPECT_EQ(onLayer(p, "BEND", ItemKind::Line), 2u);
}

} // namespace
} // namespace cad::testing
