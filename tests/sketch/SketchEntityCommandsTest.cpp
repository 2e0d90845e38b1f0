// Commands on existing entities: delete (with its constraints), construction,
// edits held against the constraints, drags, projected entities, and a constraint
// whose reference has gone.
#include "SketchSession.h"

#include "sketch/SketchReference.h"

#include <cmath>

using namespace cad;
using cad::test::SketchSession;

namespace {

class EntityCommands : public SketchSession {
protected:
    EntityCommands() { newSketch(); }
    static CommandRecord edit(const char* entity) {
        return on("edit_sketch_entity", {{"entity", entity}});
    }
    static CommandRecord drag(const char* point, double x, double y) {
        return on("move_sketch_point", {{"point", point}, {"x", x}, {"y", y}});
    }
};

} // namespace

TEST_F(EntityCommands, DeletingAnEntityTakesItsConstraintsAndUndoBringsThemBack) {
    line(0, 0, 10, 0);
    line(10, 0, 10, 5);
    ok(constraint("horizontal", "Line1"));
    ok(constraint("coincident", "Line1.end", "Line2.start"));
    ok(constraint("vertical", "Line2"));
    const std::string before = snapshot();
    auto remove = [](const char* id) { return on("delete_sketch_entity", {{"entity", id}}); };
    EXPECT_EQ(ok(remove("Line1")), "Deleted Line1 from Sketch1 and 2 constraint(s) on it.");
    ASSERT_EQ(sketch().constraints.size(), 1u);
    EXPECT_EQ(sketch().constraints[0].id, "Vertical1");
    EXPECT_EQ(error(remove("Line1")), "Sketch1 has no entity named 'Line1'.");
    EXPECT_EQ(error(on("delete_sketch_entity")),
              "delete_sketch_entity: missing string argument 'entity'.");
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(snapshot(), before);
    ASSERT_TRUE(stack.redo().ok);
    EXPECT_EQ(sketch().entities.size(), 1u);
}

TEST_F(EntityCommands, ConstructionOnAndOff) {
    ok(on("add_circle", {{"cx", 0}, {"cy", 0}, {"radius", 1}}));
    auto set = [](bool flag) {
        return on("set_construction", {{"entity", "Circle1"}, {"construction", flag}});
    };
    EXPECT_EQ(ok(set(true)), "Circle1 is now construction geometry.");
    EXPECT_TRUE(entity("Circle1").construction);
    EXPECT_EQ(ok(set(false)), "Circle1 is now normal geometry.");
    stack.undo();
    EXPECT_TRUE(entity("Circle1").construction);
}

TEST_F(EntityCommands, EditingChangesOnlyWhatIsGiven) {
    line(1, 1, 4, 5);
    EXPECT_EQ(ok(edit("Line1").set("angle", 90)), "Changed Line1.");
    const auto& l = geometry<SketchLine>("Line1");
    EXPECT_EQ(l.start, (Point2{1, 1}));
    EXPECT_NEAR(l.end.x, 1, 1e-12);
    EXPECT_NEAR(l.end.y, 6, 1e-12); // the length of 5 is kept
    ok(edit("Line1").set("length", "2mm"));
    EXPECT_NEAR(geometry<SketchLine>("Line1").end.y, 3, 1e-12);

    ok(on("add_polygon", {{"cx", 0}, {"cy", 0}, {"sides", 6}, {"radius", 2}}));
    ok(edit("Polygon1").set("sides", 4).set("across_flats", 10));
    const auto& square = geometry<SketchPolygon>("Polygon1");
    EXPECT_EQ(square.sides, 4);
    EXPECT_NEAR(square.radius, 5 * std::sqrt(2.0), 1e-12);
    EXPECT_EQ(square.rotation, 90);

    ok(on("add_spline", {{"points", "0,0; 5,5; 10,0"}}));
    ok(edit("Spline1").set("points", "0,0; 4,0; 2,3").set("closed", true));
    EXPECT_TRUE(geometry<SketchSpline>("Spline1").closed);
}

TEST_F(EntityCommands, EditRefusals) {
    line(0, 0, 10, 0);
    ok(on("add_polygon", {{"cx", 20}, {"cy", 0}, {"sides", 6}, {"radius", 2}}));
    ok(constraint("coincident", "Line1.end", "Polygon1.corner5"));
    ok(constraint("horizontal", "Line1"));
    ok(on("add_constraint", {{"type", "length"}, {"a", "Line1"}, {"value", 10}}));
    const std::string before = snapshot();
    const std::pair<CommandRecord, std::string> cases[] = {
        {edit("Line9").set("x1", 0), "Sketch1 has no entity named 'Line9'."},
        {edit("Line1"), "edit_sketch_entity: nothing to change."},
        {edit("Line1").set("angle", "steep"),
         "edit_sketch_entity: 'angle' must be a number of degrees."},
        {edit("Polygon1").set("radius", 3).set("diameter", 6),
         "Give either 'radius' or 'diameter', not both."},
        {edit("Polygon1").set("sides", 4),
         "Coincident1 uses a part of Polygon1 that the change removes; delete Coincident1 first."},
        {edit("Polygon1").set("sides", 2), "A polygon needs between 3 and 1000 sides."},
        {edit("Line1").set("length", 0), "A line needs two distinct end points."},
        {edit("Line1").set("y2", 3),
         "That change conflicts with the sketch's constraints; edit the dimension that controls it "
         "instead."},
        {edit("Line1").set("length", 20),
         "That change conflicts with the sketch's constraints; edit the dimension that controls it "
         "instead."},
        {edit("Polygon1").set("points", "0,0"), "edit_sketch_entity: nothing to change."},
        {edit("Polygon1").set("points", "0;0"), "'points' must be a string like \"x,y; x,y\"."},
    };
    for (const auto& [record, message] : cases) EXPECT_EQ(error(record), message);
    EXPECT_EQ(snapshot(), before);

    // Moving the polygon drags the coincident line end along; the line stays level.
    ok(edit("Polygon1").set("cy", 3));
    EXPECT_EQ(geometry<SketchPolygon>("Polygon1").center.y, 3);
    const std::vector<SketchEntity>& entities = sketch().entities;
    Point2 corner = pointAt(*resolveReference({"Polygon1", "corner5"}, entities), entities);
    const auto& l = geometry<SketchLine>("Line1");
    EXPECT_NEAR(l.end.x, corner.x, 1e-7);
    EXPECT_NEAR(l.end.y, corner.y, 1e-7);
    EXPECT_NEAR(l.start.y, l.end.y, 1e-7);
}

TEST_F(EntityCommands, DraggingPoints) {
    line(0, 0, 10, 0);
    EXPECT_EQ(ok(drag(" Line1.end ", 10, 5)), "Moved Line1.end.");
    EXPECT_NEAR(geometry<SketchLine>("Line1").end.y, 5, 1e-7);
    EXPECT_NEAR(geometry<SketchLine>("Line1").start.y, 0, 1e-7); // the free start stays

    ok(constraint("fix", "Line1"));
    const std::string before = snapshot();
    EXPECT_EQ(error(drag("Line1.end", 3, 3)), "The constraints don't allow that position.");
    EXPECT_EQ(error(drag("Line1", 3, 3)), "Only points can be dragged.");
    EXPECT_EQ(error(drag("Line4.end", 3, 3)), "The sketch has no entity named 'Line4'.");
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(error(on("move_sketch_point", {{"point", "Line1.end"}, {"x", 0}})),
              "move_sketch_point: give the new position in 'x' and 'y'.");
}

TEST_F(EntityCommands, ProjectedEntitiesCannotBeEditedOrDragged) {
    line(0, 0, 10, 0);
    SketchEntity projected;
    projected.id = "Line2";
    projected.geometry = SketchLine{{0, 5}, {10, 5}};
    projected.source = "Sketch2/Line1";
    sketch().entities.push_back(projected);
    EXPECT_EQ(sketch().dependencies(), std::vector<std::string>{"Sketch2"});

    EXPECT_EQ(error(edit("Line2").set("x1", 1)),
              "Line2 is projected from Sketch2/Line1; it follows that. Delete it to unlink.");
    EXPECT_EQ(error(drag("Line2.end", 3, 3)),
              "Line2 is projected: it follows what it was projected from.");
}

TEST_F(EntityCommands, AConstraintWhoseReferenceIsGoneBlocksSolvesUntilDeleted) {
    line(0, 0, 10, 0);
    line(0, 5, 10, 6);
    SketchConstraint orphan;
    orphan.id = "Horizontal1";
    orphan.type = ConstraintType::Horizontal;
    orphan.refs = {{"Line9", ""}};
    sketch().constraints.push_back(orphan);
    const std::string message = "Horizontal1: The sketch has no entity named 'Line9'.";
    const std::string before = snapshot();
    EXPECT_EQ(error(drag("Line1.end", 10, 2)), message);
    EXPECT_EQ(error(edit("Line1").set("x2", 12)), message);
    EXPECT_EQ(error(constraint("horizontal", "Line2")), message);
    EXPECT_EQ(snapshot(), before);
    ok(on("delete_constraint", {{"constraint", "Horizontal1"}}));
    EXPECT_EQ(ok(constraint("horizontal", "Line2")), "Added Horizontal1 to Sketch1.");
    ok(drag("Line1.end", 10, 2));
}
