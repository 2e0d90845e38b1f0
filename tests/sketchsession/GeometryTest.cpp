// The session's geometry without widgets: arcs through three points, what a pick
// finds first, snapping onto arcs, and typed sizes in the tools' shapes.
#include "ui/sketch/DrawingTools.h"
#include "ui/sketch/SketchDimensions.h"
#include "ui/sketch/SketchScene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace cad;
using namespace cad::ui;

namespace {

SketchEntity make(std::string id, SketchGeometry geometry) {
    SketchEntity e;
    e.id = std::move(id);
    e.geometry = std::move(geometry);
    return e;
}

TEST(ToolGeometry, ArcThroughThreePointsTurnsTheWayItPasses) {
    const auto ccw = arcThrough({1, 0}, {0, 1}, {-1, 0});
    ASSERT_TRUE(ccw);
    EXPECT_NEAR(ccw->center.x, 0, 1e-12);
    EXPECT_NEAR(ccw->radius, 1, 1e-12);
    EXPECT_NEAR(ccw->startAngle, 0, 1e-9);
    EXPECT_NEAR(ccw->sweepAngle, 180, 1e-9);
    EXPECT_NEAR(arcThrough({1, 0}, {0, -1}, {-1, 0})->sweepAngle, -180, 1e-9);
    EXPECT_FALSE(arcThrough({0, 0}, {1, 1}, {2, 2}));
}

TEST(ToolGeometry, TypedSizesFixWhatTheyName) {
    TypedValues typed{{"sides", {6, "6"}}, {"across_flats", {10, "10"}}};
    DrawStep polygon = drawStep(DrawKind::Polygon, {{0, 0}}, {0, 3}, typed, {});
    const auto& p = std::get<SketchPolygon>(polygon.entities.at(0).geometry);
    EXPECT_NEAR(p.radius, 10 / (2 * std::cos(std::numbers::pi / 6)), 1e-12);
    EXPECT_NEAR(p.rotation, 90, 1e-12); // the cursor still turns it

    // The center arc keeps the way the cursor went round; a typed sweep its size.
    DrawOptions clockwise;
    clockwise.arcSweep = -30;
    DrawStep arc = drawStep(DrawKind::CenterArc, {{0, 0}, {5, 0}}, {0, -5}, {{"sweep", {90, "90"}}},
                            clockwise);
    EXPECT_NEAR(std::get<SketchArc>(arc.entities.at(0).geometry).sweepAngle, -90, 1e-12);
    EXPECT_NEAR(arc.point.y, -5, 1e-9);
}

TEST(Scene, PointsComeBeforeCurvesAndArcsSnapOnlyInsideTheirSweep) {
    SketchScene scene;
    scene.rebuild(
        {make("Line1", SketchLine{{0, 10}, {10, 10}}), make("Arc1", SketchArc{{30, 0}, 5, 0, 90})});
    const double pixel = 0.1; // 10 px per mm
    Hit near = scene.pick({9.5, 10.3}, pixel);
    EXPECT_EQ(near.reference, "Line1.end");
    EXPECT_EQ(scene.pick({9.5, 10.3}, pixel, PickLines).reference, "Line1");
    EXPECT_EQ(scene.pick({5, 10.5}, pixel).reference, "Line1");
    EXPECT_FALSE(scene.pick({5, 11}, pixel)); // 10 px from the line, 10 from no point
    EXPECT_EQ(scene.pick({5, 0.4}, pixel).reference, "XAxis");

    const Hit onArc = scene.snap({30 + 5.5 / std::sqrt(2.0), 5.5 / std::sqrt(2.0)}, pixel);
    EXPECT_EQ(onArc.reference, "Arc1");
    EXPECT_NEAR(std::hypot(onArc.position.x - 30, onArc.position.y), 5, 1e-12);
    EXPECT_FALSE(scene.snap({30 - 3.6, -3.6}, pixel)); // beside the arc's missing part
}

TEST(Dimensions, ThinBoxesFallBackToTheAlignedDistance) {
    EXPECT_EQ(pointPairType({0, 0}, {10, 0}, {5, 3}), ConstraintType::HorizontalDistance);
    EXPECT_EQ(pointPairType({0, 0}, {10, 0}, {20, 0}), ConstraintType::Distance);
    EXPECT_EQ(pointPairType({0, 0}, {10, 5}, {5, 2}), ConstraintType::Distance); // inside
}

} // namespace
