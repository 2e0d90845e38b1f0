// Unfold and Fold in a body's history: the blank's size against the bend formula
// worked out here, holes cut flat found again on the folded part (in a wall and
// across a bend), an open fold, and the refusals.
#include "FlatTestModel.h"

#include "geometry/sheet/flat/Unfolding.h"

namespace cad::testing {
namespace {

class UnfoldFold : public FlatModel {};

TEST_F(UnfoldFold, AnLLaysFlatAsLongAsItsWallsAndTheBend) {
    lBracket();
    const double bent = volumeOf("Body1");
    EXPECT_EQ(ok("unfold", {{"body", "Body1"}, {"face", "Body1/Sheet.bottom"}}),
              "Added Unfold1 to Body1.");
    const std::array<double, 6> b = bounds(body("Body1")->shape.shape());
    const double length = 30 + 20 + quarterBend();
    EXPECT_NEAR(b[3] - b[0], length, 1e-6);
    EXPECT_NEAR(b[4] - b[1], 20, 1e-6);
    EXPECT_NEAR(b[2], 0, 1e-9); // the fixed face stays where it was
    EXPECT_NEAR(b[5], 2, 1e-9);
    EXPECT_NEAR(volumeOf("Body1"), length * 20 * 2, 1e-6);
    // The fixed face keeps its name; the rest of the sheet lies in its plane.
    EXPECT_TRUE(body("Body1")->shape.findByName("Sheet.bottom"));
    EXPECT_EQ(count(body("Body1")->shape.shape(), TopAbs_FACE), 6);

    ASSERT_TRUE(stack.undo());
    EXPECT_NEAR(volumeOf("Body1"), bent, 1e-9);
}

TEST_F(UnfoldFold, PartsTheSheetMetalCommandsMakeUnfold) {
    // An L drawn as its outside face: each wall loses R + T to the bend.
    const std::string profile = sketchWithRectangles({});
    addLine(profile, 0, 0, 30, 0);
    addLine(profile, 30, 0, 30, 20);
    ok("sheet_flange", {{"sketch", profile},
                        {"thickness", 2},
                        {"bend_radius", 2},
                        {"k_factor", 0.44},
                        {"width", 20}});
    ok("unfold", {{"body", "Body1"}});
    std::array<double, 6> b = bounds(body("Body1")->shape.shape());
    EXPECT_NEAR(std::max(b[3] - b[0], b[4] - b[1]), 50 - 2 * (2 + 2) + quarterBend(), 1e-6);

    // A 40 x 30 plate with a 20 mm flange on its edge at x = 40.
    sketchWithRectangles({{0, 0, 40, 30}});
    ok("sheet_flange",
       {{"sketch", "Sketch2"}, {"thickness", 2}, {"bend_radius", 2}, {"k_factor", 0.44}});
    ok("edge_flange",
       {{"edge", "Body2/Edge(Flange2.end, Flange2.side.Rectangle1.right)"}, {"length", 20}});
    ok("unfold", {{"body", "Body2"}});
    b = bounds(body("Body2")->shape.shape());
    EXPECT_NEAR(b[3] - b[0], 40 + quarterBend() + 20, 1e-6);
    EXPECT_NEAR(b[4] - b[1], 30, 1e-6);
}

TEST_F(UnfoldFold, AConicalBendKeepsItsSheetWithTheNeutralLayerInTheMiddle) {
    // A shell of even thickness holds its middle surface's area times the thickness,
    // and laying a cone flat keeps that area.
    addBody(document, SheetPath(2, 20).straight(30).bend(90, 6, true, 0.1).straight(20).shape());
    ok("sheet_rules", {{"body", "Body1"}, {"thickness", 2}, {"bend_radius", 6}, {"k_factor", 0.5}});
    const double bent = volumeOf("Body1");
    ok("unfold", {{"body", "Body1"}, {"face", "Sheet.bottom"}});
    EXPECT_NEAR(volumeOf("Body1"), bent, bent * 1e-6);
    const std::array<double, 6> b = bounds(body("Body1")->shape.shape());
    EXPECT_GT(b[4] - b[1], 20.5); // the far wall lies turned: the sector opens it out
    EXPECT_NEAR(b[5] - b[2], 2, 1e-9);
    ok("fold", {{"body", "Body1"}});
    EXPECT_NEAR(volumeOf("Body1"), bent, 1e-9);
}

TEST_F(UnfoldFold, HolesCutFlatAreFoundOnTheFoldedPart) {
    lBracket();
    ok("unfold", {{"body", "Body1"}, {"face", "Body1/Sheet.bottom"}});
    const double blank = volumeOf("Body1");
    const double wallStart = 30 + quarterBend();
    cutHole(wallStart + 10, 8, 3);            // in the upright wall, 10 past its bend
    cutHole(30 + quarterBend() / 2, 14, 1.5); // in the middle of the bend
    const double flatAfter = volumeOf("Body1");
    EXPECT_NEAR(flatAfter, blank - pi * 9 * 2 - pi * 2.25 * 2, 1e-6);

    EXPECT_EQ(ok("fold", {{"body", "Body1"}}), "Added Fold1 to Body1.");
    const TopoDS_Shape& folded = body("Body1")->shape.shape();
    // The wall stands at x = 32..34 from z = 4; the bend turns about (30, z = 4).
    EXPECT_FALSE(inside(folded, gp_Pnt(33, 8, 4 + 10)));
    EXPECT_TRUE(inside(folded, gp_Pnt(33, 8, 4 + 14)));
    EXPECT_TRUE(inside(folded, gp_Pnt(33, 14, 4 + 10)));
    const double r = 3; // half way through the sheet, half way round the bend
    EXPECT_FALSE(inside(folded, gp_Pnt(30 + r * std::sin(pi / 4), 14, 4 - r * std::cos(pi / 4))));
    EXPECT_TRUE(inside(folded, gp_Pnt(30 + r * std::sin(pi / 4), 4, 4 - r * std::cos(pi / 4))));
    // As much sheet as the blank had, to half a percent (K 0.44 is not the middle).
    EXPECT_NEAR(volumeOf("Body1"), flatAfter, flatAfter * 0.005);
    // The hole in the wall is still round: its face is a cylinder of radius 3.
    bool round = false;
    for (TopExp_Explorer e(folded, TopAbs_FACE); e.More(); e.Next()) {
        BRepAdaptor_Surface s(TopoDS::Face(e.Current()));
        round = round ||
                (s.GetType() == GeomAbs_Cylinder && std::abs(s.Cylinder().Radius() - 3) < 1e-9);
    }
    EXPECT_TRUE(round);

    // Open, it stays flat to work on.
    ok("edit_fold", {{"feature", "Fold1"}, {"open", true}});
    EXPECT_NEAR(volumeOf("Body1"), flatAfter, 1e-6);
}

TEST_F(UnfoldFold, RefusalsLeaveTheDocumentAsItWas) {
    sketchWithRectangles({{0, 0, 40, 20}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 3}});
    EXPECT_EQ(refused("unfold", {{"body", "Body1"}}), "There's nothing to unfold.");
    EXPECT_EQ(refused("fold", {{"body", "Body1"}}), "There's no Unfold before this fold.");

    addBody(document, SheetPath(2, 20).straight(30).bend(90, 2).straight(20).shape(), "Body2");
    EXPECT_EQ(refused("unfold", {{"body", "Body2"}, {"face", "Sheet.nope"}}),
              "The fixed face 'Sheet.nope' isn't on the part any more.");
    addBody(document, SheetPath(2, 20).straight(30).bend(45, 2).bend(45, 4).straight(20).shape(),
            "Body3");
    EXPECT_EQ(refused("unfold", {{"body", "Body3"}}),
              "Two bends meet with no flat between them; that doesn't unfold yet.");
}

} // namespace
} // namespace cad::testing
