// Solver parameters of an arc, entity validation with every sentence, and the 2D
// curves a sketch makes.
#include "sketch/SketchEntity.h"
#include "sketch/SketchCurves.h"

#include <Geom2d_Curve.hxx>
#include <gp_Pnt2d.hxx>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

using namespace cad;

namespace {

SketchEntity entity(std::string id, SketchGeometry geometry) {
    SketchEntity e;
    e.id = std::move(id);
    e.geometry = std::move(geometry);
    return e;
}

void expectAt(const gp_Pnt2d& p, double x, double y) {
    EXPECT_NEAR(p.X(), x, 1e-9);
    EXPECT_NEAR(p.Y(), y, 1e-9);
}

} // namespace

// The solver works in radians; an angle it did not move keeps its degrees exactly, so
// a solve elsewhere in the sketch never turns 90 into 90.00000000000001.
TEST(SketchEntity, UnmovedAnglesKeepTheirDegreesExactly) {
    SketchEntity arc = entity("Arc1", SketchArc{{1, 2}, 3, 90, -45});
    std::vector<double> p = entityParameters(arc);
    ASSERT_EQ(p.size(), 5u);
    EXPECT_DOUBLE_EQ(p[3], std::numbers::pi / 2);
    p[0] = 5;
    setEntityParameters(arc, p);
    EXPECT_EQ(std::get<SketchArc>(arc.geometry).startAngle, 90);
    EXPECT_EQ(std::get<SketchArc>(arc.geometry).sweepAngle, -45);
    p[3] = std::numbers::pi;
    setEntityParameters(arc, p);
    EXPECT_DOUBLE_EQ(std::get<SketchArc>(arc.geometry).startAngle, 180);
}

TEST(SketchEntity, ValidationMessages) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<SketchGeometry, const char*> cases[] = {
        {SketchLine{{0, 0}, {nan, 1}}, "A line needs finite coordinates."},
        {SketchLine{{1, 1}, {1, 1 + 5e-8}}, "A line needs two distinct end points."},
        {SketchRectangle{{0, 0}, inf, 1}, "A rectangle needs finite values."},
        {SketchRectangle{{0, 0}, -5, 1}, "A rectangle needs a non-zero width and height."},
        {SketchRectangle{{0, 0}, 5, 1e-7}, "A rectangle needs a non-zero width and height."},
        {SketchCircle{{0, nan}, 1}, "A circle needs finite values."},
        {SketchCircle{{0, 0}, 0}, "A circle's radius must be greater than zero."},
        {SketchPoint{{inf, 0}}, "A point needs finite coordinates."},
        {SketchArc{{0, 0}, 1, nan, 90}, "An arc needs finite values."},
        {SketchArc{{0, 0}, -1, 0, 90}, "An arc's radius must be greater than zero."},
        {SketchArc{{0, 0}, 1, 0, 359.9999995},
         "An arc's sweep must be between 0 and 360 degrees (use a circle for a full turn)."},
        {SketchArc{{0, 0}, 1, 0, 5e-7},
         "An arc's sweep must be between 0 and 360 degrees (use a circle for a full turn)."},
        {SketchPolygon{{0, 0}, 1, 6, inf}, "A polygon needs finite values."},
        {SketchPolygon{{0, 0}, 1, 2, 0}, "A polygon needs between 3 and 1000 sides."},
        {SketchPolygon{{0, 0}, 1, 1001, 0}, "A polygon needs between 3 and 1000 sides."},
        {SketchPolygon{{0, 0}, 0, 6, 0}, "A polygon's size must be greater than zero."},
        {SketchSpline{{{0, 0}, {1, 1}}, true}, "A closed spline needs at least 3 points."},
        {SketchSpline{{{0, 0}}, false}, "A spline needs at least 2 points."},
        {SketchSpline{{{0, 0}, {nan, 1}}, false}, "A spline needs finite coordinates."},
        {SketchSpline{{{0, 0}, {1, 1}, {1, 1}}, false},
         "A spline's consecutive points must be distinct."},
        {SketchSlot{{0, 0}, {1, nan}, 1}, "A slot needs finite values."},
        {SketchSlot{{2, 2}, {2, 2}, 1},
         "A slot needs distinct center points (use a circle for a round hole)."},
        {SketchSlot{{0, 0}, {5, 0}, 0}, "A slot's width must be greater than zero."},
    };
    for (const auto& [geometry, message] : cases) {
        Result<void> r = validateEntity(entity("E1", geometry));
        ASSERT_FALSE(r.ok()) << message;
        EXPECT_EQ(r.error(), message);
    }
    const SketchGeometry valid[] = {
        SketchLine{{0, 0}, {1, 0}},
        SketchArc{{0, 0}, 1, 0, -90},
        SketchArc{{0, 0}, 1, 0, 359.99999},
        SketchPolygon{{0, 0}, 1, 3, 0},
        SketchSpline{{{0, 0}, {1, 1}}, false},
        SketchSpline{{{0, 0}, {4, 0}, {2, 3}}, true},
        SketchSlot{{0, 0}, {5, 0}, 2},
    };
    for (const SketchGeometry& g : valid) EXPECT_TRUE(validateEntity(entity("E1", g)).ok());
}

TEST(SketchCurves, ArcsRunTheWayTheyWereDrawn) {
    auto curves = entityCurves(entity("Arc1", SketchArc{{0, 0}, 2, 90, -90}));
    ASSERT_EQ(curves.size(), 1u);
    const Handle(Geom2d_Curve)& c = curves[0].curve;
    expectAt(c->Value(c->FirstParameter()), 0, 2);
    expectAt(c->Value(c->LastParameter()), 2, 0);
    // Clockwise: halfway is on the 45 degree diagonal, not the far side.
    gp_Pnt2d mid = c->Value((c->FirstParameter() + c->LastParameter()) / 2);
    expectAt(mid, std::sqrt(2.0), std::sqrt(2.0));
}

TEST(SketchCurves, ShapesMakeClosedChainsOfPieces) {
    const SketchEntity shapes[] = {entity("Rectangle1", SketchRectangle{{1, 1}, 4, 2}),
                                   entity("Polygon1", SketchPolygon{{0, 0}, 3, 5, 90}),
                                   entity("Slot1", SketchSlot{{0, 0}, {3, 4}, 2})};
    const std::size_t pieces[] = {4, 5, 4};
    for (std::size_t i = 0; i < 3; ++i) {
        auto curves = entityCurves(shapes[i]);
        ASSERT_EQ(curves.size(), pieces[i]) << shapes[i].id;
        for (std::size_t k = 0; k < curves.size(); ++k) {
            const auto& a = curves[k].curve;
            const auto& b = curves[(k + 1) % curves.size()].curve;
            EXPECT_LT(a->Value(a->LastParameter()).Distance(b->Value(b->FirstParameter())), 1e-9)
                << shapes[i].id << " piece " << k;
        }
    }
    // The rectangle goes bottom, right, top, left.
    auto rect = entityCurves(shapes[0]);
    expectAt(rect[0].curve->Value(rect[0].curve->FirstParameter()), 1, 1);
    expectAt(rect[2].curve->Value(rect[2].curve->FirstParameter()), 5, 3);
}

TEST(SketchCurves, SplinesInterpolateTheirPointsAndPointsMakeNoCurve) {
    auto open = entityCurves(entity("Spline1", SketchSpline{{{0, 0}, {5, 5}, {10, 0}}, false}));
    ASSERT_EQ(open.size(), 1u);
    expectAt(open[0].curve->Value(open[0].curve->FirstParameter()), 0, 0);
    expectAt(open[0].curve->Value(open[0].curve->LastParameter()), 10, 0);
    auto closed = interpolateSpline(SketchSpline{{{0, 0}, {4, 0}, {2, 3}}, true});
    ASSERT_FALSE(closed.IsNull());
    EXPECT_TRUE(closed->IsPeriodic());

    SketchEntity hidden = entity("Line1", SketchLine{{0, 0}, {1, 0}});
    hidden.construction = true;
    std::vector<SketchEntity> entities{hidden, entity("Point1", SketchPoint{{1, 1}}),
                                       entity("Circle1", SketchCircle{{0, 0}, 1})};
    auto curves = sketchCurves(entities);
    ASSERT_EQ(curves.size(), 1u);
    EXPECT_EQ(curves[0].entity, "Circle1");
    EXPECT_EQ(sketchCurves(entities, true).size(), 2u);
}
