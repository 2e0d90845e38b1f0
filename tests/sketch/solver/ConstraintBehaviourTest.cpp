// Each constraint type on drawings a user would make: after it is added it holds,
// and the configuration the user drew is the one kept (sides, senses, inside or
// outside), also when later dimensions move things. Run with both methods.
#include "SolverTestSketches.h"

#include <functional>
#include <numbers>

namespace cad::test {
namespace {

using T = ConstraintType;
constexpr double kTol = 1e-7;

double signedDistance(Point2 p, Point2 a, Point2 b) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    return (dx * (p.y - a.y) - dy * (p.x - a.x)) / std::hypot(dx, dy);
}
double signedAngleDegrees(Point2 a1, Point2 b1, Point2 a2, Point2 b2) {
    const double x1 = b1.x - a1.x, y1 = b1.y - a1.y, x2 = b2.x - a2.x, y2 = b2.y - a2.y;
    return std::atan2(x1 * y2 - y1 * x2, x1 * x2 + y1 * y2) * 180 / std::numbers::pi;
}
const SketchCircle& circleOf(const Sketch& s, const char* id) {
    return std::get<SketchCircle>(s.entity(id).geometry);
}

struct Case {
    const char* name;
    std::vector<SketchEntity> entities;
    // Adds the constraints under test (each must be accepted) and checks the result.
    std::function<void(Sketch&)> run;
};

std::vector<Case> cases() {
    return {
        {"HorizontalVerticalParallelPerpendicular",
         {line("Line1", 0, 0, 10, 1), line("Line2", 0, 5, 9, 7), line("Line3", 2, 2, 3, 9),
          rectangle("Rectangle1", 20, 0, 5, 3), line("Line4", 30, 0, 31, 6)},
         [](Sketch& s) {
             s.mustAdd(T::Horizontal, {"Line1"});
             s.mustAdd(T::Parallel, {"Line1", "Line2"});
             s.mustAdd(T::Perpendicular, {"Line2", "Line3"});
             s.mustAdd(T::Vertical, {"Line4"});
             s.mustAdd(T::Horizontal, {"Line4.end", "Rectangle1.top_left"});
             EXPECT_NEAR(s.at("Line1.start").y, s.at("Line1.end").y, kTol);
             EXPECT_NEAR(s.at("Line2.start").y, s.at("Line2.end").y, kTol);
             EXPECT_NEAR(s.at("Line3.start").x, s.at("Line3.end").x, kTol);
             EXPECT_NEAR(s.at("Line4.start").x, s.at("Line4.end").x, kTol);
             EXPECT_NEAR(s.at("Line4.end").y, s.at("Rectangle1.top_left").y, kTol);
         }},
        {"CollinearEqualConcentricMidpoint",
         {line("Line1", 0, 0, 10, 1), line("Line2", 12, 2, 18, 3), circle("Circle1", 0, 20, 3),
          arc("Arc1", 1, 21, 6, 0, 90), point("Point1", 4, 4)},
         [](Sketch& s) {
             s.mustAdd(T::Collinear, {"Line1", "Line2"});
             s.mustAdd(T::Equal, {"Line1", "Line2"});
             s.mustAdd(T::Concentric, {"Circle1", "Arc1"});
             s.mustAdd(T::Equal, {"Circle1", "Arc1"});
             s.mustAdd(T::Midpoint, {"Point1", "Line1"});
             Point2 a = s.at("Line1.start"), b = s.at("Line1.end");
             EXPECT_NEAR(signedDistance(s.at("Line2.start"), a, b), 0, kTol);
             EXPECT_NEAR(signedDistance(s.at("Line2.end"), a, b), 0, kTol);
             EXPECT_NEAR(distance(a, b), distance(s.at("Line2.start"), s.at("Line2.end")), kTol);
             EXPECT_LT(distance(s.at("Circle1.center"), s.at("Arc1.center")), kTol);
             EXPECT_NEAR(circleOf(s, "Circle1").radius,
                         std::get<SketchArc>(s.entity("Arc1").geometry).radius, kTol);
             EXPECT_LT(distance(s.at("Point1"), Point2{(a.x + b.x) / 2, (a.y + b.y) / 2}), kTol);
         }},
        {"TangentLineKeepsTheSideOfTheCentre",
         {line("Line1", 0, 0, 20, 0), circle("Circle1", 10, -4, 3)},
         [](Sketch& s) {
             s.mustAdd(T::Tangent, {"Circle1", "Line1"});
             s.mustAdd(T::Radius, {"Circle1"}, 6.0);
             const SketchCircle& c = circleOf(s, "Circle1");
             EXPECT_NEAR(signedDistance(c.center, s.at("Line1.start"), s.at("Line1.end")), -6,
                         kTol);
         }},
        {"TangentAtAnArcEndMeetsItSquare",
         {line("Line1", 0, 0, 10, 0.5), arc("Arc1", 10, 5, 5, -90, 120)},
         [](Sketch& s) {
             s.mustAdd(T::Coincident, {"Line1.end", "Arc1.start"});
             s.mustAdd(T::Tangent, {"Line1", "Arc1"});
             Point2 a = s.at("Line1.start"), b = s.at("Line1.end"), c = s.at("Arc1.center");
             EXPECT_NEAR((b.x - a.x) * (b.x - c.x) + (b.y - a.y) * (b.y - c.y), 0, kTol);
         }},
        {"TangentCirclesOutside",
         {circle("Circle1", 0, 0, 5), circle("Circle2", 12, 1, 4)},
         [](Sketch& s) {
             s.mustAdd(T::Tangent, {"Circle1", "Circle2"});
             s.mustAdd(T::Radius, {"Circle2"}, 2.0);
             const SketchCircle &a = circleOf(s, "Circle1"), &b = circleOf(s, "Circle2");
             EXPECT_NEAR(distance(a.center, b.center), a.radius + b.radius, kTol);
         }},
        {"TangentInsideStaysInsideWhenRadiiChange",
         {circle("Circle1", 0, 0, 10), circle("Circle2", 3, 0, 4)},
         [](Sketch& s) {
             s.mustAdd(T::Tangent, {"Circle1", "Circle2"});
             s.mustAdd(T::Radius, {"Circle1"}, 10.0);
             s.mustAdd(T::Radius, {"Circle2"}, 7.0);
             const SketchCircle &a = circleOf(s, "Circle1"), &b = circleOf(s, "Circle2");
             EXPECT_NEAR(distance(a.center, b.center), 3, kTol);
         }},
        {"SymmetricEqualDistanceInline",
         {point("Point1", -3, 1), point("Point2", 4, 2), line("Line1", 0, -5, 0.5, 5),
          point("Point3", 10, 0), point("Point4", 14, 1), point("Point5", 10, 5),
          point("Point6", 20, 0), point("Point7", 25, 1), point("Point8", 31, 3)},
         [](Sketch& s) {
             s.mustAdd(T::Symmetric, {"Point1", "Point2", "Line1"});
             s.mustAdd(T::EqualDistance, {"Point3", "Point4", "Point5"});
             s.mustAdd(T::Inline, {"Point6", "Point7", "Point8"});
             Point2 p = s.at("Point1"), q = s.at("Point2"), a = s.at("Line1.start"),
                    b = s.at("Line1.end");
             EXPECT_NEAR(signedDistance(p, a, b), -signedDistance(q, a, b), kTol);
             EXPECT_NEAR((q.x - p.x) * (b.x - a.x) + (q.y - p.y) * (b.y - a.y), 0, kTol);
             EXPECT_NEAR(distance(s.at("Point3"), s.at("Point4")),
                         distance(s.at("Point3"), s.at("Point5")), kTol);
             EXPECT_NEAR(signedDistance(s.at("Point8"), s.at("Point6"), s.at("Point7")), 0, kTol);
         }},
        {"DistancesKeepTheSideTheyWereDrawnOn",
         {line("Line1", 0, 0, 10, 0), point("Point1", 5, 0.5), point("Point2", 20, 0),
          point("Point3", 25, 3), line("Line2", 0, 4, 10, 4.5)},
         [](Sketch& s) {
             s.mustAdd(T::Distance, {"Line1", "Point1"}, 3.0);
             s.mustAdd(T::Distance, {"Point2", "Point3"}, 2.0);
             s.mustAdd(T::Parallel, {"Line1", "Line2"});
             s.mustAdd(T::Distance, {"Line1", "Line2"}, 1.0);
             Point2 a = s.at("Line1.start"), b = s.at("Line1.end");
             EXPECT_NEAR(signedDistance(s.at("Point1"), a, b), 3, kTol);
             EXPECT_NEAR(distance(s.at("Point2"), s.at("Point3")), 2, kTol);
             EXPECT_NEAR(signedDistance(s.at("Line2.start"), a, b), 1, kTol);
         }},
        {"HorizontalAndVerticalDistancesKeepTheirSigns",
         {point("Point1", 0, 0), point("Point2", -4, -1)},
         [](Sketch& s) {
             s.mustAdd(T::HorizontalDistance, {"Point1", "Point2"}, 10.0);
             s.mustAdd(T::VerticalDistance, {"Point1", "Point2"}, 3.0);
             EXPECT_NEAR(s.at("Point2").x - s.at("Point1").x, -10, kTol);
             EXPECT_NEAR(s.at("Point2").y - s.at("Point1").y, -3, kTol);
         }},
        {"DiameterAndPolygonEdgeLength",
         {circle("Circle1", 10, 0, 1), polygon("Polygon1", 40, 0, 5, 6, 90)},
         [](Sketch& s) {
             s.mustAdd(T::Diameter, {"Circle1"}, 6.0);
             s.mustAdd(T::Length, {"Polygon1.edge2"}, 3.0);
             EXPECT_NEAR(circleOf(s, "Circle1").radius, 3, kTol);
             EXPECT_NEAR(distance(s.at("Polygon1.corner2"), s.at("Polygon1.corner3")), 3, kTol);
         }},
        {"AngleKeepsTheSenseItWasDrawnIn",
         {line("Line1", 0, 0, 10, 0), line("Line2", 0, 0, 5, 5), line("Line3", 20, 0, 30, 0),
          line("Line4", 20, 0, 25, -5), line("Line5", 40, 0, 50, 0), line("Line6", 40, 1, 30, 1.5)},
         [](Sketch& s) {
             s.mustAdd(T::Angle, {"Line1", "Line2"}, 30.0);
             s.mustAdd(T::Angle, {"Line3", "Line4"}, 30.0);
             s.mustAdd(T::Angle, {"Line5", "Line6"}, 180.0);
             EXPECT_NEAR(signedAngleDegrees(s.at("Line1.start"), s.at("Line1.end"),
                                            s.at("Line2.start"), s.at("Line2.end")),
                         30, 1e-6);
             EXPECT_NEAR(signedAngleDegrees(s.at("Line3.start"), s.at("Line3.end"),
                                            s.at("Line4.start"), s.at("Line4.end")),
                         -30, 1e-6);
             EXPECT_NEAR(std::fabs(signedAngleDegrees(s.at("Line5.start"), s.at("Line5.end"),
                                                      s.at("Line6.start"), s.at("Line6.end"))),
                         180, 1e-6);
         }},
        {"EqualOffsetKeepsBothSides",
         {line("Line1", 0, 0, 10, 0), line("Line2", 0, 2, 10, 2), line("Line3", 20, 0, 30, 0),
          line("Line4", 20, -5, 30, -5)},
         [](Sketch& s) {
             s.mustAdd(T::EqualOffset, {"Line1", "Line2", "Line3", "Line4"});
             const double first =
                 signedDistance(s.at("Line2.start"), s.at("Line1.start"), s.at("Line1.end"));
             const double second =
                 signedDistance(s.at("Line4.start"), s.at("Line3.start"), s.at("Line3.end"));
             EXPECT_NEAR(first, -second, kTol);
             EXPECT_GT(first, 0);
         }},
        {"FixHoldsAPointAndAWholeEntity",
         {line("Line1", 0, 0, 10, 1), arc("Arc1", 10, 5, 4, 200, 100),
          polygon("Polygon1", 30, 0, 5, 5, 18), point("Point1", 20, 20)},
         [](Sketch& s) {
             s.mustAdd(T::Fix, {"Line1.start"});
             s.mustAdd(T::Fix, {"Arc1"});
             s.mustAdd(T::Fix, {"Polygon1"});
             s.mustAdd(T::Coincident, {"Line1.end", "Arc1.end"});
             s.mustAdd(T::Coincident, {"Point1", "Polygon1.edge2"});
             EXPECT_LT(distance(s.at("Line1.start"), Point2{0, 0}), kTol);
             const auto& a = std::get<SketchArc>(s.entity("Arc1").geometry);
             EXPECT_NEAR(a.startAngle, 200, 1e-9);
             EXPECT_NEAR(a.sweepAngle, 100, 1e-9);
             EXPECT_NEAR(std::get<SketchPolygon>(s.entity("Polygon1").geometry).rotation, 18, 1e-9);
             EXPECT_LT(distance(s.at("Line1.end"), s.at("Arc1.end")), kTol);
             EXPECT_NEAR(
                 signedDistance(s.at("Point1"), s.at("Polygon1.corner2"), s.at("Polygon1.corner3")),
                 0, kTol);
         }},
    };
}

class ConstraintBehaviour : public ::testing::TestWithParam<SolverMethod> {};

TEST_P(ConstraintBehaviour, HoldsAndKeepsTheDrawnConfiguration) {
    for (const Case& c : cases()) {
        SCOPED_TRACE(c.name);
        Sketch s;
        s.options.method = GetParam();
        s.entities = c.entities;
        c.run(s);
    }
}

INSTANTIATE_TEST_SUITE_P(BothMethods, ConstraintBehaviour, bothMethods(), methodName);

} // namespace
} // namespace cad::test
