// Modeled threads, the slow ones: a real M6 thread cut on a 6 mm boss and in a
// tapped M6 hole, each a valid single solid whose material lies between the
// thread's minor and major cylinders. Prints how long each took.
#include "HoleTestModel.h"

#include "geometry/holes/CosmeticThreads.h"

#include <BRepCheck_Analyzer.hxx>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace cad::testing {

namespace {

constexpr double pi = std::numbers::pi;

class ModeledThreads : public HoleModel {
protected:
    // Runs a command that must succeed and prints how long it took.
    std::string timed(const char* what, const std::string& name, Args arguments) {
        const auto start = std::chrono::steady_clock::now();
        std::string message = ok(name, arguments);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        std::printf("%s: %.2f s\n", what, took.count());
        return message;
    }
    void expectOneValidSolid(const std::string& bodyId) {
        const TopoDS_Shape& shape = body(bodyId)->shape.shape();
        EXPECT_EQ(count(shape, TopAbs_SOLID), 1);
        EXPECT_TRUE(BRepCheck_Analyzer(shape).IsValid());
    }
};

} // namespace

TEST_F(ModeledThreads, AnM6ThreadOnASixMillimetreBoss) {
    boss(6);
    EXPECT_EQ(timed("modeled M6 x 10 mm thread on a boss", "thread",
                    {{"body", "Body1"}, {"face", "Extrude1.side.Circle1"}, {"modeled", true}}),
              "Threaded M6 of Body1 (Thread1, modeled).");
    expectOneValidSolid("Body1");
    const double minor = (6 - 1.226869) / 2;
    const double v = volumeOf("Body1");
    EXPECT_GT(v, pi * minor * minor * 10);
    EXPECT_LT(v, pi * 9 * 10 - 1); // a real groove, not a scratch
    EXPECT_TRUE(hasFace("Body1", "Thread1.thread(Extrude1.side.Circle1)"));
    EXPECT_TRUE(cosmeticThreads(document, *body("Body1")).empty());

    // Made cosmetic again, the boss is whole and the thread is drawn instead.
    ok("edit_thread", {{"feature", "Thread1"}, {"modeled", false}});
    EXPECT_NEAR(volumeOf("Body1"), pi * 9 * 10, 1e-6);
    EXPECT_EQ(cosmeticThreads(document, *body("Body1")).size(), 1u);
}

TEST_F(ModeledThreads, AnM6TappedHoleTwelveDeepInABlock) {
    ok("create_box", {{"width", 20}, {"depth", 20}, {"height", 20}});
    ok("create_sketch", {{"origin_x", 0.0},
                         {"origin_y", 0.0},
                         {"origin_z", 20.0},
                         {"normal_x", 0.0},
                         {"normal_y", 0.0},
                         {"normal_z", 1.0},
                         {"support", "Box1"}});
    ok("add_point", {{"sketch", "Sketch1"}, {"x", 10}, {"y", 10}});
    EXPECT_EQ(timed("modeled M6 tapped hole 12 mm deep", "hole",
                    {{"sketch", "Sketch1"},
                     {"size", "M6"},
                     {"depth", 12},
                     {"tip_angle", 0},
                     {"modeled", true}}),
              "Made 1 hole in Box1 (Hole1).");
    expectOneValidSolid("Box1");
    const double minor = (6 - 1.082532) / 2;
    const double removed = 8000 - volumeOf("Box1");
    EXPECT_GT(removed, pi * minor * minor * 12 + 1);
    EXPECT_LT(removed, pi * 9 * 12);
    EXPECT_TRUE(hasFace("Box1", "Hole1.thread(Point1)"));
    EXPECT_TRUE(hasFace("Box1", "Hole1.bottom"));
    EXPECT_TRUE(cosmeticThreads(document, *body("Box1")).empty());
}

} // namespace cad::testing
