// A number that carries its exact first derivatives with respect to the few
// parameters one constraint touches, so that one residual formula gives both the
// residual and its Jacobian row (forward-mode differentiation).
#pragma once

#include <array>
#include <cmath>

namespace cad::solver {

template <int N> struct Dual {
    double v = 0;
    std::array<double, N> d{};

    Dual() = default;
    Dual(double value) : v(value) {} // constants have no derivatives
    static Dual variable(double value, int slot) {
        Dual x(value);
        x.d[static_cast<std::size_t>(slot)] = 1;
        return x;
    }
};

inline double valueOf(double x) { return x; }
template <int N> double valueOf(const Dual<N>& x) { return x.v; }

template <int N> Dual<N> operator+(const Dual<N>& a, const Dual<N>& b) {
    Dual<N> r(a.v + b.v);
    for (int i = 0; i < N; ++i) r.d[i] = a.d[i] + b.d[i];
    return r;
}
template <int N> Dual<N> operator-(const Dual<N>& a, const Dual<N>& b) {
    Dual<N> r(a.v - b.v);
    for (int i = 0; i < N; ++i) r.d[i] = a.d[i] - b.d[i];
    return r;
}
template <int N> Dual<N> operator-(const Dual<N>& a) {
    Dual<N> r(-a.v);
    for (int i = 0; i < N; ++i) r.d[i] = -a.d[i];
    return r;
}
template <int N> Dual<N> operator*(const Dual<N>& a, const Dual<N>& b) {
    Dual<N> r(a.v * b.v);
    for (int i = 0; i < N; ++i) r.d[i] = a.d[i] * b.v + a.v * b.d[i];
    return r;
}
template <int N> Dual<N> operator*(const Dual<N>& a, double k) {
    Dual<N> r(a.v * k);
    for (int i = 0; i < N; ++i) r.d[i] = a.d[i] * k;
    return r;
}
template <int N> Dual<N> operator*(double k, const Dual<N>& a) { return a * k; }
template <int N> Dual<N> operator/(const Dual<N>& a, const Dual<N>& b) {
    const double inv = 1.0 / b.v;
    const double q = a.v * inv;
    Dual<N> r(q);
    for (int i = 0; i < N; ++i) r.d[i] = (a.d[i] - q * b.d[i]) * inv;
    return r;
}
template <int N> Dual<N> operator/(const Dual<N>& a, double k) { return a * (1.0 / k); }
template <int N> Dual<N> operator+(const Dual<N>& a, double k) {
    Dual<N> r = a;
    r.v += k;
    return r;
}
template <int N> Dual<N> operator-(const Dual<N>& a, double k) {
    Dual<N> r = a;
    r.v -= k;
    return r;
}

// A square root of zero has no derivative; zero is what central differences see
// there for the symmetric uses in this solver (lengths of vanishing vectors).
template <int N> Dual<N> sqrt(const Dual<N>& a) {
    const double s = std::sqrt(a.v);
    Dual<N> r(s);
    const double k = s > 0 ? 0.5 / s : 0.0;
    for (int i = 0; i < N; ++i) r.d[i] = a.d[i] * k;
    return r;
}
template <int N> Dual<N> cos(const Dual<N>& a) {
    Dual<N> r(std::cos(a.v));
    const double k = -std::sin(a.v);
    for (int i = 0; i < N; ++i) r.d[i] = a.d[i] * k;
    return r;
}
template <int N> Dual<N> sin(const Dual<N>& a) {
    Dual<N> r(std::sin(a.v));
    const double k = std::cos(a.v);
    for (int i = 0; i < N; ++i) r.d[i] = a.d[i] * k;
    return r;
}
template <int N> Dual<N> atan2(const Dual<N>& y, const Dual<N>& x) {
    Dual<N> r(std::atan2(y.v, x.v));
    const double q = x.v * x.v + y.v * y.v;
    if (q > 0)
        for (int i = 0; i < N; ++i) r.d[i] = (x.v * y.d[i] - y.v * x.d[i]) / q;
    return r;
}
template <int N> Dual<N> abs(const Dual<N>& a) { return a.v < 0 ? -a : a; }

} // namespace cad::solver
