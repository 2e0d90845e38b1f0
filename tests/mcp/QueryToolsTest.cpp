// The query and file tools: the document and sketch answers, undo and redo, the
// project files, and the view tools of a host without a window.
#include "McpTestSupport.h"

#include "core/DocumentJson.h"
#include "mcp/QueryTools.h"

#include <cmath>

namespace cad::mcp::testing {
namespace {

// A sketch with one 10 x 20 rectangle extruded by `distance`.
void buildPlate(Session& s, json distance) {
    s.ok("create_sketch", {{"plane", "XY"}});
    s.ok("add_rectangle", {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 10}, {"y2", 20}});
    s.ok("extrude", {{"sketch", "Sketch1"}, {"distance", std::move(distance)}});
}

TEST(McpGetDocument, WrapsTheProjectJsonWithLiveInformation) {
    HeadlessSession h;
    buildPlate(h.session, "1/3");
    json answer = h.session.okJson("get_document");
    EXPECT_EQ(answer["file"], "");
    EXPECT_EQ(answer["live"], false);
    EXPECT_EQ(answer["lengths_in"], "mm (display unit: mm)");

    // The document part is the project writer's JSON, each record completed.
    SideFiles side;
    json written = json::parse(writeDocumentJson(h.host.document(), side, allObjectTypes()).dump());
    json document = answer["document"];
    ASSERT_EQ(document["objects"].size(), written["objects"].size());
    for (json& record : document["objects"]) {
        record.erase("measured");
        record.erase("analysis");
        record.erase("error");
        record.erase("placement");
    }
    EXPECT_EQ(document.dump(), written.dump());

    const json& objects = answer["document"]["objects"];
    const json& sketch = objects[0];
    EXPECT_EQ(sketch["name"], "Sketch1");
    EXPECT_EQ(sketch["analysis"].dump(), R"({"degrees_of_freedom":4,"fully_constrained":false})");
    const json& body = objects[1];
    EXPECT_EQ(body["name"], "Body1");
    const json& measured = body["measured"];
    EXPECT_EQ(measured["empty"], false);
    // 10 x 20 x 1/3: every number rounded to 6 decimals.
    EXPECT_EQ(measured["volume_mm3"].get<double>(), 66.666667);
    EXPECT_EQ(measured["center_of_mass"][2].get<double>(), 0.166667);
    EXPECT_EQ(measured["bounds"].dump(), "[[0.0,0.0,0.0],[10.0,20.0,0.333333]]");
    EXPECT_EQ(measured["faces"], 6);
    EXPECT_NEAR(measured["surface_area_mm2"].get<double>(), 420, 1e-6);
    EXPECT_FALSE(measured.contains("material"));
    EXPECT_FALSE(objects[2].contains("measured"));
    EXPECT_FALSE(objects[2].contains("analysis"));

    h.session.ok("set_units", {{"length", "in"}});
    EXPECT_EQ(h.session.okJson("get_document")["lengths_in"], "mm (display unit: in)");
}

TEST(McpGetDocument, ReportsFailedFeaturesAndEmptyBodies) {
    HeadlessSession h;
    buildPlate(h.session, 5);
    // Deleting the sketch's rectangle leaves the extrusion nothing to extrude.
    h.session.ok("delete_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Rectangle1"}});
    json objects = h.session.okJson("get_document")["document"]["objects"];
    ASSERT_EQ(objects.size(), 3u);
    EXPECT_EQ(objects[1]["measured"].dump(), R"({"empty":true,"appearance":""})");
    ASSERT_TRUE(objects[2].contains("error")) << objects.dump();
    EXPECT_FALSE(objects[2]["error"].get<std::string>().empty());
    EXPECT_FALSE(objects[0].contains("error"));
    HeadlessSession empty;
    EXPECT_EQ(empty.session.okJson("get_document")["document"]["objects"].dump(), "[]");
    EXPECT_EQ(empty.session.call("get_document", {{"x", 1}}).text,
              "get_document: unknown argument 'x'. It takes no arguments.");
}

TEST(McpGetDocument, MeasuresFollowEveryRebuild) {
    HeadlessSession h;
    buildPlate(h.session, 5);
    auto volume = [&] {
        return h.session.okJson("get_document")["document"]["objects"][1]["measured"]["volume_mm3"]
            .get<double>();
    };
    EXPECT_EQ(volume(), 1000.0);
    h.session.ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 7}});
    EXPECT_EQ(volume(), 1400.0);
    h.session.ok("undo");
    EXPECT_EQ(volume(), 1000.0);
    h.session.ok("redo");
    EXPECT_EQ(volume(), 1400.0);
}

TEST(McpGetDocument, PlanesAndSectionsSayWhereTheyAreAndWhyNot) {
    HeadlessSession h;
    buildPlate(h.session, 5);
    h.session.ok("add_plane", {{"references", "Body1/Extrude1.end"}, {"distance", 3}});
    h.session.ok("add_section", {{"references", "YZ"}, {"distance", 4}, {"flip", true}});
    auto objects = [&] { return h.session.okJson("get_document")["document"]["objects"]; };
    json listed = objects();
    ASSERT_EQ(listed.size(), 5u);
    EXPECT_EQ(listed[3]["placement"]["origin"][2], 8.0);
    EXPECT_EQ(listed[3]["placement"]["normal"].dump(), "[0.0,0.0,1.0]");
    EXPECT_FALSE(listed[3].contains("error"));
    EXPECT_EQ(listed[4]["placement"]["origin"].dump(), "[4.0,0.0,0.0]");
    EXPECT_EQ(listed[4]["placement"]["normal"].dump(), "[-1.0,0.0,0.0]");

    // The plane follows the face; once the face is gone it stays put and says why.
    h.session.ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 7}});
    EXPECT_EQ(objects()[3]["placement"]["origin"][2], 10.0);
    h.session.ok("delete_sketch_entity", {{"sketch", "Sketch1"}, {"entity", "Rectangle1"}});
    listed = objects();
    EXPECT_EQ(listed[3]["placement"]["origin"][2], 10.0);
    ASSERT_TRUE(listed[3].contains("error")) << listed[3].dump();
    EXPECT_FALSE(listed[4].contains("error"));
}

TEST(McpGetSketch, ListsNamedPointsAndFreedom) {
    HeadlessSession h;
    h.session.ok("create_sketch", {{"plane", "XY"}});
    h.session.ok("add_line", {{"sketch", "Sketch1"}, {"x1", 1}, {"y1", 2}, {"x2", 4}, {"y2", 6}});
    h.session.ok("add_constraint", {{"sketch", "Sketch1"}, {"type", "horizontal"}, {"a", "Line1"}});
    json sketch = h.session.okJson("get_sketch", {{"sketch", "sketch1"}});
    EXPECT_EQ(sketch["name"], "Sketch1");
    ASSERT_EQ(sketch["entities"].size(), 1u); // as the project file holds them
    EXPECT_EQ(sketch["entities"][0]["id"], "Line1");
    EXPECT_EQ(sketch["constraints"].size(), 1u);
    EXPECT_EQ(sketch["analysis"]["degrees_of_freedom"], 3);
    EXPECT_EQ(sketch["analysis"]["fully_constrained"], false);
    const json& points = sketch["named_points"]; // where the solver put them
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0]["ref"], "Line1.start");
    EXPECT_EQ(points[1]["ref"], "Line1.end");
    EXPECT_EQ(points[0]["y"], points[1]["y"]);
    EXPECT_EQ(points[1]["x"].get<double>() - points[0]["x"].get<double>(), 3.0);

    struct Bad {
        json arguments;
        const char* text;
    };
    for (const Bad& bad :
         {Bad{{{"sketch", "Sketch7"}}, "No sketch named 'Sketch7'."},
          Bad{json::object(), "get_sketch: missing string argument 'sketch'."},
          Bad{{{"sketch", 3}}, "get_sketch: 'sketch' must be text."},
          Bad{{{"sketch", "Sketch1"}, {"entity", "Line1"}},
              "get_sketch: unknown argument 'entity'. Expected one of: sketch."}}) {
        ToolReply reply = h.session.call("get_sketch", bad.arguments);
        EXPECT_TRUE(reply.isError);
        EXPECT_EQ(reply.text, bad.text);
    }
}

TEST(McpHistoryTools, UndoAndRedoNameTheCommand) {
    HeadlessSession h;
    ToolReply nothing = h.session.call("undo");
    EXPECT_TRUE(nothing.isError);
    EXPECT_EQ(nothing.text, "Nothing to undo.");
    EXPECT_EQ(h.session.call("redo").text, "Nothing to redo.");

    h.session.ok("create_sketch", {{"plane", "XY"}});
    h.session.ok("create_sketch", {{"plane", "XZ"}});
    EXPECT_EQ(h.session.ok("undo"), "Undid create_sketch(plane=\"XZ\").");
    EXPECT_EQ(h.host.document().objects().size(), 1u);
    EXPECT_EQ(h.session.ok("redo"), "Redid create_sketch(plane=\"XZ\").");
    EXPECT_EQ(h.host.document().objects().size(), 2u);
    EXPECT_EQ(h.host.commandStack().undoCount(), 2u);
    h.session.ok("undo");
    h.session.ok("undo");
    EXPECT_TRUE(h.host.document().objects().empty());
    EXPECT_EQ(h.session.call("undo").text, "Nothing to undo.");
}

TEST(McpFileTools, SaveOpenAndStartOver) {
    TempFolder folder;
    HeadlessSession h;
    ToolReply unsaved = h.session.call("save_project");
    EXPECT_TRUE(unsaved.isError);
    EXPECT_EQ(unsaved.text, "The document has never been saved: give a path.");

    h.session.ok("set_parameter", {{"name", "width"}, {"expression", "40mm"}});
    h.session.ok("set_units", {{"length", "in"}});
    const std::string path = folder.file("plate.kv3");
    EXPECT_EQ(h.session.ok("save_project", {{"path", path}}), "Saved " + path + ".");
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(h.session.okJson("get_document")["file"], path);
    EXPECT_EQ(h.session.ok("save_project"), "Saved " + path + ".");

    EXPECT_EQ(h.session.ok("new_document"), "Started a new document.");
    json fresh = h.session.okJson("get_document");
    EXPECT_EQ(fresh["file"], "");
    EXPECT_EQ(fresh["lengths_in"], "mm (display unit: mm)");
    EXPECT_FALSE(fresh["document"].contains("parameters"));
    EXPECT_EQ(h.session.call("undo").text, "Nothing to undo.");

    EXPECT_EQ(h.session.ok("open_project", {{"path", path}}), "Opened " + path + ".");
    json reopened = h.session.okJson("get_document");
    EXPECT_EQ(reopened["file"], path);
    EXPECT_EQ(reopened["lengths_in"], "mm (display unit: in)");
    EXPECT_EQ(reopened["document"]["parameters"][0]["name"], "width");
    EXPECT_EQ(h.session.call("undo").text, "Nothing to undo.");

    const std::string missing = folder.file("missing.kv3");
    ToolReply notThere = h.session.call("open_project", {{"path", missing}});
    EXPECT_TRUE(notThere.isError);
    EXPECT_EQ(notThere.text, "Could not open " + missing + ".");
    EXPECT_EQ(h.session.okJson("get_document")["file"], path); // the open document stays
    EXPECT_EQ(h.session.call("open_project").text, "open_project: missing string argument 'path'.");
    ToolReply nowhere =
        h.session.call("save_project", {{"path", folder.file("no/such/dir/x.kv3")}});
    EXPECT_TRUE(nowhere.isError);
    EXPECT_EQ(h.session.okJson("get_document")["file"], path);

    // A relative path is answered and kept as an absolute one.
    std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    std::string relative = h.session.ok("save_project", {{"path", "relative.kv3"}});
    std::filesystem::current_path(here);
    EXPECT_EQ(relative, "Saved " + folder.file("relative.kv3") + ".");
}

TEST(McpViewTools, AHeadlessHostHasNoView) {
    HeadlessSession h;
    ToolReply shot = h.session.call("screenshot");
    EXPECT_TRUE(shot.isError);
    EXPECT_EQ(shot.text, "Couldn't capture the view.");
    ToolReply view = h.session.call("set_view", {{"view", "top"}});
    EXPECT_TRUE(view.isError);
    EXPECT_EQ(view.text,
              "There is no view to turn: this Korvel Studio agent server runs without a window.");
    EXPECT_EQ(h.session.call("set_view", {{"view", "sideways"}}).text,
              "Unknown view 'sideways'. Expected top, front, right, iso or fit.");
}

TEST(McpMeasures, RoundToSixDecimals) {
    struct Case {
        double in, out;
    };
    for (const Case& c : {Case{1.0 / 3, 0.333333}, Case{2.0 / 3, 0.666667}, Case{-1e-9, 0},
                          Case{12.0000004, 12}, Case{-2.4999996, -2.5}}) {
        EXPECT_EQ(roundMeasure(c.in), c.out) << c.in;
        EXPECT_FALSE(std::signbit(roundMeasure(-1e-9)));
    }
}

} // namespace
} // namespace cad::mcp::testing
