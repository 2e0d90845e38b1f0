// Final names: direction names of boxes, edges and vertices after their faces,
// duplicates told apart by tag then centroid, and the first entry winning.
#include "geometry/Naming.h"
#include "geometry/Box.h"

#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using namespace cad::geometry;

namespace {

TopoDS_Shape box(double x, double y, double z, double w, double d, double h) {
    return BRepPrimAPI_MakeBox(gp_Pnt(x, y, z), w, d, h).Shape();
}

std::vector<std::string> namesOf(const NamedShape& named, TopAbs_ShapeEnum type) {
    std::vector<std::string> out;
    for (auto& [shape, name] : named.names(type)) out.push_back(name);
    return out;
}

} // namespace

TEST(Naming, BoxFacesEdgesAndVerticesAreNamedByDirection) {
    NamedShape named = nameFacesByDirection(box(0, 0, 0, 10, 20, 30), "Box1");
    std::vector<std::string> faces = namesOf(named, TopAbs_FACE);
    std::sort(faces.begin(), faces.end());
    EXPECT_EQ(faces, (std::vector<std::string>{"Box1.back", "Box1.bottom", "Box1.front",
                                               "Box1.left", "Box1.right", "Box1.top"}));

    std::vector<std::string> edges = namesOf(named, TopAbs_EDGE);
    ASSERT_EQ(edges.size(), 12u);
    EXPECT_EQ(std::set<std::string>(edges.begin(), edges.end()).size(), 12u);
    auto edge = named.findByName("Edge(Box1.front, Box1.top)");
    ASSERT_TRUE(edge.has_value());
    // The front-top edge runs along X at y = 0, z = 30.
    TopoDS_Vertex a = TopExp::FirstVertex(TopoDS::Edge(*edge));
    TopoDS_Vertex b = TopExp::LastVertex(TopoDS::Edge(*edge));
    gp_Pnt pa = BRep_Tool::Pnt(a), pb = BRep_Tool::Pnt(b);
    EXPECT_NEAR(pa.Y(), 0, 1e-9);
    EXPECT_NEAR(pb.Y(), 0, 1e-9);
    EXPECT_NEAR(pa.Z(), 30, 1e-9);
    EXPECT_NEAR(std::abs(pa.X() - pb.X()), 10, 1e-9);
    EXPECT_FALSE(named.findByName("Edge(Box1.top, Box1.front)").has_value());

    auto corner = named.findByName("Vertex(Box1.back, Box1.right, Box1.top)");
    ASSERT_TRUE(corner.has_value());
    gp_Pnt p = BRep_Tool::Pnt(TopoDS::Vertex(*corner));
    EXPECT_NEAR(p.Distance(gp_Pnt(10, 20, 30)), 0, 1e-9);
}

TEST(Naming, DirectionNamesFollowFaceOrientationNotMapOrder) {
    NamedShape named = nameFacesByDirection(box(5, 5, 5, 1, 2, 3), "B");
    auto top = named.findByName("B.top");
    ASSERT_TRUE(top.has_value());
    GProp_GProps props;
    BRepGProp::SurfaceProperties(*top, props);
    EXPECT_NEAR(props.CentreOfMass().Z(), 8, 1e-9);
    auto left = named.findByName("B.left");
    ASSERT_TRUE(left.has_value());
    BRepGProp::SurfaceProperties(*left, props = GProp_GProps());
    EXPECT_NEAR(props.CentreOfMass().X(), 5, 1e-9);
}

TEST(Naming, CurvedFacesAreFaceAndDuplicatesNumbered) {
    // A cylinder has one curved face and two flat ends (top and bottom).
    TopoDS_Shape cylinder = BRepPrimAPI_MakeCylinder(2, 5).Shape();
    NamedShape named = nameFacesByDirection(cylinder, "C");
    std::vector<std::string> faces = namesOf(named, TopAbs_FACE);
    std::sort(faces.begin(), faces.end());
    EXPECT_EQ(faces, (std::vector<std::string>{"C.bottom", "C.face", "C.top"}));

    // Two disjoint boxes in one compound: every direction name occurs twice.
    TopoDS_Compound pair;
    BRep_Builder builder;
    builder.MakeCompound(pair);
    builder.Add(pair, box(20, 0, 0, 1, 1, 1));
    builder.Add(pair, box(0, 0, 0, 1, 1, 1));
    NamedShape two = nameFacesByDirection(pair, "P");
    auto first = two.findByName("P.top");
    auto second = two.findByName("P.top[2]");
    ASSERT_TRUE(first && second);
    GProp_GProps props;
    BRepGProp::SurfaceProperties(*first, props);
    // Both tops have the same neighbour names, so the smaller centroid x comes first.
    EXPECT_NEAR(props.CentreOfMass().X(), 0.5, 1e-9);
    EXPECT_FALSE(two.findByName("P.top[3]").has_value());
    // Edges take the final face names, so the second box's edges are unique too.
    EXPECT_TRUE(two.findByName("Edge(P.front[2], P.top[2])").has_value());
}

TEST(Naming, FirstEntryWinsAndTagsOrderDuplicates) {
    TopoDS_Compound pair;
    BRep_Builder builder;
    builder.MakeCompound(pair);
    TopoDS_Shape left = box(0, 0, 0, 1, 1, 1), right = box(5, 0, 0, 1, 1, 1);
    builder.Add(pair, left);
    builder.Add(pair, right);
    NamedShape named(pair);
    TopTools_IndexedMapOfShape leftFaces, rightFaces;
    TopExp::MapShapes(left, TopAbs_FACE, leftFaces);
    TopExp::MapShapes(right, TopAbs_FACE, rightFaces);
    // The right box's faces carry the smaller tag, so they keep the bare names.
    for (int i = 1; i <= 6; ++i) {
        named.addName(leftFaces(i), "F.s" + std::to_string(i), "Line2");
        named.addName(rightFaces(i), "F.s" + std::to_string(i), "Line1");
        named.addName(rightFaces(i), "Ignored");
    }
    finishNames(named);
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(named.nameOf(rightFaces(i)), "F.s" + std::to_string(i));
        EXPECT_EQ(named.nameOf(leftFaces(i)), "F.s" + std::to_string(i) + "[2]");
    }
    EXPECT_FALSE(named.findByName("Ignored").has_value());
}

TEST(Naming, UnnamedFacesAreFaceAndLookupsWork) {
    NamedShape named(box(0, 0, 0, 1, 1, 1));
    finishNames(named);
    std::vector<std::string> faces = namesOf(named, TopAbs_FACE);
    std::sort(faces.begin(), faces.end());
    EXPECT_EQ(faces, (std::vector<std::string>{"Face", "Face[2]", "Face[3]", "Face[4]", "Face[5]",
                                               "Face[6]"}));
    // Equal neighbour tags: ordered by centroid x, then y, then z.
    GProp_GProps props;
    BRepGProp::SurfaceProperties(*named.findByName("Face[6]"), props);
    EXPECT_NEAR(props.CentreOfMass().X(), 1, 1e-9);
    BRepGProp::SurfaceProperties(*named.findByName("Face"), props = GProp_GProps());
    EXPECT_NEAR(props.CentreOfMass().X(), 0, 1e-9);
    EXPECT_TRUE(named.elementByIndex(TopAbs_FACE, 6).has_value());
    EXPECT_FALSE(named.elementByIndex(TopAbs_FACE, 7).has_value());
    EXPECT_FALSE(named.elementByIndex(TopAbs_EDGE, 0).has_value());
    EXPECT_EQ(namesOf(named, TopAbs_VERTEX).size(), 8u);
}

TEST(Naming, MakeBoxRefusesFlatSizes) {
    EXPECT_TRUE(makeBox(1, 2, 3, gp_Pnt()).ok());
    EXPECT_EQ(makeBox(1, 0, 3, gp_Pnt()).error(),
              "Box dimensions must all be greater than zero (got width=1, depth=0, height=3)");
    EXPECT_EQ(makeBox(-1, 2, 1e-8, gp_Pnt()).error(),
              "Box dimensions must all be greater than zero (got width=-1, depth=2, height=1e-08)");
}
