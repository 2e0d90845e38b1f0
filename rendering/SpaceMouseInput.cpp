// Decoding SpaceMouse reports and shaping its axes into camera motion.
#include "rendering/SpaceMouseInput.h"

#include <algorithm>
#include <cmath>

namespace cad::rendering::spacemouse {

namespace {

int readInt16(std::span<const std::uint8_t> bytes, size_t offset) {
    const auto value = static_cast<std::uint16_t>(bytes[offset] | (bytes[offset + 1] << 8));
    return static_cast<std::int16_t>(value);
}

std::array<int, 3> readTriple(std::span<const std::uint8_t> bytes, size_t offset) {
    return {readInt16(bytes, offset), readInt16(bytes, offset + 2), readInt16(bytes, offset + 4)};
}

} // namespace

std::optional<Report> decodeReport(std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return std::nullopt;
    Report report;
    const std::uint8_t id = bytes[0];
    if (id == 1 && bytes.size() == 13) {
        report.translation = readTriple(bytes, 1);
        report.rotation = readTriple(bytes, 7);
    } else if (id == 1 && bytes.size() == 7) {
        report.translation = readTriple(bytes, 1);
    } else if (id == 2 && bytes.size() == 7) {
        report.rotation = readTriple(bytes, 1);
    } else if (id == 3 && bytes.size() >= 2) {
        std::uint32_t mask = 0;
        for (size_t i = 1; i < bytes.size() && i <= 4; ++i)
            mask |= static_cast<std::uint32_t>(bytes[i]) << (8 * (i - 1));
        report.buttons = mask;
    } else {
        return std::nullopt;
    }
    return report;
}

double shapeAxis(double raw) {
    const double f = std::clamp(raw / 350.0, -1.0, 1.0);
    if (std::abs(f) < 0.1) return 0.0;
    const double g = (std::abs(f) - 0.1) / 0.9;
    const double shaped = g * g * (0.6 + 0.4 * g);
    return f < 0 ? -shaped : shaped;
}

double clampSpeed(double speed) {
    if (!std::isfinite(speed)) return 1.0;
    return std::clamp(speed, 0.1, 5.0);
}

Motion shapeMotion(const Axes& axes, const Settings& settings) {
    std::array<double, 6> values = {
        shapeAxis(axes.translation[0]),                            // pan right
        -shapeAxis(axes.translation[2]),                           // lift: pan up
        shapeAxis(axes.translation[1]),                            // push away: zoom in
        shapeAxis(axes.rotation[0]),                               // tilt
        shapeAxis(axes.rotation[2]),                               // twist: turn
        settings.levelHorizon ? 0.0 : shapeAxis(axes.rotation[1]), // roll
    };
    if (settings.dominant) {
        const auto strongest =
            std::max_element(values.begin(), values.end(),
                             [](double a, double b) { return std::abs(a) < std::abs(b); });
        for (auto it = values.begin(); it != values.end(); ++it)
            if (it != strongest) *it = 0.0;
    }
    const double speed = clampSpeed(settings.speed);
    const double pan = settings.invertPan ? -speed : speed;
    const double zoom = settings.invertZoom ? -speed : speed;
    const double turn = settings.invertTurn ? -speed : speed;
    Motion motion;
    motion.panX = values[0] * pan;
    motion.panY = values[1] * pan;
    motion.zoom = values[2] * zoom;
    motion.tilt = values[3] * turn;
    motion.turn = values[4] * turn;
    motion.roll = values[5] * turn;
    return motion;
}

} // namespace cad::rendering::spacemouse
