// Display meshing follows body size: deviations stay inside 0.002 ... 0.2 mm and
// meshing really uses them.
#include "ui/presentation/Tessellation.h"
#include "ui/presentation/DocumentPresenter.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

Bnd_Box boxOf(double x, double y, double z) {
    Bnd_Box box;
    box.Update(0, 0, 0, x, y, z);
    return box;
}

int triangles(const TopoDS_Shape& shape) {
    int n = 0;
    for (TopExp_Explorer e(shape, TopAbs_FACE); e.More(); e.Next()) {
        TopLoc_Location location;
        const Handle(Poly_Triangulation) mesh =
            BRep_Tool::Triangulation(TopoDS::Face(e.Current()), location);
        if (!mesh.IsNull()) n += mesh->NbTriangles();
    }
    return n;
}

TEST(Tessellation, DeviationFollowsTheDiagonalWithinItsLimits) {
    struct Case {
        const char* what;
        Bnd_Box box;
        double deviation;
    };
    const Case cases[] = {
        {"1 mm cube", boxOf(1, 1, 1), 0.002},
        {"10 m plate", boxOf(10000, 10000, 10), 0.2},
        {"100 x 100 x 50 block", boxOf(100, 100, 50), 150 * 0.0002},
        {"3 m beam: just under the top", boxOf(0, 0, 990), 990 * 0.0002},
        {"nothing: as if 100 mm", Bnd_Box(), 100 * 0.0002},
    };
    for (const Case& c : cases) {
        const double d = cad::ui::tessellationDeviation(c.box);
        EXPECT_NEAR(d, c.deviation, 1e-12) << c.what;
        EXPECT_GE(d, 0.002) << c.what;
        EXPECT_LE(d, 0.2) << c.what;
    }
}

TEST(Tessellation, DrawerAndMeshUseTheSameDeviation) {
    // Radius 50: a 0.0x mm deviation needs many more facets round the side than the
    // 5 degree angle alone would give.
    const TopoDS_Shape small = BRepPrimAPI_MakeCylinder(1, 1).Shape();
    const TopoDS_Shape big = BRepPrimAPI_MakeCylinder(50, 1).Shape();
    Handle(Prs3d_Drawer) smallDrawer = new Prs3d_Drawer, bigDrawer = new Prs3d_Drawer;
    cad::ui::applyTessellation(small, smallDrawer);
    cad::ui::applyTessellation(big, bigDrawer);

    EXPECT_EQ(bigDrawer->TypeOfDeflection(), Aspect_TOD_ABSOLUTE);
    EXPECT_NEAR(bigDrawer->DeviationAngle(), 5 * std::numbers::pi / 180, 1e-4);
    EXPECT_NEAR(smallDrawer->MaximalChordialDeviation(), 0.002, 1e-12);
    // The box's diagonal: 100 x 100 x 1, plus the box's small tolerance gap.
    EXPECT_NEAR(bigDrawer->MaximalChordialDeviation(), 0.0002 * std::sqrt(100 * 100 * 2 + 1), 1e-4);

    EXPECT_GT(triangles(small), 0);
    // Every facet edge on the rim stays within the deviation: at least pi / acos(1 - d/r)
    // segments round a circle of radius r.
    const double d = bigDrawer->MaximalChordialDeviation();
    const int segments = static_cast<int>(std::ceil(std::numbers::pi / std::acos(1 - d / 50)));
    EXPECT_GE(triangles(big), 2 * segments);
}

} // namespace
