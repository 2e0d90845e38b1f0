// Degrees of freedom, fully determined entities, and how free shapes can still move,
// as the sketch session colours and previews them. Run with both methods.
#include "SolverTestSketches.h"

namespace cad::test {
namespace {

using T = ConstraintType;

class Freedom : public ::testing::TestWithParam<SolverMethod> {
protected:
    Sketch sketch(std::vector<SketchEntity> entities = {}) const {
        Sketch s;
        s.options.method = GetParam();
        s.entities = std::move(entities);
        return s;
    }
};

TEST_P(Freedom, OneFreeLineThenHorizontalThenFixedStart) {
    Sketch s = sketch({line("Line1", 1, 2, 5, 3)});
    EXPECT_EQ(s.analyse().degreesOfFreedom, 4);
    s.mustAdd(T::Horizontal, {"Line1"});
    EXPECT_EQ(s.analyse().degreesOfFreedom, 3);
    s.mustAdd(T::Fix, {"Line1.start"});
    SketchAnalysis a = s.analyse();
    EXPECT_EQ(a.degreesOfFreedom, 1);
    EXPECT_FALSE(a.determined[0]);
    s.mustAdd(T::Length, {"Line1"}, 7.0);
    a = s.analyse();
    EXPECT_EQ(a.degreesOfFreedom, 0);
    EXPECT_TRUE(a.determined[0]);
    // Horizontal moved both ends half way (the smallest move); length kept the start.
    EXPECT_NEAR(s.at("Line1.start").y, 2.5, 1e-7);
    EXPECT_NEAR(s.at("Line1.end").x, 8, 1e-7);
    EXPECT_NEAR(s.at("Line1.end").y, 2.5, 1e-7);
}

TEST_P(Freedom, PointOnCircleTakesOneFreedom) {
    Sketch s = sketch({circle("Circle1", 0, 0, 5), point("Point1", 5, 1)});
    EXPECT_EQ(s.analyse().degreesOfFreedom, 5);
    s.mustAdd(T::Coincident, {"Point1", "Circle1"});
    EXPECT_EQ(s.analyse().degreesOfFreedom, 4);
    EXPECT_NEAR(distance(s.at("Point1"), s.at("Circle1.center")),
                std::get<SketchCircle>(s.entity("Circle1").geometry).radius, 1e-7);
    s.mustAdd(T::Fix, {"Circle1"});
    SketchAnalysis a = s.analyse();
    EXPECT_EQ(a.degreesOfFreedom, 1);
    EXPECT_TRUE(a.determined[0]);
    EXPECT_FALSE(a.determined[1]);
}

TEST_P(Freedom, ProjectedGeometryIsHeldAndConstraintsOnItCount) {
    Sketch s = sketch({line("Line1", 0, 0, 10, 0), line("Line2", 3, 4, 8, 9)});
    s.entities[0].source = "Body1/Extrude1.end";
    SketchAnalysis a = s.analyse();
    EXPECT_EQ(a.degreesOfFreedom, 4);
    EXPECT_TRUE(a.determined[0]);
    s.mustAdd(T::Coincident, {"Line2.start", "Line1.end"});
    s.mustAdd(T::Coincident, {"Line2.end", "Line1.start"});
    a = s.analyse();
    EXPECT_EQ(a.degreesOfFreedom, 0);
    EXPECT_TRUE(a.determined[1]);
    // The projected line did not move to meet the other.
    EXPECT_EQ(std::get<SketchLine>(s.entity("Line1").geometry).end, (Point2{10, 0}));
}

TEST_P(Freedom, BrokenConstraintsAreLeftOutOfTheAnalysis) {
    Sketch s = sketch({line("Line1", 0, 0, 10, 0)});
    s.mustAdd(T::Horizontal, {"Line1"});
    SketchConstraint stale = constraint(T::Coincident, {"Line1.start", "Line5.end"});
    stale.id = "Coincident1";
    s.constraints.push_back(stale);
    EXPECT_EQ(s.analyse().degreesOfFreedom, 3);
}

// The principal directions of a free shape: unit moves in its parameter space, at right
// angles to each other, each shown as the shape moved 0.001 that way.
void expectDisplacements(const SketchAnalysis& a, const SketchEntity& original, int entity,
                         std::size_t count) {
    ASSERT_EQ(a.displacements.size(), 1u);
    EXPECT_EQ(a.displacements[0].entity, entity);
    const std::vector<SketchEntity>& shapes = a.displacements[0].shapes;
    ASSERT_EQ(shapes.size(), count);
    const std::vector<double> p0 = entityParameters(original);
    std::vector<std::vector<double>> moves;
    for (const SketchEntity& shape : shapes) {
        std::vector<double> p = entityParameters(shape), d(p.size());
        for (std::size_t i = 0; i < p.size(); ++i) d[i] = (p[i] - p0[i]) / 0.001;
        moves.push_back(d);
    }
    for (std::size_t i = 0; i < moves.size(); ++i)
        for (std::size_t j = 0; j < moves.size(); ++j) {
            double dot = 0;
            for (std::size_t k = 0; k < p0.size(); ++k) dot += moves[i][k] * moves[j][k];
            EXPECT_NEAR(dot, i == j ? 1.0 : 0.0, 1e-6);
        }
}

TEST_P(Freedom, FreeShapesShowHowTheyCanMove) {
    Sketch s = sketch({rectangle("Rectangle1", 0, 0, 10, 6), polygon("Polygon1", 30, 0, 5, 6, 90),
                       slot("Slot1", 50, 0, 60, 0, 4)});
    SketchAnalysis a = s.analyse();
    EXPECT_EQ(a.degreesOfFreedom, 4 + 4 + 5);
    EXPECT_EQ(a.displacements.size(), 3u);

    s.mustAdd(T::Fix, {"Slot1"});
    s.mustAdd(T::Fix, {"Rectangle1.bottom_left"});
    s.mustAdd(T::HorizontalDistance, {"Rectangle1.bottom_left", "Rectangle1.bottom_right"}, 12.0);
    s.mustAdd(T::VerticalDistance, {"Rectangle1.bottom_left", "Rectangle1.top_left"}, 5.0);
    s.mustAdd(T::Fix, {"Polygon1.center"});
    a = s.analyse();
    EXPECT_EQ(a.degreesOfFreedom, 2);
    EXPECT_TRUE(a.determined[0]);
    EXPECT_FALSE(a.determined[1]);
    EXPECT_TRUE(a.determined[2]);
    // Only the polygon can still move: it turns about its centre and grows.
    expectDisplacements(a, s.entity("Polygon1"), 1, 2);
}

INSTANTIATE_TEST_SUITE_P(BothMethods, Freedom, bothMethods(), methodName);

} // namespace
} // namespace cad::test
