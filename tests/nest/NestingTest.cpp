// Nesting's rules on small layouts: the refusals in their order, parts turned only
// when they must be, the tightest rectangle, sheets side by side, best short-side
// fit over every open sheet, quantities and usage.
#include "geometry/sheet/nest/Nesting.h"
#include "geometry/sheet/nest/TurnedItems.h"

#include <gtest/gtest.h>

namespace cad::nest {
namespace {

using drawing::DrawingItem;
using drawing::DrawingPoint;
using drawing::ItemKind;

NestPart box(std::string name, double w, double h, std::int32_t quantity = 1) {
    NestPart p{std::move(name), {}, quantity};
    p.drawing.items.push_back(
        {ItemKind::Polyline, "CUT_OUTSIDE", {{0, 0}, {w, 0}, {w, h}, {0, h}}, 0, 0, 0, true});
    return p;
}

NestRequest request(std::vector<NestPart> parts, double w, double h, double spacing = 3,
                    double margin = 5, bool turning = true) {
    return {std::move(parts), w, h, spacing, margin, turning};
}

TEST(Nesting, RefusesBadRequestsInOrderWithTheirSentences) {
    const std::pair<NestRequest, std::string> cases[] = {
        {request({}, 0, 0, -1), "Choose the parts to nest."},
        {request({box("A", 10, 10)}, 0, 100, -1), "The sheet needs a width and a height."},
        {request({box("A", 10, 10)}, 100, 100, 3, -1), "Spacing and margin can't be negative."},
        {request({box("A", 10, 10, 0)}, 100, 100, 3, 50),
         "The margins leave no room on the sheet."},
        {request({box("A", 10, 10, 0)}, 100, 100, 0, 49.99), "Every part has a quantity of zero."},
        // Quantities add up past what fits in an int: counted without overflowing.
        {request({box("A", 1, 1, 2'000'000'000), box("B", 1, 1, 2'000'000'000)}, 100, 100),
         "That's 4000000000 copies; at most 100000 can be nested at a time."},
    };
    for (const auto& [r, sentence] : cases) EXPECT_EQ(nest(r).error(), sentence);
}

TEST(Nesting, APartTooLongForTheSheetGoesTurnedOrIsRefusedByName) {
    NestPart body = box("Body2", 300, 20);
    body.drawing.items.push_back({ItemKind::Arc, "CUT_INSIDE", {{10, 10}}, 5, 0, 90, false});
    Result<NestResult> turned = nest(request({body}, 200, 400));
    ASSERT_TRUE(turned) << turned.error();
    const NestPlacement& p = turned->placements.at(0);
    EXPECT_EQ(p.angle, 90);
    EXPECT_DOUBLE_EQ(p.x, 25); // margin + the part's height: turned about the origin
    EXPECT_DOUBLE_EQ(p.y, 5);
    const DrawingItem& outline = turned->drawing.items.at(0);
    EXPECT_DOUBLE_EQ(outline.points[2].x, 5); // (300, 20) lands at (5, 305)
    EXPECT_DOUBLE_EQ(outline.points[2].y, 305);
    const DrawingItem& arc = turned->drawing.items.at(1);
    EXPECT_EQ(arc.kind, ItemKind::Arc);
    EXPECT_DOUBLE_EQ(arc.points[0].x, 15);
    EXPECT_DOUBLE_EQ(arc.startAngle, 90);
    EXPECT_DOUBLE_EQ(arc.endAngle, 180);

    EXPECT_EQ(nest(request({body}, 200, 400, 3, 5, false)).error(),
              "Body2 (300 x 20 mm) doesn't fit on the sheet.");
}

TEST(Nesting, FourSquaresFillASheetEdgeToEdgeWithoutSpacingOrMargin) {
    Result<NestResult> r = nest(request({box("Q", 50, 50, 4)}, 100, 100, 0, 0));
    ASSERT_TRUE(r) << r.error();
    EXPECT_EQ(r->sheetCount, 1);
    EXPECT_DOUBLE_EQ(r->usage, 1);
    double sum = 0;
    for (const NestPlacement& p : r->placements) sum += p.x * 2 + p.y;
    EXPECT_DOUBLE_EQ(sum, 300); // (0, 0), (50, 0), (0, 50), (50, 50) in some order
}

TEST(Nesting, TurnsAPartToItsTightestRectangleButNeverASquareOne) {
    NestPart square = box("Square", 30, 30);
    square.drawing.items.push_back({ItemKind::Circle, "CUT_INSIDE", {{15, 15}}, 5, 0, 0, false});
    NestPart slanted = box("Slanted", 40, 20);
    turnDrawing(slanted.drawing, 30, {100, -50});
    Result<NestResult> r = nest(request({square, slanted}, 500, 500, 0, 0, false));
    ASSERT_TRUE(r) << r.error();
    const auto& squareOutline = r->drawing.items.at(0).points; // the larger area goes first
    EXPECT_EQ(squareOutline[1].x, 30);
    EXPECT_EQ(squareOutline[1].y, 0);
    drawing::Drawing placedSlanted;
    placedSlanted.items.push_back(r->drawing.items.at(2));
    const drawing::DrawingBounds b = drawing::drawingBounds(placedSlanted);
    EXPECT_NEAR((b.maxX - b.minX) * (b.maxY - b.minY), 800, 1e-9); // lies square
}

TEST(Nesting, LaterSheetsStartAWidthAndAGapFurtherAlong) {
    for (const auto& [width, gap] : {std::pair{1000.0, 50.0}, std::pair{300.0, 20.0}}) {
        Result<NestResult> r = nest(request({box("Big", width - 100, 300, 2)}, width, 500));
        ASSERT_TRUE(r) << r.error();
        ASSERT_EQ(r->sheetCount, 2);
        EXPECT_EQ(r->sheetGap, gap);
        EXPECT_EQ(r->placements[1].sheet, 1);
        EXPECT_EQ(r->placements[1].x, 5);
        EXPECT_EQ(r->drawing.items[1].points[0].x, width + gap + 5);
        const DrawingItem& sheet = r->drawing.items.back();
        EXPECT_EQ(sheet.layer, "SHEET");
        EXPECT_TRUE(sheet.closed);
        EXPECT_EQ(sheet.points[0].x, width + gap);
        EXPECT_EQ(sheet.points[2].x, 2 * width + gap);
        EXPECT_DOUBLE_EQ(r->usage, 2 * (width - 100) * 300 / (2 * width * 500));
    }
}

TEST(Nesting, ACopyGoesWhereItsShortSideFitsBestOnAnyOpenSheet) {
    // The 100 x 60 leaves 40 on sheet 1, the 100 x 50 needs sheet 2 and leaves 50:
    // 30 x 30 fits sheet 1 better, 30 x 45 sheet 2 square better than sheet 1 turned.
    for (const auto& [h, sheet] : {std::pair{30.0, 0}, std::pair{45.0, 1}}) {
        Result<NestResult> r = nest(request(
            {box("Small", 30, h), box("Half", 100, 50), box("Big", 100, 60)}, 100, 100, 0, 0));
        ASSERT_TRUE(r) << r.error();
        ASSERT_EQ(r->placements.size(), 3u);
        EXPECT_EQ(r->placements[2].part, "Small");
        EXPECT_EQ(r->placements[2].sheet, sheet);
        EXPECT_EQ(r->placements[2].angle, 0);
    }
}

TEST(Nesting, QuantitiesMakeNumberedCopiesAndZeroLeavesAPartOut) {
    Result<NestResult> r =
        nest(request({box("A", 20, 10, 2), box("None", 50, 50, 0), box("B", 10, 20, 3),
                      box("Neg", 60, 60, -4), box("C", 30, 30, 1)},
                     200, 200));
    ASSERT_TRUE(r) << r.error();
    std::string order;
    for (const NestPlacement& p : r->placements) order += p.part + std::to_string(p.copy) + " ";
    EXPECT_EQ(order, "C1 A1 A2 B1 B2 B3 "); // by area, equal areas in the order given
    EXPECT_DOUBLE_EQ(r->usage, (900 + 5 * 200) / 40000.0);
}

TEST(Nesting, ReadsAPartDrawnInInchesInMillimetres) {
    NestPart inches = box("Inch", 2, 1);
    inches.drawing.unit = units::Length::Inches;
    Result<NestResult> r = nest(request({inches}, 100, 100, 0, 0));
    ASSERT_TRUE(r) << r.error();
    EXPECT_EQ(r->drawing.unit, units::Length::Millimeters);
    EXPECT_NEAR(r->usage, 50.8 * 25.4 / 10000, 1e-12);
}

} // namespace
} // namespace cad::nest
