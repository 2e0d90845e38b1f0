// Preparing a constraint before it is added: its references resolved and checked,
// a dimension's value measured when none is given and checked, and the orientation
// the user drew (sides, senses, inside or outside) recorded so later solves keep it.
#include "sketch/SketchSolver.h"
#include "sketch/solver/CompiledConstraint.h"

#include <cmath>
#include <numbers>

namespace cad {

namespace {

using solver::orderReferences;
using Kind = ResolvedRef::Kind;

struct Geometry {
    const std::vector<SketchEntity>& entities;
    Point2 point(const ResolvedRef& r) const { return pointAt(r, entities); }
    std::pair<Point2, Point2> line(const ResolvedRef& r) const { return lineAt(r, entities); }
    std::pair<Point2, double> circle(const ResolvedRef& r) const { return circleAt(r, entities); }
};

double cross(Point2 a, Point2 b) { return a.x * b.y - a.y * b.x; }
Point2 minus(Point2 a, Point2 b) { return {a.x - b.x, a.y - b.y}; }
double norm(Point2 a) { return std::hypot(a.x, a.y); }
double signOf(double v) { return v < 0 ? -1.0 : 1.0; } // zero counts as +1

// Signed distance of p from the line, positive on its left.
double signedDistance(Point2 p, std::pair<Point2, Point2> line) {
    Point2 d = minus(line.second, line.first);
    return cross(d, minus(p, line.first)) / std::max(norm(d), solver::kEpsilon);
}

// Signed angle from line 1 to line 2, radians in (−π, π].
double signedAngle(std::pair<Point2, Point2> l1, std::pair<Point2, Point2> l2) {
    Point2 d1 = minus(l1.second, l1.first), d2 = minus(l2.second, l2.first);
    return std::atan2(cross(d1, d2), d1.x * d2.x + d1.y * d2.y);
}

Result<std::vector<ResolvedRef>> resolveAll(ConstraintType type, const std::vector<SketchRef>& refs,
                                            const std::vector<SketchEntity>& entities) {
    std::vector<ResolvedRef> resolved;
    for (const SketchRef& ref : refs) {
        Result<ResolvedRef> r = resolveReference(ref, entities);
        if (!r) return Error{r.error()};
        resolved.push_back(*r);
    }
    return orderReferences(type, std::move(resolved), refs);
}

double measure(ConstraintType type, const std::vector<ResolvedRef>& r, const Geometry& g) {
    switch (type) {
    case ConstraintType::Distance:
        if (r[1].kind == Kind::Point) return norm(minus(g.point(r[0]), g.point(r[1])));
        if (r[0].kind == Kind::Point) return std::fabs(signedDistance(g.point(r[0]), g.line(r[1])));
        return std::fabs(signedDistance(g.line(r[1]).first, g.line(r[0])));
    case ConstraintType::HorizontalDistance:
        return std::fabs(g.point(r[1]).x - g.point(r[0]).x);
    case ConstraintType::VerticalDistance:
        return std::fabs(g.point(r[1]).y - g.point(r[0]).y);
    case ConstraintType::Length: {
        auto l = g.line(r[0]);
        return norm(minus(l.second, l.first));
    }
    case ConstraintType::Radius:
        return g.circle(r[0]).second;
    case ConstraintType::Diameter:
        return 2 * g.circle(r[0]).second;
    case ConstraintType::Angle:
        return std::fabs(signedAngle(g.line(r[0]), g.line(r[1]))) * 180.0 / std::numbers::pi;
    default:
        return 0;
    }
}

// The orientation data of the configuration as drawn.
std::vector<double> orientation(ConstraintType type, const std::vector<ResolvedRef>& r,
                                const Geometry& g) {
    switch (type) {
    case ConstraintType::Fix:
        if (r[0].kind == Kind::Point) {
            Point2 p = g.point(r[0]);
            return {p.x, p.y};
        }
        return entityParameters(g.entities[static_cast<std::size_t>(r[0].entity)]);
    case ConstraintType::Tangent: {
        if (r[0].kind == Kind::Circle) {
            auto [c1, r1] = g.circle(r[0]);
            auto [c2, r2] = g.circle(r[1]);
            const double between = norm(minus(c1, c2));
            const double outside = std::fabs(between - (r1 + r2));
            const double inside = std::fabs(between - std::fabs(r1 - r2));
            return {inside < outside ? -1.0 : 1.0};
        }
        auto line = g.line(r[0]);
        auto [centre, radius] = g.circle(r[1]);
        Point2 d = minus(line.second, line.first);
        std::vector<double> data{cross(d, minus(centre, line.first)) < 0 ? -1.0 : 1.0};
        const SketchEntity& curve = g.entities[static_cast<std::size_t>(r[1].entity)];
        if (curve.kind() == EntityKind::Arc) {
            for (int end : {1, 2}) {
                Point2 e = g.point(ResolvedRef{Kind::Point, r[1].entity, end});
                if (norm(minus(e, line.first)) <= 1e-6 || norm(minus(e, line.second)) <= 1e-6) {
                    data.push_back(end);
                    break;
                }
            }
        }
        return data;
    }
    case ConstraintType::Distance:
        if (r[1].kind == Kind::Point) return {};
        if (r[0].kind == Kind::Point) return {signOf(signedDistance(g.point(r[0]), g.line(r[1])))};
        return {signOf(signedDistance(g.line(r[1]).first, g.line(r[0])))};
    case ConstraintType::HorizontalDistance:
        return {signOf(g.point(r[1]).x - g.point(r[0]).x)};
    case ConstraintType::VerticalDistance:
        return {signOf(g.point(r[1]).y - g.point(r[0]).y)};
    case ConstraintType::Angle:
        return {signOf(signedAngle(g.line(r[0]), g.line(r[1])))};
    case ConstraintType::EqualOffset: {
        auto side = [&](std::size_t first) {
            if (r[first].kind == Kind::Line)
                return signOf(signedDistance(g.line(r[first + 1]).first, g.line(r[first])));
            return signOf(g.circle(r[first]).second - g.circle(r[first + 1]).second);
        };
        return {side(0), side(2)};
    }
    default:
        return {};
    }
}

} // namespace

Result<double> measureDimension(ConstraintType type, const std::vector<SketchRef>& refs,
                                const std::vector<SketchEntity>& entities) {
    if (!isDimension(type)) return fail(std::string(constraintKeyword(type)) + " takes no value.");
    auto resolved = resolveAll(type, refs, entities);
    if (!resolved) return Error{resolved.error()};
    return measure(type, *resolved, Geometry{entities});
}

Result<SketchConstraint> prepareConstraint(const std::vector<SketchEntity>& entities,
                                           SketchConstraint constraint, bool hasValue) {
    const ConstraintType type = constraint.type;
    auto resolved = resolveAll(type, constraint.refs, entities);
    if (!resolved) return Error{resolved.error()};
    const std::vector<ResolvedRef>& refs = *resolved;
    if (type == ConstraintType::Fix && refs[0].entity < 0)
        return fail("The origin and axes are fixed already.");

    const Geometry geometry{entities};
    if (hasValue) {
        if (!std::isfinite(constraint.value)) return fail("The value must be a number.");
        if (!isDimension(type))
            return fail(std::string(constraintKeyword(type)) + " takes no value.");
    } else if (isDimension(type)) {
        constraint.value = measure(type, refs, geometry);
        if (!std::isfinite(constraint.value)) return fail("The value must be a number.");
    }
    if (type == ConstraintType::Angle) {
        if (!(constraint.value > 0 && constraint.value <= 180))
            return fail("An angle must be more than 0° and at most 180°.");
    } else if (isDimension(type) && !(constraint.value > 1e-7)) {
        return fail("A dimension must be greater than zero.");
    }
    constraint.data = orientation(type, refs, geometry);
    return constraint;
}

} // namespace cad
