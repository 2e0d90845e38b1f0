// place_footprint: copies land where asked and keep their dimensions, the anchor
// carries the copy, rectangles turn only in quarter turns, free angles drop what
// can't follow, and undo puts the sketch back exactly.
#include "FootprintTestSupport.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <numbers>

namespace cad::test {

namespace {

class PlaceFootprintTest : public FootprintSession {
protected:
    // Sketch1: two 3 mm holes 10 either side of the origin, tied to it completely.
    void drawSwitch() {
        newSketch();
        ok(on("add_circle", {{"cx", -10}, {"cy", 0}, {"radius", 1.5}}));
        ok(on("add_circle", {{"cx", 10}, {"cy", 0}, {"radius", 1.5}}));
        ok(dimension("diameter", "Circle1", "", 3));
        ok(constraint("equal", "Circle1", "Circle2"));
        ok(dimension("horizontal_distance", "Circle1.center", "Origin", 10));
        ok(dimension("horizontal_distance", "Origin", "Circle2.center", 10));
        ok(constraint("horizontal", "Circle1.center", "Origin"));
        ok(constraint("horizontal", "Circle2.center", "Origin"));
    }
    // A second sketch to place into.
    void newTarget() { ok(CommandRecord("create_sketch").set("plane", "XZ")); }
    static CommandRecord into2(CommandRecord record) { return record.set("sketch", "Sketch2"); }

    Point2 centre(const std::string& id, const std::string& sketchId = "Sketch1") {
        return std::get<SketchCircle>(entity(id, sketchId).geometry).center;
    }
    static void expectAt(Point2 actual, Point2 expected, const char* what) {
        EXPECT_NEAR(actual.x, expected.x, 1e-6) << what;
        EXPECT_NEAR(actual.y, expected.y, 1e-6) << what;
    }
};

} // namespace

TEST_F(PlaceFootprintTest, ACopyInAnotherDocumentFollowsItsAnchor) {
    drawSwitch();
    ASSERT_EQ(saveSketch("Switch"), "Saved the footprint 'Switch'.");

    Document fresh;
    CommandStack freshStack{fresh, registry};
    ASSERT_TRUE(freshStack.execute(CommandRecord("create_sketch").set("plane", "XY")).ok);
    CommandResult placed = freshStack.execute(place("Switch", {{"x", 20}, {"y", 10}}));
    ASSERT_TRUE(placed.ok) << placed.message;
    EXPECT_EQ(placed.message, "Placed 'Switch' in Sketch1; its reference point is Point1.");

    auto& copy = dynamic_cast<SketchObject&>(*fresh.find("Sketch1"));
    const SketchEntity* anchor = copy.findEntity("Point1");
    ASSERT_NE(anchor, nullptr);
    EXPECT_TRUE(anchor->construction);
    EXPECT_EQ(std::get<SketchPoint>(anchor->geometry).position, (Point2{20, 10}));
    EXPECT_EQ(copy.entities.size(), 3u);
    EXPECT_EQ(copy.constraints.size(), 6u);
    auto circle = [&](const char* id) {
        return std::get<SketchCircle>(copy.findEntity(id)->geometry);
    };
    expectAt(circle("Circle1").center, {10, 10}, "left hole");
    expectAt(circle("Circle2").center, {30, 10}, "right hole");

    // Dimensioning the anchor moves the whole copy; its own dimensions still hold.
    CommandRecord toAnchor("add_constraint");
    toAnchor.set("sketch", "Sketch1").set("type", "horizontal_distance").set("a", "Origin");
    toAnchor.set("b", "Point1").set("value", 50.0);
    ASSERT_TRUE(freshStack.execute(toAnchor).ok);
    expectAt(circle("Circle1").center, {40, 10}, "left hole after the anchor moved");
    expectAt(circle("Circle2").center, {60, 10}, "right hole after the anchor moved");
    CommandRecord wider("edit_constraint");
    wider.set("sketch", "Sketch1").set("constraint", "HorizontalDistance2").set("value", 15.0);
    ASSERT_TRUE(freshStack.execute(wider).ok);
    expectAt(circle("Circle2").center, {65, 10}, "right hole after its dimension changed");
    EXPECT_NEAR(circle("Circle2").radius, 1.5, 1e-9);
}

TEST_F(PlaceFootprintTest, RectanglesTurnOnlyInQuarterTurnsAndSwapTheirSides) {
    newSketch();
    ok(on("add_rectangle", {{"x1", -5}, {"y1", -2}, {"x2", 7}, {"y2", 2}}));
    ok(dimension("length", "Rectangle1.top", "", 12));
    ok(dimension("length", "Rectangle1.right", "", 4));
    ok(dimension("horizontal_distance", "Rectangle1.bottom_left", "Origin", 5));
    ok(dimension("vertical_distance", "Rectangle1.bottom_left", "Origin", 2));
    ASSERT_EQ(saveSketch("Plate"), "Saved the footprint 'Plate'.");
    newTarget();

    const std::string before = snapshot("Sketch2");
    EXPECT_EQ(error(into2(place("Plate", {{"angle", 45}}))),
              "'Plate' has a rectangle, which stays square to the sketch: turn it in 90° steps (or "
              "draw the outline with lines to turn it freely).");
    EXPECT_EQ(snapshot("Sketch2"), before);

    ok(into2(place("Plate", {{"x", 1}, {"y", 1}, {"angle", 90}})));
    const auto& turned = std::get<SketchRectangle>(entity("Rectangle1", "Sketch2").geometry);
    // (-5,-2)..(7,2) a quarter turn round: (-2,-5)..(2,7), moved by (1, 1).
    expectAt(turned.corner, {-1, -4}, "corner");
    EXPECT_NEAR(turned.width, 4, 1e-6);
    EXPECT_NEAR(turned.height, 12, 1e-6);
    // The top's length now names the left side, and the horizontal offset is vertical.
    const auto& copied = sketch("Sketch2").constraints;
    ASSERT_EQ(copied.size(), 4u);
    EXPECT_EQ(copied[0].refs[0].text(), "Rectangle1.left");
    EXPECT_EQ(copied[1].refs[0].text(), "Rectangle1.top");
    EXPECT_EQ(copied[2].type, ConstraintType::VerticalDistance);
    EXPECT_EQ(copied[2].refs[0].text(), "Rectangle1.bottom_right");
    EXPECT_EQ(copied[2].refs[1].text(), "Point1");
    EXPECT_EQ(copied[3].type, ConstraintType::HorizontalDistance);
}

TEST_F(PlaceFootprintTest, FreeAnglesTurnTheAxesAndLeaveOutWhatCantFollow) {
    newSketch();
    line(0, 0, 12, 0);
    line(0, 0, 0, 5);
    ok(constraint("coincident", "Line1.start", "Origin"));
    ok(constraint("parallel", "Line1", "XAxis"));
    ok(dimension("length", "Line1", "", 12));
    ok(constraint("vertical", "Line2"));
    ASSERT_EQ(saveSketch("Bracket"), "Saved the footprint 'Bracket'.");
    newTarget();

    EXPECT_EQ(ok(into2(place("Bracket", {{"x", 5}, {"y", 5}, {"angle", 30}}))),
              "Placed 'Bracket' in Sketch2; its reference point is Point1. 1 horizontal/vertical "
              "constraint(s) couldn't follow the angle and were left out.");
    const double c = std::cos(std::numbers::pi / 6), s = std::sin(std::numbers::pi / 6);
    const auto& first = std::get<SketchLine>(entity("Line1", "Sketch2").geometry);
    expectAt(first.start, {5, 5}, "the turned line starts at the anchor");
    expectAt(first.end, {5 + 12 * c, 5 + 12 * s}, "and runs at 30 degrees");
    // The x axis became a construction line through the anchor, 12 to either side.
    const SketchEntity& axis = entity("Line3", "Sketch2");
    EXPECT_TRUE(axis.construction);
    const auto& a = std::get<SketchLine>(axis.geometry);
    expectAt(a.start, {5 - 12 * c, 5 - 12 * s}, "axis start");
    expectAt(a.end, {5 + 12 * c, 5 + 12 * s}, "axis end");
    for (const SketchConstraint& k : sketch("Sketch2").constraints)
        EXPECT_NE(k.type, ConstraintType::Vertical) << k.id;

    // A quarter turn keeps the vertical one, turned horizontal.
    ok(into2(place("Bracket", {{"x", 40}, {"angle", 90}})));
    const auto& upright = std::get<SketchLine>(entity("Line5", "Sketch2").geometry);
    expectAt(upright.end, {35, 0}, "the second line turned a quarter");
    EXPECT_EQ(sketch("Sketch2").constraints.back().type, ConstraintType::Horizontal);
}

TEST_F(PlaceFootprintTest, UndoPutsTheSketchBackAndRedoMakesTheSameCopy) {
    drawSwitch();
    ASSERT_EQ(saveSketch("Switch"), "Saved the footprint 'Switch'.");
    const std::string before = snapshot();
    const std::string placed = ok(place("Switch", {{"x", "1 in"}, {"y", -3}, {"angle", 180}}));
    EXPECT_EQ(placed, "Placed 'Switch' in Sketch1; its reference point is Point1.");
    expectAt(centre("Circle3"), {35.4, -3}, "left hole turned round to the right");
    const std::string after = snapshot();
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(snapshot(), before);
    // The library changing in between does not change what redo makes.
    ASSERT_TRUE(library.remove("Switch"));
    CommandResult again = stack.redo();
    ASSERT_TRUE(again.ok) << again.message;
    EXPECT_EQ(snapshot(), after);
}

TEST_F(PlaceFootprintTest, ArgumentsAndLibraryProblemsAreRefusedWithoutAChange) {
    drawSwitch();
    const std::string before = snapshot();
    EXPECT_EQ(error(on("place_footprint")),
              "place_footprint: give the sketch and the footprint's name.");
    EXPECT_EQ(error(place("Switch", {{"angle", "steep"}})),
              "place_footprint: 'angle' must be a number of degrees.");
    EXPECT_EQ(error(place("Nope")), "There's no footprint named 'Nope'.");
    ASSERT_TRUE(library.save(Footprint{"Empty", "", {}, {}}, false).ok() == false);
    std::filesystem::create_directories(library.folder());
    std::ofstream(library.pathFor("Empty"))
        << R"({"format": "korvel-footprint", "version": 1, "name": "Empty"})";
    EXPECT_EQ(error(place("Empty")), "The footprint 'Empty' is empty.");
    EXPECT_EQ(snapshot(), before);
}

} // namespace cad::test
