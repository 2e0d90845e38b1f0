// The block engine gives what the whole-sketch engine gives: the same solved
// positions (within the solve tolerance), the same refusals, the same freedom. Also
// with every block forced onto the sparse steps and the sparse rank test.
#include "SolverTestSketches.h"

namespace cad::test {
namespace {

using T = ConstraintType;

std::vector<SketchEntity> mixedSketch() {
    std::vector<SketchEntity> e{
        line("Line1", 0, 0, 10, 0.5),     line("Line2", 10, 0.5, 10.5, 6),
        line("Line3", 10.5, 6, 0.3, 6.2), line("Line4", 0.3, 6.2, 0, 0),
        circle("Circle1", 30, 0, 5),      line("Line5", 20, 6, 40, 6.5),
        arc("Arc1", 30, 20, 4, 0, 120),   polygon("Polygon1", 60, 0, 5, 6, 90),
        point("Point1", 70, 10),          rectangle("Rectangle1", 0, 30, 8, 5),
        line("Line6", 50, 30, 60, 35),    line("Line7", 52, 40, 58, 45),
        slot("Slot1", 80, 0, 90, 2, 4),
    };
    e[10].source = "Body1/Extrude1.end";
    return e;
}

struct Step {
    T type;
    std::vector<const char*> refs;
    std::optional<double> value;
};

const std::vector<Step> kSteps{
    {T::Coincident, {"Line1.end", "Line2.start"}, {}},
    {T::Coincident, {"Line2.end", "Line3.start"}, {}},
    {T::Coincident, {"Line3.end", "Line4.start"}, {}},
    {T::Coincident, {"Line4.end", "Line1.start"}, {}},
    {T::Horizontal, {"Line1"}, {}},
    {T::Vertical, {"Line2"}, {}},
    {T::Horizontal, {"Line3"}, {}},
    {T::Vertical, {"Line4"}, {}},
    {T::Horizontal, {"Line1"}, {}}, // redundant
    {T::Length, {"Line1"}, 12.0},
    {T::VerticalDistance, {"Line2.start", "Line2.end"}, 7.0},
    {T::Distance, {"Line1.start", "Line3.end"}, {}}, // redundant: the height is known
    {T::Length, {"Line4"}, 9.0},                     // conflicts with the height
    {T::Fix, {"Line1.start"}, {}},
    {T::Tangent, {"Line5", "Circle1"}, {}},
    {T::Radius, {"Circle1"}, 4.0},
    {T::Concentric, {"Arc1", "Circle1"}, {}},
    {T::Equal, {"Arc1", "Circle1"}, {}},
    {T::Coincident, {"Arc1.center", "Line5"}, {}}, // conflicts: the line touches the circle
    {T::Fix, {"Polygon1.center"}, {}},
    {T::Coincident, {"Point1", "Polygon1.corner1"}, {}},
    {T::Angle, {"Polygon1.edge0", "XAxis"}, 40.0},
    {T::Coincident, {"Line7.start", "Line6.end"}, {}},
    {T::Vertical, {"Line6"}, {}}, // the projected line can't turn
    {T::Perpendicular, {"Line7", "Line6"}, {}},
    {T::Fix, {"Rectangle1"}, {}},
    {T::Distance, {"Slot1.start", "Slot1.end"}, 15.0},
    {T::Symmetric, {"Slot1.start", "Slot1.end", "YAxis"}, {}},
};

// Determined entities have one place to be; free ones end where each engine's path
// (damped by its own system's scale) took them, close but not identical.
void expectSameEntities(const std::vector<SketchEntity>& a, const std::vector<SketchEntity>& b,
                        const std::vector<bool>& determined, const std::string& where) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::vector<double> pa = entityParameters(a[i]), pb = entityParameters(b[i]);
        for (std::size_t k = 0; k < pa.size(); ++k)
            EXPECT_NEAR(pa[k], pb[k], determined[i] ? 1e-6 : 1e-3)
                << where << ": " << a[i].id << " parameter " << k;
    }
}

// What one engine solved, the other finds solved already: nothing moves.
void expectSolvedForTheOther(const Sketch& s, SolverMethod other, const std::string& where) {
    SolverOptions options = s.options;
    options.method = other;
    Result<std::vector<SketchEntity>> again =
        solveSketch(s.entities, s.constraints, {}, {}, options);
    ASSERT_TRUE(again.ok()) << where << ": " << again.error();
    for (std::size_t i = 0; i < s.entities.size(); ++i)
        EXPECT_EQ(entityParameters((*again)[i]), entityParameters(s.entities[i]))
            << where << " " << s.entities[i].id;
}

void expectSameAnalysis(const SketchAnalysis& a, const SketchAnalysis& b,
                        const std::string& where) {
    EXPECT_EQ(a.degreesOfFreedom, b.degreesOfFreedom) << where;
    EXPECT_EQ(a.determined, b.determined) << where;
    ASSERT_EQ(a.displacements.size(), b.displacements.size()) << where;
    for (std::size_t i = 0; i < a.displacements.size(); ++i) {
        EXPECT_EQ(a.displacements[i].entity, b.displacements[i].entity) << where;
        EXPECT_EQ(a.displacements[i].shapes.size(), b.displacements[i].shapes.size()) << where;
    }
}

TEST(BlockEquivalence, SameSolutionsRefusalsAndFreedomAsTheWholeSketch) {
    std::vector<Sketch> sketches(3);
    sketches[0].options.method = SolverMethod::Dense;
    sketches[2].options.denseLimit = 0; // every block on sparse steps and the sparse rank test
    for (Sketch& s : sketches) s.entities = mixedSketch();

    int refused = 0;
    for (std::size_t i = 0; i < kSteps.size(); ++i) {
        const Step& step = kSteps[i];
        std::vector<std::string> errors;
        for (Sketch& s : sketches) errors.push_back(s.add(step.type, step.refs, step.value));
        const std::string where =
            "step " + std::to_string(i) + " " + std::string(constraintKeyword(step.type));
        EXPECT_EQ(errors[1], errors[0]) << where;
        EXPECT_EQ(errors[2], errors[0]) << where;
        refused += errors[0].empty() ? 0 : 1;
        const SketchAnalysis whole = sketches[0].analyse();
        for (std::size_t k = 1; k < sketches.size(); ++k) {
            expectSameEntities(sketches[k].entities, sketches[0].entities, whole.determined, where);
            expectSameAnalysis(sketches[k].analyse(), whole, where);
            expectSolvedForTheOther(sketches[k], SolverMethod::Dense, where);
        }
        expectSolvedForTheOther(sketches[0], SolverMethod::Blocks, where);
    }
    EXPECT_EQ(refused, 5); // two redundant, three conflicts

    // Drags and held solves on the constrained sketch.
    const std::vector<bool> determined = sketches[0].analyse().determined;
    const std::vector<SketchDrag> drags{{*parseReference("Line2.end"), {13, 8}},
                                        {*parseReference("Point1"), {61, 9}},
                                        {*parseReference("Line7.end"), {70, 40}},
                                        {*parseReference("Line3.start"), {0, 0}}};
    for (const SketchDrag& drag : drags) {
        std::vector<Result<std::vector<SketchEntity>>> results;
        for (const Sketch& s : sketches)
            results.push_back(solveSketch(s.entities, s.constraints, {}, drag, s.options));
        for (std::size_t k = 1; k < results.size(); ++k) {
            EXPECT_EQ(results[k].error(), results[0].error()) << drag.point.text();
            if (results[k] && results[0])
                expectSameEntities(*results[k], *results[0], determined, drag.point.text());
        }
    }
    for (Sketch& s : sketches) {
        std::get<SketchCircle>(s.entities[4].geometry).center.x += 2; // edited, then held
    }
    std::vector<Result<std::vector<SketchEntity>>> held;
    for (const Sketch& s : sketches)
        held.push_back(solveSketch(s.entities, s.constraints, {"Circle1"}, {}, s.options));
    for (std::size_t k = 1; k < held.size(); ++k) {
        ASSERT_TRUE(held[k].ok() && held[0].ok()) << held[k].error() << held[0].error();
        expectSameEntities(*held[k], *held[0], determined, "held circle");
    }
}

} // namespace
} // namespace cad::test
