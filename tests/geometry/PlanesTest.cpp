// Reference planes through add_plane and edit_plane: each kind places the plane its
// definition says, bad definitions are refused with their sentences, and planes
// follow the faces they are defined from, carrying sketches and what is built on them.
#include "GeometryTestModel.h"

#include "geometry/planes/PlaneObject.h"
#include "sketch/SketchObject.h"

#include <gp_Lin.hxx>

#include <cmath>

namespace cad::testing {

namespace {

class Planes : public GeometryModel {
protected:
    const PlaneObject& plane(const std::string& id) {
        auto* found = document.findAs<PlaneObject>(id);
        EXPECT_NE(found, nullptr) << id;
        static const PlaneObject none;
        return found ? *found : none;
    }
    // The plane's origin and normal, each to 1e-9.
    void expectPlane(const std::string& id, gp_Pnt origin, gp_Dir normal) {
        const gp_Ax3& ax = plane(id).placement;
        EXPECT_LT(ax.Location().Distance(origin), 1e-9)
            << id << " at " << ax.Location().X() << ", " << ax.Location().Y() << ", "
            << ax.Location().Z();
        EXPECT_TRUE(ax.Direction().IsEqual(normal, 1e-9))
            << id << " facing " << ax.Direction().X() << ", " << ax.Direction().Y() << ", "
            << ax.Direction().Z();
        EXPECT_TRUE(ax.Direct()) << id;
    }
    std::string addPlane(const char* kind, const char* references, Args more = {}) {
        CommandRecord record("add_plane");
        record.set("kind", kind).set("references", references);
        for (const auto& [key, arg] : more) record.set(key, arg.value);
        CommandResult result = stack.execute(record);
        EXPECT_TRUE(result.ok) << kind << " " << references << ": " << result.message;
        return result.message;
    }
    void point(const std::string& sketch, double x, double y) {
        ok("add_point", {{"sketch", sketch}, {"x", x}, {"y", y}});
    }
};

} // namespace

TEST_F(Planes, EachKindPlacesThePlaneItsDefinitionSays) {
    ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    ok("create_sketch", {{"plane", "XY"}}); // Sketch1: points, a line and a circle
    point("Sketch1", 0, 0);
    point("Sketch1", 100, 0);
    point("Sketch1", 0, 100);
    point("Sketch1", 7, 4);
    point("Sketch1", 100, 50);
    addLine("Sketch1", 0, 0, 10, 0);
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 50}, {"cy", 50}, {"radius", 5}});
    ok("create_sketch", {{"plane", "XY"}}); // Sketch2: the circle alone, extruded to a cylinder
    ok("add_circle", {{"sketch", "Sketch2"}, {"cx", 50}, {"cy", 50}, {"radius", 5}});
    ok("extrude", {{"sketch", "Sketch2"}, {"distance", 10}});

    EXPECT_EQ(addPlane("offset", "XY", {{"distance", -5}}), "Created Plane1.");
    expectPlane("Plane1", {0, 0, -5}, {0, 0, 1});
    EXPECT_EQ(plane("Plane1").halfWidth, 10); // an origin plane carries no shape to fit
    addPlane("offset", "XY", {{"distance", -5}, {"flip", true}, {"name", "Under"}});
    expectPlane("Plane2", {0, 0, -5}, {0, 0, -1});
    EXPECT_EQ(plane("Plane2").label, "Under");

    // A hinge on X, measured from XY: 90 degrees turns +Z onto -Y.
    addPlane("angle", "X", {{"angle", 90}});
    expectPlane("Plane3", {0, 0, 0}, {0, -1, 0});
    addPlane("angle", "Sketch1/Line1; XZ", {{"angle", 0}});
    expectPlane("Plane4", {0, 0, 0}, {0, -1, 0});

    addPlane("midplane", "Box1/Box1.top; Box1/Box1.bottom");
    expectPlane(
        "Plane5",
        {plane("Plane5").placement.Location().X(), plane("Plane5").placement.Location().Y(), 15},
        {0, 0, 1});
    // Faces meeting square at an outside edge: the bisector through the solid.
    addPlane("midplane", "Box1/Box1.top; Box1/Box1.right");
    const gp_Pnt onEdge = plane("Plane6").placement.Location();
    EXPECT_NEAR(onEdge.X(), 10, 1e-9);
    EXPECT_NEAR(onEdge.Z(), 30, 1e-9);
    EXPECT_TRUE(plane("Plane6").placement.Direction().IsEqual(gp_Dir(-1, 0, 1), 1e-9));

    addPlane("three_points", "Sketch1/Point1; Sketch1/Point2; Sketch1/Point3");
    expectPlane("Plane7", {100.0 / 3, 100.0 / 3, 0}, {0, 0, 1});
    EXPECT_NEAR(plane("Plane7").halfWidth, 0.7 * std::sqrt(20000.0), 1e-9);

    addPlane("through", "X; Y");
    expectPlane("Plane8", {0, 0, 0}, {0, 0, 1});
    addPlane("through", "Z; Sketch1/Point4");
    expectPlane("Plane9", {0, 0, 0}, gp_Dir(-4, 7, 0));

    // Touching the cylinder at the point's side, and at an angle halfway up.
    addPlane("tangent", "Body1/Extrude1.side.Circle1; Sketch1/Point5");
    expectPlane("Plane10", {55, 50, 0}, {1, 0, 0});
    addPlane("tangent", "Body1/Extrude1.side.Circle1", {{"angle", 90}});
    const gp_Ax3& touching = plane("Plane11").placement;
    EXPECT_NEAR(touching.Location().Z(), 5, 1e-9);
    EXPECT_NEAR(gp_Lin(gp_Ax1(gp_Pnt(50, 50, 0), gp_Dir(0, 0, 1))).Distance(touching.Location()), 5,
                1e-9);
    EXPECT_TRUE(touching.Direction().IsNormal(gp_Dir(0, 0, 1), 1e-9));

    addPlane("normal", "Sketch1/Line1", {{"position", 0.3}});
    expectPlane("Plane12", {3, 0, 0}, {1, 0, 0});
    addPlane("normal", "Sketch1/Line1; Sketch1/Point4");
    expectPlane("Plane13", {7, 0, 0}, {1, 0, 0});
    addPlane("normal", "Sketch1/Circle1", {{"position", 0.25}, {"flip", true}});
    const gp_Ax3& onCircle = plane("Plane14").placement;
    EXPECT_NEAR(onCircle.Location().Distance(gp_Pnt(50, 50, 0)), 5, 1e-9);
    EXPECT_TRUE(onCircle.Direction().IsNormal(
        gp_Dir(gp_Vec(gp_Pnt(50, 50, 0), onCircle.Location())), 1e-9));

    EXPECT_EQ(
        run("add_plane", {{"kind", "tangent"},
                          {"references", "Body1/Extrude1.side.Circle1; Sketch1/Circle1.center"}})
            .message,
        "The point is on the axis: no tangent plane there.");
    EXPECT_EQ(
        run("add_plane", {{"kind", "normal"}, {"references", "Sketch1/Line1; Sketch1/Point2"}})
            .message,
        "The point doesn't project onto the curve.");
}

TEST_F(Planes, BadDefinitionsAreRefusedAndChangeNothing) {
    ok("create_box", {{"width", 1000}, {"depth", 1000}, {"height", 1000}});
    ok("create_sketch", {{"plane", "XY"}});
    point("Sketch1", 0, 0);
    point("Sketch1", 1, 1);
    point("Sketch1", 2, 2);
    addPlane("offset", "Box1/Box1.top");
    EXPECT_EQ(plane("Plane1").halfWidth, 500); // 0.6 x 1414 mm, at the limit

    struct Case {
        const char* command;
        Args args;
        const char* message;
    };
    const Case cases[] = {
        {"add_plane",
         {},
         "add_plane: give the references it's defined from, e.g. \"XY\" or "
         "\"Body1/Extrude1.end\"."},
        {"add_plane",
         {{"references", " ; "}},
         "add_plane: give the references it's defined from, e.g. \"XY\" or "
         "\"Body1/Extrude1.end\"."},
        {"add_plane",
         {{"references", "XY"}, {"kind", "sideways"}},
         "add_plane: 'kind' must be one of offset, angle, midplane, three_points, through, "
         "tangent, normal."},
        {"add_plane",
         {{"references", "XY"}, {"distance", "far"}},
         "add_plane: 'distance' must be a number: far"},
        {"add_plane",
         {{"references", "XY"}, {"size", 0}},
         "add_plane: 'size' must be greater than zero."},
        {"add_plane",
         {{"references", "XY"}, {"flip", "yes"}},
         "add_plane: 'flip' must be true or false."},
        {"add_plane",
         {{"references", "XY"}, {"name", "box1"}},
         "An object named 'box1' already exists."},
        {"add_plane", {{"references", "X"}}, "'X' isn't a plane or flat face."},
        {"add_plane", {{"references", "XY; XZ"}}, "add_plane: offset takes at most 1 reference."},
        {"add_plane",
         {{"references", "Box1/Box1.top"}, {"kind", "midplane"}},
         "add_plane: midway needs two planes or flat faces."},
        {"add_plane",
         {{"references", "Sketch1/Point1; Sketch1/Point2; Sketch1/Point3"},
          {"kind", "three_points"}},
         "The three points are in a line."},
        {"add_plane",
         {{"references", "XY; Origin; X"}, {"kind", "three_points"}},
         "'XY' isn't a point."},
        {"add_plane",
         {{"references", "Z; XY"}, {"kind", "angle"}},
         "The line is perpendicular to the plane it's measured from."},
        {"add_plane",
         {{"references", "Y; Box1/Edge(Box1.front, Box1.top)"}, {"kind", "through"}},
         "The two lines don't lie in one plane."},
        {"add_plane",
         {{"references", "X; Sketch1/Point1"}, {"kind", "through"}},
         "The point is on the line: that doesn't fix a plane."},
        {"add_plane",
         {{"references", "Box1/Box1.top"}, {"kind", "tangent"}},
         "'Box1/Box1.top' isn't a cylindrical or spherical face."},
        {"add_plane",
         {{"references", "Box1/Box1.top"}, {"kind", "normal"}},
         "'Box1/Box1.top' isn't a curve."},
        {"add_plane",
         {{"references", "Box1/Edge(Box1.front, Box1.top); Sketch1/Point1"},
          {"kind", "normal"},
          {"position", 2}},
         "add_plane: 'position' must be from 0 to 1."},
        {"add_plane", {{"references", "Gear/Box1.top"}}, "No object named 'Gear' exists."},
        {"edit_plane", {{"distance", 1}}, "edit_plane: missing 'plane'."},
        {"edit_plane",
         {{"plane", "Plane9"}, {"distance", 1}},
         "No reference plane named 'Plane9'."},
        {"edit_plane", {{"plane", "Plane1"}}, "edit_plane: nothing to change."},
        {"edit_plane",
         {{"plane", "Plane1"}, {"references", "Plane1"}},
         "Plane1 can't be defined from 'Plane1', which follows it."},
        {"edit_plane",
         {{"plane", "Plane1"}, {"kind", "three_points"}},
         "edit_plane: through three points needs three points."},
    };
    const gp_Pnt before = plane("Plane1").placement.Location();
    for (const Case& c : cases) {
        const std::size_t objects = document.objects().size();
        CommandResult refused = run(c.command, c.args);
        EXPECT_FALSE(refused.ok) << c.message;
        EXPECT_EQ(refused.message, c.message);
        EXPECT_EQ(document.objects().size(), objects) << c.message;
    }
    EXPECT_EQ(plane("Plane1").definition.kind, "offset");
    EXPECT_EQ(plane("Plane1").definition.references, std::vector<std::string>{"Box1/Box1.top"});
    EXPECT_TRUE(plane("Plane1").placement.Location().IsEqual(before, 0));
}

TEST_F(Planes, APlaneFollowsItsFaceAndCarriesASketchAndItsBody) {
    sketchWithRectangles({{0, 0, 10, 10}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
    ok("rename_object", {{"object", "Body1"}, {"name", "Base"}});
    addPlane("offset", "Base/Extrude1.end", {{"distance", 3}});
    EXPECT_EQ(plane("Plane1").definition.references,
              std::vector<std::string>{"Body1/Extrude1.end"});
    expectPlane("Plane1", {0, 0, 8}, {0, 0, 1});

    ok("create_sketch", {{"on", "Plane1"}});
    ok("add_rectangle", {{"sketch", "Sketch2"}, {"x1", 2}, {"y1", 2}, {"x2", 4}, {"y2", 4}});
    ok("extrude", {{"sketch", "Sketch2"}, {"distance", 2}});
    auto zRange = [&](const char* id) {
        auto b = bounds(body(id)->shape.shape());
        return std::pair{b[2], b[5]};
    };
    EXPECT_EQ(zRange("Body2"), (std::pair{8.0, 10.0}));

    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 10}});
    expectPlane("Plane1", {0, 0, 13}, {0, 0, 1});
    EXPECT_NEAR(document.findAs<SketchObject>("Sketch2")->origin[2], 13, 1e-9);
    EXPECT_NEAR(zRange("Body2").first, 13, 1e-9);

    EXPECT_EQ(ok("edit_plane", {{"plane", "Plane1"}, {"distance", -1}, {"flip", true}}),
              "Changed Plane1.");
    expectPlane("Plane1", {0, 0, 9}, {0, 0, -1});
    EXPECT_NEAR(zRange("Body2").first, 7, 1e-9); // the sketch turned over extrudes down
    EXPECT_NEAR(zRange("Body2").second, 9, 1e-9);
    stack.undo();
    expectPlane("Plane1", {0, 0, 13}, {0, 0, 1});
    EXPECT_NEAR(zRange("Body2").first, 13, 1e-9);
    stack.redo();
    expectPlane("Plane1", {0, 0, 9}, {0, 0, -1});

    // A join that covers the whole top takes Extrude1.end away: the plane says so
    // and stays where it was, and so does the sketch on it.
    ok("extrude", {{"sketch", "Body1/Extrude1.end"}, {"distance", 1}, {"operation", "join"}});
    EXPECT_EQ(plane("Plane1").error,
              "'Body1/Extrude1.end': Body1 has no element with that name now.");
    expectPlane("Plane1", {0, 0, 9}, {0, 0, -1});
    EXPECT_NEAR(document.findAs<SketchObject>("Sketch2")->origin[2], 9, 1e-9);
    stack.undo();
    EXPECT_EQ(plane("Plane1").error, "");

    // Undoing add_plane takes it out; redo brings back the same plane.
    const std::size_t objects = document.objects().size();
    addPlane("offset", "XZ");
    stack.undo();
    EXPECT_EQ(document.objects().size(), objects);
    stack.redo();
    expectPlane("Plane2", {0, 0, 0}, {0, -1, 0});
}

// The everyday case: a boss sketched on the body's own top grows with the body.
TEST_F(Planes, ABossOnAPlaneFromItsOwnBodyFollowsTheBody) {
    sketchWithRectangles({{0, 0, 10, 10}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
    ok("add_plane", {{"references", "Body1/Extrude1.end"}, {"distance", 0}});
    ok("create_sketch", {{"on", "Plane1"}});
    ok("add_rectangle", {{"sketch", "Sketch2"}, {"x1", 2}, {"y1", 2}, {"x2", 4}, {"y2", 4}});
    ok("extrude",
       {{"sketch", "Sketch2"}, {"distance", 2}, {"operation", "join"}, {"target", "Body1"}});
    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 10}});
    EXPECT_NEAR(bounds(body("Body1")->shape.shape())[5], 12, 1e-9);
    EXPECT_NEAR(volumeOf("Body1"), 1008, 1e-6);
}

} // namespace cad::testing
