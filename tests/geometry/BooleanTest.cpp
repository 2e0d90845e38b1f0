// The named boolean: names carried through join, cut and intersect, same-domain
// faces merged, the nothing-left sentences, and the time limit that really stops a
// runaway kernel operation.
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
#include <thread>

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

TEST(ShapeBoolean, CutAndIntersectCarryNamesOfBothSides) {
    Result<NamedShape> cut =
        shapeBoolean(box("A", 0, 0, 0, 4, 4, 4), box("T", 1, 1, 3, 2, 2, 5), BooleanKind::Cut);
    ASSERT_TRUE(cut.ok()) << cut.error();
    EXPECT_NEAR(volume(*cut), 64 - 4, 1e-9);
    EXPECT_TRUE(cut->findByName("A.top"));
    // The pocket's floor is the tool's bottom face; its walls the tool's sides.
    EXPECT_TRUE(cut->findByName("T.bottom"));
    EXPECT_TRUE(cut->findByName("T.left"));
    EXPECT_FALSE(cut->findByName("T.top"));

    Result<NamedShape> common = shapeBoolean(box("A", 0, 0, 0, 4, 4, 4), box("T", 1, 1, 3, 2, 2, 5),
                                             BooleanKind::Intersect);
    ASSERT_TRUE(common.ok()) << common.error();
    EXPECT_NEAR(volume(*common), 4, 1e-9);
    EXPECT_TRUE(common->findByName("A.top"));
    EXPECT_TRUE(common->findByName("T.bottom"));
}

TEST(ShapeBoolean, NothingLeftIsAnErrorPerKind) {
    EXPECT_EQ(
        shapeBoolean(box("A", 0, 0, 0, 1, 1, 1), box("T", -1, -1, -1, 3, 3, 3), BooleanKind::Cut)
            .error(),
        "The cut removes the entire body.");
    EXPECT_EQ(
        shapeBoolean(box("A", 0, 0, 0, 1, 1, 1), box("T", 5, 5, 5, 1, 1, 1), BooleanKind::Intersect)
            .error(),
        "The shapes don't overlap: nothing is left.");
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

TEST(Deadline, BreaksOnlyAfterItsInstant) {
    Handle(Deadline) soon = new Deadline(std::chrono::milliseconds(20));
    EXPECT_FALSE(soon->expired());
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_TRUE(soon->expired());
    Handle(Deadline) standard = new Deadline();
    EXPECT_FALSE(standard->UserBreak());
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
