// Section analyses through add_section and edit_section, the cut the view draws for
// a body, and reference planes and sections through the project file.
#include "GeometryTestModel.h"

#include "core/DocumentJson.h"
#include "core/ObjectTypes.h"
#include "geometry/GeometryTypes.h"
#include "geometry/planes/PlaneGeometry.h"
#include "geometry/planes/PlaneObject.h"
#include "geometry/planes/SectionCut.h"
#include "sketch/SketchJson.h"
#include "sketch/SketchObject.h"

#include <functional>

namespace cad::testing {

namespace {

class Sections : public GeometryModel {
protected:
    Sections() {
        registerSketchTypes(types);
        registerGeometryTypes(types);
    }
    const SectionObject& section(const std::string& id) {
        auto* found = document.findAs<SectionObject>(id);
        EXPECT_NE(found, nullptr) << id;
        static const SectionObject none;
        return found ? *found : none;
    }
    static double area(const TopoDS_Shape& shape) {
        GProp_GProps props;
        BRepGProp::SurfaceProperties(shape, props);
        return props.Mass();
    }
    // The volume kept and the area capped when Box1 is cut along the section.
    std::pair<double, double> cut(const std::string& id) {
        Result<geometry::SectionCut> c =
            geometry::cutAlong(section(id), body("Box1")->shape.shape());
        EXPECT_TRUE(c.ok()) << c.error();
        if (!c) return {-1, -1};
        return {c->kept.IsNull() ? 0 : volume(c->kept), area(c->caps)};
    }
    // The document written and read back through a real archive into `copy`.
    Result<void> reopen(Document& copy,
                        const std::function<void(nlohmann::ordered_json&)>& edit = {}) {
        SideFiles sideFiles;
        nlohmann::ordered_json json = writeDocumentJson(document, sideFiles, types);
        if (edit) edit(json);
        std::vector<ArchiveEntry> entries{{"document.json", json.dump(), 6}};
        for (const auto& [name, bytes] : sideFiles) entries.push_back({name, bytes, 6});
        Result<Bytes> archive = writeArchive(entries);
        if (!archive) return Error(archive);
        auto reader = ArchiveReader::open(std::move(archive).value());
        if (!reader) return Error(reader);
        return readDocumentJson(json, **reader, types, copy);
    }
    ObjectTypes types;
};

} // namespace

TEST_F(Sections, ASectionCutsAlongItsPlaneAndChangesWithIt) {
    ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}});
    EXPECT_EQ(ok("add_section", {{"references", "XY"}, {"distance", 10}}), "Created Section1.");
    const gp_Ax3& at = section("Section1").placement;
    EXPECT_NEAR(at.Location().Z(), 10, 1e-9);
    EXPECT_TRUE(at.Direction().IsEqual(gp_Dir(0, 0, 1), 1e-12));
    auto [kept, capped] = cut("Section1");
    EXPECT_NEAR(kept, 10 * 20 * 10, 1e-6); // the side the normal points to is cut away
    EXPECT_NEAR(capped, 10 * 20, 1e-6);
    const double whole = volumeOf("Box1");

    EXPECT_EQ(ok("edit_section", {{"section", "Section1"}, {"flip", true}, {"distance", "2cm"}}),
              "Changed Section1.");
    EXPECT_NEAR(cut("Section1").first, 10 * 20 * 10, 1e-6);
    EXPECT_NEAR(volumeOf("Box1"), whole, 1e-9); // the model itself is never cut
    stack.undo();
    EXPECT_NEAR(section("Section1").placement.Location().Z(), 10, 1e-9);

    // Tilted a quarter turn about the XZ plane's X direction, the cut lies flat.
    ok("add_section", {{"references", "XZ"}, {"tilt", 90}});
    EXPECT_TRUE(section("Section2").placement.Direction().IsParallel(gp_Dir(0, 0, 1), 1e-12));
    ok("edit_section", {{"section", "Section2"}, {"tilt", 0}, {"turn", 90}});
    EXPECT_TRUE(section("Section2").placement.Direction().IsParallel(gp_Dir(1, 0, 0), 1e-12));
    // Along the top face, moved down into the box: half of it is cut away.
    ok("add_section", {{"references", "Box1/Box1.top"}, {"distance", -15}});
    EXPECT_NEAR(cut("Section3").first, whole / 2, 1e-6);

    struct Case {
        const char* command;
        Args args;
        const char* message;
    };
    const Case refusals[] = {
        {"add_section",
         {},
         "add_section: give the plane or flat face to cut along, e.g. \"XZ\" "
         "or \"Body1/Extrude1.end\"."},
        {"add_section", {{"references", "X"}}, "A section is cut along a plane or a flat face."},
        {"add_section",
         {{"references", "Box1/Edge(Box1.front, Box1.top)"}},
         "A section is cut along a plane or a flat face."},
        {"add_section",
         {{"references", "XY"}, {"tilt", "steep"}},
         "add_section: 'tilt' must be a number: steep"},
        {"add_section",
         {{"references", "XY"}, {"flip", 1}},
         "add_section: 'flip' must be true or false."},
        {"edit_section", {{"tilt", 1}}, "edit_section: missing 'section'."},
        {"edit_section", {{"section", "Section9"}, {"tilt", 1}}, "No section named 'Section9'."},
    };
    for (const Case& c : refusals) {
        const std::size_t objects = document.objects().size();
        EXPECT_EQ(run(c.command, c.args).message, c.message);
        EXPECT_EQ(document.objects().size(), objects);
    }
    stack.undo();
    EXPECT_EQ(document.find("Section3"), nullptr);
}

TEST_F(Sections, PlanesAndSectionsSurviveTheProjectFile) {
    sketchWithRectangles({{0, 0, 10, 10}});
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5}});
    ok("add_plane", {{"references", "Body1/Extrude1.end"}, {"distance", 3}, {"size", 40}});
    ok("add_plane",
       {{"kind", "angle"}, {"references", "X; Plane1"}, {"angle", 30}, {"flip", true}});
    ok("create_sketch", {{"on", "Plane1"}});
    ok("add_section", {{"references", "Plane2"}, {"tilt", 10}, {"turn", -5}, {"flip", true}});
    ok("set_visibility", {{"object", "Section1"}, {"visible", false}});

    Document copy;
    ASSERT_TRUE(reopen(copy).ok());
    for (const char* id : {"Plane1", "Plane2"}) {
        auto* was = document.findAs<PlaneObject>(id);
        auto* now = copy.findAs<PlaneObject>(id);
        ASSERT_TRUE(was && now) << id;
        EXPECT_EQ(now->definition.kind, was->definition.kind);
        EXPECT_EQ(now->definition.references, was->definition.references);
        EXPECT_EQ(now->definition.size, was->definition.size);
        EXPECT_EQ(now->definition.flip, was->definition.flip);
        EXPECT_TRUE(now->placed && now->error.empty()) << now->error;
        EXPECT_TRUE(geometry::samePlacement(now->placement, was->placement)) << id;
    }
    auto* reread = copy.findAs<SectionObject>("Section1");
    ASSERT_NE(reread, nullptr);
    EXPECT_FALSE(reread->visible);
    EXPECT_EQ(reread->definition.turn, -5);
    EXPECT_TRUE(geometry::samePlacement(reread->placement, section("Section1").placement));

    // Reopened, the chain still follows: extrude, plane, sketch.
    document.replaceWith(std::move(copy));
    stack.clear();
    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 7}});
    EXPECT_NEAR(document.findAs<SketchObject>("Sketch2")->origin[2], 10, 1e-9);

    auto plane1 = [](nlohmann::ordered_json& json) -> nlohmann::ordered_json& {
        for (nlohmann::ordered_json& record : json["objects"])
            if (record["name"] == "Plane1") return record;
        return json;
    };
    Document damaged;
    EXPECT_EQ(
        reopen(damaged, [&](nlohmann::ordered_json& json) { plane1(json)["params"] = "offset"; })
            .error(),
        "plane Plane1: \"params\" must be an object");
    Document unknownKind;
    ASSERT_TRUE(reopen(unknownKind, [&](nlohmann::ordered_json& json) {
                    plane1(json)["params"]["kind"] = "sideways";
                }).ok());
    EXPECT_EQ(unknownKind.findAs<PlaneObject>("Plane1")->error, "Unknown plane kind 'sideways'.");
}

} // namespace cad::testing
