// Region building straight from curves: even-odd levels, pieces of split curves
// named in the curve's own order, region names, open curves and the messages for
// sketches without loops.
#include "geometry/SketchRegions.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using cad::Result;
using namespace cad::geometry;

namespace {

NamedEdge line(const char* name, double x1, double y1, double x2, double y2) {
    return {BRepBuilderAPI_MakeEdge(gp_Pnt(x1, y1, 0), gp_Pnt(x2, y2, 0)).Edge(), name};
}

// The four sides of an axis-aligned square, named prefix + 1..4.
std::vector<NamedEdge> square(const std::string& prefix, double x, double y, double size) {
    std::vector<NamedEdge> out;
    const double x2 = x + size, y2 = y + size;
    const double pts[4][4] = {{x, y, x2, y}, {x2, y, x2, y2}, {x2, y2, x, y2}, {x, y2, x, y}};
    for (int i = 0; i < 4; ++i)
        out.push_back({BRepBuilderAPI_MakeEdge(gp_Pnt(pts[i][0], pts[i][1], 0),
                                               gp_Pnt(pts[i][2], pts[i][3], 0))
                           .Edge(),
                       prefix + std::to_string(i + 1)});
    return out;
}

double area(const TopoDS_Shape& face) {
    GProp_GProps props;
    BRepGProp::SurfaceProperties(face, props);
    return props.Mass();
}

std::vector<double> areas(const Profile& p) {
    std::vector<double> out;
    for (const TopoDS_Face& f : p.faces) out.push_back(std::round(area(f) * 1e6) / 1e6);
    std::sort(out.begin(), out.end());
    return out;
}

std::vector<NamedEdge> join(std::vector<NamedEdge> a, const std::vector<NamedEdge>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace

TEST(Regions, NestedLoopsFillEvenOdd) {
    auto curves = join(join(square("A", 0, 0, 10), square("B", 2, 2, 6)), square("C", 4, 4, 2));
    Result<Profile> regions = buildSketchRegions(gp_Ax3(), curves, false);
    ASSERT_TRUE(regions.ok()) << regions.error();
    // The frame between A and B, and C solid again; B's inside (minus C) is a hole.
    EXPECT_EQ(areas(*regions), (std::vector<double>{4, 100 - 36}));
    Result<Profile> all = buildSketchRegions(gp_Ax3(), curves, true);
    ASSERT_TRUE(all.ok());
    EXPECT_EQ(areas(*all), (std::vector<double>{4, 32, 64}));
    // Every region face faces the plane's normal, so prisms along it have volume.
    for (const TopoDS_Face& f : all->faces) EXPECT_GT(area(f), 0);

    std::set<std::string> names;
    for (const TopoDS_Face& f : all->faces) names.insert(regionName(*all, f));
    EXPECT_EQ(names, (std::set<std::string>{"Region(A1+A2+A3+A4)", "Region(B1+B2+B3+B4)",
                                            "Region(C1+C2+C3+C4)"}));
    std::optional<Profile> hole = findRegion(*all, "Region(B1+B2+B3+B4)");
    ASSERT_TRUE(hole);
    ASSERT_EQ(hole->faces.size(), 1u);
    EXPECT_NEAR(area(hole->faces.front()), 32, 1e-9);
    EXPECT_FALSE(findRegion(*all, "Region(B1+B2+B3)"));
}

TEST(Regions, SplitCurvesAreNumberedAlongTheCurveAndCountOnceInRegionNames) {
    // A square cut in three by two vertical lines that cross its bottom and top.
    std::vector<NamedEdge> curves = square("S", 0, 0, 9);
    curves.push_back(line("L1", 3, -1, 3, 10));
    curves.push_back(line("L2", 6, 10, 6, -1));
    Result<Profile> regions = buildSketchRegions(gp_Ax3(), curves, false);
    ASSERT_TRUE(regions.ok()) << regions.error();
    // Every strip borders the outside across the square, so each is a region.
    EXPECT_EQ(areas(*regions), (std::vector<double>{27, 27, 27}));
    const Result<Profile>& all = regions;

    std::set<std::string> names;
    for (const TopoDS_Face& f : all->faces) names.insert(regionName(*all, f));
    EXPECT_EQ(names, (std::set<std::string>{"Region(L1+S1+S3+S4)", "Region(L1+L2+S1+S3)",
                                            "Region(L2+S1+S2+S3)"}));
    // S1 (the bottom, running +x) is split by L1 and L2: pieces 1, 2, 3 from its start.
    for (const auto& [edge, name] : all->edgeNames) {
        if (name.rfind("S1[", 0) != 0) continue;
        BRepAdaptor_Curve c(edge);
        const double x = c.Value((c.FirstParameter() + c.LastParameter()) / 2).X();
        const int piece = name[3] - '0';
        EXPECT_NEAR(x, 1.5 + 3 * (piece - 1), 1e-9) << name;
    }
    // L2 runs downwards: its piece [1] is the one above the square, [2] the one inside,
    // and only that one bounds a region.
    std::set<std::string> l2;
    for (const auto& [edge, name] : all->edgeNames)
        if (name.rfind("L2", 0) == 0) l2.insert(name);
    EXPECT_EQ(l2, std::set<std::string>{"L2[2]"});
}

TEST(Regions, OpenCurvesAndEmptySketches) {
    EXPECT_EQ(buildSketchRegions(gp_Ax3(), {line("Line1", 0, 0, 10, 0)}, false).error(),
              "The sketch has no closed loops: close the outline so it encloses an area.");
    EXPECT_EQ(buildSketchRegions(gp_Ax3(), {}, false).error(),
              "The sketch has no geometry to make a profile from.");

    // A square with a dangling stroke inside and a lone line outside: both are open.
    std::vector<NamedEdge> curves = square("S", 0, 0, 10);
    curves.push_back(line("In", 2, 2, 5, 5));
    curves.push_back(line("Out", 20, 0, 30, 0));
    Result<std::vector<NamedEdge>> open = openCurves(gp_Ax3(), curves);
    ASSERT_TRUE(open.ok());
    std::vector<std::string> names;
    for (const NamedEdge& c : *open) names.push_back(c.name);
    EXPECT_EQ(names, (std::vector<std::string>{"In", "Out"}));
    // The stroke doesn't split the region: it stays one face with the stroke inside.
    Result<Profile> regions = buildSketchRegions(gp_Ax3(), curves, false);
    ASSERT_TRUE(regions.ok());
    EXPECT_EQ(areas(*regions), std::vector<double>{100});
}

TEST(Regions, TiltedPlanes) {
    // On the XZ plane (normal -Y): a square in the plane still fills.
    gp_Ax3 xz(gp_Pnt(0, 0, 0), gp_Dir(0, -1, 0), gp_Dir(1, 0, 0));
    std::vector<NamedEdge> curves;
    const double pts[4][4] = {{0, 0, 4, 0}, {4, 0, 4, 4}, {4, 4, 0, 4}, {0, 4, 0, 0}};
    for (int i = 0; i < 4; ++i)
        curves.push_back({BRepBuilderAPI_MakeEdge(gp_Pnt(pts[i][0], 0, pts[i][1]),
                                                  gp_Pnt(pts[i][2], 0, pts[i][3]))
                              .Edge(),
                          "Line" + std::to_string(i + 1)});
    Result<Profile> tilted = buildSketchRegions(xz, curves, false);
    ASSERT_TRUE(tilted.ok()) << tilted.error();
    EXPECT_EQ(areas(*tilted), std::vector<double>{16});
    EXPECT_EQ(regionName(*tilted, tilted->faces.front()), "Region(Line1+Line2+Line3+Line4)");
}
