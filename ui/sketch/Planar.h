// Small vector arithmetic on sketch-plane points, shared by the session's picking,
// drawing tools and dimensions. Angles are radians here.
#pragma once

#include "sketch/SketchEntity.h"

#include <cmath>
#include <numbers>

namespace cad::ui::planar {

inline Point2 operator+(Point2 a, Point2 b) { return {a.x + b.x, a.y + b.y}; }
inline Point2 operator-(Point2 a, Point2 b) { return {a.x - b.x, a.y - b.y}; }
inline Point2 operator*(Point2 a, double s) { return {a.x * s, a.y * s}; }
inline double dot(Point2 a, Point2 b) { return a.x * b.x + a.y * b.y; }
inline double cross(Point2 a, Point2 b) { return a.x * b.y - a.y * b.x; }
inline double length(Point2 a) { return std::hypot(a.x, a.y); }
inline Point2 middle(Point2 a, Point2 b) { return (a + b) * 0.5; }
// The unit vector along d, or the fallback when d has no length.
inline Point2 direction(Point2 d, Point2 fallback = {1, 0}) {
    const double l = length(d);
    return l > 1e-12 ? d * (1 / l) : fallback;
}
// The angle folded into [0, 2π).
inline double positiveAngle(double a) {
    constexpr double kTwoPi = 2 * std::numbers::pi;
    a = std::fmod(a, kTwoPi);
    return a < 0 ? a + kTwoPi : a;
}
inline Point2 polar(Point2 centre, double radius, double angle) {
    return {centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
}

} // namespace cad::ui::planar
