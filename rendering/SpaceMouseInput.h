// The SpaceMouse's numbers without the device: decoding its HID reports and shaping
// the six axes (dead zone, response curve, speed, inversions, dominant axis).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace cad::rendering::spacemouse {

// Raw axis values in the device's HID convention: x right, y away from the user,
// z down (pressing the cap), and the rotations about those axes.
struct Axes {
    std::array<int, 3> translation{};
    std::array<int, 3> rotation{};
};

// What one HID report carried: translation, rotation or both (an axis report), or a
// button mask (report id 3).
struct Report {
    std::optional<std::array<int, 3>> translation;
    std::optional<std::array<int, 3>> rotation;
    std::optional<std::uint32_t> buttons;
};

// Report id 1 with 13 bytes: all six axes; id 1 with 7 bytes: translation; id 2 with
// 7 bytes: rotation; id 3: buttons, one bit each. Axes are signed 16-bit little-endian.
std::optional<Report> decodeReport(std::span<const std::uint8_t> bytes);

// One axis: f = clamp(raw / 350, -1, 1); |f| < 0.1 is dead; beyond, g = (|f| - 0.1) / 0.9
// and the result is g² (0.6 + 0.4 g) with the sign of f.
double shapeAxis(double raw);

struct Settings {
    double speed = 1.0; // clamped to 0.1 .. 5
    bool invertPan = false;
    bool invertZoom = false;
    bool invertTurn = false;
    bool levelHorizon = false;
    bool dominant = false;
};
double clampSpeed(double speed);

// The camera motion of one step, each in -speed .. speed: pan right and up, zoom in,
// tilt (about the screen's horizontal), turn (about world Z) and roll (about the
// line of sight; always zero when the horizon is kept level).
struct Motion {
    double panX = 0, panY = 0, zoom = 0, tilt = 0, turn = 0, roll = 0;
    bool isZero() const {
        return panX == 0 && panY == 0 && zoom == 0 && tilt == 0 && turn == 0 && roll == 0;
    }
};

// Raw axes to motion: x pans right, lifting the cap (−z) pans up, pushing it away (+y)
// zooms in, tilting it forward (rx) tilts, twisting (rz) turns, rolling (ry) rolls.
Motion shapeMotion(const Axes& axes, const Settings& settings);

} // namespace cad::rendering::spacemouse
