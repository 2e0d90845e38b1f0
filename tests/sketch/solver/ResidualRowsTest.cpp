// Exact Jacobian rows against central differences, for every constraint type and
// every way its references can be made (arc ends, polygon corners and edges,
// rectangle edges, the axes), on random drawings.
#include "SolverTestSketches.h"

#include "sketch/solver/SolverSystem.h"

#include <random>

namespace cad::test {
namespace {

using T = ConstraintType;

SketchConstraint dimension(T type, const std::vector<const char*>& texts, double value,
                           std::vector<double> data = {}) {
    SketchConstraint c = constraint(type, texts);
    c.value = value;
    c.data = std::move(data);
    return c;
}

std::vector<SketchConstraint> everyKindOfConstraint() {
    std::vector<SketchConstraint> out{
        constraint(T::Fix, {"Line1.start"}),
        constraint(T::Fix, {"Arc1"}),
        constraint(T::Fix, {"Polygon1"}),
        constraint(T::Fix, {"Rectangle1.top_right"}),
        constraint(T::Coincident, {"Line1.end", "Arc1.start"}),
        constraint(T::Coincident, {"Line2", "Polygon1.corner2"}),
        constraint(T::Coincident, {"Rectangle1.center", "Circle1"}),
        constraint(T::Coincident, {"Arc2.end", "Arc1"}),
        constraint(T::Horizontal, {"Line1"}),
        constraint(T::Horizontal, {"Rectangle1.top_left", "Polygon1.corner1"}),
        constraint(T::Vertical, {"Polygon1.edge2"}),
        constraint(T::Vertical, {"Slot1.start", "Slot1.end"}),
        constraint(T::Parallel, {"Line1", "Rectangle1.left"}),
        constraint(T::Perpendicular, {"Line2", "Polygon1.edge0"}),
        constraint(T::Collinear, {"Line3", "Rectangle1.top"}),
        constraint(T::Collinear, {"XAxis", "Line3"}),
        constraint(T::Equal, {"Line1", "Polygon1.edge3"}),
        constraint(T::Equal, {"Circle1", "Arc2"}),
        constraint(T::Concentric, {"Arc1", "Circle2"}),
        constraint(T::Midpoint, {"Spline1.point1", "Line3"}),
        constraint(T::Midpoint, {"Line2", "Point1"}),
        constraint(T::Symmetric, {"Arc1.end", "Polygon1.corner3", "Polygon1.edge1"}),
        constraint(T::EqualDistance, {"Point1", "Arc2.start", "Rectangle1.bottom_right"}),
        constraint(T::Inline, {"Point1", "Slot1.end", "Arc1.end"}),
        dimension(T::Tangent, {"Line1", "Circle1"}, 0, {-1}),
        dimension(T::Tangent, {"Arc2", "Line2"}, 0, {1, 1}),
        dimension(T::Tangent, {"Line3", "Arc1"}, 0, {1, 2}),
        dimension(T::Tangent, {"Circle1", "Circle2"}, 0, {-1}),
        dimension(T::Tangent, {"Arc1", "Circle2"}, 0, {1}),
        dimension(T::EqualOffset, {"Line1", "Line2", "Line3", "Rectangle1.bottom"}, 0, {1, -1}),
        dimension(T::EqualOffset, {"Circle1", "Circle2", "Arc1", "Arc2"}, 0, {-1, 1}),
        dimension(T::EqualOffset, {"Polygon1.edge0", "Polygon1.edge2", "Arc1", "Circle1"}, 0,
                  {1, 1}),
        dimension(T::Distance, {"Arc1.end", "Polygon1.corner0"}, 3),
        dimension(T::Distance, {"Point1", "Line2"}, 3, {-1}),
        dimension(T::Distance, {"Line2", "Point1"}, 3, {1}),
        dimension(T::Distance, {"Line1", "Rectangle1.right"}, 3, {1}),
        dimension(T::HorizontalDistance, {"Origin", "Arc2.end"}, 4, {-1}),
        dimension(T::VerticalDistance, {"Polygon1.center", "Spline1.point2"}, 4, {1}),
        dimension(T::Length, {"Polygon1.edge1"}, 5),
        dimension(T::Radius, {"Arc1"}, 2),
        dimension(T::Diameter, {"Circle2"}, 2),
        dimension(T::Angle, {"Line1", "Line2"}, 30, {1}),
        dimension(T::Angle, {"Rectangle1.top", "Polygon1.edge4"}, 150, {-1}),
    };
    return out;
}

std::vector<SketchEntity> randomDrawing(std::mt19937& rng) {
    std::uniform_real_distribution<double> at(-20, 20), size(1, 8), angle(-180, 180);
    std::uniform_real_distribution<double> sweep(20, 300);
    SketchEntity spline =
        entity("Spline1",
               SketchSpline{{{at(rng), at(rng)}, {at(rng), at(rng)}, {at(rng), at(rng)}}, false});
    return {line("Line1", at(rng), at(rng), at(rng), at(rng)),
            line("Line2", at(rng), at(rng), at(rng), at(rng)),
            line("Line3", at(rng), at(rng), at(rng), at(rng)),
            circle("Circle1", at(rng), at(rng), size(rng)),
            circle("Circle2", at(rng), at(rng), size(rng)),
            arc("Arc1", at(rng), at(rng), size(rng), angle(rng), sweep(rng)),
            arc("Arc2", at(rng), at(rng), size(rng), angle(rng), -sweep(rng)),
            rectangle("Rectangle1", at(rng), at(rng), size(rng), size(rng)),
            polygon("Polygon1", at(rng), at(rng), size(rng), 5, angle(rng)),
            point("Point1", at(rng), at(rng)),
            slot("Slot1", at(rng), at(rng), at(rng), at(rng), size(rng)),
            spline};
}

TEST(ResidualRows, ExactDerivativesMatchCentralDifferences) {
    std::mt19937 rng(20240611);
    const std::vector<SketchConstraint> constraints = everyKindOfConstraint();
    for (int drawing = 0; drawing < 25; ++drawing) {
        const std::vector<SketchEntity> entities = randomDrawing(rng);
        Result<solver::SolverSystem> built = solver::buildSystem(entities, constraints);
        ASSERT_TRUE(built.ok()) << built.error();
        const solver::SolverSystem& system = *built;
        ASSERT_EQ(system.constraints.size(), constraints.size());
        std::vector<double> x = system.x0;
        for (const solver::CompiledConstraint& c : system.constraints) {
            const std::string name =
                constraints[static_cast<std::size_t>(c.source)].refs[0].text() + " " +
                std::string(constraintKeyword(c.type));
            std::vector<double> exact(static_cast<std::size_t>(c.rows * system.parameterCount()),
                                      0.0);
            std::vector<double> residuals(static_cast<std::size_t>(c.rows)),
                plain(residuals.size());
            solver::jacobianEntries(
                system, c, x.data(), residuals.data(), [&](int r, int p, double v) {
                    exact[static_cast<std::size_t>(r * system.parameterCount() + p)] += v;
                });
            solver::evaluateRows(system, c, x.data(), plain.data());
            for (int r = 0; r < c.rows; ++r)
                EXPECT_DOUBLE_EQ(residuals[static_cast<std::size_t>(r)],
                                 plain[static_cast<std::size_t>(r)])
                    << name;

            std::vector<double> plus(residuals.size()), minus(residuals.size());
            for (int p = 0; p < system.parameterCount(); ++p) {
                double& xp = x[static_cast<std::size_t>(p)];
                const double keep = xp, h = 1e-6 * std::max(1.0, std::fabs(keep));
                xp = keep + h;
                solver::evaluateRows(system, c, x.data(), plus.data());
                xp = keep - h;
                solver::evaluateRows(system, c, x.data(), minus.data());
                xp = keep;
                for (int r = 0; r < c.rows; ++r) {
                    const double numeric =
                        (plus[static_cast<std::size_t>(r)] - minus[static_cast<std::size_t>(r)]) /
                        (2 * h);
                    const double analytic =
                        exact[static_cast<std::size_t>(r * system.parameterCount() + p)];
                    EXPECT_NEAR(analytic, numeric, 2e-5 * std::max(1.0, std::fabs(analytic)))
                        << name << " row " << r << " parameter " << p << " drawing " << drawing;
                }
            }
        }
    }
}

} // namespace
} // namespace cad::test
