// Camera arithmetic of the 3D view: repair, nudges, the user's front, stored views,
// the orbit and its warp rules, and line-plane intersection.
#include "rendering/CameraMath.h"
#include "rendering/CameraAnimation.h"

#include <gp_Ax1.hxx>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace camera = cad::rendering::camera;

namespace {

::testing::AssertionResult same(const gp_Dir& actual, const gp_Dir& expected) {
    if (actual.IsEqual(expected, 1e-9)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "(" << actual.X() << ", " << actual.Y() << ", " << actual.Z() << ") instead of ("
           << expected.X() << ", " << expected.Y() << ", " << expected.Z() << ")";
}

TEST(CameraMath, RepairsOnlyParallelUpVectors) {
    struct Case {
        gp_Dir direction, up;
        std::optional<gp_Dir> expected;
    };
    const Case cases[] = {
        {gp_Dir(0, 0, -1), gp_Dir(0, 0, 1), gp_Dir(0, 1, 0)}, // top view pitched over: +Y
        {gp_Dir(0, 0, 1), gp_Dir(0, 0, 1), gp_Dir(0, 1, 0)},
        {gp_Dir(1, 0, 0), gp_Dir(-1, 0, 0), gp_Dir(0, 0, 1)}, // side view: +Z
        {gp_Dir(1, 1, 0), gp_Dir(1, 1, 0), gp_Dir(0, 0, 1)},
        {gp_Dir(0, 0.1, -1), gp_Dir(0, 0.1, -1), gp_Dir(0, 1, 0.1)}, // +Y made orthogonal
        {gp_Dir(0, 0, -1), gp_Dir(0, 1, 0), std::nullopt},
        {gp_Dir(0, 0, -1), gp_Dir(0, 0.01, 1), std::nullopt}, // nearly parallel is still fine
    };
    for (const Case& c : cases) {
        const auto repaired = camera::repairedUp(c.direction, c.up);
        ASSERT_EQ(repaired.has_value(), c.expected.has_value());
        if (repaired) {
            EXPECT_TRUE(same(*repaired, *c.expected));
            EXPECT_NEAR(repaired->Dot(c.direction), 0, 1e-12);
        }
    }
}

TEST(CameraMath, NudgesFollowTheCubeButtons) {
    // Looking at the front (+Y) with Z up, screen right is +X.
    const camera::Pose front = camera::defaultFront();
    struct Case {
        int step;
        gp_Dir direction, up;
    };
    const Case cases[] = {
        {0, gp_Dir(1, 0, 0), gp_Dir(0, 0, 1)},  {1, gp_Dir(-1, 0, 0), gp_Dir(0, 0, 1)},
        {2, gp_Dir(0, 0, -1), gp_Dir(0, 1, 0)}, {3, gp_Dir(0, 0, 1), gp_Dir(0, -1, 0)},
        {4, gp_Dir(0, 1, 0), gp_Dir(1, 0, 0)},  {5, gp_Dir(0, 1, 0), gp_Dir(-1, 0, 0)},
        {6, gp_Dir(0, 1, 0), gp_Dir(0, 0, 1)},  {-1, gp_Dir(0, 1, 0), gp_Dir(0, 0, 1)},
    };
    for (const Case& c : cases) {
        const camera::Pose pose = camera::nudged(front, c.step);
        EXPECT_TRUE(same(pose.direction, c.direction)) << "step " << c.step;
        EXPECT_TRUE(same(pose.up, c.up)) << "step " << c.step;
    }
    // Four turns come back to the start.
    camera::Pose pose = {gp_Dir(0.3, 0.8, -0.5),
                         camera::orthogonalUp(gp_Dir(0.3, 0.8, -0.5), gp_Dir(0, 0, 1))};
    camera::Pose turned = pose;
    for (int i = 0; i < 4; ++i) turned = camera::nudged(turned, 2);
    EXPECT_TRUE(same(turned.direction, pose.direction));
    EXPECT_TRUE(same(turned.up, pose.up));
}

TEST(CameraMath, FrontSnapsToAxesAndRotatesTheDefaultFront) {
    struct Case {
        camera::Pose current;
        gp_Dir direction, up;
    };
    const Case cases[] = {
        {{gp_Dir(0.9, 0.2, -0.1), gp_Dir(0.1, 0, 1)}, gp_Dir(1, 0, 0), gp_Dir(0, 0, 1)},
        {{gp_Dir(-0.1, 0.1, -1), gp_Dir(0.2, 1, 0)}, gp_Dir(0, 0, -1), gp_Dir(0, 1, 0)},
        {{gp_Dir(0, -1, 0), gp_Dir(0, 0, -1)}, gp_Dir(0, -1, 0), gp_Dir(0, 0, -1)},
        // Up nearly along the direction: it still lands on a perpendicular axis.
        {{gp_Dir(0.6, 0.55, 0), gp_Dir(0.55, 0.6, 0.2)}, gp_Dir(1, 0, 0), gp_Dir(0, 1, 0)},
    };
    for (const Case& c : cases) {
        const camera::Pose snapped = camera::snappedToAxes(c.current);
        EXPECT_TRUE(same(snapped.direction, c.direction));
        EXPECT_TRUE(same(snapped.up, c.up));
        const gp_Mat rotation = camera::rotationFromDefaultFront(snapped);
        EXPECT_NEAR(rotation.Determinant(), 1.0, 1e-12);
        const camera::Pose front = camera::rotated(camera::defaultFront(), rotation);
        EXPECT_TRUE(same(front.direction, c.direction));
        EXPECT_TRUE(same(front.up, c.up));
        // Stored and read back, the rotation is the same.
        const auto read = camera::frontFromValues(camera::frontValues(rotation));
        ASSERT_TRUE(read.has_value());
        const camera::Pose again = camera::rotated(camera::defaultFront(), *read);
        EXPECT_TRUE(same(again.direction, c.direction));
    }
}

TEST(CameraMath, StoredFrontMustBeNineNumbersOfARotation) {
    EXPECT_TRUE(camera::frontFromValues({1, 0, 0, 0, 1, 0, 0, 0, 1}).has_value());
    EXPECT_TRUE(camera::frontFromValues({0, -1, 0, 1, 0, 0, 0, 0, 1}).has_value());
    EXPECT_FALSE(camera::frontFromValues({1, 0, 0, 0, 1, 0, 0, 0}).has_value());
    EXPECT_FALSE(camera::frontFromValues({}).has_value());
    EXPECT_FALSE(camera::frontFromValues({2, 0, 0, 0, 1, 0, 0, 0, 1}).has_value());  // scales
    EXPECT_FALSE(camera::frontFromValues({-1, 0, 0, 0, 1, 0, 0, 0, 1}).has_value()); // mirrors
}

TEST(CameraMath, StoredHomeNeedsSixNumbersOfTwoUsableVectors) {
    struct Case {
        const char* name;
        std::vector<double> values;
        bool valid;
    };
    const Case cases[] = {
        {"top", {0, 0, -1, 0, 1, 0}, true},           {"not unit", {0, 0, -3, 0, 0.5, 0.5}, true},
        {"zero up", {0, 0, -1, 0, 0, 0}, false},      {"zero direction", {0, 0, 0, 0, 1, 0}, false},
        {"tiny up", {0, 0, -1, 0, 1e-10, 0}, false},  {"parallel", {0, 0, -1, 0, 0, -2}, false},
        {"antiparallel", {0, 0, -1, 0, 0, 1}, false}, {"five", {0, 0, -1, 0, 1}, false},
        {"seven", {0, 0, -1, 0, 1, 0, 0}, false},
    };
    for (const Case& c : cases) {
        const auto pose = camera::homeFromValues(c.values);
        EXPECT_EQ(pose.has_value(), c.valid) << c.name;
    }
    const auto pose = camera::homeFromValues({0, 0, -3, 0, 0.5, 0.5});
    EXPECT_TRUE(same(pose->direction, gp_Dir(0, 0, -1)));
    EXPECT_TRUE(same(pose->up, gp_Dir(0, 1, 0)));
    const auto again = camera::homeFromValues(camera::homeValues(*pose));
    EXPECT_TRUE(same(again->up, gp_Dir(0, 1, 0)));
}

TEST(CameraMath, ReadsNumberListsAsSettingsStoreThem) {
    EXPECT_EQ(camera::numbersOf(QVariantList{1.5, -2, 3}), (std::vector<double>{1.5, -2, 3}));
    // INI files give lists of numbers back as text.
    EXPECT_EQ(camera::numbersOf(QStringList{"1.5", "-2e-3", "0"}),
              (std::vector<double>{1.5, -2e-3, 0}));
    EXPECT_FALSE(camera::numbersOf(QStringList{"1", "two"}).has_value());
    EXPECT_FALSE(camera::numbersOf(QStringList{"1", "nan"}).has_value());
    EXPECT_FALSE(camera::numbersOf(QVariant()).has_value());
    EXPECT_FALSE(camera::numbersOf(QVariant(3.0)).has_value());
}

TEST(CameraMath, OrbitYawsAboutWorldZThenPitchesAboutTheSide) {
    const gp_Pnt pivot(10, 20, 30);
    const camera::Pose start = camera::defaultFront(); // side axis +X
    // Yaw alone turns about the vertical through the pivot.
    const gp_Trsf yaw = camera::orbitTransform(pivot, start, std::numbers::pi / 2, 0);
    EXPECT_TRUE(pivot.Transformed(yaw).IsEqual(pivot, 1e-12));
    EXPECT_TRUE(same(gp_Dir(0, 1, 0).Transformed(yaw), gp_Dir(-1, 0, 0)));
    EXPECT_TRUE(gp_Pnt(11, 20, 30).Transformed(yaw).IsEqual(gp_Pnt(10, 21, 30), 1e-12));
    // Pitch alone turns about the start camera's side axis.
    const gp_Trsf pitch = camera::orbitTransform(pivot, start, 0, std::numbers::pi / 2);
    EXPECT_TRUE(same(gp_Dir(0, 1, 0).Transformed(pitch), gp_Dir(0, 0, 1)));
    EXPECT_TRUE(same(gp_Dir(1, 0, 0).Transformed(pitch), gp_Dir(1, 0, 0)));
    // Both: pitch first, then yaw about world Z.
    const gp_Trsf both =
        camera::orbitTransform(pivot, start, std::numbers::pi / 2, std::numbers::pi / 2);
    EXPECT_TRUE(same(gp_Dir(0, 0, 1).Transformed(both), gp_Dir(1, 0, 0)));
    EXPECT_TRUE(same(gp_Dir(1, 0, 0).Transformed(both), gp_Dir(0, 1, 0)));
}

TEST(CameraMath, OrbitGuardsAgainstJumpsAndWarpsNearTheBorder) {
    EXPECT_FALSE(camera::isDiscontinuousDelta(QPoint(250, -250)));
    EXPECT_TRUE(camera::isDiscontinuousDelta(QPoint(251, 0)));
    EXPECT_TRUE(camera::isDiscontinuousDelta(QPoint(0, -251)));

    const QRect widget(0, 0, 800, 600);
    EXPECT_FALSE(camera::needsWarp(QPoint(400, 300), widget));
    EXPECT_FALSE(camera::needsWarp(QPoint(40, 40), widget));
    EXPECT_TRUE(camera::needsWarp(QPoint(39, 300), widget));
    EXPECT_TRUE(camera::needsWarp(QPoint(400, 561), widget));
    EXPECT_TRUE(camera::needsWarp(QPoint(900, 300), widget));

    const QPoint target(400, 300);
    EXPECT_TRUE(camera::warpEnded(QPoint(402, 302), target, 0, 1));
    EXPECT_FALSE(camera::warpEnded(QPoint(403, 302), target, 0, 1));
    EXPECT_TRUE(camera::warpEnded(QPoint(10, 10), target, 50, 1));
    EXPECT_FALSE(camera::warpEnded(QPoint(10, 10), target, 49, 7));
    EXPECT_TRUE(camera::warpEnded(QPoint(10, 10), target, 0, 8));
}

TEST(CameraMath, LinesMeetPlanesUnlessParallel) {
    const gp_Pln plane(gp_Pnt(0, 0, 5), gp_Dir(0, 0, 1));
    const auto hit = camera::intersect(gp_Lin(gp_Pnt(1, 2, 100), gp_Dir(0, 0, -1)), plane);
    ASSERT_TRUE(hit.has_value());
    EXPECT_TRUE(hit->IsEqual(gp_Pnt(1, 2, 5), 1e-12));
    const auto slanted = camera::intersect(gp_Lin(gp_Pnt(0, 0, 0), gp_Dir(1, 0, 1)), plane);
    EXPECT_TRUE(slanted->IsEqual(gp_Pnt(5, 0, 5), 1e-12));
    EXPECT_FALSE(camera::intersect(gp_Lin(gp_Pnt(0, 0, 0), gp_Dir(1, 1, 0)), plane).has_value());
}

TEST(CameraMath, TransitionsEaseInAndOut) {
    using cad::rendering::CameraAnimation;
    EXPECT_EQ(CameraAnimation::ease(-1), 0);
    EXPECT_EQ(CameraAnimation::ease(0), 0);
    EXPECT_EQ(CameraAnimation::ease(0.5), 0.5);
    EXPECT_EQ(CameraAnimation::ease(1), 1);
    EXPECT_EQ(CameraAnimation::ease(2), 1);
    EXPECT_LT(CameraAnimation::ease(0.1), 0.1);
    EXPECT_GT(CameraAnimation::ease(0.9), 0.9);
}

} // namespace
