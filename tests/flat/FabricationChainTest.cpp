// The fabrication chain as an agent runs it: a bracket bent from a sketched profile,
// two edge flanges, a hole cut while it lies flat between an Unfold and a Fold; its
// flat pattern written as DXF; twenty of it with two plain plates nested on
// 1000 x 500 sheets and written as one DXF. ezdxf and shapely read both files.
#include "core/GeometryObject.h"
#include "tests/mcp/McpTestSupport.h"
#include "tests/support/ProgramOutput.h"
#include "tests/support/TempFolder.h"

#include <cmath>
#include <fstream>

namespace cad::mcp::testing {
namespace {

TEST(FabricationChain, BracketFlatPatternAndNestCheckedByIndependentReaders) {
    HeadlessSession s;
    Session& agent = s.session;
    TempFolder folder;

    // An L of 40 up and 60 along, 2 thick, inner radius 2, 50 wide.
    agent.ok("create_sketch", {{"plane", "XY"}});
    agent.ok("add_line", {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 40}, {"x2", 0}, {"y2", 0}});
    agent.ok("add_line", {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 60}, {"y2", 0}});
    agent.ok("sheet_flange",
             {{"sketch", "Sketch1"}, {"thickness", 2}, {"bend_radius", 2}, {"width", 50}});
    agent.ok("edge_flange",
             {{"edge", "Body1/Edge(Flange1.Line1, Flange1.start_cap)"}, {"length", 15}});
    agent.ok("edge_flange",
             {{"edge", "Body1/Edge(Flange1.Line2, Flange1.end_cap)"}, {"length", 15}});
    const double bent = agent.okJson("get_body", {{"body", "Body1"}})["measured"]["volume_mm3"];

    // Laid flat, an 8 mm hole goes through the wall that was upright; folded back, the
    // bracket has lost exactly the hole's volume.
    agent.ok("unfold", {{"body", "Body1"}});
    agent.ok("create_sketch", {{"plane", "XZ"}});
    agent.ok("add_circle", {{"sketch", "Sketch2"}, {"cx", -25}, {"cy", 25}, {"radius", 4}});
    agent.ok("extrude", {{"sketch", "Sketch2"},
                         {"distance", 10},
                         {"operation", "cut"},
                         {"target", "Body1"},
                         {"extent", "symmetric"}});
    agent.ok("fold", {{"body", "Body1"}});
    const json folded = agent.okJson("get_body", {{"body", "Body1"}})["measured"];
    EXPECT_NEAR(bent - folded["volume_mm3"].get<double>(), 3.14159265358979 * 16 * 2, 1e-3);
    EXPECT_EQ(folded["bounds"][1][2], 50.0); // still bent: 50 wide, not lying flat

    const std::string flat = folder.file("bracket.dxf");
    const json blank = agent.okJson("flat_pattern", {{"body", "Body1"}, {"path", flat}});
    EXPECT_EQ(blank["holes"], 1);
    EXPECT_EQ(blank["bends"].size(), 3u);

    // Two other parts: a plate with a hole and a disc.
    agent.ok("create_sketch", {{"plane", "XY"}});
    agent.ok("add_rectangle",
             {{"sketch", "Sketch3"}, {"x1", 100}, {"y1", 0}, {"x2", 220}, {"y2", 80}});
    agent.ok("add_circle", {{"sketch", "Sketch3"}, {"cx", 130}, {"cy", 40}, {"radius", 10}});
    agent.ok("sheet_flange", {{"sketch", "Sketch3"}, {"thickness", 2}});
    agent.ok("create_sketch", {{"plane", "XY"}});
    agent.ok("add_circle", {{"sketch", "Sketch4"}, {"cx", 300}, {"cy", 0}, {"radius", 45}});
    agent.ok("sheet_flange", {{"sketch", "Sketch4"}, {"thickness", 2}});

    const std::string sheets = folder.file("nest.dxf");
    const json nested = agent.okJson("nest_parts", {{"parts",
                                                     {{{"body", "Body1"}, {"quantity", 20}},
                                                      {{"body", "Body2"}, {"quantity", 5}},
                                                      {{"body", "Body3"}, {"quantity", 8}}}},
                                                    {"sheet_width", 1000},
                                                    {"sheet_height", 500},
                                                    {"path", sheets}});
    EXPECT_EQ(nested["placements"].size(), 33u);
    EXPECT_EQ(nested["file"], sheets);

    const std::string request = folder.file("request.json");
    std::ofstream(request) << json{{"spacing", 3}, {"margin", 5}}.dump();
    const std::string report = cad::testing::programOutput(
        "/usr/bin/python3 " KORVEL_FABRICATION_CHECK " " + flat + " " + sheets + " " + request);
    const json read = json::parse(report, nullptr, false);
    ASSERT_FALSE(read.is_discarded()) << report;
    EXPECT_EQ(read["flat_errors"], 0);
    EXPECT_EQ(read["flat_outlines"], 1);
    EXPECT_EQ(read["flat_holes"], 1);
    // The blank is the part: its area times the thickness is the folded volume.
    EXPECT_NEAR(read["flat_area"].get<double>() * 2 / folded["volume_mm3"].get<double>(), 1, 0.005);
    EXPECT_EQ(read["nest_errors"], 0);
    EXPECT_EQ(read["parts"], 33);
    EXPECT_EQ(read["sheets"], nested["sheets"]);
    EXPECT_GE(read["closest"].get<double>(), 3 - 1e-6); // the spacing
    EXPECT_EQ(read["outside_margin"], 0);
    EXPECT_NEAR(read["usage"].get<double>() * 100, nested["usage"].get<double>(), 0.05);
}

TEST(FabricationChain, WorkOnAnOpenFoldGoesBeforeItAndFoldsWithThePart) {
    HeadlessSession s;
    Session& agent = s.session;
    agent.ok("create_sketch", {{"plane", "XY"}});
    agent.ok("add_line", {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 40}, {"x2", 0}, {"y2", 0}});
    agent.ok("add_line", {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 60}, {"y2", 0}});
    agent.ok("sheet_flange",
             {{"sketch", "Sketch1"}, {"thickness", 2}, {"bend_radius", 2}, {"width", 50}});
    const double bent = agent.okJson("get_body", {{"body", "Body1"}})["measured"]["volume_mm3"];
    agent.ok("unfold", {{"body", "Body1"}});
    agent.ok("fold", {{"body", "Body1"}, {"open", true}});
    agent.ok("create_sketch", {{"plane", "XZ"}});
    agent.ok("add_circle", {{"sketch", "Sketch2"}, {"cx", -20}, {"cy", 25}, {"radius", 4}});
    agent.ok("extrude", {{"sketch", "Sketch2"},
                         {"distance", 10},
                         {"operation", "cut"},
                         {"target", "Body1"},
                         {"extent", "symmetric"}});
    const auto* body = s.host.document().findAs<GeometryObject>("Body1");
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(body->features,
              (std::vector<std::string>{"Flange1", "Unfold1", "Extrude1", "Fold1"}));

    // Closed, the fold bends the part back up with the hole in it.
    agent.ok("edit_fold", {{"feature", "Fold1"}, {"open", false}});
    const json folded = agent.okJson("get_body", {{"body", "Body1"}})["measured"];
    EXPECT_NEAR(bent - folded["volume_mm3"].get<double>(), 3.14159265358979 * 16 * 2, 1e-3);
    EXPECT_EQ(folded["bounds"][1][1], 40.0); // upright again
    // Closed, it no longer holds the end: the next feature goes after it.
    agent.ok("create_sketch", {{"plane", "XY"}});
    agent.ok("add_circle", {{"sketch", "Sketch3"}, {"cx", 30}, {"cy", 1}, {"radius", 1}});
    agent.ok("extrude", {{"sketch", "Sketch3"},
                         {"distance", -3},
                         {"operation", "join"},
                         {"target", "Body1"}});
    EXPECT_EQ(body->features.back(), "Extrude2");
}

TEST(FabricationChain, NestPartsSaysWhatIsWrongAndAnswersInItsUnit) {
    HeadlessSession s;
    Session& agent = s.session;
    agent.ok("create_sketch", {{"plane", "XY"}});
    agent.ok("add_rectangle",
             {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 254}, {"y2", 25.4}});
    agent.ok("sheet_flange", {{"sketch", "Sketch1"}, {"thickness", 1}});
    const json plate = {{{"body", "Body1"}, {"quantity", 2}}};
    auto refusal = [&](json arguments) {
        const ToolReply reply = agent.call("nest_parts", std::move(arguments));
        EXPECT_TRUE(reply.isError);
        return reply.text;
    };
    EXPECT_EQ(refusal({{"parts", json::array()}, {"sheet_width", 100}, {"sheet_height", 100}}),
              "Choose the parts to nest.");
    EXPECT_EQ(
        refusal({{"parts", {{{"body", "Body9"}}}}, {"sheet_width", 100}, {"sheet_height", 100}}),
        "No body named 'Body9'.");
    EXPECT_EQ(refusal({{"parts", {{{"body", "Body1"}, {"quantity", -1}}}},
                       {"sheet_width", 100},
                       {"sheet_height", 100}}),
              "nest_parts: a part's 'quantity' is a whole number, 0 or more.");
    EXPECT_EQ(refusal({{"parts", plate}, {"sheet_width", 100}, {"sheet_height", 100}}),
              "Body1 (254 x 25 mm) doesn't fit on the sheet.");
    EXPECT_EQ(
        refusal({{"parts", plate}, {"sheet_width", 300}, {"sheet_height", 100}, {"margin", 50}}),
        "The margins leave no room on the sheet.");
    EXPECT_EQ(
        refusal({{"parts", plate}, {"sheet_width", 300}, {"sheet_height", 100}, {"unit", "yd"}}),
        "Unknown unit.");
    EXPECT_EQ(
        refusal({{"parts", plate}, {"sheet_width", 300}, {"sheet_height", 100}, {"path", "a.txt"}}),
        "Export as .dxf or .svg.");

    // In inches: a 12 x 4 in sheet, 0.1 in apart and 0.2 in from the edges; the two
    // 10 x 1 in plates stack, the second 1.1 in above the first.
    const json inches = agent.okJson("nest_parts", {{"parts", plate},
                                                    {"sheet_width", 12},
                                                    {"sheet_height", 4},
                                                    {"spacing", 0.1},
                                                    {"margin", 0.2},
                                                    {"unit", "in"}});
    EXPECT_EQ(inches["sheets"], 1);
    ASSERT_EQ(inches["placements"].size(), 2u);
    EXPECT_NEAR(inches["placements"][0]["x"].get<double>(), 0.2, 1e-9);
    EXPECT_NEAR(inches["placements"][1]["y"].get<double>() -
                    inches["placements"][0]["y"].get<double>(),
                1.1, 1e-9);
    EXPECT_EQ(inches["usage"], std::round(2 * 10.0 / 48 * 1000) / 10);
}

} // namespace
} // namespace cad::mcp::testing
