// Arcs, ellipses and B-splines of DXF entities as pieces, sampled so that the chord
// strays at most a hundredth of a millimetre (within a fixed count per curve).
#include "sketch/drawingimport/dxf/DxfCurves.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace cad::drawingimport::dxf {

namespace {

constexpr double kChordError = 0.01;  // mm, after placement
constexpr int kMostArcSamples = 1024; // per full turn
constexpr int kSamplesPerSpan = 32;
constexpr std::size_t kMostSplineSamples = 65536;

// Samples for `sweep` radians of a curve whose largest radius is `radius` mm.
int arcSamples(double radius, double sweep) {
    const double turn = std::abs(sweep) / (2 * std::numbers::pi);
    double n = 8;
    if (radius > kChordError) n = std::abs(sweep) / std::sqrt(8 * kChordError / radius);
    n = std::clamp(n, 8 * turn, kMostArcSamples * turn);
    return std::max(2, static_cast<int>(std::ceil(n)));
}

} // namespace

double degrees(double r) { return r * 180.0 / std::numbers::pi; }
double radians(double deg) { return deg * std::numbers::pi / 180.0; }

Piece placedArc(Vec2 center, double radius, double startDeg, double sweepDeg, const Affine& t) {
    Piece piece;
    if (t.isSimilarity()) {
        const Vec2 dir = t.applyLinear({std::cos(radians(startDeg)), std::sin(radians(startDeg))});
        piece.kind = PieceKind::Arc;
        piece.center = t.apply(center);
        piece.radius = radius * std::hypot(dir.x, dir.y);
        piece.startAngle = degrees(std::atan2(dir.y, dir.x));
        piece.sweepAngle = t.determinant() < 0 ? -sweepDeg : sweepDeg;
        return piece;
    }
    piece.kind = PieceKind::Polyline;
    const double sweep = radians(sweepDeg);
    const int n = arcSamples(radius * t.largestScale(), sweep);
    piece.points.reserve(static_cast<std::size_t>(n) + 1);
    for (int k = 0; k <= n; ++k) {
        const double angle = radians(startDeg) + sweep * k / n;
        piece.points.push_back(
            t.apply({center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)}));
    }
    return piece;
}

bool bulgeArc(Vec2 from, Vec2 to, double bulge, Vec2& center, double& radius, double& startDeg,
              double& sweepDeg) {
    const Vec2 chord{to.x - from.x, to.y - from.y};
    const double length = std::hypot(chord.x, chord.y);
    if (length == 0 || bulge == 0) return false;
    // The centre sits on the chord's perpendicular bisector, left of the chord for a
    // counter-clockwise (positive) bulge smaller than a half circle.
    const double offset = (1 - bulge * bulge) / (4 * bulge);
    center = {(from.x + to.x) / 2 - chord.y * offset, (from.y + to.y) / 2 + chord.x * offset};
    radius = std::hypot(from.x - center.x, from.y - center.y);
    startDeg = degrees(std::atan2(from.y - center.y, from.x - center.x));
    sweepDeg = degrees(4 * std::atan(bulge));
    return std::isfinite(radius) && radius > 0;
}

std::vector<Vec2> sampledEllipse(Vec2 center, Vec2 major, double ratio, double startParam,
                                 double endParam, const Affine& t) {
    const Vec2 minor{-major.y * ratio, major.x * ratio};
    double sweep = endParam - startParam;
    const double turn = 2 * std::numbers::pi;
    if (!std::isfinite(sweep)) return {};
    sweep = std::fmod(sweep, turn);
    if (sweep <= 1e-12) sweep += turn;
    const double size = std::max(std::hypot(major.x, major.y), std::hypot(minor.x, minor.y));
    const int n = arcSamples(size * t.largestScale(), sweep);
    std::vector<Vec2> points;
    points.reserve(static_cast<std::size_t>(n) + 1);
    for (int k = 0; k <= n; ++k) {
        const double p = startParam + sweep * k / n;
        const double cs = std::cos(p);
        const double sn = std::sin(p);
        points.push_back(t.apply(
            {center.x + major.x * cs + minor.x * sn, center.y + major.y * cs + minor.y * sn}));
    }
    return points;
}

namespace {

bool usableKnots(const std::vector<double>& knots, std::size_t count, int degree) {
    if (knots.size() != count + static_cast<std::size_t>(degree) + 1) return false;
    for (std::size_t i = 0; i < knots.size(); ++i) {
        if (!std::isfinite(knots[i]) || (i > 0 && knots[i] < knots[i - 1])) return false;
    }
    return knots[static_cast<std::size_t>(degree)] < knots[count];
}

std::vector<double> clampedUniformKnots(std::size_t count, int degree) {
    std::vector<double> knots;
    const std::size_t p = static_cast<std::size_t>(degree);
    knots.reserve(count + p + 1);
    for (std::size_t i = 0; i < count + p + 1; ++i) {
        if (i <= p)
            knots.push_back(0);
        else if (i >= count)
            knots.push_back(static_cast<double>(count - p));
        else
            knots.push_back(static_cast<double>(i - p));
    }
    return knots;
}

struct Homogeneous {
    double x = 0, y = 0, w = 1;
};

} // namespace

std::vector<Vec2> sampledBSpline(const BSpline& spline, const Affine& t) {
    const std::size_t count = spline.controls.size();
    if (count < 2) return {};
    const int degree = std::clamp(spline.degree, 1, std::min(11, static_cast<int>(count) - 1));
    const std::size_t p = static_cast<std::size_t>(degree);
    const std::vector<double> knots = usableKnots(spline.knots, count, degree)
                                          ? spline.knots
                                          : clampedUniformKnots(count, degree);
    bool weighted = spline.weights.size() == count;
    for (double w : spline.weights) weighted = weighted && std::isfinite(w) && w > 0;

    std::vector<Homogeneous> control(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double w = weighted ? spline.weights[i] : 1.0;
        control[i] = {spline.controls[i].x * w, spline.controls[i].y * w, w};
    }
    std::size_t spans = 0;
    for (std::size_t k = p; k < count; ++k) spans += knots[k] < knots[k + 1] ? 1 : 0;
    // A straight-segment spline needs only its knots; curved spans get a fixed count.
    const std::size_t most = degree == 1 ? 1 : kSamplesPerSpan;
    const std::size_t perSpan = std::clamp<std::size_t>(
        kMostSplineSamples / std::max<std::size_t>(spans, 1), std::min<std::size_t>(4, most), most);

    std::vector<Vec2> points;
    points.reserve(std::min(kMostSplineSamples + 1, spans * perSpan + 1));
    std::array<Homogeneous, 12> d;
    auto evaluate = [&](std::size_t span, double u) {
        for (std::size_t j = 0; j <= p; ++j) d[j] = control[j + span - p];
        for (std::size_t r = 1; r <= p; ++r) {
            for (std::size_t j = p; j >= r; --j) {
                const double lo = knots[j + span - p];
                const double hi = knots[j + 1 + span - r];
                const double alpha = hi > lo ? (u - lo) / (hi - lo) : 0;
                d[j] = {(1 - alpha) * d[j - 1].x + alpha * d[j].x,
                        (1 - alpha) * d[j - 1].y + alpha * d[j].y,
                        (1 - alpha) * d[j - 1].w + alpha * d[j].w};
            }
        }
        const Homogeneous& h = d[p];
        points.push_back(t.apply({h.x / h.w, h.y / h.w}));
    };
    bool first = true;
    for (std::size_t k = p; k < count; ++k) {
        if (!(knots[k] < knots[k + 1])) continue;
        for (std::size_t s = first ? 0 : 1; s <= perSpan; ++s) {
            evaluate(k, knots[k] + (knots[k + 1] - knots[k]) * static_cast<double>(s) /
                                       static_cast<double>(perSpan));
        }
        first = false;
    }
    return points;
}

} // namespace cad::drawingimport::dxf
