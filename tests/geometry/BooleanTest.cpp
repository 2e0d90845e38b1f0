// The named boolean: names carried through a join, same-domain faces merged, apart
// and empty bodies, and the time limit that really stops a runaway kernel operation.
#include "geometry/Deadline.h"
#include "geometry/Naming.h"
#include "geometry/ShapeBoolean.h"

#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRep_Builder.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>

#include <gtest/gtest.h>

#include <chrono>

using cad::Result;
using namespace cad::geometry;

namespace {

NamedShape box(const char* name, double x, double y, double z, double w, double d, double h) {
    return nameFacesByDirection(BRepPrimAPI_MakeBox(gp_Pnt(x, y, z), w, d, h).Shape(), name);
}

double volume(const NamedShape& s) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(s.shape(), props);
    return props.Mass();
}

int faces(const NamedShape& s) {
    int n = 0;
    for (TopExp_Explorer e(s.shape(), TopAbs_FACE); e.More(); e.Next()) ++n;
    return n;
}

// Two grids of overlapping spheres: thousands of surface intersections, seconds of work.
NamedShape sphereGrid(double dx, double dy, double dz) {
    BRep_Builder builder;
    TopoDS_Compound all;
    builder.MakeCompound(all);
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 5; ++j)
            builder.Add(
                all, BRepPrimAPI_MakeSphere(gp_Pnt(i * 3.0 + dx, j * 3.0 + dy, dz), 2.0).Shape());
    return nameFacesByDirection(all, "G");
}

} // namespace

TEST(ShapeBoolean, JoinMergesCoplanarFacesAndKeepsEveryName) {
    // Two boxes side by side: the join is one box whose long faces carry both names.
    Result<NamedShape> joined =
        shapeBoolean(box("A", 0, 0, 0, 1, 1, 1), box("B", 1, 0, 0, 1, 1, 1), BooleanKind::Join);
    ASSERT_TRUE(joined.ok()) << joined.error();
    EXPECT_NEAR(volume(*joined), 2, 1e-9);
    EXPECT_EQ(faces(*joined), 6);
    // The first entry wins: the body's name, then the tool's.
    EXPECT_TRUE(joined->findByName("A.top"));
    EXPECT_FALSE(joined->findByName("B.top"));
    EXPECT_TRUE(joined->findByName("A.left"));
    EXPECT_TRUE(joined->findByName("B.right"));
    EXPECT_TRUE(joined->findByName("Edge(A.front, A.top)"));
    EXPECT_TRUE(joined->findByName("Edge(A.top, B.right)"));
    EXPECT_EQ(joined->shape().ShapeType(), TopAbs_SOLID);
}

TEST(ShapeBoolean, ApartAndEmptyBodies) {
    // Joining apart shapes keeps both as solids of one compound.
    Result<NamedShape> apart =
        shapeBoolean(box("A", 0, 0, 0, 1, 1, 1), box("B", 5, 5, 5, 1, 1, 1), BooleanKind::Join);
    ASSERT_TRUE(apart.ok());
    EXPECT_NEAR(volume(*apart), 2, 1e-9);
    EXPECT_TRUE(apart->findByName("B.top"));
    // Joining onto an empty body is the tool itself.
    Result<NamedShape> onto =
        shapeBoolean(NamedShape(), box("B", 0, 0, 0, 1, 1, 1), BooleanKind::Join);
    ASSERT_TRUE(onto.ok());
    EXPECT_TRUE(onto->findByName("B.top"));
    EXPECT_EQ(shapeBoolean(NamedShape(), box("B", 0, 0, 0, 1, 1, 1), BooleanKind::Cut).error(),
              "The cut removes the entire body.");
}

TEST(ShapeBoolean, TheTimeLimitStopsARunawayBoolean) {
    const NamedShape a = sphereGrid(0, 0, 0), b = sphereGrid(1.1, 0.7, 0.9);
    const auto start = std::chrono::steady_clock::now();
    Result<NamedShape> stopped =
        shapeBoolean(a, b, BooleanKind::Join, std::chrono::milliseconds(50));
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(stopped.error(),
              "The geometry kernel took too long working out where the shapes meet.");
    // Two attempts of 50 ms each, and the kernel's reaction time: far less than the
    // seconds the full operation needs.
    EXPECT_LT(seconds, 1.0);

    // The same operation given time completes, so it was the limit that stopped it.
    const auto full = std::chrono::steady_clock::now();
    Result<NamedShape> done = shapeBoolean(a, b, BooleanKind::Join);
    const double fullSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - full).count();
    ASSERT_TRUE(done.ok()) << done.error();
    EXPECT_GT(fullSeconds, 2 * seconds);
}
