// Sketches in project files, and sketch dimensions that follow parameters.
#include "SketchSession.h"

#include "core/DocumentJson.h"
#include "core/JsonLayout.h"
#include "core/Parameters.h"
#include "core/ProjectFile.h"
#include "sketch/SketchJson.h"

using namespace cad;
using cad::test::SketchSession;

namespace {

class SketchFiles : public SketchSession {
protected:
    SketchFiles() {
        registerSketchTypes(types);
        registerParameterCommands(registry);
        newSketch();
    }
    std::string documentText(const Document& doc) {
        SideFiles side;
        return layoutJson(writeDocumentJson(doc, side, types));
    }
    ObjectTypes types;
};

} // namespace

TEST_F(SketchFiles, EveryKindAndConstraintRoundTrips) {
    line(0, 0, 10, 1);
    ok(on("add_rectangle", {{"x1", 10}, {"y1", 10}, {"x2", 0}, {"y2", 4}}));
    ok(on("add_circle", {{"cx", 1}, {"cy", 2}, {"diameter", "1in"}}));
    ok(on("add_polygon", {{"cx", 0}, {"cy", 0}, {"sides", 6}, {"radius", 10}}));
    ok(on("add_slot", {{"x1", 0}, {"y1", 0}, {"x2", 5}, {"y2", 0}, {"width", 2}}));
    ok(on("add_point", {{"x", 3}, {"y", 4}, {"construction", true}}));
    ok(on("add_spline", {{"points", "0,0; 10,5; 20,0"}}));
    ok(on("add_arc",
          {{"cx", 0}, {"cy", 0}, {"radius", 2}, {"start_angle", 90}, {"sweep_angle", -90}}));
    ok(constraint("horizontal", "Line1"));
    ok(constraint("tangent", "Line1", "Circle1"));
    document.setParameters({Parameter{"w", "12", units::Length::Millimeters, false, ""}});
    ok(constraint("distance", "Rectangle1.bottom_left", "Rectangle1.top_right")
           .set("value", "w + 1"));

    const std::string first = documentText(document);
    Document back;
    nlohmann::json parsed = nlohmann::json::parse(first);
    Result<std::unique_ptr<ArchiveReader>> none =
        ArchiveReader::open(*writeArchive({{"x", "", 6}}));
    ASSERT_TRUE(readDocumentJson(parsed, **none, types, back).ok());
    EXPECT_EQ(documentText(back), first);
    auto* reread = dynamic_cast<SketchObject*>(back.find("Sketch1"));
    ASSERT_TRUE(reread);
    EXPECT_EQ(reread->constraints.back().expression->text, "w + 1");
    EXPECT_NE(first.find("\"kind\": \"polygon\""), std::string::npos);
    EXPECT_NE(first.find("\"origin\": [0.0, 0.0, 0.0]"), std::string::npos);
}

TEST_F(SketchFiles, DamagedSketchRecordsAreNamed) {
    const std::string sketch =
        R"({"type": "Sketch", "name": "S", "plane": {"origin": [0,0,0], "normal": [0,0,1], )"
        R"("xDirection": [1,0,0]}, )";
    const std::pair<std::string, const char*> cases[] = {
        {R"({"type": "Sketch", "name": "S"})", "sketch S: \"plane\" must be an object"},
        {sketch + R"("entities": [{"id": "L", "kind": "line", "start": [0, 0], "end": [0, 0]}]})",
         "sketch S: L: A line needs two distinct end points."},
        {sketch + R"("entities": [{"id": "C", "kind": "circle", "center": [0], "radius": 1}]})",
         "sketch S: C: \"center\" must be [x, y]"},
        {sketch + R"("constraints": [{"id": "H1", "type": "level", "refs": []}]})",
         "sketch S: H1: unknown constraint type \"level\""},
    };
    for (const auto& [record, message] : cases) {
        nlohmann::json doc = nlohmann::json::parse(R"({"objects": [)" + record + "]}");
        Document into;
        auto archive = ArchiveReader::open(*writeArchive({{"x", "", 6}}));
        EXPECT_EQ(readDocumentJson(doc, **archive, types, into).error(), message);
    }
}

TEST_F(SketchFiles, DimensionsFollowParameters) {
    line(0, 0, 10, 0);
    ok(constraint("horizontal", "Line1"));
    ok(CommandRecord("set_parameter").set("name", "len").set("expression", "20"));
    ok(constraint("length", "Line1").set("value", "len * 2"));
    EXPECT_NEAR(geometry<SketchLine>("Line1").end.x - geometry<SketchLine>("Line1").start.x, 40,
                1e-7);

    ok(CommandRecord("set_parameter").set("name", "len").set("expression", "30"));
    const SketchLine& l = geometry<SketchLine>("Line1");
    EXPECT_NEAR(std::hypot(l.end.x - l.start.x, l.end.y - l.start.y), 60, 1e-7);
    EXPECT_EQ(error(CommandRecord("set_parameter").set("name", "len").set("expression", "0")),
              "That would break Sketch1: Length1: A dimension must be greater than zero.");
    const std::string before = snapshot();
    stack.undo();
    EXPECT_NE(snapshot(), before);
    EXPECT_NEAR(geometry<SketchLine>("Line1").end.x - geometry<SketchLine>("Line1").start.x, 40,
                1e-7);
}
