// Display meshing follows body size: deviations stay inside 0.002 ... 0.2 mm and
// meshing really uses them.
#include "ui/presentation/DocumentPresenter.h"
#include "ui/presentation/Tessellation.h"

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
    EXPECT_NEAR(cad::ui::tessellationDeviation(boxOf(1, 1, 1)), 0.002, 1e-12);
    EXPECT_NEAR(cad::ui::tessellationDeviation(boxOf(10000, 10000, 10)), 0.2, 1e-12);
    EXPECT_NEAR(cad::ui::tessellationDeviation(boxOf(100, 100, 50)), 150 * 0.0002, 1e-12);
    EXPECT_NEAR(cad::ui::tessellationDeviation(Bnd_Box()), 100 * 0.0002, 1e-12);
}

TEST(Tessellation, MeshingUsesTheDeviation) {
    // Radius 50: a 0.0x mm deviation needs many more facets round the side than the
    // 5 degree angle alone would give.
    const TopoDS_Shape big = BRepPrimAPI_MakeCylinder(50, 1).Shape();
    Handle(Prs3d_Drawer) drawer = new Prs3d_Drawer;
    cad::ui::applyTessellation(big, drawer);
    EXPECT_EQ(drawer->TypeOfDeflection(), Aspect_TOD_ABSOLUTE);
    EXPECT_NEAR(drawer->DeviationAngle(), 5 * std::numbers::pi / 180, 1e-4);

    // Every facet edge on the rim stays within the deviation: at least pi / acos(1 - d/r)
    // segments round a circle of radius r.
    const double d = drawer->MaximalChordialDeviation();
    EXPECT_GT(d, 0.002);
    const int segments = static_cast<int>(std::ceil(std::numbers::pi / std::acos(1 - d / 50)));
    EXPECT_GE(triangles(big), 2 * segments);
}

} // namespace
