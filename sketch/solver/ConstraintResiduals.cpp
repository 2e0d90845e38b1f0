// Residuals of each constraint type. Lines run from a to b with direction d = b − a;
// divisions are guarded by ε; angular residuals are multiplied by the sketch's scale
// so that they weigh like lengths.
#include "sketch/solver/ConstraintResiduals.h"

#include <cmath>
#include <numbers>

namespace cad::solver {

namespace {

using Shape = CompiledConstraint::Shape;

template <class T> T withShift(const T& v, double shift) { return v + shift; }

} // namespace

double wrapAngle(double a) {
    constexpr double pi = std::numbers::pi;
    double m = std::fmod(a + pi, 2 * pi);
    if (m < 0) m += 2 * pi;
    return m - pi;
}

template <class T>
void constraintResiduals(const CompiledConstraint& c, const T* x, double s, T* out) {
    auto point = [&](int i) { return evalPoint(c.ops[static_cast<std::size_t>(i)].a, x); };
    auto lineStart = [&](int i) { return evalPoint(c.ops[static_cast<std::size_t>(i)].a, x); };
    auto lineEnd = [&](int i) { return evalPoint(c.ops[static_cast<std::size_t>(i)].b, x); };
    auto direction = [&](int i) { return lineEnd(i) - lineStart(i); };
    auto radius = [&](int i) -> T { return x[c.ops[static_cast<std::size_t>(i)].radius]; };
    // Signed distance of p from line i.
    auto fromLine = [&](const Vec<T>& p, int i) {
        return signedDistance(p, lineStart(i), lineEnd(i));
    };
    // Offset of a pair: the second line's start from the first, or r₁ − r₂.
    auto offset = [&](int first) -> T {
        if (c.ops[static_cast<std::size_t>(first)].kind == Operand::Kind::Line)
            return fromLine(lineStart(first + 1), first);
        return radius(first) - radius(first + 1);
    };
    auto normalised = [&](const T& v, const Vec<T>& d1, const Vec<T>& d2) {
        return v / guarded(length(d1) * length(d2)) * s;
    };

    switch (c.type) {
    case ConstraintType::Fix: { // fix on a point, and a drag
        Vec<T> p = point(0);
        out[0] = p.x - c.data0;
        out[1] = p.y - c.data1;
        return;
    }
    case ConstraintType::Coincident:
        if (c.shape == Shape::PointPoint) {
            Vec<T> d = point(0) - point(1);
            out[0] = d.x;
            out[1] = d.y;
        } else if (c.shape == Shape::PointLine) {
            out[0] = fromLine(point(0), 1);
        } else {
            out[0] = length(point(0) - point(1)) - radius(1);
        }
        return;
    case ConstraintType::Horizontal:
        out[0] = c.shape == Shape::Line ? lineStart(0).y - lineEnd(0).y : point(0).y - point(1).y;
        return;
    case ConstraintType::Vertical:
        out[0] = c.shape == Shape::Line ? lineStart(0).x - lineEnd(0).x : point(0).x - point(1).x;
        return;
    case ConstraintType::Parallel: {
        Vec<T> d1 = direction(0), d2 = direction(1);
        out[0] = normalised(cross(d1, d2), d1, d2);
        return;
    }
    case ConstraintType::Perpendicular: {
        Vec<T> d1 = direction(0), d2 = direction(1);
        out[0] = normalised(dot(d1, d2), d1, d2);
        return;
    }
    case ConstraintType::Collinear: {
        Vec<T> d1 = direction(0), d2 = direction(1);
        out[0] = normalised(cross(d1, d2), d1, d2);
        out[1] = fromLine(lineStart(1), 0);
        return;
    }
    case ConstraintType::Equal:
        out[0] = c.shape == Shape::LineLine ? length(direction(0)) - length(direction(1))
                                            : radius(0) - radius(1);
        return;
    case ConstraintType::Concentric: {
        Vec<T> d = point(0) - point(1);
        out[0] = d.x;
        out[1] = d.y;
        return;
    }
    case ConstraintType::Midpoint: {
        Vec<T> d = point(0) - half(lineStart(1) + lineEnd(1));
        out[0] = d.x;
        out[1] = d.y;
        return;
    }
    case ConstraintType::Tangent:
        if (c.shape == Shape::CircleCircle) {
            T between = length(point(0) - point(1));
            out[0] = c.data0 > 0 ? between - (radius(0) + radius(1))
                                 : between - absOf(radius(0) - radius(1));
        } else if (c.arcEnd) {
            Vec<T> d = direction(0);
            Vec<T> toEnd = point(2) - point(1);
            out[0] = normalised(dot(d, toEnd), d, toEnd);
        } else {
            out[0] = fromLine(point(1), 0) * c.data0 - radius(1);
        }
        return;
    case ConstraintType::Symmetric: {
        Vec<T> p = point(0), q = point(1), d = direction(2);
        out[0] = fromLine(half(p + q), 2);
        out[1] = dot(q - p, d) / guarded(length(d));
        return;
    }
    case ConstraintType::EqualDistance:
        out[0] = length(point(0) - point(1)) - length(point(0) - point(2));
        return;
    case ConstraintType::EqualOffset:
        out[0] = offset(0) * c.data0 - offset(2) * c.data1;
        return;
    case ConstraintType::Inline:
        out[0] = signedDistance(point(2), point(0), point(1));
        return;
    case ConstraintType::Distance:
        if (c.shape == Shape::PointPoint)
            out[0] = length(point(0) - point(1)) - c.value;
        else if (c.shape == Shape::PointLine)
            out[0] = fromLine(point(0), 1) * c.data0 - c.value;
        else
            out[0] = fromLine(lineStart(1), 0) * c.data0 - c.value;
        return;
    case ConstraintType::HorizontalDistance:
        out[0] = (point(1).x - point(0).x) * c.data0 - c.value;
        return;
    case ConstraintType::VerticalDistance:
        out[0] = (point(1).y - point(0).y) * c.data0 - c.value;
        return;
    case ConstraintType::Length:
        out[0] = length(direction(0)) - c.value;
        return;
    case ConstraintType::Radius:
        out[0] = radius(0) - c.value;
        return;
    case ConstraintType::Diameter:
        out[0] = radius(0) * 2.0 - c.value;
        return;
    case ConstraintType::Angle: {
        Vec<T> d1 = direction(0), d2 = direction(1);
        T theta = atan2Of(cross(d1, d2), dot(d1, d2));
        T off = theta - c.data0 * c.value * std::numbers::pi / 180.0;
        const double raw = valueOf(off);
        out[0] = withShift(off, wrapAngle(raw) - raw) * s;
        return;
    }
    }
}

template void constraintResiduals<double>(const CompiledConstraint&, const double*, double,
                                          double*);
template void constraintResiduals<Dual<4>>(const CompiledConstraint&, const Dual<4>*, double,
                                           Dual<4>*);
template void constraintResiduals<Dual<8>>(const CompiledConstraint&, const Dual<8>*, double,
                                           Dual<8>*);
template void constraintResiduals<Dual<16>>(const CompiledConstraint&, const Dual<16>*, double,
                                            Dual<16>*);

} // namespace cad::solver
