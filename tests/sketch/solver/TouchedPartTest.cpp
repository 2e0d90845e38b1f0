// Which part of a sketch a new constraint reaches: chains of constraints in list
// order and against it (where the quick sweeps give way to joining everything),
// the origin and axes linking nothing, and a constraint joining two parts.
#include "SolverTestSketches.h"

#include "sketch/solver/TouchedPart.h"

namespace cad::test {
namespace {

using T = ConstraintType;

// Two chains of 30 lines, A (Line1-30) and B (Line31-60), each line's end on the next
// one's start, each chain's first line starting on the origin. Chain A's
// coincidences are listed last to first, chain B's first to last.
struct TwoChains {
    std::vector<SketchEntity> entities;
    std::vector<SketchConstraint> constraints;
    std::vector<std::size_t> aConstraints, bConstraints;

    TwoChains() {
        for (int i = 1; i <= 60; ++i)
            entities.push_back(line("Line" + std::to_string(i), i, 0, i + 1, 0));
        auto link = [&](int from, std::vector<std::size_t>& owner) {
            const std::string a = "Line" + std::to_string(from) + ".end";
            const std::string b = "Line" + std::to_string(from + 1) + ".start";
            owner.push_back(constraints.size());
            constraints.push_back(constraint(T::Coincident, {a.c_str(), b.c_str()}));
        };
        for (int i = 29; i >= 1; --i) link(i, aConstraints);
        for (int i = 31; i <= 59; ++i) link(i, bConstraints);
        aConstraints.push_back(constraints.size());
        constraints.push_back(constraint(T::Coincident, {"Line1.start", "Origin"}));
        bConstraints.push_back(constraints.size());
        constraints.push_back(constraint(T::Coincident, {"Line31.start", "Origin"}));
        std::sort(aConstraints.begin(), aConstraints.end());
    }
};

std::vector<std::size_t> range(std::size_t from, std::size_t to) {
    std::vector<std::size_t> out;
    for (std::size_t i = from; i < to; ++i) out.push_back(i);
    return out;
}

TEST(TouchedPart, FollowsChainsInEitherOrderButNotThroughTheOrigin) {
    const TwoChains s;
    // Chain A runs against the list order: the sweeps give up and everything is joined.
    solver::TouchedPart a =
        solver::touchedPart(s.entities, s.constraints, constraint(T::Horizontal, {"Line30"}));
    EXPECT_EQ(a.entities, range(0, 30));
    EXPECT_EQ(a.constraints, s.aConstraints);

    solver::TouchedPart b =
        solver::touchedPart(s.entities, s.constraints, constraint(T::Horizontal, {"Line45"}));
    EXPECT_EQ(b.entities, range(30, 60));
    EXPECT_EQ(b.constraints, s.bConstraints);

    solver::TouchedPart both = solver::touchedPart(
        s.entities, s.constraints, constraint(T::Coincident, {"Line30.end", "Line60.end"}));
    EXPECT_EQ(both.entities, range(0, 60));
    EXPECT_EQ(both.constraints, range(0, s.constraints.size()));
}

// A dimension on a chain listed against its order still moves the whole chain, and
// the other chain keeps its values exactly.
TEST(TouchedPart, AddingSolvesTheWholeReachedPartOnly) {
    const TwoChains s;
    Sketch sketch;
    sketch.entities = s.entities;
    sketch.constraints = s.constraints;
    for (int i = 1; i <= 30; ++i)
        sketch.mustAdd(T::Horizontal, {("Line" + std::to_string(i)).c_str()});
    for (int i = 1; i <= 29; ++i)
        sketch.mustAdd(T::Distance,
                       {("Line" + std::to_string(i) + ".start").c_str(),
                        ("Line" + std::to_string(i) + ".end").c_str()},
                       1.0);
    const std::vector<SketchEntity> before = sketch.entities;
    sketch.mustAdd(T::HorizontalDistance, {"Origin", "Line30.end"}, 60.0);
    EXPECT_NEAR(sketch.at("Line30.start").x, 29.0, 1e-6);
    EXPECT_NEAR(sketch.at("Line30.end").x, 60.0, 1e-6);
    for (std::size_t i = 30; i < 60; ++i) {
        const auto& was = std::get<SketchLine>(before[i].geometry);
        const auto& now = std::get<SketchLine>(sketch.entities[i].geometry);
        EXPECT_EQ(was.start, now.start);
        EXPECT_EQ(was.end, now.end);
    }
}

} // namespace
} // namespace cad::test
