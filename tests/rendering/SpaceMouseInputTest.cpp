// SpaceMouse numbers: HID report decoding and the shaping of its axes.
#include "rendering/SpaceMouseInput.h"

#include <gtest/gtest.h>

#include <vector>

namespace spacemouse = cad::rendering::spacemouse;

namespace {

std::optional<spacemouse::Report> decode(std::vector<std::uint8_t> bytes) {
    return spacemouse::decodeReport(bytes);
}

TEST(SpaceMouseInput, DecodesAxisReportsAsSignedLittleEndian) {
    // id 1, 13 bytes: x=1, y=-1, z=350, rx=-350, ry=32767, rz=-32768
    const auto six =
        decode({1, 0x01, 0x00, 0xFF, 0xFF, 0x5E, 0x01, 0xA2, 0xFE, 0xFF, 0x7F, 0x00, 0x80});
    ASSERT_TRUE(six.has_value());
    EXPECT_EQ(*six->translation, (std::array<int, 3>{1, -1, 350}));
    EXPECT_EQ(*six->rotation, (std::array<int, 3>{-350, 32767, -32768}));
    EXPECT_FALSE(six->buttons.has_value());

    const auto translation = decode({1, 0x10, 0x00, 0x00, 0x01, 0xF0, 0xFF});
    ASSERT_TRUE(translation.has_value());
    EXPECT_EQ(*translation->translation, (std::array<int, 3>{16, 256, -16}));
    EXPECT_FALSE(translation->rotation.has_value());

    const auto rotation = decode({2, 0x10, 0x00, 0x00, 0x01, 0xF0, 0xFF});
    ASSERT_TRUE(rotation.has_value());
    EXPECT_FALSE(rotation->translation.has_value());
    EXPECT_EQ(*rotation->rotation, (std::array<int, 3>{16, 256, -16}));

    const auto buttons = decode({3, 0x02, 0x00, 0x00, 0x00});
    ASSERT_TRUE(buttons.has_value());
    EXPECT_EQ(*buttons->buttons, 2u);
}

TEST(SpaceMouseInput, RejectsReportsOfOtherShapes) {
    EXPECT_FALSE(decode({}).has_value());
    EXPECT_FALSE(decode({1, 0, 0, 0, 0, 0}).has_value());
    EXPECT_FALSE(decode({1, 0, 0, 0, 0, 0, 0, 0}).has_value());
    EXPECT_FALSE(decode({2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}).has_value());
    EXPECT_FALSE(decode({4, 0, 0, 0, 0, 0, 0}).has_value());
    EXPECT_FALSE(decode({3}).has_value());
}

TEST(SpaceMouseInput, ShapesAxesWithDeadZoneAndCurve) {
    struct Case {
        double raw, shaped;
    };
    const Case cases[] = {
        {0, 0},         {34, 0},  {-34, 0}, // inside the dead zone
        {35, 0},                            // at its edge the curve starts at zero
        {192.5, 0.2},                       // f = 0.55, g = 0.5: 0.25 × 0.8
        {-192.5, -0.2}, {350, 1}, {-350, -1}, {5000, 1}, {-5000, -1},
    };
    for (const Case& c : cases) EXPECT_NEAR(spacemouse::shapeAxis(c.raw), c.shaped, 1e-12) << c.raw;
}

TEST(SpaceMouseInput, MotionHonoursSpeedInversionDominanceAndLevelHorizon) {
    const spacemouse::Axes axes{{350, -192, 192}, {0, 350, -350}};
    spacemouse::Settings settings;
    spacemouse::Motion motion = spacemouse::shapeMotion(axes, settings);
    EXPECT_NEAR(motion.panX, 1, 1e-12);
    EXPECT_LT(motion.panY, 0); // the cap pressed down pans down
    EXPECT_LT(motion.zoom, 0); // pulled towards the user zooms out
    EXPECT_EQ(motion.tilt, 0);
    EXPECT_NEAR(motion.turn, -1, 1e-12);
    EXPECT_NEAR(motion.roll, 1, 1e-12);

    settings.speed = 20; // clamped to 5
    settings.invertPan = true;
    settings.invertTurn = true;
    motion = spacemouse::shapeMotion(axes, settings);
    EXPECT_NEAR(motion.panX, -5, 1e-12);
    EXPECT_NEAR(motion.turn, 5, 1e-12);
    EXPECT_NEAR(motion.roll, -5, 1e-12);
    EXPECT_LT(motion.zoom, 0);

    settings = {};
    settings.speed = 0.01; // clamped to 0.1
    settings.invertZoom = true;
    motion = spacemouse::shapeMotion(axes, settings);
    EXPECT_NEAR(motion.panX, 0.1, 1e-12);
    EXPECT_GT(motion.zoom, 0);

    settings = {};
    settings.levelHorizon = true;
    EXPECT_EQ(spacemouse::shapeMotion(axes, settings).roll, 0);

    settings = {};
    settings.dominant = true;
    motion = spacemouse::shapeMotion({{100, 0, 0}, {0, 0, -300}}, settings);
    EXPECT_EQ(motion.panX, 0);
    EXPECT_LT(motion.turn, 0);
    EXPECT_EQ(motion.panY, 0);
    EXPECT_EQ(motion.zoom, 0);
}

TEST(SpaceMouseInput, SpeedIsClamped) {
    EXPECT_EQ(spacemouse::clampSpeed(0), 0.1);
    EXPECT_EQ(spacemouse::clampSpeed(2.5), 2.5);
    EXPECT_EQ(spacemouse::clampSpeed(9), 5.0);
    EXPECT_EQ(spacemouse::clampSpeed(std::numeric_limits<double>::quiet_NaN()), 1.0);
}

} // namespace
