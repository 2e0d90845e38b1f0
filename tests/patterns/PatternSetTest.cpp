// Patterns of whole bodies: copies that are bodies of their own following their
// source, edit_pattern adding, removing and moving copies with undo and redo, roll
// back, and the sentences that refuse bad arguments.
#include "PatternTestModel.h"

namespace cad::testing {

namespace {

class PatternSets : public PatternModel {
protected:
    // "Bracket": a 10 x 10 x 5 block at the origin (Body1, Extrude1).
    void bracket() {
        ok("extrude", {{"sketch", sketchWithRectangles({{0, 0, 10, 10}})}, {"distance", 5}});
        ok("rename_object", {{"object", "Body1"}, {"name", "Bracket"}});
    }
    GeometryObject* copy(const std::string& label) {
        return document.findAs<GeometryObject>(label);
    }
    double lowX(const std::string& label) {
        GeometryObject* found = copy(label);
        return found && !found->shape.isNull() ? bounds(found->shape.shape())[0] : 1e9;
    }
};

TEST_F(PatternSets, CopiesAreBodiesOfTheirOwnThatFollowTheirSource) {
    bracket();
    EXPECT_EQ(ok("pattern_bodies", {{"bodies", "Bracket"},
                                    {"pattern", "rectangular"},
                                    {"direction", "X"},
                                    {"count", 3},
                                    {"spacing", 20}}),
              "Made PatternSet1, a Rectangular Pattern of 1 body.");
    ASSERT_TRUE(copy("Bracket (3)"));
    EXPECT_NEAR(volume(copy("Bracket (3)")->shape.shape()), 500, 1e-6);
    EXPECT_NEAR(lowX("Bracket (3)"), 40, 1e-6);
    EXPECT_TRUE(copy("Bracket (3)")->shape.findByName("Extrude1.end")) << "the source's names";
    EXPECT_FALSE(document.isHistoryStep(*document.find("Pattern1")));

    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 8}});
    EXPECT_NEAR(volume(copy("Bracket (3)")->shape.shape()), 800, 1e-6);

    // Fewer copies: the last goes; undo brings back the same body, redo takes it again.
    const std::string third = copy("Bracket (3)")->id;
    EXPECT_EQ(ok("edit_pattern", {{"pattern_set", "PatternSet1"}, {"count", 2}, {"spacing", 30}}),
              "Changed PatternSet1.");
    EXPECT_FALSE(copy("Bracket (3)"));
    EXPECT_NEAR(lowX("Bracket (2)"), 30, 1e-6);
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(copy("Bracket (3)"));
    EXPECT_EQ(copy("Bracket (3)")->id, third);
    EXPECT_NEAR(lowX("Bracket (3)"), 40, 1e-6);
    ASSERT_TRUE(stack.redo().ok);
    EXPECT_FALSE(copy("Bracket (3)"));

    // Another layout: all the copies move, and new ones are added to the count.
    ok("edit_pattern",
       {{"pattern_set", "PatternSet1"}, {"pattern", "circular"}, {"axis", "Z"}, {"count", 4}});
    ASSERT_TRUE(copy("Bracket (4)"));
    EXPECT_NEAR(lowX("Bracket (2)"), -10, 1e-6);
    EXPECT_NEAR(bounds(copy("Bracket (3)")->shape.shape())[1], -10, 1e-6);

    // Rolled back before the set, the copies are empty; forward again, they're back.
    ok("roll_back", {{"to", "PatternSet1"}});
    EXPECT_TRUE(copy("Bracket (2)")->shape.isNull());
    ok("roll_back", {});
    EXPECT_NEAR(volume(copy("Bracket (2)")->shape.shape()), 800, 1e-6);
}

TEST_F(PatternSets, BadArgumentsLeaveTheDocumentAlone) {
    bracket();
    const struct {
        const char* command;
        Args args;
        std::string sentence;
    } cases[] = {
        {"pattern_bodies",
         {{"bodies", "Bracket"}, {"direction", "X"}, {"spacing", 20}},
         "pattern_bodies: give the 'pattern' (rectangular, circular or path)."},
        {"pattern_bodies",
         {{"bodies", "Bracket"}, {"pattern", "hex"}},
         "pattern_bodies: 'pattern' must be rectangular, circular or path."},
        {"pattern_bodies",
         {{"bodies", "Sketch1"}, {"pattern", "circular"}, {"axis", "Z"}},
         "'Sketch1' isn't a body."},
        {"pattern_bodies",
         {{"bodies", "Bracket"}, {"pattern", "circular"}, {"axis", "Z"}, {"count", 1}},
         "A pattern needs at least two copies."},
        {"pattern_bodies", {{"bodies", "Bracket"}, {"pattern", "path"}}, "Pick the path."},
        {"pattern_bodies",
         {{"bodies", "Bracket"}, {"pattern", "circular"}, {"axis", "Z"}, {"count", 2000}},
         "That's too many copies for one pattern (at most 1000 bodies)."},
        {"edit_pattern",
         {{"pattern_set", "PatternSet9"}, {"count", 3}},
         "edit_pattern: no pattern named 'PatternSet9'."},
    };
    for (const auto& c : cases) EXPECT_EQ(refused(c.command, c.args), c.sentence) << c.command;

    ok("pattern_bodies", {{"bodies", "Bracket"}, {"pattern", "circular"}, {"axis", "Z"}});
    EXPECT_EQ(refused("edit_pattern", {{"pattern_set", "PatternSet1"}, {"count", 1}}),
              "A pattern needs at least two copies.");
    EXPECT_EQ(refused("edit_pattern", {{"pattern_set", "PatternSet1"}}),
              "edit_pattern: nothing to change.");
    EXPECT_EQ(refused("edit_pattern", {{"pattern_set", "PatternSet1"}, {"axis", "Bracket"}}),
              "'Body1' isn't a straight line or axis.");
    EXPECT_NEAR(lowX("Bracket (2)"), -10, 1e-6);
}

} // namespace

} // namespace cad::testing
