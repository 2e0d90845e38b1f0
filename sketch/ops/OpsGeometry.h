// Plane geometry the sketch operations share: vector arithmetic on sketch points,
// angles, reflection, and where lines and circles cross each other.
#pragma once

#include "sketch/SketchEntity.h"

#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

namespace cad::ops {

inline Point2 operator+(Point2 a, Point2 b) { return {a.x + b.x, a.y + b.y}; }
inline Point2 operator-(Point2 a, Point2 b) { return {a.x - b.x, a.y - b.y}; }
inline Point2 operator*(double k, Point2 a) { return {k * a.x, k * a.y}; }
inline double dot(Point2 a, Point2 b) { return a.x * b.x + a.y * b.y; }
inline double cross(Point2 a, Point2 b) { return a.x * b.y - a.y * b.x; }
inline double norm(Point2 a) { return std::hypot(a.x, a.y); }
inline double distance(Point2 a, Point2 b) { return norm(a - b); }
// The unit vector along a, or (0, 0) for a zero vector.
inline Point2 unit(Point2 a) {
    const double n = norm(a);
    return n > 0 ? Point2{a.x / n, a.y / n} : Point2{0, 0};
}
// a turned a quarter counter-clockwise: the left normal of a direction.
inline Point2 leftOf(Point2 a) { return {-a.y, a.x}; }

inline double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }
inline double degrees(double radians) { return radians * 180.0 / std::numbers::pi; }
inline Point2 polar(Point2 centre, double radius, double angle) {
    return {centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
}
inline double direction(Point2 from, Point2 to) { return std::atan2(to.y - from.y, to.x - from.x); }
// An angle brought into [0, 2pi).
double wrapTurn(double angle);

// p reflected across the infinite line through a and b.
Point2 reflect(Point2 p, Point2 a, Point2 b);

// The infinite line through `origin` along `along`, or the full circle around
// `centre`: what a curve is extended along and intersected on.
struct Carrier {
    bool circular = false;
    Point2 origin, along; // a line
    Point2 centre;        // a circle
    double radius = 0;
};

// A bounded curve other curves are cut against: a segment from a to b, or the
// counter-clockwise arc of the circle from angle `from` over `span` radians (2pi
// for a full circle).
struct Bounded {
    bool circular = false;
    Point2 a, b;
    Point2 centre;
    double radius = 0, from = 0, span = 0;
};

// Where the carrier crosses the bounded curve (its ends included, within a hair).
// Parallel lines and concentric circles have no crossing points.
std::vector<Point2> crossings(const Carrier& carrier, const Bounded& curve);

// The point on the line through a and b nearest to p, as a fraction of a -> b.
double lineParameter(Point2 p, Point2 a, Point2 b);

} // namespace cad::ops
