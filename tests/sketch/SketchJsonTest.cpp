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
    CommandRecord add(const char* command) {
        return CommandRecord(command).set("sketch", "Sketch1");
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
    ok(add("add_rectangle").set("x1", 10).set("y1", 10).set("x2", 0).set("y2", 4));
    ok(add("add_circle").set("cx", 1).set("cy", 2).set("diameter", "1in"));
    ok(add("add_polygon").set("cx", 0).set("cy", 0).set("sides", 6).set("radius", 10));
    ok(add("add_slot").set("x1", 0).set("y1", 0).set("x2", 5).set("y2", 0).set("width", 2));
    ok(add("add_point").set("x", 3).set("y", 4).set("construction", true));
    ok(add("add_spline").set("points", "0,0; 10,5; 20,0"));
    ok(add("add_arc")
           .set("cx", 0)
           .set("cy", 0)
           .set("radius", 2)
           .set("start_angle", 90)
           .set("sweep_angle", -90));
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
    auto problem = [&](const char* sketchRecord) {
        nlohmann::json doc =
            nlohmann::json::parse(std::string(R"({"objects": [)") + sketchRecord + "]}");
        Document into;
        auto archive = ArchiveReader::open(*writeArchive({{"x", "", 6}}));
        return readDocumentJson(doc, **archive, types, into).error();
    };
    const std::string plane =
        R"("plane": {"origin": [0,0,0], "normal": [0,0,1], "xDirection": [1,0,0]})";
    EXPECT_EQ(problem(R"({"type": "Sketch", "name": "S"})"),
              "sketch S: \"plane\" must be an object");
    EXPECT_EQ(
        problem(
            (R"({"type": "Sketch", "name": "S", )" + plane +
             R"(, "entities": [{"id": "Line1", "kind": "line", "start": [0, 0], "end": [0, 0]}]})")
                .c_str()),
        "sketch S: Line1: A line needs two distinct end points.");
    EXPECT_EQ(
        problem((R"({"type": "Sketch", "name": "S", )" + plane +
                 R"(, "entities": [{"id": "C", "kind": "circle", "center": [0], "radius": 1}]})")
                    .c_str()),
        "sketch S: C: \"center\" must be [x, y]");
    EXPECT_EQ(problem((R"({"type": "Sketch", "name": "S", )" + plane +
                       R"(, "constraints": [{"id": "H1", "type": "level", "refs": []}]})")
                          .c_str()),
              "sketch S: H1: unknown constraint type \"level\"");
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
