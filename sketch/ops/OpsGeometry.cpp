// Analytic crossings of lines and circles, and the small pieces of plane geometry
// the sketch operations share.
#include "sketch/ops/OpsGeometry.h"

#include <algorithm>

namespace cad::ops {

namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;

// A point counts as on a bounded curve when it is within this fraction of a segment
// or this many radians of an arc: crossings at the very ends of a cutter count.
constexpr double kOnEnd = 1e-9;

bool withinArc(double angle, const Bounded& arc) {
    if (arc.span >= kTwoPi) return true;
    const double offset = wrapTurn(angle - arc.from);
    return offset <= arc.span + kOnEnd || offset >= kTwoPi - kOnEnd;
}

bool onCurve(Point2 p, const Bounded& curve) {
    if (curve.circular) return withinArc(direction(curve.centre, p), curve);
    const double t = lineParameter(p, curve.a, curve.b);
    return t >= -kOnEnd && t <= 1 + kOnEnd;
}

// Where the infinite line crosses the circle: none, the touching point, or two.
std::vector<Point2> lineCircle(Point2 origin, Point2 along, Point2 centre, double radius) {
    const Point2 u = unit(along);
    if (norm(u) == 0) return {};
    const Point2 foot = origin + dot(centre - origin, u) * u;
    const double h = distance(foot, centre);
    const double tolerance = 1e-9 * std::max(1.0, radius);
    if (h > radius + tolerance) return {};
    if (std::fabs(h - radius) <= tolerance) return {foot};
    const double half = std::sqrt(radius * radius - h * h);
    return {foot - half * u, foot + half * u};
}

std::vector<Point2> circleCircle(Point2 c1, double r1, Point2 c2, double r2) {
    const double d = distance(c1, c2);
    const double tolerance = 1e-9 * std::max({1.0, r1, r2});
    if (d < 1e-12 || d > r1 + r2 + tolerance || d < std::fabs(r1 - r2) - tolerance) return {};
    const double a = (d * d + r1 * r1 - r2 * r2) / (2 * d);
    const Point2 u = (1 / d) * (c2 - c1);
    const Point2 mid = c1 + a * u;
    const double h2 = r1 * r1 - a * a;
    if (h2 <= tolerance * tolerance) return {mid};
    const double h = std::sqrt(h2);
    return {mid + h * leftOf(u), mid - h * leftOf(u)};
}

} // namespace

double wrapTurn(double angle) {
    double a = std::fmod(angle, kTwoPi);
    if (a < 0) a += kTwoPi;
    return a >= kTwoPi ? 0 : a;
}

Point2 reflect(Point2 p, Point2 a, Point2 b) {
    const Point2 u = unit(b - a);
    const Point2 foot = a + dot(p - a, u) * u;
    return foot + (foot - p);
}

double lineParameter(Point2 p, Point2 a, Point2 b) {
    const Point2 d = b - a;
    const double d2 = dot(d, d);
    return d2 > 0 ? dot(p - a, d) / d2 : 0;
}

std::vector<Point2> crossings(const Carrier& carrier, const Bounded& curve) {
    std::vector<Point2> points;
    if (!carrier.circular && !curve.circular) {
        const Point2 e = curve.b - curve.a;
        const double denominator = cross(carrier.along, e);
        if (std::fabs(denominator) <= 1e-12 * norm(carrier.along) * norm(e)) return {};
        const double s = cross(curve.a - carrier.origin, carrier.along) / denominator;
        if (s >= -kOnEnd && s <= 1 + kOnEnd) points.push_back(curve.a + s * e);
        return points;
    }
    if (!carrier.circular)
        points = lineCircle(carrier.origin, carrier.along, curve.centre, curve.radius);
    else if (!curve.circular)
        points = lineCircle(curve.a, curve.b - curve.a, carrier.centre, carrier.radius);
    else
        points = circleCircle(carrier.centre, carrier.radius, curve.centre, curve.radius);
    std::erase_if(points, [&](Point2 p) { return !onCurve(p, curve); });
    return points;
}

} // namespace cad::ops
