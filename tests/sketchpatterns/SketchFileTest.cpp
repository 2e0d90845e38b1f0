// Patterns and projected sources in the project file: written, read back into a new
// document, and still working there (the pattern edits, the projection follows).
#include "SketchPatternModel.h"

#include "core/DocumentJson.h"
#include "core/ObjectTypes.h"
#include "geometry/GeometryTypes.h"

namespace cad::testing {

TEST_F(SketchPatternModel, PatternsAndProjectedSourcesSurviveTheProjectFile) {
    ok("create_box", {{"width", 20}, {"depth", 10}, {"height", 5}});
    ok("create_sketch", {{"on", "Box1/Box1.top"}});
    ok("project", {{"sketch", "Sketch1"}, {"references", "Box1/Box1.top"}});
    ok("add_point", {{"sketch", "Sketch1"}, {"x", 1}, {"y", 1}});
    ok("sketch_pattern_rectangular",
       {{"sketch", "Sketch1"}, {"entities", "Point1"}, {"count", 3}, {"spacing", 4}});
    const std::string written = snapshot("Sketch1");

    ObjectTypes types;
    registerSketchTypes(types);
    registerGeometryTypes(types);
    SideFiles sideFiles;
    const nlohmann::ordered_json json = writeDocumentJson(document, sideFiles, types);
    std::vector<ArchiveEntry> entries{{"document.json", json.dump(), 6}};
    for (const auto& [name, bytes] : sideFiles) entries.push_back({name, bytes, 6});
    Result<Bytes> archive = writeArchive(entries);
    ASSERT_TRUE(archive) << archive.error();
    auto reader = ArchiveReader::open(std::move(archive).value());
    ASSERT_TRUE(reader) << reader.error();
    Document reopened;
    Result<void> read =
        readDocumentJson(nlohmann::json::parse(json.dump()), **reader, types, reopened);
    ASSERT_TRUE(read) << read.error();

    auto* copy = reopened.findAs<SketchObject>("Sketch1");
    ASSERT_NE(copy, nullptr);
    nlohmann::ordered_json record = nlohmann::ordered_json::object();
    SideFiles unused;
    types.find("Sketch")->write(*copy, record, unused);
    // The same entities, sources and pattern records (the reader keeps a record's
    // arguments in name order, which changes nothing they say).
    EXPECT_EQ(nlohmann::json::parse(record.dump()), nlohmann::json::parse(written));
    EXPECT_EQ(copy->error(), "");

    CommandStack reopenedStack(reopened, registry);
    CommandRecord edit("edit_sketch_pattern");
    edit.set("sketch", "Sketch1").set("pattern", "Pattern1").set("count", 4);
    CommandResult remade = reopenedStack.execute(edit);
    ASSERT_TRUE(remade.ok) << remade.message;
    ASSERT_EQ(copy->patterns.size(), 1u);
    ASSERT_EQ(copy->patterns[0].copies.size(), 3u);
    const auto& last =
        std::get<SketchPoint>(copy->findEntity(copy->patterns[0].copies[2])->geometry);
    expectNear(last.position, {13, 1}, "fourth copy");
}

} // namespace cad::testing
