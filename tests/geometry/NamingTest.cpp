// Final names: direction names of boxes, edges and vertices after their faces,
// duplicates told apart by tag then centroid, and the first entry winning.
#include "geometry/Naming.h"

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
    ASSERT_EQ(namesOf(named, TopAbs_FACE).size(), 6u);
    // Each name sits where its direction says, whatever order the kernel lists faces in.
    const std::pair<const char*, gp_Pnt> centres[] = {{"Box1.left", {0, 10, 15}},
                                                      {"Box1.right", {10, 10, 15}},
                                                      {"Box1.front", {5, 0, 15}},
                                                      {"Box1.back", {5, 20, 15}},
                                                      {"Box1.bottom", {5, 10, 0}},
                                                      {"Box1.top", {5, 10, 30}},
                                                      {"Edge(Box1.front, Box1.top)", {5, 0, 30}}};
    for (const auto& [name, centre] : centres) {
        auto element = named.findByName(name);
        ASSERT_TRUE(element.has_value()) << name;
        GProp_GProps props;
        if (element->ShapeType() == TopAbs_FACE)
            BRepGProp::SurfaceProperties(*element, props);
        else
            BRepGProp::LinearProperties(*element, props);
        EXPECT_LT(props.CentreOfMass().Distance(centre), 1e-9) << name;
    }
    std::vector<std::string> edges = namesOf(named, TopAbs_EDGE);
    EXPECT_EQ(std::set<std::string>(edges.begin(), edges.end()).size(), 12u);
    EXPECT_FALSE(named.findByName("Edge(Box1.top, Box1.front)").has_value());
    auto corner = named.findByName("Vertex(Box1.back, Box1.right, Box1.top)");
    ASSERT_TRUE(corner.has_value());
    EXPECT_LT(BRep_Tool::Pnt(TopoDS::Vertex(*corner)).Distance(gp_Pnt(10, 20, 30)), 1e-9);
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

TEST(Naming, UnnamedFacesAreFaceOrderedByCentroid) {
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
    EXPECT_EQ(namesOf(named, TopAbs_VERTEX).size(), 8u);
}
