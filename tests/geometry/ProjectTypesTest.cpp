// Bodies and features in the project file: written with their own keys and the base
// shape as a side file, read back into a document that rebuilds the same solids.
#include "GeometryTestModel.h"

#include "core/DocumentJson.h"
#include "core/ObjectTypes.h"
#include "geometry/ExtrudeFeature.h"
#include "geometry/GeometryTypes.h"
#include "sketch/SketchJson.h"

#include <cmath>

namespace cad::testing {

namespace {

class ProjectTypes : public GeometryModel {
protected:
    ProjectTypes() {
        registerSketchTypes(types);
        registerGeometryTypes(types);
    }

    // Writes the document and reads it back into `copy` through a real archive.
    Result<void> roundTrip(const nlohmann::json& json, const SideFiles& sideFiles, Document& copy) {
        std::vector<ArchiveEntry> entries{{"document.json", json.dump(), 6}};
        for (const auto& [name, bytes] : sideFiles) entries.push_back({name, bytes, 6});
        Result<Bytes> archive = writeArchive(entries);
        if (!archive) return Error(archive);
        auto reader = ArchiveReader::open(std::move(archive).value());
        if (!reader) return Error(reader);
        return readDocumentJson(json, **reader, types, copy);
    }

    static double bodyVolume(const Document& document, const char* id) {
        auto* body = document.findAs<GeometryObject>(id);
        return body && !body->shape.isNull() ? volume(body->shape.shape()) : -1;
    }

    ObjectTypes types;
};

} // namespace

TEST_F(ProjectTypes, BodiesAndExtrudesSurviveTheProjectFile) {
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 2}});
    std::string boss = sketchWithRectangles({{2, 2, 4, 4}}, 2);
    ok("extrude", {{"sketch", boss},
                   {"distance", 3},
                   {"operation", "join"},
                   {"target", "Box1"},
                   {"thickness", 0.5},
                   {"thin_side", "center"}});
    std::string plate = sketchWithRectangles({{20, 0, 25, 5}});
    ok("extrude", {{"sketch", plate}, {"distance", 1}, {"extent", "two_sides"}, {"distance2", 2}});
    ok("suppress_feature", {{"feature", "Extrude2"}, {"suppressed", true}});

    SideFiles sideFiles;
    nlohmann::ordered_json json = writeDocumentJson(document, sideFiles, types);
    ASSERT_EQ(sideFiles.count("shapes/Box1.brep"), 1u);
    EXPECT_EQ(sideFiles.size(), 1u); // Body1 is built by its feature, it has no base shape

    Document copy;
    Result<void> read = roundTrip(json, sideFiles, copy);
    ASSERT_TRUE(read.ok()) << read.error();
    EXPECT_NEAR(bodyVolume(copy, "Box1"), volumeOf("Box1"), 1e-9);
    // A centred wall half a millimetre thick round the 2 x 2 square, 3 high.
    EXPECT_NEAR(bodyVolume(copy, "Box1"), 200 + 3 * (6 + std::acos(-1.0) / 16 - 2.25), 1e-6);
    EXPECT_TRUE(copy.findAs<GeometryObject>("Box1")->shape.findByName("Box1.top"));
    EXPECT_TRUE(copy.findAs<GeometryObject>("Box1")->shape.findByName(
        "Extrude1.side.Rectangle1.top.offset"));
    auto* readBack = copy.findAs<ExtrudeFeature>("Extrude1");
    ASSERT_TRUE(readBack);
    EXPECT_EQ(readBack->thinSide, "center");
    EXPECT_TRUE(copy.findAs<ExtrudeFeature>("Extrude2")->suppressed);
    EXPECT_TRUE(copy.findAs<GeometryObject>("Body1")->shape.isNull());
}

TEST_F(ProjectTypes, DamagedRecordsAreNamed) {
    sketchWithRectangles({{0, 0, 1, 1}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 1}});
    ok("fillet", {{"body", "Body1"},
                  {"edges", "Edge(Extrude1.end, Extrude1.side.Rectangle1.top)"},
                  {"radius", 0.1}});
    SideFiles sideFiles;
    nlohmann::ordered_json good = writeDocumentJson(document, sideFiles, types);
    struct Case {
        const char* object;
        const char* key;
        nlohmann::json value;
        const char* error;
    };
    const Case cases[] = {
        {"Extrude1", "distance", "ten", "extrude Extrude1: \"distance\" must be a number"},
        {"Extrude1", "operation", "merge",
         "extrude Extrude1: \"operation\" must be one of \"new_body\", \"join\", \"cut\""},
        {"Extrude1", "extent", 3,
         "extrude Extrude1: \"extent\" must be one of \"one_side\", \"two_sides\", \"symmetric\""},
        {"Extrude1", "sketch", 1, "extrude Extrude1: \"sketch\" must be text"},
        {"Fillet1", "edges", "Edge(Extrude1.end)",
         "fillet Fillet1: \"edges\" must be a list of names"},
        {"Fillet1", "radius", nullptr, "fillet Fillet1: \"radius\" must be a number"},
        {"Fillet1", "tangent_chain", 1, "fillet Fillet1: \"tangent_chain\" must be true or false"},
    };
    for (const Case& c : cases) {
        nlohmann::ordered_json bad = good;
        for (auto& o : bad["objects"])
            if (o["name"] == c.object) o[c.key] = c.value;
        Document copy;
        EXPECT_EQ(roundTrip(bad, sideFiles, copy).error(), c.error) << c.key;
    }
    nlohmann::ordered_json badBody = good;
    for (auto& o : badBody["objects"])
        if (o["name"] == "Body1") o["features"] = nlohmann::json::array({1});
    Document copy;
    EXPECT_EQ(roundTrip(badBody, sideFiles, copy).error(),
              "body Body1: feature names must be strings");
    for (auto& o : badBody["objects"])
        if (o["name"] == "Body1") {
            o["features"] = nlohmann::json::array({"Extrude1", "Fillet1"});
            o["baseShape"] = "shapes/Missing.brep";
        }
    Document other;
    EXPECT_EQ(roundTrip(badBody, sideFiles, other).error(),
              "body Body1: unreadable shape shapes/Missing.brep");
}

} // namespace cad::testing
