// get_body and measure on extruded plates: persistent references, what each
// element measures, distances, angles and hole spacing, and the reference errors.
#include "McpTestSupport.h"

namespace cad::mcp::testing {
namespace {

// A 40 x 20 x 5 plate with two 6 mm holes 20 mm apart.
class PlateWithHoles : public ::testing::Test {
protected:
    void SetUp() override {
        s.ok("create_sketch", {{"plane", "XY"}});
        s.ok("add_rectangle",
             {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 40}, {"y2", 20}});
        s.ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 10}, {"cy", 10}, {"radius", 3}});
        s.ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 30}, {"cy", 10}, {"radius", 3}});
        s.ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
        body = s.okJson("get_body", {{"body", "Body1"}});
    }
    // The reference of the first element in `list` whose reference contains `part`
    // (and whose kind is `kind`, when given).
    std::string ref(const char* list, const std::string& part, const std::string& kind = {}) {
        for (const json& item : body[list])
            if (item["ref"].get<std::string>().find(part) != std::string::npos &&
                (kind.empty() || item["kind"] == kind))
                return item["ref"];
        ADD_FAILURE() << "no " << list << " with " << part << " in " << body[list].dump();
        return {};
    }
    json item(const char* list, const std::string& reference) {
        for (const json& i : body[list])
            if (i["ref"] == reference) return i;
        return {};
    }

    HeadlessSession h;
    Session& s = h.session;
    json body;
};

TEST_F(PlateWithHoles, GetBodyListsEveryElementByPersistentName) {
    EXPECT_EQ(body["body"], "Body1");
    EXPECT_EQ(body["measured"]["faces"], 8);
    EXPECT_NEAR(body["measured"]["volume_mm3"].get<double>(),
                40 * 20 * 5 - 2 * 9 * 3.14159265358979 * 5, 1e-5);
    ASSERT_EQ(body["faces"].size(), 8u);
    EXPECT_GE(body["edges"].size(), 18u);
    EXPECT_GE(body["vertices"].size(), 8u);

    json top = item("faces", "Body1/Extrude1.end");
    ASSERT_FALSE(top.is_null()) << body["faces"].dump();
    EXPECT_EQ(top["kind"], "plane");
    EXPECT_EQ(top["normal"].dump(), "[0.0,0.0,1.0]");
    EXPECT_NEAR(top["area_mm2"].get<double>(), 800 - 18 * 3.14159265358979, 1e-5);
    json bottom = item("faces", "Body1/Extrude1.start");
    ASSERT_FALSE(bottom.is_null());
    EXPECT_EQ(bottom["normal"].dump(), "[0.0,0.0,-1.0]");

    json hole = item("faces", ref("faces", "Circle1"));
    EXPECT_EQ(hole["kind"], "cylinder");
    EXPECT_EQ(hole["radius_mm"], 3.0);
    EXPECT_EQ(hole["diameter_mm"], 6.0);
    EXPECT_EQ(hole["whole_circle"], true);
    EXPECT_EQ(hole["center"].dump(), "[10.0,10.0,2.5]");

    for (const json& e : body["edges"]) {
        EXPECT_EQ(e["ref"].get<std::string>().rfind("Body1/", 0), 0u) << e.dump();
        if (e["kind"] == "line") {
            EXPECT_TRUE(e.contains("start") && e.contains("end"));
            EXPECT_TRUE(e["length_mm"] == 40.0 || e["length_mm"] == 20.0 || e["length_mm"] == 5.0)
                << e.dump();
        }
    }
    for (const json& v : body["vertices"]) EXPECT_EQ(v["kind"], "vertex");

    ToolReply missing = s.call("get_body", {{"body", "Body4"}});
    EXPECT_TRUE(missing.isError);
    EXPECT_EQ(missing.text, "No body named 'Body4'.");
}

TEST_F(PlateWithHoles, MeasuresOneShape) {
    json whole = s.okJson("measure", {{"a", "Body1"}});
    EXPECT_NEAR(whole["volume_mm3"].get<double>(), 4000 - 90 * 3.14159265358979, 1e-5);
    json face = s.okJson("measure", {{"a", "Body1/Extrude1.end"}});
    EXPECT_EQ(face["normal"].dump(), "[0.0,0.0,1.0]");
    json byIndex = s.okJson("measure", {{"a", "Body1.face1"}});
    EXPECT_TRUE(byIndex.contains("area_mm2"));
    json edge = s.okJson("measure", {{"a", "Body1.edge1"}});
    EXPECT_TRUE(edge.contains("length_mm"));
    json vertex = s.okJson("measure", {{"a", "Body1.vertex1"}});
    EXPECT_EQ(vertex["position"].size(), 3u);
    json circle = s.okJson("measure", {{"a", ref("edges", "Circle2", "circle")}});
    EXPECT_EQ(circle["kind"], "circle");
    EXPECT_EQ(circle["radius_mm"], 3.0);
    EXPECT_NEAR(circle["length_mm"].get<double>(), 6 * 3.14159265358979, 1e-6);
}

TEST_F(PlateWithHoles, MeasuresBetweenTwoShapes) {
    json faces = s.okJson("measure", {{"a", "Body1/Extrude1.end"}, {"b", "Body1/Extrude1.start"}});
    EXPECT_EQ(faces["distance_mm"], 5.0);
    EXPECT_EQ(faces["angle_degrees"], 0.0);
    EXPECT_EQ(faces["delta_mm"]["z"], -5.0);
    EXPECT_EQ(faces["closest_points"][0]["z"], 5.0);
    EXPECT_EQ(faces["closest_points"][1]["z"], 0.0);
    EXPECT_FALSE(faces.contains("center_distance_mm"));

    json holes =
        s.okJson("measure", {{"a", ref("faces", "Circle1")}, {"b", ref("faces", "Circle2")}});
    EXPECT_EQ(holes["center_distance_mm"], 20.0);
    EXPECT_EQ(holes["distance_mm"], 14.0);
    EXPECT_EQ(holes["angle_degrees"], 0.0);

    json side =
        s.okJson("measure", {{"a", "Body1/Extrude1.end"}, {"b", ref("faces", "side.Rectangle1")}});
    EXPECT_EQ(side["angle_degrees"], 90.0);
    json axisToTop =
        s.okJson("measure", {{"a", "Body1/Extrude1.end"}, {"b", ref("faces", "Circle1")}});
    EXPECT_EQ(axisToTop["angle_degrees"], 90.0); // the hole's axis stands square to the top
}

TEST_F(PlateWithHoles, ReferenceProblemsSayWhatToDo) {
    struct Case {
        const char* reference;
        const char* text;
    };
    for (const Case& c :
         {Case{"Body9", "No body named 'Body9'."},
          Case{"Body1/Extrude7.end",
               "Body1/Extrude7.end has no element with that name now (see get_body)."},
          Case{"Body1.face99", "Body1.face99: Body1 has no face 99 (see get_body)."},
          Case{"Sketch1", "'Sketch1': expected Body1, Body1/<name from get_body>, or Body1.faceN / "
                          "edgeN / vertexN."}}) {
        ToolReply reply = s.call("measure", {{"a", c.reference}});
        EXPECT_TRUE(reply.isError);
        EXPECT_EQ(reply.text, c.text) << c.reference;
    }
    EXPECT_EQ(s.call("measure").text, "measure: missing string argument 'a'.");
    s.ok("undo"); // the extrusion: the body goes with it
    EXPECT_EQ(s.call("measure", {{"a", "Body1"}}).text, "No body named 'Body1'.");
}

} // namespace
} // namespace cad::mcp::testing
