// The packer's pieces: sampling a part's curves, the turn to the tightest rectangle,
// and the free-rectangle list's fit, split and pruning.
#include "geometry/sheet/nest/FreeRectangles.h"
#include "geometry/sheet/nest/TightestRectangle.h"

#include <gtest/gtest.h>

#include <cmath>

namespace cad::nest {
namespace {

using drawing::Drawing;
using drawing::ItemKind;

TEST(TightestRectangle, SamplesCirclesAndArcsInFiveDegreeStepsWithFourAtLeast) {
    Drawing d;
    d.items.push_back({ItemKind::Circle, "CUT", {{0, 0}}, 1, 0, 0, false}); // 73
    d.items.push_back({ItemKind::Arc, "CUT", {{0, 0}}, 1, 350, 80, false}); // 18 + 1
    d.items.push_back({ItemKind::Arc, "CUT", {{0, 0}}, 1, 10, 12, false});  // 4 + 1
    d.items.push_back({ItemKind::Arc, "CUT", {{0, 0}}, 1, 30, 30, false});  // 73
    d.items.push_back({ItemKind::Point, "CUT", {{5, 5}}, 0, 0, 0, false});  // none
    d.items.push_back({ItemKind::Line, "CUT", {{0, 0}, {std::nan(""), 2}}, 0, 0, 0, false}); // 1
    EXPECT_EQ(sampledPoints(d).size(), 73u + 19 + 5 + 73 + 1);
}

TEST(TightestRectangle, TurnsOnlyWhenTheBoxShrinksByMoreThanAMillionth) {
    Drawing diamond; // a square standing on a corner turns by 45 degrees
    diamond.items.push_back(
        {ItemKind::Polyline, "CUT", {{0, -10}, {10, 0}, {0, 10}, {-10, 0}}, 0, 0, 0, true});
    EXPECT_NEAR(std::abs(std::fmod(tightestAngle(diamond), 90)), 45, 1e-9);
    Drawing almostSquare; // within rounding noise of square: left alone
    almostSquare.items.push_back(
        {ItemKind::Polyline, "CUT", {{0, 0}, {10, 1e-12}, {10, 5}, {0, 5}}, 0, 0, 0, true});
    EXPECT_EQ(tightestAngle(almostSquare), 0);
    Drawing twoPoints;
    twoPoints.items.push_back({ItemKind::Line, "CUT", {{0, 0}, {3, 4}}, 0, 0, 0, false});
    EXPECT_EQ(tightestAngle(twoPoints), 0);
}

TEST(FreeRectangles, SplitsIntoMaximalPiecesAndFitsByTheShortSideWithinTheTolerance) {
    FreeRectangles sheet(100, 100);
    sheet.place({0, 0, 50, 50}); // right (50, 0, 50, 100), then above (0, 50, 100, 50)
    ASSERT_EQ(sheet.rectangles().size(), 2u);
    EXPECT_EQ(sheet.bestFit(50, 50)->index, 0u); // equal scores: the first
    EXPECT_EQ(sheet.bestFit(20, 60)->score, 30);
    EXPECT_TRUE(sheet.bestFit(50 + 1e-10, 100));
    EXPECT_FALSE(sheet.bestFit(50 + 1e-8, 100));
    sheet.place({60, 60, 10, 10}); // splits both; pieces held in others go
    for (const Rectangle& r : sheet.rectangles())
        EXPECT_TRUE(r.x + r.width <= 60 || r.x >= 70 || r.y + r.height <= 60 || r.y >= 70);
    EXPECT_EQ(sheet.rectangles().size(), 6u);
}

} // namespace
} // namespace cad::nest
