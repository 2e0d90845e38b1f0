// How the points, lines and circles that constraints refer to are computed from the
// solver's parameters: one small expression per reference, evaluated for plain
// numbers (residuals) and for numbers with derivatives (Jacobian rows) alike.
#pragma once

#include "sketch/solver/Dual.h"

#include <array>
#include <cstdint>

namespace cad::solver {

// Guards the divisions of the residual formulas.
constexpr double kEpsilon = 1e-12;

template <class T> struct Vec { T x, y; };

template <class T> Vec<T> operator+(const Vec<T>& a, const Vec<T>& b) {
    return {a.x + b.x, a.y + b.y};
}
template <class T> Vec<T> operator-(const Vec<T>& a, const Vec<T>& b) {
    return {a.x - b.x, a.y - b.y};
}
template <class T> Vec<T> half(const Vec<T>& a) { return {a.x * 0.5, a.y * 0.5}; }
template <class T> T dot(const Vec<T>& a, const Vec<T>& b) { return a.x * b.x + a.y * b.y; }
template <class T> T cross(const Vec<T>& a, const Vec<T>& b) { return a.x * b.y - a.y * b.x; }

inline double sqrtOf(double v) { return std::sqrt(v); }
template <int N> Dual<N> sqrtOf(const Dual<N>& v) { return sqrt(v); }
inline double cosOf(double v) { return std::cos(v); }
template <int N> Dual<N> cosOf(const Dual<N>& v) { return cos(v); }
inline double sinOf(double v) { return std::sin(v); }
template <int N> Dual<N> sinOf(const Dual<N>& v) { return sin(v); }
inline double absOf(double v) { return std::fabs(v); }
template <int N> Dual<N> absOf(const Dual<N>& v) { return abs(v); }
inline double atan2Of(double y, double x) { return std::atan2(y, x); }
template <int N> Dual<N> atan2Of(const Dual<N>& y, const Dual<N>& x) { return atan2(y, x); }

template <class T> T length(const Vec<T>& a) { return sqrtOf(dot(a, a)); }
// max(v, ε): the divisor of a normalised formula.
template <class T> T guarded(const T& v) { return valueOf(v) > kEpsilon ? v : T(kEpsilon); }

// A point as a function of at most five local parameter slots.
struct PointExpr {
    enum class Form : std::uint8_t { Constant, Direct, RectangleCorner, ArcPoint, PolygonCorner };
    Form form = Form::Constant;
    // Rectangle: corner 0..3 or 4 for the centre; arc: 1 start, 2 end.
    std::uint8_t which = 0;
    // Direct: x, y. Rectangle: x, y, width, height. Arc: cx, cy, r, start, sweep.
    // Polygon: cx, cy, r, rotation.
    std::array<std::int8_t, 5> slot{};
    double a = 0, b = 0; // constant position; for a polygon corner, its angle offset in a
};

// A line from a to b; a circle is its centre in a and its radius slot.
struct Operand {
    enum class Kind : std::uint8_t { None, Point, Line, Circle };
    Kind kind = Kind::None;
    std::int8_t radius = 0;
    PointExpr a, b;
};

template <class T> Vec<T> evalPoint(const PointExpr& p, const T* local) {
    auto at = [&](int i) -> const T& { return local[p.slot[static_cast<std::size_t>(i)]]; };
    switch (p.form) {
    case PointExpr::Form::Constant:
        return {T(p.a), T(p.b)};
    case PointExpr::Form::Direct:
        return {at(0), at(1)};
    case PointExpr::Form::RectangleCorner: {
        const T& x = at(0);
        const T& y = at(1);
        switch (p.which) {
        case 0:
            return {x, y};
        case 1:
            return {x + at(2), y};
        case 2:
            return {x + at(2), y + at(3)};
        case 3:
            return {x, y + at(3)};
        default:
            return {x + at(2) * 0.5, y + at(3) * 0.5};
        }
    }
    case PointExpr::Form::ArcPoint: {
        T angle = p.which == 2 ? at(3) + at(4) : at(3);
        return {at(0) + at(2) * cosOf(angle), at(1) + at(2) * sinOf(angle)};
    }
    case PointExpr::Form::PolygonCorner: {
        T angle = at(3) + p.a;
        return {at(0) + at(2) * cosOf(angle), at(1) + at(2) * sinOf(angle)};
    }
    }
    return {T(0), T(0)};
}

// Signed distance of p from the infinite line a→b, positive on the left.
template <class T> T signedDistance(const Vec<T>& p, const Vec<T>& a, const Vec<T>& b) {
    Vec<T> d = b - a;
    return cross(d, p - a) / guarded(length(d));
}

} // namespace cad::solver
