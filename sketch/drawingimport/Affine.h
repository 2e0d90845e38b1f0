// The plane affine map every drawing reader places geometry with (block inserts,
// SVG transform lists, PDF matrices): x' = a x + c y + e, y' = b x + d y + f.
#pragma once

#include "sketch/drawingimport/ImportedDrawing.h"

#include <algorithm>
#include <cmath>

namespace cad::drawingimport {

struct Affine {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    Vec2 apply(Vec2 p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    Vec2 applyLinear(Vec2 v) const { return {a * v.x + c * v.y, b * v.x + d * v.y}; }
    double determinant() const { return a * d - b * c; }
    bool finite() const {
        return std::isfinite(a) && std::isfinite(b) && std::isfinite(c) && std::isfinite(d) &&
               std::isfinite(e) && std::isfinite(f);
    }
    // Keeps angles (a rotation, a uniform scale, perhaps a mirror): arcs stay arcs.
    bool isSimilarity() const {
        const double lx = std::hypot(a, b), ly = std::hypot(c, d);
        const double scale = std::max(lx, ly);
        if (scale == 0) return false;
        return std::abs(a * c + b * d) <= 1e-9 * scale * scale && std::abs(lx - ly) <= 1e-9 * scale;
    }
    // The largest stretch of a length (the largest singular value of the 2x2 part).
    double largestScale() const {
        const double p = (a * a + b * b + c * c + d * d) / 2;
        const double q = determinant();
        return std::sqrt(p + std::sqrt(std::max(0.0, p * p - q * q)));
    }

    static Affine translation(double x, double y) { return {1, 0, 0, 1, x, y}; }
    static Affine scaling(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
    static Affine rotation(double degrees) {
        const double r = degrees * (3.14159265358979323846 / 180.0);
        return {std::cos(r), std::sin(r), -std::sin(r), std::cos(r), 0, 0};
    }
};

// `outer` after `inner`: inner is applied to points first.
inline Affine operator*(const Affine& o, const Affine& i) {
    return {o.a * i.a + o.c * i.b, o.b * i.a + o.d * i.b,       o.a * i.c + o.c * i.d,
            o.b * i.c + o.d * i.d, o.a * i.e + o.c * i.f + o.e, o.b * i.e + o.d * i.f + o.f};
}

} // namespace cad::drawingimport
