// Reference texts: origin names, objects, body elements by final name and by index,
// sketch curves, points and regions, and the messages for what doesn't resolve.
#include "GeometryTestModel.h"

#include "geometry/References.h"
#include "sketch/SketchObject.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>

namespace cad::testing {

using geometry::objectPart;
using geometry::ResolvedReference;
using geometry::resolveElement;
using geometry::resolveReference;
using geometry::splitReferenceList;

namespace {

class References : public GeometryModel {};

bool sameDirection(const gp_Dir& a, double x, double y, double z) {
    return a.IsEqual(gp_Dir(x, y, z), 1e-12);
}

} // namespace

TEST(ReferenceText, ListsSplitAndObjectPartsAreTrimmed) {
    EXPECT_EQ(splitReferenceList(" Sketch1 ; ;Body1/Extrude1.end;  "),
              (std::vector<std::string>{"Sketch1", "Body1/Extrude1.end"}));
    EXPECT_TRUE(splitReferenceList(" ; ").empty());
    EXPECT_EQ(objectPart(" Body1 /Edge(A, B)"), "Body1");
    EXPECT_EQ(objectPart("Sketch2"), "Sketch2");
    EXPECT_EQ(objectPart("Component1:1/Body1/Extrude1.end"), "Component1:1");
    for (const char* origin : {"XY", "xzplane", "Z", "yAxis", "origin", " YZ "})
        EXPECT_EQ(objectPart(origin), "") << origin;
}

TEST_F(References, OriginNamesInAnyCase) {
    struct Case {
        const char* text;
        std::array<double, 3> normal;
    };
    for (const Case& c : {Case{"xy", {0, 0, 1}}, Case{"XYPlane", {0, 0, 1}}, Case{"XZ", {0, -1, 0}},
                          Case{"yzPLANE", {1, 0, 0}}}) {
        Result<ResolvedReference> r = resolveReference(document, c.text);
        ASSERT_TRUE(r.ok()) << c.text;
        ASSERT_TRUE(r->plane);
        EXPECT_TRUE(sameDirection(r->plane->Direction(), c.normal[0], c.normal[1], c.normal[2]))
            << c.text;
    }
    Result<ResolvedReference> z = resolveReference(document, "ZAxis");
    ASSERT_TRUE(z.ok() && z->axis);
    EXPECT_TRUE(sameDirection(z->axis->Direction(), 0, 0, 1));
    Result<ResolvedReference> x = resolveReference(document, "x");
    ASSERT_TRUE(x.ok() && x->axis);
    EXPECT_TRUE(sameDirection(x->axis->Direction(), 1, 0, 0));
    Result<ResolvedReference> origin = resolveReference(document, "Origin");
    ASSERT_TRUE(origin.ok() && origin->point);
    EXPECT_EQ(resolveReference(document, "  ").error(), "An empty reference.");
}

TEST_F(References, BodyElementsByFinalName) {
    ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    Result<ResolvedReference> top = resolveReference(document, "Box1/Box1.top");
    ASSERT_TRUE(top.ok()) << top.error();
    ASSERT_EQ(top->shape.ShapeType(), TopAbs_FACE);
    ASSERT_TRUE(top->plane);
    EXPECT_TRUE(sameDirection(top->plane->Direction(), 0, 0, 1));
    EXPECT_NEAR(top->plane->Location().Z(), 30, 1e-9);
    Result<ResolvedReference> bottom = resolveReference(document, "Box1/Box1.bottom");
    ASSERT_TRUE(bottom.ok() && bottom->plane);
    EXPECT_TRUE(sameDirection(bottom->plane->Direction(), 0, 0, -1));

    Result<ResolvedReference> edge = resolveReference(document, "Box1/Edge(Box1.front, Box1.top)");
    ASSERT_TRUE(edge.ok()) << edge.error();
    EXPECT_EQ(edge->shape.ShapeType(), TopAbs_EDGE);
    ASSERT_TRUE(edge->axis);
    EXPECT_TRUE(edge->axis->Direction().IsParallel(gp_Dir(1, 0, 0), 1e-12));

    Result<ResolvedReference> whole = resolveReference(document, "box1");
    ASSERT_TRUE(whole.ok());
    EXPECT_EQ(whole->shape.ShapeType(), TopAbs_SOLID);

    EXPECT_EQ(resolveReference(document, "Box1/Box1.middle").error(),
              "'Box1/Box1.middle': Box1 has no element with that name now.");
    EXPECT_EQ(resolveReference(document, "Box9/Box1.top").error(),
              "No object named 'Box9' exists.");
}

TEST_F(References, SketchCurvesPointsAndRegions) {
    std::string sketch = sketchWithRectangles({{0, 0, 4, 2}}, 3);
    addLine(sketch, 10, 0, 10, 5);
    Result<ResolvedReference> line = resolveReference(document, sketch + "/Line1");
    ASSERT_TRUE(line.ok()) << line.error();
    ASSERT_EQ(line->shape.ShapeType(), TopAbs_EDGE);
    BRepAdaptor_Curve curve(TopoDS::Edge(line->shape));
    EXPECT_NEAR(curve.Value(curve.FirstParameter()).Distance(gp_Pnt(10, 0, 3)), 0, 1e-9);
    EXPECT_NEAR(curve.Value(curve.LastParameter()).Distance(gp_Pnt(10, 5, 3)), 0, 1e-9);

    Result<ResolvedReference> corner = resolveReference(document, sketch + "/Rectangle1.top_right");
    ASSERT_TRUE(corner.ok() && corner->point);
    EXPECT_NEAR(corner->point->Distance(gp_Pnt(4, 2, 3)), 0, 1e-9);
    Result<ResolvedReference> top = resolveReference(document, sketch + "/Rectangle1.top");
    ASSERT_TRUE(top.ok() && top->axis);
    EXPECT_TRUE(sameDirection(top->axis->Direction(), 1, 0, 0));
    Result<ResolvedReference> all = resolveReference(document, sketch + "/Rectangle1");
    ASSERT_TRUE(all.ok());
    EXPECT_EQ(count(all->shape, TopAbs_EDGE), 4);

    Result<ResolvedReference> region = resolveReference(
        document,
        sketch + "/Region(Rectangle1.bottom+Rectangle1.left+Rectangle1.right+Rectangle1.top)");
    ASSERT_TRUE(region.ok()) << region.error();
    EXPECT_EQ(region->shape.ShapeType(), TopAbs_FACE);
    ASSERT_TRUE(region->plane);
    EXPECT_NEAR(region->plane->Location().Z(), 3, 1e-9);

    Result<ResolvedReference> plane = resolveReference(document, sketch);
    ASSERT_TRUE(plane.ok() && plane->plane);
    EXPECT_NEAR(plane->plane->Location().Z(), 3, 1e-9);

    EXPECT_EQ(resolveReference(document, sketch + "/Line9").error(), sketch + " has no Line9");
    EXPECT_EQ(resolveReference(document, sketch + "/Region(Line1)").error(),
              sketch + " has no region bounded by those curves now.");
    EXPECT_EQ(resolveReference(document, sketch + "/ ").error(),
              "'" + sketch + "/': not a sketch reference.");
}

TEST_F(References, ElementsForTheQueryTools) {
    ok("create_box", {{"width", 1}, {"depth", 1}, {"height", 1}});
    Result<TopoDS_Shape> third = resolveElement(document, "Box1.face3");
    ASSERT_TRUE(third.ok());
    EXPECT_TRUE(third->IsSame(*body("Box1")->shape.elementByIndex(TopAbs_FACE, 3)));
    EXPECT_TRUE(resolveElement(document, "Box1.edge12").ok());
    EXPECT_TRUE(resolveElement(document, "Box1.vertex8").ok());
    EXPECT_TRUE(resolveElement(document, "Box1/Vertex(Box1.back, Box1.right, Box1.top)").ok());
    EXPECT_EQ(resolveElement(document, "Box1").value().ShapeType(), TopAbs_SOLID);

    struct Case {
        const char* text;
        const char* error;
    };
    for (const Case& c : {
             Case{"Box1.face0", "Box1.face0: Box1 has no face 0 (see get_body)."},
             Case{"Box1.edge13", "Box1.edge13: Box1 has no edge 13 (see get_body)."},
             Case{"Box1/Box1.nope",
                  "Box1/Box1.nope has no element with that name now (see get_body)."},
             Case{"Box2.face1", "No body named 'Box2'."},
             Case{"Box2", "No body named 'Box2'."},
             Case{"Box1.side", "'Box1.side': expected Body1, Body1/<name from get_body>, or "
                               "Body1.faceN / edgeN / vertexN."},
         }) {
        EXPECT_EQ(resolveElement(document, c.text).error(), c.error) << c.text;
    }
}

TEST_F(References, AFeatureSeesItsBodyAsItWasBeforeIt) {
    sketchWithRectangles({{0, 0, 4, 4}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 1}});
    ok("extrude", {{"sketch", "Body1/Extrude1.end"}, {"distance", 1}, {"operation", "join"}});
    // The finished body merged Extrude1's top away; the history before Extrude2 has it.
    EXPECT_FALSE(body("Body1")->shape.findByName("Extrude1.end"));
    geometry::ReferenceContext before{"Extrude2", "Body1"};
    Result<ResolvedReference> face = resolveReference(document, "Body1/Extrude1.end", before);
    ASSERT_TRUE(face.ok()) << face.error();
    EXPECT_NEAR(face->plane->Location().Z(), 1, 1e-9);
    EXPECT_EQ(resolveReference(document, "Body1/Extrude1.end").error(),
              "'Body1/Extrude1.end': Body1 has no element with that name now.");
    geometry::ReferenceContext stranger{"Extrude9", "Body1"};
    EXPECT_EQ(resolveReference(document, "Body1/Extrude1.end", stranger).error(),
              "'Body1/Extrude1.end': Body1 has no feature Extrude9.");
}

TEST_F(References, ASketchSitsOnAPlaneOrAFlatFaceKeptByTheBodysId) {
    sketchWithRectangles({{0, 0, 10, 10}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 2}});
    ok("rename_object", {{"object", "Body1"}, {"name", "Base"}});
    ok("create_sketch", {{"on", "Base/Extrude1.end"}});
    auto* onFace = document.findAs<SketchObject>("Sketch2");
    ASSERT_NE(onFace, nullptr);
    EXPECT_EQ(onFace->support, "Body1/Extrude1.end");
    // Renamed again, the body still carries the sketch, which follows the face.
    ok("rename_object", {{"object", "Body1"}, {"name", "Plate"}});
    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 5}});
    EXPECT_NEAR(onFace->origin[2], 5, 1e-9);

    for (const char* notAPlane :
         {"Sketch1", "Sketch1/Rectangle1.top", "Body1", "XAxis", "Gear/Extrude1.end"}) {
        CommandResult refused = run("create_sketch", {{"on", notAPlane}});
        EXPECT_EQ(refused.message,
                  "'" + std::string(notAPlane) + "' isn't a plane or a flat face.");
    }
}

} // namespace cad::testing
