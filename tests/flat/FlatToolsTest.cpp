// flat_pattern and export_flat as an agent calls them: the blank's JSON, the DXF read
// back and audited by ezdxf (outline, hole and bend line on their layers), the
// answer's sizes in the file's unit, and the sentences for bad arguments.
#include "FlatTestModel.h"

#include "mcp/FlatTools.h"
#include "mcp/HeadlessHost.h"
#include "tests/support/ProgramOutput.h"
#include "tests/support/TempFolder.h"

#include <filesystem>
#include <fstream>

namespace cad::testing {
namespace {

using json = nlohmann::ordered_json;

class FlatTools : public ::testing::Test {
protected:
    FlatTools() {
        addSheetMetalKinds();
        addFlatKinds();
        registerParamCommands(host.registry());
        // An L 30 then 90 degrees (R 2) then 20, 2 thick and 20 wide, with a 6 mm hole
        // in its upright wall.
        addBody(host.document(), SheetPath(2, 20).straight(30).bend(90, 2).straight(20).shape());
        command("sheet_rules", {{"body", "Body1"}, {"thickness", 2.0}, {"bend_radius", 2.0}});
        command("unfold", {{"body", "Body1"}, {"face", "Sheet.bottom"}});
        command("create_sketch", {{"origin_x", 0.0},
                                  {"origin_y", 0.0},
                                  {"origin_z", 2.0},
                                  {"normal_x", 0.0},
                                  {"normal_y", 0.0},
                                  {"normal_z", 1.0},
                                  {"x_dir_x", 1.0},
                                  {"x_dir_y", 0.0},
                                  {"x_dir_z", 0.0}});
        command("add_circle",
                {{"sketch", "Sketch1"}, {"cx", 30 + length() + 10}, {"cy", 10.0}, {"radius", 3.0}});
        command(
            "extrude",
            {{"sketch", "Sketch1"}, {"distance", -2.0}, {"operation", "cut"}, {"target", "Body1"}});
        command("fold", {{"body", "Body1"}});
    }
    static double length() { return pi / 2 * (2 + 0.44 * 2); }

    void command(const std::string& name,
                 std::initializer_list<std::pair<const char*, Value>> args) {
        CommandRecord record(name);
        for (const auto& [key, value] : args) record.set(key, value);
        const CommandResult result = host.commandStack().execute(record);
        ASSERT_TRUE(result.ok) << name << ": " << result.message;
    }
    mcp::ToolAnswer call(const char* tool, const json& arguments) {
        const mcp::ToolArguments args(tool, arguments);
        return std::string(tool) == "export_flat" ? mcp::exportFlatTool(host, args)
                                                  : mcp::flatPatternTool(host, args);
    }

    mcp::HeadlessHost host;
    TempFolder scratch;
};

TEST_F(FlatTools, FlatPatternAnswersTheBlankAndWritesADxfEzdxfReads) {
    const std::string path = scratch.file("bracket.dxf");
    const mcp::ToolAnswer answer = call("flat_pattern", {{"body", "Body1"}, {"path", path}});
    ASSERT_FALSE(answer.isError) << answer.text;
    const json blank = json::parse(answer.text);
    EXPECT_NEAR(std::max(blank["width_mm"].get<double>(), blank["height_mm"].get<double>()),
                50 + length(), 1e-6);
    EXPECT_EQ(blank["thickness_mm"], 2.0);
    EXPECT_EQ(blank["k_factor"], 0.44);
    EXPECT_EQ(blank["holes"], 1);
    ASSERT_EQ(blank["bends"].size(), 1u);
    EXPECT_EQ(blank["bends"][0]["angle_degrees"], 90.0);
    EXPECT_EQ(blank["bends"][0]["inner_radius_mm"], 2.0);
    EXPECT_EQ(blank["bends"][0]["line_mm"].size(), 4u);
    EXPECT_EQ(blank["wrote"], path);

    if (!std::filesystem::exists("/usr/bin/python3") ||
        programOutput("/usr/bin/python3 -c 'import ezdxf'") != "")
        GTEST_SKIP() << "python3-ezdxf is not installed";
    std::ofstream(scratch.file("read.py")) << "import ezdxf,sys\n"
                                              "d=ezdxf.readfile(sys.argv[1]); a=d.audit()\n"
                                              "print('errors',len(a.errors))\n"
                                              "for e in d.modelspace():\n"
                                              " print(e.dxftype(),e.dxf.layer,round(e.dxf.radius,6)"
                                              " if e.dxftype()=='CIRCLE' else '')\n";
    const std::string out =
        programOutput("/usr/bin/python3 " + scratch.file("read.py") + " " + path);
    for (const char* line :
         {"errors 0\n", "LINE CUT_OUTSIDE \n", "CIRCLE CUT_INSIDE 3.0\n", "LINE BEND \n"})
        EXPECT_NE(out.find(line), std::string::npos) << line << " in\n" << out;
}

TEST_F(FlatTools, ExportFlatAnswersInTheFilesUnit) {
    const std::string path = scratch.file("bracket.svg");
    const mcp::ToolAnswer answer =
        call("export_flat", {{"body", "Body1"}, {"path", path}, {"unit", "cm"}});
    ASSERT_FALSE(answer.isError) << answer.text;
    EXPECT_EQ(answer.text.rfind("Wrote " + path + ": ", 0), 0u) << answer.text;
    // Laid along its longest straight edge: 5 cm of walls and the bend, 2 cm wide.
    EXPECT_NE(answer.text.find(": 5.452"), std::string::npos) << answer.text;
    EXPECT_NE(answer.text.find(" cm x 2 cm, 0.2 cm thick."), std::string::npos) << answer.text;
    EXPECT_TRUE(std::filesystem::exists(path));

    EXPECT_EQ(call("export_flat", {{"body", "Body1"}, {"path", path}, {"unit", "yd"}}).text,
              "Unknown unit.");
    EXPECT_EQ(call("flat_pattern", {{"body", "Body1"}, {"face", "Sheet.nope"}}).text,
              "Body1 has no face 'Sheet.nope'.");
    EXPECT_EQ(call("flat_pattern", {{"body", "Nope"}}).text, "No body named 'Nope'.");
    EXPECT_EQ(call("export_flat", {{"body", "Body1"}, {"path", scratch.file("a.png")}}).text,
              "Export as .dxf or .svg.");
    const mcp::ToolAnswer extra = call("flat_pattern", {{"body", "Body1"}, {"colour", "red"}});
    EXPECT_TRUE(extra.isError);
}

} // namespace
} // namespace cad::testing
