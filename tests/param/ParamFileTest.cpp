// The kinds' registry and what follows from it: the commands in registration order,
// every table's schema in the agents' tool list, the forms' lookup, and project
// files that save and reopen revolves and lofts, expressions included.
#include "ParamTestModel.h"

#include "core/DocumentJson.h"
#include "core/ProjectFile.h"
#include "geometry/GeometryTypes.h"
#include "geometry/param/ParamFeatureType.h"
#include "geometry/param/ParamTypes.h"
#include "mcp/ToolCatalogue.h"
#include "sketch/SketchJson.h"

namespace cad::testing {

namespace {

using nlohmann::ordered_json;

const ordered_json* tool(const ordered_json& tools, const std::string& name) {
    for (const ordered_json& t : tools)
        if (t["name"] == name) return &t;
    return nullptr;
}

TEST(ParamRegistry, KindsAndCommandsComeInRegistrationOrder) {
    const auto& kinds = paramFeatureTypes().all();
    ASSERT_GE(kinds.size(), 3u);
    EXPECT_EQ(kinds[0].typeId, "Revolve");
    EXPECT_EQ(kinds[1].typeId, "Sweep");
    EXPECT_EQ(kinds[2].typeId, "Loft");
    EXPECT_FALSE(paramFeatureTypes().add(kinds[0])) << "a kind registers once";
    ASSERT_EQ(paramFeatureTypes().ofForm("loft").size(), 1u);
    EXPECT_EQ(paramFeatureTypes().ofForm("loft")[0]->command, "loft");

    CommandRegistry registry;
    registerParamCommands(registry);
    registerParamCommands(registry); // again: nothing twice
    std::vector<std::string> names;
    for (const auto& entry : registry.entries()) names.push_back(entry.name);
    names.resize(std::min<std::size_t>(names.size(), 6)); // other tests may add kinds
    EXPECT_EQ(names, (std::vector<std::string>{"revolve", "edit_revolve", "sweep", "edit_sweep",
                                               "loft", "edit_loft"}));
}

TEST(ParamRegistry, EveryTableReachesTheToolList) {
    CommandRegistry registry;
    registerParamCommands(registry);
    const ordered_json tools = mcp::toolDescriptors(registry);
    for (const ParamFeatureType& kind : paramFeatureTypes().all()) {
        const ordered_json* make = tool(tools, kind.command);
        const ordered_json* edit = tool(tools, "edit_" + kind.command);
        ASSERT_TRUE(make && edit) << kind.command;
        EXPECT_EQ((*make)["description"], kind.description);
        EXPECT_EQ((*edit)["description"],
                  "Change a " + kind.label + " feature (only the arguments given change).");
        std::vector<std::string> keys, required;
        for (const FeatureArgument& a : commandArguments(kind)) {
            keys.push_back(a.key);
            if (a.required) required.push_back(a.key);
            const ordered_json& property = (*make)["inputSchema"]["properties"][a.key];
            EXPECT_EQ(property["description"].get<std::string>().rfind(a.description, 0), 0u)
                << kind.command << "." << a.key;
        }
        std::vector<std::string> listed;
        for (const auto& [key, value] : (*make)["inputSchema"]["properties"].items())
            listed.push_back(key);
        EXPECT_EQ(listed, keys);
        EXPECT_EQ((*make)["inputSchema"]["required"].get<std::vector<std::string>>(), required);
        EXPECT_EQ((*edit)["inputSchema"]["required"], ordered_json::array({"feature"}));
        EXPECT_EQ((*edit)["inputSchema"]["properties"].size(), kind.arguments.size() + 1);
    }
    const ordered_json& operation =
        (*tool(tools, "revolve"))["inputSchema"]["properties"]["operation"];
    EXPECT_EQ(operation["enum"], ordered_json::array({"new_body", "join", "cut", "intersect"}));
}

class ParamFile : public ParamModel {
protected:
    ParamFile() {
        registerSketchTypes(types);
        registerGeometryTypes(types);
        registerParamTypes(types);
    }
    ObjectTypes types;
};

TEST_F(ParamFile, RevolvesAndLoftsSurviveSavingAndOpening) {
    ok("set_parameter", {{"name", "turn"}, {"expression", "90"}});
    xzRectangle(5, 0, 10, 20);
    ok("revolve", {{"sketch", "Sketch1"}, {"axis", "Z"}, {"angle", "turn"}});
    sketchWithRectangles({{-10, -10, 10, 10}});
    sketchWithRectangles({{-5, -5, 5, 5}}, 30);
    ok("loft", {{"sections", "Sketch2; Sketch3"}, {"ruled", true}, {"body", "Frustum"}});

    SideFiles sideFiles;
    const ordered_json json = writeDocumentJson(document, sideFiles, types);
    const ordered_json* revolve = nullptr;
    for (const ordered_json& object : json["objects"])
        if (object["name"] == "Revolve1") revolve = &object;
    ASSERT_TRUE(revolve);
    EXPECT_EQ((*revolve)["type"], "Revolve");
    EXPECT_EQ((*revolve)["params"]["angle"], 90.0);
    EXPECT_EQ((*revolve)["params"]["symmetric"], false);
    EXPECT_EQ((*revolve)["params"]["expressions"]["angle"]["text"], "turn");
    EXPECT_EQ((*revolve)["operation"], "new_body");

    const double ring = volumeOf("Body1"), frustum = volumeOf("Frustum");
    Result<Bytes> bytes = projectBytes(document, "Korvel Studio test", types);
    ASSERT_TRUE(bytes.ok()) << bytes.error();
    Result<std::unique_ptr<Document>> reopened =
        readProjectBytes(std::move(bytes).value(), "param.kv3", types);
    ASSERT_TRUE(reopened.ok()) << reopened.error();
    document.replaceWith(std::move(**reopened));
    stack.clear();
    EXPECT_NEAR(volumeOf("Body1"), ring, 1e-9);
    EXPECT_NEAR(volumeOf("Frustum"), frustum, 1e-9);
    ok("set_parameter", {{"name", "turn"}, {"expression", "180"}});
    EXPECT_NEAR(volumeOf("Body1"), 2 * ring, 1e-6);
    // An edit that makes the feature fail is taken back.
    EXPECT_EQ(run("edit_loft", {{"feature", "Loft1"}, {"sections", "Sketch2; Sketch2"}}).message,
              "The geometry kernel could not loft through those sections.");
    EXPECT_NEAR(volumeOf("Frustum"), frustum, 1e-6);
    ok("edit_loft", {{"feature", "Loft1"}, {"sections", "Sketch3; Sketch2"}});
    EXPECT_NEAR(volumeOf("Frustum"), frustum, 1e-6);

    // A record whose values don't fit the kind's table is refused, naming the key.
    ordered_json broken = json;
    for (auto& object : broken["objects"])
        if (object["name"] == "Revolve1") object["params"]["angle"] = "wide";
    std::vector<ArchiveEntry> entries{{"document.json", broken.dump(), 6}};
    auto reader = ArchiveReader::open(std::move(writeArchive(entries)).value());
    ASSERT_TRUE(reader.ok());
    Document copy;
    Result<void> read = readDocumentJson(broken, **reader, types, copy);
    EXPECT_EQ(read.error(), "revolve Revolve1: \"params\": \"angle\" must be a number");
}

} // namespace

} // namespace cad::testing
