// Export: the bodies chosen, STL files checked by admesh (volume within the
// deflection's bound, no backwards or unconnected edges), STEP files read back by a
// separate program and by import_model, the agent tools' checks and answers, and
// files that a failed write never destroys.
#include "tests/exchange/ExchangeTestSupport.h"

#include "geometry/exchange/ExportBodies.h"
#include "core/ReplaceFile.h"
#include "geometry/exchange/StepWriter.h"
#include "geometry/exchange/StlWriter.h"
#include "tests/support/ProgramOutput.h"

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <fstream>
#include <regex>
#include <sstream>

namespace cad::exchange::testing {
namespace {

namespace fs = std::filesystem;
using mcp::testing::HeadlessSession;
using mcp::testing::json;

using cad::testing::programOutput;

std::string quoted(const std::string& path) { return "'" + path + "'"; }

double area(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::SurfaceProperties(shape, props);
    return props.Mass();
}

struct AdmeshReport {
    double volume = -1;
    int facets = -1, backwards = -1, disconnected = -1;
};

// admesh's own reading of a file (it reports the figures before any repair).
AdmeshReport admesh(const std::string& path) {
    const std::string out = programOutput("admesh " + quoted(path));
    AdmeshReport r;
    std::smatch m;
    if (std::regex_search(out, m, std::regex(R"(Volume\s*:\s*([-0-9.e+]+))")))
        r.volume = std::stod(m[1]);
    if (std::regex_search(out, m, std::regex(R"(Number of facets\s*:\s*(\d+))")))
        r.facets = std::stoi(m[1]);
    if (std::regex_search(out, m, std::regex(R"(Backwards edges\s*:\s*(\d+))")))
        r.backwards = std::stoi(m[1]);
    if (std::regex_search(out, m, std::regex(R"(Total disconnected facets\s*:\s*(\d+))")))
        r.disconnected = std::stoi(m[1]);
    return r;
}

// Bodies whose meshes are checked: a box, a cylinder, and a plate with a boss-free
// pocket and a round hole (curved and flat faces meeting).
std::vector<ExportBody> sampleBodies() {
    TopoDS_Shape plate = BRepPrimAPI_MakeBox(100, 100, 5).Shape();
    plate = BRepAlgoAPI_Cut(plate, BRepPrimAPI_MakeBox(gp_Pnt(10, 10, 3), 30, 20, 5).Shape()).Shape();
    plate = BRepAlgoAPI_Cut(plate, BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(70, 70, -1), gp_Dir(0, 0, 1)), 6, 10).Shape())
                .Shape();
    return {{"Box", BRepPrimAPI_MakeBox(gp_Pnt(-50, 0, 0), 10, 20, 30).Shape()},
            {"Pin", BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(0, -40, 0), gp_Dir(0, 0, 1)), 5, 40).Shape()},
            {"Plate", plate}};
}

bool hasMesh(const TopoDS_Shape& shape) {
    for (TopExp_Explorer f(shape, TopAbs_FACE); f.More(); f.Next()) {
        TopLoc_Location location;
        if (!BRep_Tool::Triangulation(TopoDS::Face(f.Current()), location).IsNull()) return true;
    }
    return false;
}

TEST(ExportStl, AdmeshReadsTheMeshesWithTheirVolumes) {
    if (programOutput("admesh --version").find("ADMesh") == std::string::npos) GTEST_SKIP() << "no admesh";
    TempFolder folder;
    for (const ExportBody& body : sampleBodies()) {
        SCOPED_TRACE(body.name);
        const double exact = volumeOf(body.shape), bound = area(body.shape) * 0.01;
        const std::string path = folder.file(body.name + ".stl");
        ASSERT_TRUE(writeStl({body}, path, StlExportOptions()));
        AdmeshReport report = admesh(path);
        EXPECT_NEAR(report.volume, exact, bound);
        EXPECT_EQ(report.backwards, 0);
        EXPECT_EQ(report.disconnected, 0);
        EXPECT_GT(report.facets, 0);
        EXPECT_FALSE(hasMesh(body.shape)) << "the body's own faces are left alone";

        // In inches the numbers shrink by 25.4 in each direction; text STL reads the same.
        StlExportOptions inches;
        inches.unit = units::Length::Inches;
        inches.binary = false;
        ASSERT_TRUE(writeStl({body}, path, inches));
        std::ifstream in(path);
        std::string first;
        in >> first;
        EXPECT_EQ(first, "solid");
        report = admesh(path);
        EXPECT_NEAR(report.volume, exact / std::pow(25.4, 3), bound / std::pow(25.4, 3));
        EXPECT_EQ(report.backwards, 0);
    }
}

TEST(ExportStl, DeflectionIsMeasuredInTheFilesUnitWithAFloor) {
    StlExportOptions options;
    EXPECT_DOUBLE_EQ(meshDeflection(options), 0.01);
    options.unit = units::Length::Inches;
    EXPECT_DOUBLE_EQ(meshDeflection(options), 0.01 / 25.4);
    options.unit = units::Length::Millimeters;
    options.linearDeflection = 0.00001;
    EXPECT_DOUBLE_EQ(meshDeflection(options), 0.0001);
}

TEST(ExportStep, AnotherReaderFindsTheSameNamesVolumesAndPlaces) {
    TempFolder folder;
    const std::string path = folder.file("parts.step");
    std::vector<ExportBody> bodies = sampleBodies();
    bodies[0].name = "Bräcket 1"; // names travel as UTF-8
    gp_Trsf moved;
    moved.SetTranslation(gp_Vec(0, 0, 250));
    bodies[1].shape.Move(TopLoc_Location(moved));
    ASSERT_TRUE(writeStep(bodies, path));

    std::istringstream out(programOutput(std::string(KORVEL_STEP_PROBE) + " " + quoted(path)));
    std::string word;
    std::size_t count = 0;
    out >> word >> count;
    ASSERT_EQ(word, "count");
    ASSERT_EQ(count, bodies.size());
    out.ignore();
    for (const ExportBody& body : bodies) {
        std::string line;
        std::getline(out, line);
        std::istringstream fields(line);
        std::string name, numbers;
        std::getline(fields, name, '\t');
        double volume = 0, x = 0, y = 0, z = 0;
        fields >> volume >> x >> y >> z;
        EXPECT_EQ(name, body.name);
        const double exact = volumeOf(body.shape);
        EXPECT_NEAR(volume, exact, 1e-6 * exact) << body.name;
        EXPECT_LT(gp_Pnt(x, y, z).Distance(centreOf(body.shape)), 1e-6) << body.name;
    }
}

TEST(ExportBodies, ListedOrVisibleBodiesWithTheirNames) {
    Model m;
    EXPECT_EQ(collectBodies(m.document, {}).error(), "There are no visible bodies to export.");
    ASSERT_TRUE(m.run(CommandRecord("create_box").set("width", 1).set("depth", 1).set("height", 1)).ok);
    ASSERT_TRUE(m.run(CommandRecord("create_box").set("width", 2).set("depth", 2).set("height", 2)).ok);
    ASSERT_TRUE(m.run(CommandRecord("create_sketch").set("plane", "XY")).ok);
    ASSERT_TRUE(m.run(CommandRecord("rename_object").set("object", "Box2").set("name", "Lid")).ok);

    Result<std::vector<ExportBody>> all = collectBodies(m.document, {});
    ASSERT_TRUE(all);
    ASSERT_EQ(all->size(), 2u);
    EXPECT_EQ((*all)[0].name, "Box1");
    EXPECT_EQ((*all)[1].name, "Lid");

    Result<std::vector<ExportBody>> listed = collectBodies(m.document, {"lid", "Box1", "Box2"});
    ASSERT_TRUE(listed) << listed.error();
    ASSERT_EQ(listed->size(), 2u);
    EXPECT_EQ((*listed)[0].name, "Lid");
    EXPECT_NEAR(volumeOf((*listed)[0].shape), 8, 1e-9);

    EXPECT_EQ(collectBodies(m.document, {"Box9"}).error(), "No body named 'Box9'.");
    EXPECT_EQ(collectBodies(m.document, {"Sketch1"}).error(), "'Sketch1' isn't a body.");
    for (const auto& o : m.document.objects()) o->visible = false;
    EXPECT_EQ(collectBodies(m.document, {}).error(), "There are no visible bodies to export.");
    EXPECT_TRUE(collectBodies(m.document, {"Box1"})) << "a listed body goes out hidden or not";
}

TEST(ExportFiles, AFailedWriteLeavesTheOldFile) {
    TempFolder folder;
    const std::string path = folder.file("kept.stl");
    writeText(path, "the old file");
    Result<void> failed = replaceFile(path, [](const std::string& temporary) {
        writeText(temporary, "half a file");
        return false;
    });
    EXPECT_EQ(failed.error(), "Couldn't write " + path);
    std::ifstream in(path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "the old file");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);

    const std::string nowhere = folder.file("no/such/folder/out.step");
    EXPECT_EQ(writeStep(sampleBodies(), nowhere).error(), "Couldn't write " + nowhere);
    EXPECT_EQ(writeStl(sampleBodies(), folder.path().string(), StlExportOptions()).error(),
              "Couldn't write " + folder.path().string());
    EXPECT_EQ(writeStep({}, path).error(), "Nothing to export.");
    EXPECT_EQ(writeStl({}, path, StlExportOptions()).error(), "Nothing to export.");
}

TEST(ExportTools, AnswersChecksAndARoundTripThroughImport) {
    HeadlessSession h;
    TempFolder folder;
    auto& s = h.session;
    EXPECT_EQ(s.call("export_step", {{"path", folder.file("a.step")}}).text,
              "There are no visible bodies to export.");
    s.ok("create_box", {{"width", 10}, {"depth", 20}, {"height", 30}, {"name", "Block"}});
    s.ok("create_box", {{"width", 5}, {"depth", 5}, {"height", 5}, {"x", 40}});
    const std::string step = folder.file("Two Parts.STP");
    EXPECT_EQ(s.ok("export_step", {{"path", step}}), "Wrote " + step + ": 2 bodies.");
    EXPECT_EQ(s.ok("export_step", {{"path", folder.file("one.step")}, {"bodies", {"block"}}}),
              "Wrote " + folder.file("one.step") + ": 1 body.");
    const std::size_t undoable = h.host.commandStack().undoCount();

    const std::string stl = folder.file("two.stl");
    EXPECT_EQ(s.ok("export_stl", {{"path", stl}, {"deflection", 0.0001}, {"binary", true}, {"unit", "cm"}}),
              "Wrote " + stl + ": 2 bodies.");
    EXPECT_EQ(s.call("export_stl", {{"path", stl}, {"unit", "yard"}}).text, "Unknown unit.");
    EXPECT_EQ(s.call("export_stl", {{"path", stl}, {"unit", 2}}).text, "Unknown unit.");
    EXPECT_EQ(s.call("export_stl", {{"path", folder.file("x.obj")}}).text,
              "export_stl: the path must end in .stl.");
    EXPECT_EQ(s.call("export_step", {{"path", folder.file("x.stl")}}).text,
              "export_step: the path must end in .step or .stp.");
    EXPECT_EQ(s.call("export_step", {{"path", step}, {"bodies", {"Box7"}}}).text,
              "No body named 'Box7'.");
    EXPECT_EQ(s.call("export_step", {{"path", step}, {"bodies", {3}}}).text,
              "export_step: 'bodies' must list bodies' IDs or names.");
    EXPECT_TRUE(s.call("export_step", {{"path", step}, {"bodies", "Block"}}).isError);
    EXPECT_TRUE(s.call("export_stl", {{"path", stl}, {"deflection", "fine"}}).isError);
    EXPECT_EQ(h.host.commandStack().undoCount(), undoable) << "export changes nothing";

    // The deflection is raised to 0.001: asking for less writes the same mesh.
    s.ok("export_stl", {{"path", folder.file("floor.stl")}, {"deflection", 0.00001}});
    s.ok("export_stl", {{"path", folder.file("milli.stl")}, {"deflection", 0.001}});
    std::ifstream a(folder.file("floor.stl"), std::ios::binary), b(folder.file("milli.stl"), std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(a), {}),
              std::string(std::istreambuf_iterator<char>(b), {}));

    // What was written comes back with the same names and volumes.
    s.ok("new_document");
    EXPECT_EQ(s.ok("import_model", {{"path", step}}), "Imported 2 bodies.");
    std::vector<std::pair<std::string, double>> found;
    for (const auto& o : h.host.document().objects())
        if (auto* body = dynamic_cast<const GeometryObject*>(o.get()))
            found.emplace_back(body->label, volumeOf(body->shape.shape()));
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].first, "Block");
    EXPECT_NEAR(found[0].second, 6000, 1e-6);
    EXPECT_EQ(found[1].first, "Box1");
    EXPECT_NEAR(found[1].second, 125, 1e-6);
}

} // namespace
} // namespace cad::exchange::testing
