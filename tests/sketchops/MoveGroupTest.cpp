// move_entities, group and ungroup, and the operations' entries in the registry.
#include "SketchOpsSession.h"

using namespace cad;
using cad::test::SketchOpsSession;

namespace {

class MoveGroup : public SketchOpsSession {
protected:
    static CommandRecord move(const char* entities, double x, double y) {
        return on("move_entities", {{"entities", entities}, {"x", x}, {"y", y}});
    }
};

} // namespace

TEST_F(MoveGroup, MovedEntitiesSlideAndWhatIsTiedToThemFollows) {
    line(0, 0, 10, 0);
    line(10, 0, 10, 5);
    ok(constraint("coincident", "Line1.end", "Line2.start"));
    EXPECT_EQ(ok(move("Line1", 2, 3)), "Moved 1 entity.");
    EXPECT_EQ(geometry<SketchLine>("Line1").start, (Point2{2, 3}));
    EXPECT_EQ(geometry<SketchLine>("Line1").end, (Point2{12, 3}));
    EXPECT_NEAR(gap(at("Line2.start"), {12, 3}), 0, 1e-7);

    ok(constraint("fix", "Line2"));
    EXPECT_EQ(error(move("Line1", 1, 0)), "The sketch's constraints keep Line1 from moving there.");
    EXPECT_EQ(error(move("Line1; Line2", 1, 0)),
              "The sketch's constraints keep them from moving there.");
    line(20, 0, 30, 0);
    ok(constraint("coincident", "Line3.start", "Origin"));
    const std::string withLine3 = everything();
    EXPECT_EQ(error(move("Line3", 1, 1)), "Line3 can't be moved.");
    EXPECT_EQ(error(on("move_entities", {{"entities", "Line3"}, {"x", 1}})),
              "move_entities: give x and y: how far to move.");
    EXPECT_EQ(error(move("", 1, 1)), "Choose what to move.");
    EXPECT_EQ(everything(), withLine3);

    SketchEntity projected;
    projected.id = "Circle1";
    projected.geometry = SketchCircle{{40, 0}, 1};
    projected.source = "Body1/Extrude1.end";
    sketch().entities.push_back(projected);
    EXPECT_EQ(error(move("Circle1", 1, 1)),
              "Circle1 is projected: it follows what it was projected from.");
}

TEST_F(MoveGroup, GroupsMoveTogetherUntilTakenApart) {
    line(0, 0, 10, 0);
    line(0, 5, 10, 5);
    circle(30, 0, 2);
    EXPECT_EQ(ok(on("group", {{"entities", "Line1; Line2"}})), "Grouped 2 entities as Group1.");
    EXPECT_EQ(entity("Line2").group, "Group1");
    EXPECT_EQ(ok(on("group", {{"entities", "Circle1"}})), "Grouped 1 entity as Group2.");

    EXPECT_EQ(ok(move("Line1", 0, 1)), "Moved 2 entities.");
    EXPECT_EQ(geometry<SketchLine>("Line2").start, (Point2{0, 6}));

    EXPECT_EQ(ok(on("ungroup", {{"entities", "Line2"}})), "Ungrouped.");
    EXPECT_TRUE(entity("Line1").group.empty());
    EXPECT_EQ(entity("Circle1").group, "Group2");
    const std::string before = everything();
    EXPECT_EQ(error(on("ungroup", {{"entities", "Line1; Line2"}})), "Those aren't grouped.");
    EXPECT_EQ(error(on("ungroup", {{"entities", ""}})), "Choose what to ungroup.");
    EXPECT_EQ(error(on("group", {{"entities", " "}})), "Choose what to group.");
    EXPECT_EQ(error(on("group", {{"entities", "Line1; Line7"}})), "No entity named 'Line7'.");
    EXPECT_EQ(error(on("group", {})), "group: say which entities.");
    EXPECT_EQ(everything(), before);
    stack.undo();
    EXPECT_EQ(entity("Line1").group, "Group1");
}

TEST(SketchOperationRegistry, EveryOperationIsOffered) {
    CommandRegistry registry;
    registerSketchOperationCommands(registry);
    for (const char* name : {"trim", "extend", "offset", "mirror", "move_entities", "group",
                             "ungroup", "explode", "text_to_outlines", "sketch_fillet",
                             "sketch_chamfer"}) {
        const CommandRegistry::Entry* entry = registry.find(name);
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_FALSE(entry->description.empty()) << name;
        EXPECT_EQ(entry->arguments.front().name, "sketch") << name;
    }
    EXPECT_EQ(registry.entries().size(), 11u);
    const auto* chamfer = registry.find("sketch_chamfer");
    EXPECT_EQ(chamfer->arguments.size(), 4u);
    EXPECT_FALSE(chamfer->arguments.back().required); // distance2
}
