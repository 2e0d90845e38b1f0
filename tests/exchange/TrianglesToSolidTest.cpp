// Sewing triangles: closed meshes become solids with positive volume whatever
// their winding, coplanar triangles merge, and unusable triangles are skipped or
// refused with a sentence. (Open meshes: see the STL import tests.)
#include "tests/exchange/ExchangeTestSupport.h"

#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <limits>

namespace cad::exchange::testing {
namespace {

int count(const TopoDS_Shape& shape, TopAbs_ShapeEnum type) {
    int n = 0;
    for (TopExp_Explorer e(shape, type); e.More(); e.Next()) ++n;
    return n;
}

TEST(TrianglesToSolid, ClosedMeshesBecomeSolidsWithTheirVolume) {
    std::vector<Triangle> box = boxTriangles(gp_Pnt(1, 2, 3), 10, 20, 5);
    Result<TopoDS_Shape> solid = trianglesToSolid(box, sewingTolerance(box));
    ASSERT_TRUE(solid) << solid.error();
    EXPECT_EQ(count(*solid, TopAbs_SOLID), 1);
    EXPECT_NEAR(volumeOf(*solid), 1000, 1e-6);
    EXPECT_EQ(count(*solid, TopAbs_FACE), 6) << "coplanar triangles merge into one face";

    // Wound inside out, the solid still measures positive.
    for (Triangle& t : box) std::swap(t[1], t[2]);
    solid = trianglesToSolid(box, sewingTolerance(box));
    ASSERT_TRUE(solid);
    EXPECT_NEAR(volumeOf(*solid), 1000, 1e-6);

    // One triangle wound against its neighbours is turned to agree with them.
    box = boxTriangles(gp_Pnt(0, 0, 0), 10, 10, 10);
    std::swap(box[5][1], box[5][2]);
    solid = trianglesToSolid(box, sewingTolerance(box));
    ASSERT_TRUE(solid);
    EXPECT_EQ(count(*solid, TopAbs_SOLID), 1);
    EXPECT_NEAR(volumeOf(*solid), 1000, 1e-6);
    EXPECT_EQ(count(*solid, TopAbs_FACE), 6);

    // The top's corners a hair off the sides' (as a sloppy exporter writes them):
    // sewing closes the crack.
    box = boxTriangles(gp_Pnt(0, 0, 0), 10, 10, 10);
    for (std::size_t i = 2; i < 4; ++i)
        for (gp_Pnt& p : box[i]) p.SetZ(p.Z() + 1e-4);
    solid = trianglesToSolid(box, sewingTolerance(box));
    ASSERT_TRUE(solid);
    EXPECT_EQ(count(*solid, TopAbs_SOLID), 1);
    EXPECT_NEAR(volumeOf(*solid), 1000, 0.1);

    // Two separate boxes are two solids of one shape.
    std::vector<Triangle> two = boxTriangles(gp_Pnt(0, 0, 0), 1, 1, 1);
    for (const Triangle& t : boxTriangles(gp_Pnt(5, 0, 0), 2, 2, 2)) two.push_back(t);
    solid = trianglesToSolid(two, sewingTolerance(two));
    ASSERT_TRUE(solid);
    EXPECT_EQ(count(*solid, TopAbs_SOLID), 2);
    EXPECT_NEAR(volumeOf(*solid), 9, 1e-9);
}

TEST(TrianglesToSolid, UnusableTrianglesAreSkippedOrRefused) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<Triangle> unusable = {
        {gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0), gp_Pnt(2, 0, 0)},     // no area
        {gp_Pnt(0, 0, 0), gp_Pnt(1e-10, 0, 0), gp_Pnt(0, 1, 0)}, // an edge under 1e-9
        {gp_Pnt(0, 0, 0), gp_Pnt(1, 1, 1), gp_Pnt(1, 1, 1)},     // two corners in one place
        {gp_Pnt(nan, 0, 0), gp_Pnt(1, 0, 0), gp_Pnt(0, 1, 0)},
        {gp_Pnt(0, inf, 0), gp_Pnt(1, 0, 0), gp_Pnt(0, 1, 0)},
    };
    EXPECT_EQ(trianglesToSolid(unusable, sewingTolerance(unusable)).error(),
              "There are no usable triangles.");
    EXPECT_EQ(trianglesToSolid({}, 1e-6).error(), "There are no usable triangles.");

    // Mixed into a good mesh they are left out and the solid still closes; the
    // tolerance ignores the points that are not numbers.
    std::vector<Triangle> box = boxTriangles(gp_Pnt(0, 0, 0), 10, 10, 10);
    const double clean = sewingTolerance(box);
    box.insert(box.end(), unusable.begin(), unusable.end());
    EXPECT_NEAR(sewingTolerance(box), clean, 1e-12);
    EXPECT_NEAR(clean, std::sqrt(300.0) * 1e-4, 1e-12);
    Result<TopoDS_Shape> solid = trianglesToSolid(box, sewingTolerance(box));
    ASSERT_TRUE(solid) << solid.error();
    EXPECT_NEAR(volumeOf(*solid), 1000, 1e-6);
}

// Four slivers the fuzzer found: merging their faces once read a 2D curve the
// kernel had not made and crashed.
TEST(TrianglesToSolid, SliversMergeWithoutCrashing) {
    const std::vector<Triangle> slivers = {
        {gp_Pnt(-5.0, -5.0, -5.7498779296875), gp_Pnt(-2.5, -3.75, -5.0), gp_Pnt(-5.0, -3.75, -5.0)},
        {gp_Pnt(-5.0, -5.0, -5.0), gp_Pnt(-2.5, -5.0, -5.0), gp_Pnt(-2.5, -3.75, -5.0)},
        {gp_Pnt(-2.5244126746055694e-29, 1.084226987903881e-19, -2.0000457763671875),
         gp_Pnt(-5.125, -5.0, -5.0), gp_Pnt(-5.0, -3.75, -4.5)},
        {gp_Pnt(-5.0, -5.0, -4.5), gp_Pnt(-5.0, -2.78125, -5.0), gp_Pnt(-5.0, -3.75, -5.0)},
        // Unusable, but its good corners widen the tolerance to about 11.
        {gp_Pnt(std::nan(""), 0, 0), gp_Pnt(0, 98369.5, 51015.27734375), gp_Pnt(0, 0, 0)},
    };
    Result<TopoDS_Shape> shape = trianglesToSolid(slivers, sewingTolerance(slivers));
    ASSERT_TRUE(shape) << shape.error();
    EXPECT_GE(count(*shape, TopAbs_FACE), 1);
}

} // namespace
} // namespace cad::exchange::testing
