// sheet_flange and sheet_rules through their commands: plates, bent L and U
// profiles whose volumes are worked out here wall by wall and bend by bend, rules
// measured on an existing body, and the profiles refused with their sentences.
#include "SheetTestModel.h"

#include <cmath>

namespace cad::testing {

namespace {

using SheetFlange = SheetModel;

TEST_F(SheetFlange, ClosedSketchMakesAPlateWithExtrudeNames) {
    plate();
    EXPECT_NEAR(volumeOf("Body1"), kPlate, 1e-6);
    EXPECT_TRUE(body("Body1")->shape.findByName("Flange1.end"));
    EXPECT_TRUE(body("Body1")->shape.findByName(std::string(kRightEdge).substr(6)));

    sketchWithRectangles({{0, 0, 10, 10}});
    ok("sheet_flange", {{"sketch", "Sketch2"}, {"flip", true}});
    EXPECT_NEAR(volumeOf("Body2"), 10 * 10 * 1.5, 1e-6) << "1.5 mm unless told";
    EXPECT_NEAR(bounds(body("Body2")->shape.shape())[2], -1.5, 1e-6);
}

TEST_F(SheetFlange, LProfileIsWallsAndABendOfTheInnerRadius) {
    // Walking down Line1 then along Line2 turns left, the side the thickness goes:
    // the lines are the bend's outside (radius R + T = 4), so each wall loses 4 mm
    // of flat to the bend.
    chain({{0, 20}, {0, 0}, {40, 0}});
    ok("sheet_flange",
       {{"sketch", "Sketch1"}, {"thickness", 2}, {"bend_radius", 2}, {"width", 30}});
    EXPECT_TRUE(valid("Body1"));
    EXPECT_NEAR(volumeOf("Body1"), (16 + 36) * 2 * 30 + bendVolume(90, 2, 2, 30), 1e-6);
    EXPECT_NEAR(cylinderRadius("Body1", "Flange1.Bend(Line1,Line2)"), 4, 1e-9);
    EXPECT_NEAR(cylinderRadius("Body1", "Flange1.Bend(Line1,Line2).opposite"), 2, 1e-9);
    for (const char* face : {"Flange1.Line1", "Flange1.Line2.opposite", "Flange1.start_cap",
                             "Flange1.end_cap", "Flange1.cap", "Flange1.cap.opposite"})
        EXPECT_TRUE(body("Body1")->shape.findByName(face)) << face;
    auto b = bounds(body("Body1")->shape.shape());
    EXPECT_NEAR(b[0], 0, 1e-6);
    EXPECT_NEAR(b[1], 0, 1e-6);
    EXPECT_NEAR(b[5], 30, 1e-6);

    // To the right the lines are the inside: radius 2, 2 mm of flat each.
    chain({{0, 20}, {0, 0}, {40, 0}});
    ok("sheet_flange", {{"sketch", "Sketch2"},
                        {"thickness", 2},
                        {"bend_radius", 2},
                        {"width", 30},
                        {"side", "right"}});
    EXPECT_TRUE(valid("Body2"));
    EXPECT_NEAR(volumeOf("Body2"), (18 + 38) * 2 * 30 + bendVolume(90, 2, 2, 30), 1e-6);
    b = bounds(body("Body2")->shape.shape());
    EXPECT_NEAR(b[0], -2, 1e-6);
    EXPECT_NEAR(b[1], -2, 1e-6);
}

TEST_F(SheetFlange, UProfileCentredBothWays) {
    // Symmetric centres the sheet on the lines (bends at R + T/2 = 3 from them) and
    // the width on the sketch.
    chain({{0, 20}, {0, 0}, {30, 0}, {30, 20}});
    ok("sheet_flange", {{"sketch", "Sketch1"},
                        {"thickness", 2},
                        {"bend_radius", 2},
                        {"width", 30},
                        {"symmetric", true}});
    EXPECT_TRUE(valid("Body1"));
    EXPECT_NEAR(volumeOf("Body1"), (17 + 24 + 17) * 2 * 30 + 2 * bendVolume(90, 2, 2, 30), 1e-6);
    const auto b = bounds(body("Body1")->shape.shape());
    EXPECT_NEAR(b[0], -1, 1e-6);
    EXPECT_NEAR(b[3], 31, 1e-6);
    EXPECT_NEAR(b[2], -15, 1e-6);
    EXPECT_NEAR(b[5], 15, 1e-6);
    // Centred, the plain names go to the right-hand face: the outside of left turns.
    EXPECT_NEAR(cylinderRadius("Body1", "Flange1.Bend(Line2,Line3)"), 4, 1e-9);
    EXPECT_NEAR(cylinderRadius("Body1", "Flange1.Bend(Line2,Line3).opposite"), 2, 1e-9);
}

TEST_F(SheetFlange, ProfilesThatCantBeBentAreRefused) {
    const Args sheet{{"thickness", 2}, {"bend_radius", 2}, {"width", 30}};
    auto flange = [&](const std::string& sketch, Args extra = {}) {
        CommandRecord record("sheet_flange");
        record.set("sketch", sketch);
        for (const auto& [key, arg] : sheet) record.set(key, arg.value);
        for (const auto& [key, arg] : extra) record.set(key, arg.value);
        const std::size_t objects = document.objects().size();
        CommandResult result = stack.execute(record);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(document.objects().size(), objects);
        return result.message;
    };
    EXPECT_EQ(flange(chain({{0, 3}, {0, 0}, {40, 0}})),
              "Line1 is too short for its bends: it needs to be longer than 4 mm.");
    EXPECT_EQ(flange(chain({{0, 0}, {10, 0}, {5, 0}})),
              "The profile folds back on itself between Line1 and Line2.");
    std::string branched = chain({{0, 0}, {10, 0}, {10, 10}});
    addLine(branched, 10, 0, 20, 5);
    EXPECT_EQ(flange(branched), "The profile branches: it must be one chain of lines.");
    std::string apart = chain({{0, 0}, {10, 0}});
    addLine(apart, 20, 0, 20, 10);
    EXPECT_EQ(flange(apart), "The profile's lines aren't joined end to end in one chain.");
    std::string curved = chain({{0, 0}, {10, 0}});
    ok("add_arc", {{"sketch", curved},
                   {"cx", 10},
                   {"cy", 5},
                   {"radius", 5},
                   {"start_angle", -90},
                   {"sweep_angle", 90}});
    EXPECT_EQ(flange(curved),
              "Arc1 isn't a straight line: draw the profile with lines; its corners become the "
              "bends.");
    const std::string empty = chain({});
    EXPECT_EQ(flange(empty), empty + " has nothing to make a flange from.");

    const std::string l = chain({{0, 20}, {0, 0}, {40, 0}});
    EXPECT_EQ(refused("sheet_flange", {{"sketch", l}}),
              "An open profile needs the flange's width (along the sketch's normal).");
    EXPECT_EQ(flange(l, {{"thickness", 0}}), "The thickness must be greater than zero.");
    EXPECT_EQ(refused("sheet_flange", {{"thickness", 2}}),
              "Pick the flange's sketch: a closed shape makes a flat plate, an open profile of "
              "lines a bent part.");
}

using SheetRulesKind = SheetModel;

TEST_F(SheetRulesKind, MeasuresAnExtrudedPlateAndItsFlangesFollow) {
    sketchWithRectangles({{0, 0, 40, 30}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 3}});
    EXPECT_EQ(ok("sheet_rules", {{"body", "Body1"}}), "Added SheetMetal1 to Body1.");
    EXPECT_NEAR(volumeOf("Body1"), 40 * 30 * 3, 1e-6);
    // Thickness 3 measured, bend radius 0 meaning the thickness.
    ok("edge_flange", {{"edge", "Body1/Edge(Extrude1.end, Extrude1.side.Rectangle1.right)"}});
    EXPECT_TRUE(valid("Body1"));
    EXPECT_NEAR(volumeOf("Body1"), 40 * 30 * 3 + bendVolume(90, 3, 3, 30) + 20 * 3 * 30, 1e-6);
}

TEST_F(SheetRulesKind, ABodyWithNoFaceAcrossIsNoSheet) {
    // A wedge 50 long: its largest face is the slope, with nothing parallel across it.
    const std::string wedge = chain({{0, 0}, {40, 0}, {0, 30}, {0, 0}});
    ok("extrude", {{"sketch", wedge}, {"distance", 50}});
    EXPECT_EQ(refused("sheet_rules", {{"body", "Body1"}}),
              "This body isn't a sheet: there's no face across from its largest face. Give the "
              "thickness.");
    EXPECT_EQ(refused("sheet_rules", {{"body", "Body1"}, {"thickness", 2}, {"bend_radius", -1}}),
              "The bend radius can't be negative.");
    EXPECT_EQ(refused("sheet_rules", {{"thickness", 2}}), "Pick the body to make sheet metal.");
}

} // namespace
} // namespace cad::testing
