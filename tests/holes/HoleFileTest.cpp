// Holes and threads in the project file: their records carry the documented keys,
// and a saved project opens to the same drilled and threaded bodies.
#include "HoleTestModel.h"

#include "core/DocumentJson.h"
#include "core/ProjectFile.h"
#include "geometry/GeometryTypes.h"
#include "geometry/holes/CosmeticThreads.h"
#include "geometry/holes/HoleTypes.h"
#include "sketch/SketchJson.h"

namespace cad::testing {

namespace {

class HoleFile : public HoleModel {
protected:
    HoleFile() {
        registerSketchTypes(types);
        registerGeometryTypes(types);
        registerHoleTypes(types);
    }

    const nlohmann::ordered_json& record(const nlohmann::ordered_json& json, const char* name) {
        for (const auto& object : json["objects"])
            if (object["name"] == name) return object;
        static const nlohmann::ordered_json none;
        return none;
    }

    ObjectTypes types;
};

} // namespace

TEST_F(HoleFile, HolesAndThreadsSurviveSavingAndOpening) {
    plateWithPoints({{10, 10}, {30, 30}});
    ok("hole", {{"sketch", "Sketch1"},
                {"points", "Point1"},
                {"size", "M5"},
                {"fit", "loose"},
                {"kind", "counterbore"},
                {"through", true}});
    ok("hole", {{"sketch", "Sketch1"},
                {"points", "Point2"},
                {"diameter", 5},
                {"depth", 6},
                {"tip_angle", 0},
                {"flip", false}});
    ok("thread", {{"body", "Box1"}, {"face", "Hole2.wall"}, {"length", 4}});

    SideFiles sideFiles;
    const nlohmann::ordered_json json = writeDocumentJson(document, sideFiles, types);
    const auto& hole1 = record(json, "Hole1");
    EXPECT_EQ(hole1["type"], "Hole");
    EXPECT_EQ(hole1["size"], "M5");
    EXPECT_EQ(hole1["fit"], "loose");
    EXPECT_EQ(hole1["through"], true);
    EXPECT_FALSE(hole1.contains("diameter"));
    EXPECT_FALSE(hole1.contains("depth"));
    EXPECT_EQ(hole1["points"], nlohmann::ordered_json::array({"Point1"}));
    const auto& hole2 = record(json, "Hole2");
    EXPECT_EQ(hole2["diameter"], 5.0);
    EXPECT_EQ(hole2["depth"], 6.0);
    EXPECT_EQ(hole2["tipAngle"], 0.0);
    EXPECT_FALSE(hole2.contains("size"));
    const auto& thread = record(json, "Thread1");
    EXPECT_EQ(thread["face"], "Hole2.wall");
    EXPECT_EQ(thread["length"], 4.0);
    EXPECT_EQ(thread["modeled"], false);

    const double volume = volumeOf("Box1");
    Result<Bytes> bytes = projectBytes(document, "Korvel Studio test", types);
    ASSERT_TRUE(bytes.ok()) << bytes.error();
    Result<std::unique_ptr<Document>> reopened =
        readProjectBytes(std::move(bytes).value(), "holes.kv3", types);
    ASSERT_TRUE(reopened.ok()) << reopened.error();
    document.replaceWith(std::move(**reopened));
    stack.clear();

    EXPECT_NEAR(volumeOf("Box1"), volume, 1e-6);
    EXPECT_NEAR(radiusOf("Box1", "Hole1.counterbore"), 5, 1e-9);
    EXPECT_NEAR(radiusOf("Box1", "Hole1.wall"), 2.9, 1e-9);
    EXPECT_TRUE(hasFace("Box1", "Hole2.bottom"));
    std::vector<CosmeticThread> threads = cosmeticThreads(document, *body("Box1"));
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_NEAR(threads[0].length, 4, 1e-12);
    ok("edit_hole", {{"feature", "Hole2"}, {"diameter", 4}});
    EXPECT_NEAR(radiusOf("Box1", "Hole2.wall"), 2, 1e-9);

    // A record with a broken value names the object and the key.
    nlohmann::ordered_json broken = json;
    for (auto& object : broken["objects"])
        if (object["name"] == "Hole2") object["depth"] = "deep";
    std::vector<ArchiveEntry> entries{{"document.json", broken.dump(), 6}};
    for (const auto& [name, data] : sideFiles) entries.push_back({name, data, 6});
    auto reader = ArchiveReader::open(std::move(writeArchive(entries)).value());
    ASSERT_TRUE(reader.ok());
    Document copy;
    Result<void> read = readDocumentJson(broken, **reader, types, copy);
    EXPECT_NE(read.error().find("\"depth\" must be a number"), std::string::npos) << read.error();
}

} // namespace cad::testing
