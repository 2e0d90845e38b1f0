// Project files: lossless round trips, the JSON layout, every way a damaged file is
// reported, and saves that never leave a half-written file behind.
#include "core/ProjectFile.h"
#include "core/DocumentJson.h"
#include "core/GeometryObject.h"
#include "core/JsonLayout.h"
#include "tests/core/TestObjects.h"

#include <Standard_Failure.hxx>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

using namespace cad;
namespace fs = std::filesystem;

namespace {

// Types as the higher layers will register them, reduced to what the file needs.
ObjectTypes testTypes() {
    ObjectTypes types;
    types.add({"Sketch", "sketch", [] { return test::thing("Sketch", ""); },
               [](const DocumentObject&, nlohmann::ordered_json& r, SideFiles&) {
                   r["plane"] = {{"origin", {0, 0, 0}}, {"normal", {0, 0, 1}}};
               },
               nullptr});
    types.add({"Extrude", "extrude", [] { return std::make_unique<test::TestFeature>(""); },
               nullptr, nullptr});
    types.add(
        {"Body", "body", [] { return std::make_unique<GeometryObject>(); },
         [](const DocumentObject& o, nlohmann::ordered_json& r, SideFiles& side) {
             r["features"] = static_cast<const GeometryObject&>(o).features;
             side["shapes/" + fileSafeId(o.id) + ".brep"] = "shape of " + o.id;
         },
         [](DocumentObject& o, const nlohmann::json& r, const ArchiveReader&) -> Result<void> {
             for (const auto& f : r.value("features", nlohmann::json::array())) {
                 if (!f.is_string()) return fail("feature names must be strings");
                 static_cast<GeometryObject&>(o).features.push_back(f.get<std::string>());
             }
             return {};
         }});
    return types;
}

struct TempDir {
    TempDir() : path(fs::temp_directory_path() / ("korvel-test-" + std::to_string(getpid()))) {
        fs::create_directories(path);
    }
    ~TempDir() {
        std::error_code ec;
        fs::permissions(path, fs::perms::owner_all, ec);
        fs::remove_all(path, ec);
    }
    std::string file(const char* name) const { return (path / name).string(); }
    fs::path path;
};

std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

Bytes archiveWith(const std::string& manifest, const std::string& document) {
    std::vector<ArchiveEntry> entries;
    if (!manifest.empty()) entries.push_back({"manifest.json", manifest, 6});
    entries.push_back({"document.json", document, 6});
    return *writeArchive(entries);
}

const std::string kManifest = R"({"format": "ostrovancad-project", "formatVersion": 1})";

std::string readError(const std::string& document, const std::string& manifest = kManifest) {
    return readProjectBytes(archiveWith(manifest, document), "part.kv3", testTypes()).error();
}

} // namespace

TEST(ProjectFile, RoundTripIsByteIdentical) {
    ObjectTypes types = testTypes();
    Document doc;
    doc.setLengthUnit(units::Length::Inches);
    doc.setDefaultMaterial("steel");
    doc.setParameters({{"w", "6in", units::Length::Inches, true, "panel width"},
                       {"n", "4", units::Length::Millimeters, false, ""}});
    auto sketch = test::thing("Sketch", "Sketch1", "Base outline");
    sketch->visible = false;
    doc.add(std::move(sketch));
    auto feature =
        std::make_unique<test::TestFeature>("Extrude1", std::vector<std::string>{"Sketch1"});
    feature->suppressed = true;
    feature->faceAppearances["Extrude1.end"] = "#3a7bd5/glossy";
    doc.add(std::move(feature));
    auto body = std::make_unique<GeometryObject>();
    body->id = "Component1:Body2";
    body->component = "Component1";
    body->material = "oak";
    body->features = {"Extrude1"};
    doc.add(std::move(body));
    doc.add(test::thing("Sketch", "Sketch7"));
    doc.setRollback("Sketch7");

    TempDir dir;
    ASSERT_TRUE(writeProject(doc, dir.file("a.kv3"), "Korvel Studio 0.9.5", types).ok());
    auto reread = readProject(dir.file("a.kv3"), types);
    ASSERT_TRUE(reread.ok()) << reread.error();
    const Document& back = **reread;
    EXPECT_EQ(back.lengthUnit(), units::Length::Inches);
    EXPECT_EQ(back.rollback(), "Sketch7");
    EXPECT_EQ(back.idCounters().at("Sketch"), 7);
    EXPECT_EQ(back.parameters()[0].comment, "panel width");
    EXPECT_FALSE(back.find("Sketch1")->visible);
    EXPECT_TRUE(static_cast<FeatureObject*>(back.find("Extrude1"))->suppressed);
    EXPECT_EQ(back.find("Extrude1")->faceAppearances.at("Extrude1.end"), "#3a7bd5/glossy");

    SideFiles first, second;
    std::string a = layoutJson(writeDocumentJson(doc, first, types));
    std::string b = layoutJson(writeDocumentJson(back, second, types));
    EXPECT_EQ(a, b);
    EXPECT_EQ(first.begin()->first, "shapes/Component1_Body2.brep");
    // Only hidden objects say so; numbers stay on one line; a line feed ends the text.
    EXPECT_EQ(a.find("\"visible\": true"), std::string::npos);
    EXPECT_NE(a.find("\"visible\": false"), std::string::npos);
    EXPECT_NE(a.find("\"origin\": [0, 0, 0]"), std::string::npos);
    EXPECT_EQ(a.back(), '\n');
    EXPECT_EQ(a.rfind("{\n  \"settings\": {\n    \"lengthUnit\": \"in\",", 0), 0u);
}

TEST(ProjectFile, DamagedFilesAreReportedWithTheFileName) {
    EXPECT_EQ(readProjectBytes("nonsense", "part.kv3", testTypes()).error(),
              "part.kv3 is not a project file (or is damaged).");
    EXPECT_EQ(readError("{}", ""), "part.kv3 is damaged: manifest.json is damaged");
    EXPECT_EQ(readError("{}", R"({"format": "ostrovancad-project", "formatVersion": 2})"),
              "part.kv3 is damaged: saved by a newer version (format 2); this build reads format 1 "
              "and older");
    EXPECT_EQ(readError("{}", R"({"format": "ostrovancad-project"})"),
              "part.kv3 is damaged: unknown format version");
    EXPECT_EQ(readError("{}", R"({"format": "zip", "formatVersion": 1})"),
              "part.kv3 is damaged: not a project file");
    EXPECT_EQ(readError("{\"objects\": ["), "part.kv3 is damaged: document.json is not valid JSON");

    struct Case {
        const char* document;
        const char* problem;
    };
    const Case cases[] = {
        {R"({"settings": {"lengthUnit": "yd"}})", "unknown length unit \"yd\""},
        {R"({"settings": {"idCounters": [1]}})", "settings: \"idCounters\" must be an object"},
        {R"({"settings": {"idCounters": {"Body": 1.5}}})",
         "settings: idCounters.Body must be a whole number"},
        {R"({"parameters": [{"name": "w"}]})", "a parameter needs a name and an expression"},
        {R"({"objects": [{"type": "Gizmo", "name": "Gizmo1"}]})", "unknown object type \"Gizmo\""},
        {R"({"objects": [{"type": "Sketch", "name": "S"}, {"type": "Sketch", "name": "S"}]})",
         "duplicate or empty object name \"S\""},
        {R"({"objects": [{"type": "Sketch", "name": ""}]})", "duplicate or empty object name \"\""},
        {R"({"objects": [{"type": "Sketch", "name": "S", "visible": 0}]})",
         "sketch S: \"visible\" must be true or false"},
        {R"({"objects": [{"type": "Sketch", "name": "S", "face_appearances": {"a": 1}}]})",
         "sketch S: face appearances must be strings"},
        {R"({"objects": [{"type": "Body", "name": "B", "features": [3]}]})",
         "body B: feature names must be strings"},
        {R"({"objects": [{"type": "Body", "name": "B", "features": ["E"]}]})",
         "body B: no feature named \"E\""},
        {R"({"objects": [{"type": "Extrude", "name": "E"}, {"type": "Body", "name": "B1", "features": ["E"]},
                          {"type": "Body", "name": "B2", "features": ["E"]}]})",
         "feature \"E\" belongs to more than one body"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(readError(c.document), std::string("part.kv3 is damaged: ") + c.problem);
}

// An object whose recompute meets a kernel failure it doesn't catch.
class Brittle : public test::Thing {
public:
    Brittle() : Thing("Brittle", "") {}
    bool recompute(const Document&) override { throw Standard_Failure("the kernel gave up"); }
};

TEST(ProjectFile, NothingThrownWhileReadingEscapes) {
    ObjectTypes types = testTypes();
    types.add({"Trap", "trap", [] { return test::thing("Trap", ""); }, nullptr,
               [](DocumentObject&, const nlohmann::json& r, const ArchiveReader&) -> Result<void> {
                   (void)r.at("missing"); // a reader slip that throws
                   return {};
               }});
    types.add({"Brittle", "brittle", [] { return std::make_unique<Brittle>(); }, nullptr, nullptr});
    auto read = [&](const char* type) {
        std::string document =
            std::string(R"({"objects": [{"type": ")") + type + R"(", "name": "X"}]})";
        return readProjectBytes(archiveWith(kManifest, document), "part.kv3", types).error();
    };
    EXPECT_EQ(read("Trap").rfind("part.kv3 is damaged: ", 0), 0u) << read("Trap");
    EXPECT_EQ(read("Brittle"), "part.kv3 has invalid geometry: the kernel gave up");
}

TEST(ProjectFile, AFailedSaveKeepsTheOldFile) {
    ObjectTypes types = testTypes();
    Document doc;
    doc.add(test::thing("Sketch", "Sketch1"));
    TempDir dir;
    const std::string target = dir.file("part.kv3");
    ASSERT_TRUE(writeProject(doc, target, "", types).ok());
    const std::string old = slurp(target);
    doc.add(test::thing("Sketch", "Sketch2"));

    // A write that fails half way (the disk filled up) leaves no temporary file.
    SaveSteps failingWrite = SaveSteps::real();
    failingWrite.write = [](const std::string& path, const Bytes& bytes) {
        std::ofstream(path, std::ios::binary) << bytes.substr(0, bytes.size() / 2);
        return false;
    };
    EXPECT_EQ(writeProject(doc, target, "", types, failingWrite).error(),
              "Could not write " + target + ".saving.");
    EXPECT_EQ(slurp(target), old);
    EXPECT_FALSE(fs::exists(target + ".saving"));

    SaveSteps failingRename = SaveSteps::real();
    failingRename.replace = [](const std::string&, const std::string&) { return false; };
    EXPECT_EQ(writeProject(doc, target, "", types, failingRename).error(),
              "Could not replace " + target + ".");
    EXPECT_EQ(slurp(target), old);
    EXPECT_FALSE(fs::exists(target + ".saving"));

    fs::permissions(target, fs::perms::owner_read);
    EXPECT_EQ(writeProject(doc, target, "", types).error(), "Could not replace " + target + ".");
    EXPECT_EQ(slurp(target), old);
    fs::permissions(target, fs::perms::owner_all);

    ASSERT_TRUE(writeProject(doc, target, "", types).ok());
    EXPECT_EQ((*readProject(target, types))->objects().size(), 2u);
    EXPECT_EQ(readProject(dir.file("missing.kv3"), types).error(),
              "Could not open " + dir.file("missing.kv3") + ".");
    // A folder opens as a stream on Linux, and reading it throws: still a sentence.
    fs::create_directory(dir.file("folder.kv3"));
    EXPECT_EQ(readProject(dir.file("folder.kv3"), types).error(),
              "Could not open " + dir.file("folder.kv3") + ".");
}
