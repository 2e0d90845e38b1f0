// Constraints and dimensions through the commands: refusals for conflicts and
// redundancy, values and their expressions, labels, and the sketch left untouched
// by every refusal.
#include "SketchSession.h"

#include "sketch/SketchSolver.h"

#include <cmath>

using namespace cad;
using cad::test::SketchSession;

namespace {

class Constraints : public SketchSession {
protected:
    Constraints() { newSketch(); }
    int freedom() {
        return analyseSketch(sketch().entities, sketch().constraints).degreesOfFreedom;
    }
    static CommandRecord dimension(const std::string& type, const std::string& a,
                                   const std::string& b, Value value) {
        CommandRecord r = constraint(type, a, b);
        r.set("value", std::move(value));
        return r;
    }
};

} // namespace

TEST_F(Constraints, ConflictsAndRedundancyAreRefusedAndChangeNothing) {
    line(0, 0, 10, 1);
    line(10, 2, 12, 8);
    ok(constraint("horizontal", "Line1"));
    ok(constraint("coincident", "Line1.end", "Line2.start"));
    const std::string before = snapshot();
    EXPECT_EQ(error(constraint("coincident", "Line1.end", "Line2.start")),
              "That coincident is redundant: the sketch's other constraints already determine it.");
    EXPECT_EQ(error(constraint("vertical", "Line1")),
              "That vertical conflicts with the sketch's other constraints.");
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(stack.undoCount(), 5u); // the sketch, two lines, two constraints
}

TEST_F(Constraints, DimensionsTakeTheCurrentSizeOrAValue) {
    line(0, 0, 3, 4);
    ok(constraint("distance", "Line1.start", "Line1.end"));
    EXPECT_NEAR(sketch().constraints.back().value, 5, 1e-12);
    EXPECT_EQ(sketch().constraints.back().id, "Distance1");

    document.setParameters({Parameter{"w", "12", units::Length::Millimeters, true, ""}});
    line(0, 10, 5, 10);
    EXPECT_EQ(ok(on("add_constraint", {{"type", "length"},
                                       {"a", "Line2"},
                                       {"value", "w"},
                                       {"label_x", 1},
                                       {"label_y", "2mm"}})),
              "Added Length1 to Sketch1.");
    const SketchConstraint& length = *sketch().findConstraint("Length1");
    EXPECT_DOUBLE_EQ(length.value, 12);
    ASSERT_TRUE(length.expression.has_value());
    EXPECT_EQ(length.expression->text, "w");
    EXPECT_EQ(length.label, (std::pair<double, double>{1, 2}));
    const auto& l = geometry<SketchLine>("Line2");
    EXPECT_NEAR(std::hypot(l.end.x - l.start.x, l.end.y - l.start.y), 12, 1e-7);
}

TEST_F(Constraints, ArgumentSentences) {
    line(0, 0, 10, 0);
    line(0, 0, 0, 10);
    CommandRecord elsewhere("add_constraint");
    elsewhere.set("sketch", "Sketch9").set("type", "fix").set("a", "Line1");
    const std::string badAngle = "An angle must be more than 0° and at most 180°.";
    const std::pair<CommandRecord, std::string> cases[] = {
        {constraint("sideways", "Line1"), "add_constraint: unknown constraint type 'sideways'."},
        {on("add_constraint", {{"type", "horizontal"}}),
         "add_constraint: give the geometry to constrain in 'a' (and 'b', 'c')."},
        {on("add_constraint", {{"type", "horizontal"}, {"a", "Line1"}, {"b", 3}}),
         "add_constraint: 'b' must be a reference like \"Line1.end\"."},
        {constraint("horizontal", " "),
         "add_constraint: 'a' must be a reference like \"Line1.end\"."},
        {on("add_constraint", {{"type", "length"}, {"a", "Line1"}, {"value", 5}, {"label_x", 1}}),
         "add_constraint: give both 'label_x' and 'label_y' as lengths."},
        {on("add_constraint",
            {{"type", "horizontal"}, {"a", "Line1"}, {"label_x", 1}, {"label_y", 1}}),
         "add_constraint: only dimensions have a label position."},
        {constraint("horizontal", "Line7"), "The sketch has no entity named 'Line7'."},
        {constraint("fix", "Origin"), "The origin and axes are fixed already."},
        {dimension("horizontal", "Line1", "", 3), "horizontal takes no value."},
        {dimension("length", "Line1", "", "-2"), "A dimension must be greater than zero."},
        {dimension("angle", "Line1", "Line2", 0), badAngle},
        {dimension("angle", "Line1", "Line2", 190), badAngle},
        {elsewhere, "No sketch named 'Sketch9' exists."},
    };
    for (const auto& [record, message] : cases) EXPECT_EQ(error(record), message);
    EXPECT_TRUE(sketch().constraints.empty());
    EXPECT_EQ(ok(dimension("angle", "Line1", "Line2", 180)), "Added Angle1 to Sketch1.");
    EXPECT_EQ(error(on("edit_constraint", {{"constraint", "Angle1"}, {"value", "0"}})), badAngle);
}

TEST_F(Constraints, EditingADimensionResolves) {
    line(0, 0, 10, 0);
    ok(constraint("fix", "Line1.start"));
    ok(constraint("horizontal", "Line1"));
    ok(dimension("length", "Line1", "", 10));
    auto edit = [](const char* name, Arg value) {
        return on("edit_constraint", {{"constraint", name}, {"value", value}});
    };
    EXPECT_EQ(ok(edit("Length1", "1in")), "Changed Length1.");
    EXPECT_NEAR(geometry<SketchLine>("Line1").end.x, 25.4, 1e-7);
    EXPECT_FALSE(sketch().findConstraint("Length1")->expression.has_value());

    EXPECT_EQ(error(edit("Length9", 3)), "Sketch1 has no constraint named 'Length9'.");
    EXPECT_EQ(error(edit("Fix1", 3)), "Fix1 is not a dimension; it has no value to change.");
    EXPECT_EQ(error(edit("Length1", 0)), "A dimension must be greater than zero.");
    EXPECT_EQ(error(edit("Length1", "3 +")).rfind("edit_constraint: ", 0), 0u);
    EXPECT_EQ(error(on("edit_constraint", {{"constraint", "Length1"}})),
              "edit_constraint: missing argument 'value'.");

    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(geometry<SketchLine>("Line1").end.x, 10, 1e-9);
    EXPECT_DOUBLE_EQ(sketch().findConstraint("Length1")->value, 10);
}

TEST_F(Constraints, AValueTheOthersCannotMeetIsRefused) {
    // A triangle on a fixed base with two sides of 7: a side of 20 cannot close it.
    line(0, 0, 10, 0);
    line(10, 0, 5, 5);
    line(5, 5, 0, 0);
    ok(constraint("fix", "Line1"));
    ok(constraint("coincident", "Line1.end", "Line2.start"));
    ok(constraint("coincident", "Line2.end", "Line3.start"));
    ok(constraint("coincident", "Line3.end", "Line1.start"));
    ok(dimension("length", "Line2", "", 7));
    ok(dimension("length", "Line3", "", 7));
    EXPECT_EQ(freedom(), 0);
    const std::string before = snapshot();
    auto edit = [](Arg value) {
        return on("edit_constraint", {{"constraint", "Length1"}, {"value", value}});
    };
    EXPECT_EQ(error(edit(20)), "That value doesn't work with the sketch's other constraints.");
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(ok(edit(8)), "Changed Length1.");
    const auto& side = geometry<SketchLine>("Line2");
    EXPECT_NEAR(std::hypot(side.end.x - side.start.x, side.end.y - side.start.y), 8, 1e-7);
}

TEST_F(Constraints, DeletingAndMovingDimensions) {
    line(0, 0, 10, 0);
    ok(constraint("horizontal", "Line1"));
    ok(dimension("length", "Line1", "", 10));
    auto move = [](const char* name) {
        return on("move_dimension", {{"constraint", name}, {"x", 3}, {"y", "-2mm"}});
    };
    EXPECT_EQ(ok(move("Length1")), "Moved Length1.");
    EXPECT_EQ(sketch().findConstraint("Length1")->label, (std::pair<double, double>{3, -2}));
    EXPECT_EQ(error(move("Horizontal1")), "Horizontal1 is not a dimension.");
    EXPECT_EQ(error(on("move_dimension", {{"constraint", "Length1"}, {"x", 1}})),
              "move_dimension: give the offset in 'x' and 'y'.");

    auto remove = [](const char* name) { return on("delete_constraint", {{"constraint", name}}); };
    EXPECT_EQ(ok(remove("Horizontal1")), "Deleted Horizontal1.");
    EXPECT_EQ(error(remove("Horizontal1")), "Sketch1 has no constraint named 'Horizontal1'.");
    EXPECT_EQ(ok(constraint("horizontal", "Line1")), "Added Horizontal1 to Sketch1.");
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(stack.undo()); // the label moves back
    EXPECT_FALSE(sketch().findConstraint("Length1")->label.has_value());
    EXPECT_NE(sketch().findConstraint("Horizontal1"), nullptr);
}
