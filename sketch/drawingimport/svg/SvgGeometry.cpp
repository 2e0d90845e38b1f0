// Affine matrices and the path builder of the SVG reader: arcs are converted from
// SVG's endpoint form to centre and angles, kept as arcs when the transform maps
// them to circles, and otherwise approximated by one cubic per quarter turn.
#include "sketch/drawingimport/svg/SvgGeometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace cad::drawingimport::svg {

namespace {

constexpr double kPi = std::numbers::pi;

double degrees(double radians) { return radians * 180.0 / kPi; }

double length(Vec2 v) { return std::hypot(v.x, v.y); }

bool sameCircle(Vec2 u, Vec2 v) {
    // The images of the two semi-axes: equally long and perpendicular.
    const double lu = length(u), lv = length(v);
    const double scale = std::max(lu, lv);
    if (!(scale > 0)) return false;
    const double tolerance = 1e-9 * scale;
    return std::abs(lu - lv) <= tolerance && std::abs(u.x * v.x + u.y * v.y) <= tolerance * scale;
}

} // namespace

void PathBuilder::moveTo(Vec2 p) {
    finishSubpath(false);
    start_ = at_ = p;
    open_ = true;
}

void PathBuilder::lineTo(Vec2 p) {
    if (!open_) moveTo(at_);
    addPiece({PieceKind::Segment, {m_.apply(at_), m_.apply(p)}, {}, 0, 0, 0});
    at_ = p;
}

void PathBuilder::cubicTo(Vec2 c1, Vec2 c2, Vec2 p) {
    if (!open_) moveTo(at_);
    addPiece(
        {PieceKind::Cubic, {m_.apply(at_), m_.apply(c1), m_.apply(c2), m_.apply(p)}, {}, 0, 0, 0});
    at_ = p;
}

void PathBuilder::quadraticTo(Vec2 c, Vec2 p) {
    if (!open_) moveTo(at_);
    addPiece({PieceKind::Quadratic, {m_.apply(at_), m_.apply(c), m_.apply(p)}, {}, 0, 0, 0});
    at_ = p;
}

void PathBuilder::arcTo(double rx, double ry, double rotation, bool largeArc, bool sweep, Vec2 p) {
    if (!open_) moveTo(at_);
    const Vec2 from = at_;
    if (from.x == p.x && from.y == p.y) return; // an arc to where it starts draws nothing
    rx = std::abs(rx);
    ry = std::abs(ry);
    if (!(rx > 0) || !(ry > 0) || !std::isfinite(rx) || !std::isfinite(ry)) {
        lineTo(p);
        return;
    }
    const double phi = rotation * kPi / 180.0;
    const double cosPhi = std::cos(phi), sinPhi = std::sin(phi);
    const double hx = (from.x - p.x) / 2, hy = (from.y - p.y) / 2;
    const double x1 = cosPhi * hx + sinPhi * hy;
    const double y1 = -sinPhi * hx + cosPhi * hy;
    // Radii too small to reach are scaled up just enough.
    const double lambda = (x1 * x1) / (rx * rx) + (y1 * y1) / (ry * ry);
    if (lambda > 1) {
        rx *= std::sqrt(lambda);
        ry *= std::sqrt(lambda);
    }
    const double num = rx * rx * ry * ry - rx * rx * y1 * y1 - ry * ry * x1 * x1;
    const double den = rx * rx * y1 * y1 + ry * ry * x1 * x1;
    double k = den > 0 ? std::sqrt(std::max(0.0, num / den)) : 0;
    if (largeArc == sweep) k = -k;
    const double cxp = k * rx * y1 / ry, cyp = -k * ry * x1 / rx;
    const Vec2 center{cosPhi * cxp - sinPhi * cyp + (from.x + p.x) / 2,
                      sinPhi * cxp + cosPhi * cyp + (from.y + p.y) / 2};
    const double t0 = std::atan2((y1 - cyp) / ry, (x1 - cxp) / rx);
    const double t1 = std::atan2((-y1 - cyp) / ry, (-x1 - cxp) / rx);
    double dt = t1 - t0;
    if (sweep && dt < 0) dt += 2 * kPi;
    if (!sweep && dt > 0) dt -= 2 * kPi;
    if (!std::isfinite(dt) || !std::isfinite(center.x) || !std::isfinite(center.y)) {
        lineTo(p);
        return;
    }
    ellipticalSweep(center, rx, ry, rotation, t0, dt);
    at_ = p;
}

void PathBuilder::close() {
    if (!open_) return;
    if (at_.x != start_.x || at_.y != start_.y) lineTo(start_);
    finishSubpath(true);
    at_ = start_;
}

void PathBuilder::circle(Vec2 center, double r) { ellipse(center, r, r); }

void PathBuilder::ellipse(Vec2 center, double rx, double ry) {
    if (!(rx > 0) || !(ry > 0)) return;
    finishSubpath(false);
    open_ = true;
    ellipticalSweep(center, rx, ry, 0, 0, 2 * kPi);
    finishSubpath(true);
    at_ = start_ = {center.x + rx, center.y};
}

std::vector<DrawingPath> PathBuilder::take() {
    finishSubpath(false);
    return std::exchange(done_, {});
}

void PathBuilder::finishSubpath(bool closed) {
    if (!current_.pieces.empty()) {
        current_.closed = closed;
        done_.push_back(std::move(current_));
    }
    current_ = {};
    open_ = false;
}

void PathBuilder::addPiece(Piece piece) { current_.pieces.push_back(std::move(piece)); }

void PathBuilder::ellipticalSweep(Vec2 center, double rx, double ry, double rotation, double t0,
                                  double dt) {
    const double phi = rotation * kPi / 180.0;
    const Vec2 axisX{rx * std::cos(phi), rx * std::sin(phi)};
    const Vec2 axisY{-ry * std::sin(phi), ry * std::cos(phi)};
    auto pointAt = [&](double t) {
        return Vec2{center.x + axisX.x * std::cos(t) + axisY.x * std::sin(t),
                    center.y + axisX.y * std::cos(t) + axisY.y * std::sin(t)};
    };
    auto tangentAt = [&](double t) {
        return Vec2{-axisX.x * std::sin(t) + axisY.x * std::cos(t),
                    -axisX.y * std::sin(t) + axisY.y * std::cos(t)};
    };
    const Vec2 mappedX = m_.applyLinear(axisX), mappedY = m_.applyLinear(axisY);
    const bool full = std::abs(dt) >= 2 * kPi - 1e-12;
    if (sameCircle(mappedX, mappedY)) {
        const Vec2 c = m_.apply(center);
        const double radius = length(mappedX);
        if (full) {
            addPiece({PieceKind::Circle, {}, c, radius, 0, 360});
            return;
        }
        const Vec2 s = m_.apply(pointAt(t0));
        const double orientation = m_.determinant() < 0 ? -1.0 : 1.0;
        addPiece({PieceKind::Arc,
                  {},
                  c,
                  radius,
                  degrees(std::atan2(s.y - c.y, s.x - c.x)),
                  orientation * degrees(dt)});
        return;
    }
    // Not circular once transformed: one cubic per quarter turn at most. Affine maps
    // take a Bézier's control points to the transformed curve's exactly.
    const int parts = std::max(1, static_cast<int>(std::ceil(std::abs(dt) / (kPi / 2) - 1e-9)));
    const double step = dt / parts;
    const double alpha = 4.0 / 3.0 * std::tan(step / 4);
    for (int i = 0; i < parts; ++i) {
        const double a = t0 + step * i, b = a + step;
        const Vec2 p0 = pointAt(a), p3 = pointAt(b);
        const Vec2 d0 = tangentAt(a), d3 = tangentAt(b);
        addPiece({PieceKind::Cubic,
                  {m_.apply(p0), m_.apply({p0.x + alpha * d0.x, p0.y + alpha * d0.y}),
                   m_.apply({p3.x - alpha * d3.x, p3.y - alpha * d3.y}), m_.apply(p3)},
                  {},
                  0,
                  0,
                  0});
    }
}

} // namespace cad::drawingimport::svg
