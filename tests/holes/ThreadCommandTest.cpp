// thread and edit_thread with cosmetic threads: sizes matched to bosses and holes,
// the free end and length the view draws, refusals, and edits that undo.
#include "HoleTestModel.h"

#include "geometry/holes/CosmeticThreads.h"

namespace cad::testing {

namespace {

class Threads : public HoleModel {};

} // namespace

TEST_F(Threads, CosmeticThreadsMatchTheDiameterAndLeaveTheShape) {
    boss(6.5);
    EXPECT_EQ(ok("thread", {{"body", "Body1"}, {"face", "Body1/Extrude1.side.Circle1"}}),
              "Threaded 1/4-20 UNC of Body1 (Thread1, cosmetic).");
    const double volume = volumeOf("Body1");
    EXPECT_NEAR(volume, 3.14159265358979 * 3.25 * 3.25 * 10, 1e-6);

    std::vector<CosmeticThread> threads = cosmeticThreads(document, *body("Body1"));
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_FALSE(threads[0].internal);
    EXPECT_NEAR(threads[0].radius, 3.175, 1e-12);
    EXPECT_NEAR(threads[0].pitch, 1.27, 1e-12);
    EXPECT_NEAR(threads[0].length, 10, 1e-9);
    // A boss free at both ends is threaded from its top down.
    EXPECT_NEAR(threads[0].axis.Location().Z(), 10, 1e-9);
    EXPECT_TRUE(threads[0].axis.Direction().IsEqual(gp_Dir(0, 0, -1), 1e-9));

    EXPECT_EQ(ok("edit_thread", {{"feature", "Thread1"}, {"size", "M6"}, {"length", 4}}),
              "Edited Thread1.");
    threads = cosmeticThreads(document, *body("Body1"));
    EXPECT_EQ(threads[0].radius, 3);
    EXPECT_NEAR(threads[0].length, 4, 1e-12);
    // Longer than the face: the whole face.
    ok("edit_thread", {{"feature", "Thread1"}, {"length", 40}});
    EXPECT_NEAR(cosmeticThreads(document, *body("Body1"))[0].length, 10, 1e-9);
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(stack.undo());
    threads = cosmeticThreads(document, *body("Body1"));
    EXPECT_NEAR(threads[0].radius, 3.175, 1e-12);
    EXPECT_NEAR(volumeOf("Body1"), volume, 1e-9);
}

TEST_F(Threads, ATappedHoleWallThreadsFromItsOpenEnd) {
    plateWithPoints({{20, 20}});
    ok("hole", {{"sketch", "Sketch1"}, {"diameter", 6.8}, {"depth", 7}});
    EXPECT_EQ(ok("thread", {{"body", "Box1"}, {"face", "Hole1.wall"}, {"name", "Inside"}}),
              "Threaded M8 of Box1 (Inside, cosmetic).");
    std::vector<CosmeticThread> threads = cosmeticThreads(document, *body("Box1"));
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_TRUE(threads[0].internal);
    EXPECT_EQ(threads[0].radius, 4);
    EXPECT_TRUE(threads[0].axis.Location().IsEqual(gp_Pnt(20, 20, 10), 1e-9));
    EXPECT_TRUE(threads[0].axis.Direction().IsEqual(gp_Dir(0, 0, -1), 1e-9));
    EXPECT_NEAR(threads[0].length, 7, 1e-9);
}

TEST_F(Threads, RefusalsLeaveTheBodyAlone) {
    boss(6);
    struct Case {
        Args args;
        const char* error;
    };
    const Case cases[] = {
        {{{"body", "Body1"}}, "thread: give the body and the cylindrical face."},
        {{{"body", "Body1"}, {"face", "Extrude1.side.Circle1"}, {"size", "M6x0.5"}},
         "'M6x0.5' isn't a thread size I know (e.g. M6, M10x1.25, 1/4-20 UNC)."},
        {{{"body", "Body9"}, {"face", "Extrude1.side.Circle1"}}, "No body named 'Body9' exists."},
        {{{"body", "Body1"}, {"face", "Extrude1.side.Circle1"}, {"name", "sketch1"}},
         "An object named 'sketch1' already exists."},
        {{{"body", "Body1"}, {"face", "Extrude1.end"}},
         "Extrude1.end isn't cylindrical; threads go on round faces."},
        {{{"body", "Body1"}, {"face", "Extrude1.side.Line1"}},
         "Extrude1.side.Line1 no longer exists: the geometry it was on has changed."},
        {{{"body", "Body1"}, {"face", "Extrude1.side.Circle1"}, {"size", "M8"}, {"modeled", true}},
         "M8 thread doesn't fit this cylinder's size."},
    };
    for (const Case& c : cases) EXPECT_EQ(run("thread", c.args).message, c.error);
    EXPECT_TRUE(body("Body1")->features.size() == 1);
    EXPECT_FALSE(document.find("Thread1"));

    ok("thread", {{"body", "Body1"}, {"face", "Extrude1.side.Circle1"}});
    EXPECT_EQ(run("edit_thread", {{"feature", "Thread1"}}).message,
              "edit_thread: nothing to change.");
    EXPECT_EQ(run("edit_thread", {{"feature", "Thread4"}, {"modeled", true}}).message,
              "No thread named 'Thread4' exists.");
    EXPECT_EQ(run("edit_thread", {{"feature", "Thread1"}, {"size", "M99"}}).message,
              "'M99' isn't a thread size I know (e.g. M6, M10x1.25, 1/4-20 UNC).");
}

} // namespace cad::testing
