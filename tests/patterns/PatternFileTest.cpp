// Project files with patterns, mirrors, splits, combines, frozen shapes and pattern
// sets: saved and opened again with the same volumes, values typed as parameters
// still following them, and a damaged pattern set refused by name.
#include "PatternTestModel.h"

#include "core/DocumentJson.h"
#include "core/ProjectFile.h"
#include "geometry/GeometryTypes.h"
#include "geometry/param/ParamTypes.h"
#include "sketch/SketchJson.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepTools.hxx>

#include <sstream>

namespace cad::testing {

namespace {

class PatternFile : public PatternModel {
protected:
    PatternFile() {
        registerSketchTypes(types);
        registerGeometryTypes(types);
        registerPatternTypes(types);
        registerParamTypes(types);
    }
    std::vector<double> volumes() {
        std::vector<double> out;
        for (const auto& object : document.objects())
            if (auto* b = dynamic_cast<const GeometryObject*>(object.get()))
                out.push_back(b->shape.isNull() ? 0.0 : volume(b->shape.shape()));
        return out;
    }
    void reopen() {
        Result<Bytes> bytes = projectBytes(document, "Korvel Studio test", types);
        ASSERT_TRUE(bytes.ok()) << bytes.error();
        Result<std::unique_ptr<Document>> reopened =
            readProjectBytes(std::move(bytes).value(), "patterns.kv3", types);
        ASSERT_TRUE(reopened.ok()) << reopened.error();
        document.replaceWith(std::move(**reopened));
        stack.clear();
    }
    ObjectTypes types;
};

TEST_F(PatternFile, EverythingSurvivesSavingAndOpening) {
    ok("set_parameter", {{"name", "gap"}, {"expression", "10"}});
    plateWith(-4);
    ok("pattern_rectangular",
       {{"features", "Extrude2"}, {"direction", "X"}, {"count", 3}, {"spacing", "gap"}});
    ok("add_plane", {{"kind", "offset"}, {"references", "YZ"}, {"distance", 40}});
    ok("mirror_features", {{"features", "Extrude2"}, {"plane", "Plane1"}});
    ok("add_plane", {{"kind", "offset"}, {"references", "YZ"}, {"distance", 90}});
    ok("split_body", {{"body", "Body1"}, {"tool", "Plane2"}});
    ok("split_piece", {{"source", "Split1"}, {"source_body", "Body1"}, {"at", "95,20,5"}});
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}, {"x", 150}});
    ok("pattern_bodies", {{"bodies", "Box1"},
                          {"pattern", "rectangular"},
                          {"direction", "Y"},
                          {"count", 3},
                          {"spacing", "gap * 2"}});
    ok("create_box",
       {{"width", 10}, {"depth", 10}, {"height", 10}, {"x", 155}, {"y", 5}, {"z", 5}});
    ok("combine", {{"target", "Box1"}, {"tools", "Box2"}, {"operation", "cut"}, {"keep", true}});
    std::ostringstream text;
    BRepTools::Write(BRepPrimAPI_MakeBox(gp_Pnt(0, 0, 0), 1, 2, 3).Shape(), text);
    ok("frozen_body", {{"brep", text.str()}});

    const std::vector<double> before = volumes();
    EXPECT_NEAR(volumeOf("Body1"), 90 * 40 * 10 - 4 * kSquare, 1e-6);
    EXPECT_NEAR(volumeOf("Body2"), 10 * 40 * 10, 1e-6);
    EXPECT_NEAR(volume(document.findAs<GeometryObject>("Box1 (3)")->shape.shape()), 875, 1e-6);
    reopen();
    ASSERT_EQ(volumes().size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) EXPECT_NEAR(volumes()[i], before[i], 1e-6) << i;

    // Values typed as parameters still follow them: the pocket row and the body copies.
    ok("set_parameter", {{"name", "gap"}, {"expression", "12"}});
    EXPECT_NEAR(bounds(document.findAs<GeometryObject>("Box1 (3)")->shape.shape())[1], 48, 1e-6);
    ok("edit_pattern", {{"pattern_set", "PatternSet1"}, {"count", 2}});
    EXPECT_FALSE(document.findAs<GeometryObject>("Box1 (3)"));
}

TEST_F(PatternFile, ADamagedPatternSetIsRefusedByName) {
    ok("extrude", {{"sketch", sketchWithRectangles({{0, 0, 10, 10}})}, {"distance", 5}});
    ok("pattern_bodies", {{"bodies", "Body1"}, {"pattern", "circular"}, {"axis", "Z"}});
    SideFiles sideFiles;
    nlohmann::ordered_json json = writeDocumentJson(document, sideFiles, types);
    for (auto& object : json["objects"]) {
        if (object["name"] != "PatternSet1") continue;
        EXPECT_EQ(object["params"]["copies"], nlohmann::ordered_json::array({"Body2"}));
        object["params"]["pattern"] = "spiral";
    }
    std::vector<ArchiveEntry> entries{{"document.json", json.dump(), 6}};
    auto reader = ArchiveReader::open(std::move(writeArchive(entries)).value());
    ASSERT_TRUE(reader.ok());
    Document copy;
    Result<void> read = readDocumentJson(json, **reader, types, copy);
    EXPECT_EQ(read.error(),
              "pattern PatternSet1: \"params\": \"pattern\" must be rectangular, circular or path");
}

} // namespace

} // namespace cad::testing
