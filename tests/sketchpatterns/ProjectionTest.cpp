// Projection onto sketches: faces as their edges with the edges as sources, end-on
// edges, circles as circles and arcs or splines, the refusals, and projected
// geometry following its source (and saying so when the source is gone).
#include "SketchPatternModel.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Vertex.hxx>

#include <map>
#include <set>

namespace cad::testing {

namespace {

class Projection : public SketchPatternModel {
protected:
    // Where a model point lands on the sketch's plane.
    Point2 onPlane(const std::string& sketchId, const gp_Pnt& p) {
        const SketchObject& s = sketch(sketchId);
        const Vec3 y = s.frame().yDirection();
        const double d[3] = {p.X() - s.origin[0], p.Y() - s.origin[1], p.Z() - s.origin[2]};
        return {d[0] * s.xDirection[0] + d[1] * s.xDirection[1] + d[2] * s.xDirection[2],
                d[0] * y[0] + d[1] * y[1] + d[2] * y[2]};
    }
    // The body's edges by source name ("Box1/Edge(...)"), those of one face when given.
    std::map<std::string, TopoDS_Edge> edges(const std::string& bodyId,
                                             const std::string& face = {}) {
        const geometry::NamedShape& named = body(bodyId)->shape;
        TopTools_IndexedMapOfShape map;
        TopExp::MapShapes(face.empty() ? named.shape() : *named.findByName(face), TopAbs_EDGE, map);
        std::map<std::string, TopoDS_Edge> out;
        for (int i = 1; i <= map.Extent(); ++i)
            out[bodyId + "/" + named.nameOf(map(i))] = TopoDS::Edge(map(i));
        return out;
    }
    std::vector<const SketchEntity*> ofKind(const std::string& sketchId, EntityKind kind) {
        std::vector<const SketchEntity*> out;
        for (const SketchEntity& e : sketch(sketchId).entities)
            if (e.kind() == kind) out.push_back(&e);
        return out;
    }
    std::string project(const std::string& sketchId, const std::string& references) {
        return ok("project", {{"sketch", sketchId}, {"references", references}});
    }
    // A 20 x 10 plate of the given height, extruded from a new sketch on XY.
    void plate(double height) {
        const std::string drawn = sketchWithRectangles({{0, 0, 20, 10}});
        ok("extrude", {{"sketch", drawn}, {"distance", height}});
    }
};

} // namespace

TEST_F(Projection, ABoxTopOntoASketchOnItGivesFourLinesFollowingTheEdges) {
    ok("create_box", {{"width", 20}, {"depth", 10}, {"height", 5}});
    ok("create_sketch", {{"on", "Box1/Box1.top"}});
    EXPECT_EQ(project("Sketch1", "Box1/Box1.top"),
              "Projected 4 entities onto Sketch1: Line1, Line2, Line3, Line4.");
    const std::map<std::string, TopoDS_Edge> top = edges("Box1", "Box1.top");
    ASSERT_EQ(top.size(), 4u);
    std::set<std::string> sources;
    for (const SketchEntity& e : sketch("Sketch1").entities) {
        ASSERT_EQ(e.kind(), EntityKind::Line) << e.id;
        ASSERT_EQ(top.count(e.source), 1u) << e.source;
        sources.insert(e.source);
        const TopoDS_Edge& edge = top.at(e.source);
        const Point2 a = onPlane("Sketch1", BRep_Tool::Pnt(TopExp::FirstVertex(edge)));
        const Point2 b = onPlane("Sketch1", BRep_Tool::Pnt(TopExp::LastVertex(edge)));
        const auto& line = std::get<SketchLine>(e.geometry);
        const bool forward = std::hypot(line.start.x - a.x, line.start.y - a.y) < 1e-9;
        expectNear(line.start, forward ? a : b, e.id);
        expectNear(line.end, forward ? b : a, e.id);
        EXPECT_FALSE(e.construction);
    }
    EXPECT_EQ(sources.size(), 4u);
    EXPECT_EQ(error("project", {{"sketch", "Sketch1"}, {"references", "Box1/Box1.top"}}),
              "Nothing new to project (already projected, or seen end-on).");

    // A vertex becomes a point, as construction when asked.
    const std::string corner = "Box1/" + body("Box1")->shape.names(TopAbs_VERTEX).front().second;
    ok("project", {{"sketch", "Sketch1"}, {"references", corner}, {"construction", true}});
    const SketchEntity& point = entity("Sketch1", "Point1");
    EXPECT_TRUE(point.construction);
    EXPECT_EQ(point.source, corner);
    const TopoDS_Shape vertex = *body("Box1")->shape.findByName(corner.substr(5));
    expectNear(std::get<SketchPoint>(point.geometry).position,
               onPlane("Sketch1", BRep_Tool::Pnt(TopoDS::Vertex(vertex))), "vertex");
}

TEST_F(Projection, AnEdgeAlongTheNormalIsSeenEndOn) {
    ok("create_box", {{"width", 20}, {"depth", 10}, {"height", 5}});
    ok("create_sketch", {{"plane", "XY"}});
    std::string vertical;
    for (const auto& [name, edge] : edges("Box1")) {
        BRepAdaptor_Curve curve(edge);
        if (curve.Line().Direction().IsParallel(gp_Dir(0, 0, 1), 1e-9)) vertical = name;
    }
    ASSERT_FALSE(vertical.empty());
    EXPECT_EQ(error("project", {{"sketch", "Sketch1"}, {"references", vertical}}),
              "The edge is seen end-on: it projects to a point.");
    EXPECT_TRUE(sketch("Sketch1").entities.empty());
    // Among a face's edges the end-on ones are only left out.
    ok("create_sketch", {{"plane", "XZ"}});
    EXPECT_EQ(project("Sketch2", "Box1/Box1.top"),
              "Projected 2 entities onto Sketch2: Line1, Line2.");
}

TEST_F(Projection, ProjectedLinesFollowWhenTheBodyChanges) {
    plate(5);
    ok("create_sketch", {{"plane", "XZ"}}); // Sketch2: sketch y is model z
    project("Sketch2", "Body1/Extrude1.end");
    auto expectHeight = [&](double z) {
        std::vector<const SketchEntity*> lines = ofKind("Sketch2", EntityKind::Line);
        ASSERT_EQ(lines.size(), 3u);
        for (std::size_t i = 0; i < 2; ++i) {
            const auto& l = std::get<SketchLine>(lines[i]->geometry);
            EXPECT_NEAR(l.start.y, z, 1e-9);
            EXPECT_NEAR(l.end.y, z, 1e-9);
            EXPECT_NEAR(std::fabs(l.end.x - l.start.x), 20, 1e-9);
        }
        // The drawn line is held to the projection's right end and follows it (as
        // closely as the solver settles).
        expectNear(std::get<SketchLine>(lines[2]->geometry).start, {20, z}, "held end", 1e-6);
        EXPECT_EQ(sketch("Sketch2").error(), "");
    };
    const auto& first = std::get<SketchLine>(entity("Sketch2", "Line1").geometry);
    const std::string rightEnd = first.start.x > first.end.x ? "Line1.start" : "Line1.end";
    addLine("Sketch2", 20, 5, 30, 0);
    ok("add_constraint",
       {{"sketch", "Sketch2"}, {"type", "coincident"}, {"a", "Line3.start"}, {"b", rightEnd}});
    expectHeight(5);

    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 12}});
    expectHeight(12);
    ASSERT_TRUE(stack.undo());
    expectHeight(5);
    // The solver never moves projected geometry.
    EXPECT_EQ(error("move_sketch_point",
                    {{"sketch", "Sketch2"}, {"point", "Line1.start"}, {"x", 3}, {"y", 3}}),
              "Line1 is projected: it follows what it was projected from.");
}

TEST_F(Projection, ASourceThatIsGoneIsReported) {
    ok("create_sketch", {{"plane", "XY"}});
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 3}, {"cy", 4}, {"radius", 2}});
    ok("create_sketch", {{"plane", "XY"}});
    project("Sketch2", "Sketch1/Circle1");
    EXPECT_EQ(entity("Sketch2", "Circle1").source, "Sketch1/Circle1");
    ok("edit_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Circle1"}, {"cx", 6}});
    expectNear(std::get<SketchCircle>(entity("Sketch2", "Circle1").geometry).center, {6, 4},
               "followed");

    ok("delete_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Circle1"}});
    EXPECT_EQ(sketch("Sketch2").error(),
              "Circle1's source 'Sketch1/Circle1' is gone; it stays where it was (delete it to "
              "unlink).");
    expectNear(std::get<SketchCircle>(entity("Sketch2", "Circle1").geometry).center, {6, 4},
               "stayed");
    const std::string gone = sketch("Sketch2").error();
    // Deleting the projection unlinks it, and the report goes with it.
    ok("delete_sketch_entity", {{"sketch", "Sketch2"}, {"entity", "Circle1"}});
    EXPECT_EQ(sketch("Sketch2").error(), "");
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(sketch("Sketch2").error(), gone);
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(sketch("Sketch2").error(), "");

    // A body edge that a deleted feature made.
    plate(5); // Sketch3 and Body1
    ok("create_sketch", {{"plane", "XY"}});
    project("Sketch4", "Body1/Extrude1.end");
    const std::string source = entity("Sketch4", "Line1").source;
    ok("delete_object", {{"object", "Extrude1"}});
    EXPECT_NE(sketch("Sketch4").error().find("Line1's source '" + source + "' is gone"),
              std::string::npos)
        << sketch("Sketch4").error();
}

TEST_F(Projection, WhatCantBeProjectedIsRefusedAndChangesNothing) {
    plate(5);
    ok("create_sketch", {{"plane", "XZ"}});
    const std::string pick = ": pick edges, faces, points or sketch curves to project.";
    struct Case {
        Args arguments;
        std::string expected;
    };
    const Case cases[] = {
        {{{"sketch", "Sketch1"}, {"references", "Body1/Extrude1.end"}},
         "Body1 is built from Sketch1; projecting it would make the sketch depend on itself."},
        {{{"sketch", "Sketch1"}, {"references", "Sketch1/Rectangle1"}},
         "A sketch can't project its own geometry."},
        {{{"sketch", "Sketch2"}, {"references", "XY"}}, "'XY'" + pick},
        {{{"sketch", "Sketch2"}, {"references", "Body1"}}, "'Body1'" + pick},
        {{{"sketch", "Sketch2"}, {"references", "Sketch1/XAxis"}}, "'Sketch1/XAxis'" + pick},
        {{{"sketch", "Sketch2"}, {"references", "Body1/Extrude1.middle"}},
         "'Body1/Extrude1.middle' can't be projected."},
        {{{"sketch", "Sketch2"}, {"references", "Nowhere/Line1"}},
         "'Nowhere/Line1' can't be projected."},
        {{{"sketch", "Sketch2"}}, "project: give the references to project, separated by ';'."},
        {{{"sketch", "Sketch2"}, {"references", " ; "}},
         "project: give the references to project, separated by ';'."},
        {{{"sketch", "Sketch2"}, {"references", "Sketch1/Rectangle1"}, {"construction", "yes"}},
         "project: 'construction' must be true or false."},
        {{{"references", "Sketch1/Rectangle1"}}, "project: missing 'sketch'."},
    };
    const std::string before = snapshot("Sketch1") + snapshot("Sketch2");
    for (const Case& c : cases) {
        EXPECT_EQ(error("project", c.arguments), c.expected);
        EXPECT_EQ(snapshot("Sketch1") + snapshot("Sketch2"), before) << c.expected;
    }
}

TEST_F(Projection, CirclesFacingThePlaneStayRoundOthersBecomeCurves) {
    // A slot's top face: two lines and two half circles.
    ok("create_sketch", {{"plane", "XY"}});
    ok("add_slot",
       {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 10}, {"y2", 0}, {"width", 4}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 3}});
    ok("create_sketch", {{"plane", "XY"}});
    project("Sketch2", "Body1/Extrude1.end");
    std::vector<const SketchEntity*> arcs = ofKind("Sketch2", EntityKind::Arc);
    ASSERT_EQ(arcs.size(), 2u);
    ASSERT_EQ(ofKind("Sketch2", EntityKind::Line).size(), 2u);
    std::set<double> centres;
    for (const SketchEntity* e : arcs) {
        const auto& arc = std::get<SketchArc>(e->geometry);
        EXPECT_NEAR(arc.radius, 2, 1e-9);
        EXPECT_NEAR(std::fabs(arc.sweepAngle), 180, 1e-9);
        EXPECT_NEAR(arc.center.y, 0, 1e-9);
        centres.insert(std::round(arc.center.x));
        // Each end of the arc meets an end of one of the lines.
        for (double a : {arc.startAngle, arc.startAngle + arc.sweepAngle}) {
            const double t = a * std::numbers::pi / 180;
            const Point2 end{arc.center.x + 2 * std::cos(t), arc.center.y + 2 * std::sin(t)};
            bool meets = false;
            for (const SketchEntity* l : ofKind("Sketch2", EntityKind::Line)) {
                const auto& line = std::get<SketchLine>(l->geometry);
                for (Point2 p : {line.start, line.end})
                    meets = meets || std::hypot(p.x - end.x, p.y - end.y) < 1e-7;
            }
            EXPECT_TRUE(meets) << e->id;
        }
    }
    EXPECT_EQ(centres, (std::set<double>{0, 10}));

    // A cylinder's top circle: round seen square on, a line seen edge-on, and a
    // closed spline on the ellipse it makes on a tilted plane.
    ok("create_sketch", {{"plane", "XY"}}); // Sketch3
    ok("add_circle", {{"sketch", "Sketch3"}, {"cx", 0}, {"cy", 0}, {"radius", 5}});
    ok("extrude", {{"sketch", "Sketch3"}, {"distance", 10}}); // Body2
    ok("create_sketch", {{"plane", "XY"}});                   // Sketch4
    project("Sketch4", "Body2/Extrude2.end");
    const auto& round = std::get<SketchCircle>(entity("Sketch4", "Circle1").geometry);
    expectNear(round.center, {0, 0}, "centre");
    EXPECT_NEAR(round.radius, 5, 1e-9);

    ok("create_sketch", {{"plane", "XZ"}}); // Sketch5
    project("Sketch5", "Body2/Extrude2.end");
    const auto& edgeOn = std::get<SketchLine>(entity("Sketch5", "Line1").geometry);
    EXPECT_NEAR(std::fabs(edgeOn.end.x - edgeOn.start.x), 10, 1e-6);
    EXPECT_NEAR(edgeOn.start.y, 10, 1e-9);

    ok("create_sketch", {{"origin_x", 0.0},
                         {"origin_y", 0.0},
                         {"origin_z", 0.0},
                         {"normal_x", 0.0},
                         {"normal_y", 1.0},
                         {"normal_z", 1.0},
                         {"x_dir_x", 1.0},
                         {"x_dir_y", 0.0},
                         {"x_dir_z", 0.0}}); // Sketch6
    project("Sketch6", "Body2/Extrude2.end");
    const auto& ellipse = std::get<SketchSpline>(entity("Sketch6", "Spline1").geometry);
    EXPECT_TRUE(ellipse.closed);
    EXPECT_GE(ellipse.points.size(), 8u);
    for (const Point2& p : ellipse.points) {
        // Sketch y is (0, 1, -1)/sqrt(2): a point (x, y, 10) of the circle lands at
        // (x, (y - 10)/sqrt(2)).
        const double y = p.y * std::sqrt(2.0) + 10;
        EXPECT_NEAR(p.x * p.x + y * y, 25, 1e-6);
    }
}

} // namespace cad::testing
