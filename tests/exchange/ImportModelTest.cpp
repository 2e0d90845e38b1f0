// import_model on real STEP and STL files and on broken ones: bodies in place with
// their parts' names and colours, units, the triangle limit, undo and redo, and a
// document left as it was after every refusal.
#include "tests/exchange/ExchangeTestSupport.h"

#include "geometry/exchange/StlReader.h"
#include "geometry/exchange/XcafDocument.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <Quantity_Color.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <filesystem>
#include <limits>

namespace cad::exchange::testing {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> filesUnder(const std::vector<std::string>& folders,
                                    const std::string& extension) {
    std::vector<std::string> files;
    for (const std::string& folder : folders) {
        std::error_code ec;
        if (!fs::is_directory(folder, ec)) continue;
        for (const auto& entry : fs::recursive_directory_iterator(folder, ec))
            if (entry.is_regular_file() && entry.path().extension() == extension)
                files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool isSolid(const TopoDS_Shape& shape) {
    return TopExp_Explorer(shape, TopAbs_SOLID).More();
}

std::string bodiesSentence(std::size_t n) {
    return "Imported " + std::to_string(n) + (n == 1 ? " body." : " bodies.");
}

const char* kStepData = "/usr/share/opencascade/data/step";
const char* kStlData = "/usr/share/opencascade/data/stl";

TEST(ImportStep, RealFilesBecomeNamedSolidsInPlace) {
    const std::vector<std::string> files = filesUnder({kStepData}, ".step");
    if (files.empty()) GTEST_SKIP() << "no STEP samples in " << kStepData;
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        Model m;
        CommandResult done = m.import(file);
        ASSERT_TRUE(done.ok) << done.message;
        const auto bodies = m.bodies();
        ASSERT_FALSE(bodies.empty());
        EXPECT_EQ(done.message, bodiesSentence(bodies.size()));
        for (std::size_t i = 0; i < bodies.size(); ++i) {
            const GeometryObject& body = *bodies[i];
            EXPECT_EQ(body.id, "Body" + std::to_string(i + 1));
            EXPECT_EQ(body.label, "the product name"); // both samples' product
            EXPECT_TRUE(isSolid(body.shape.shape()));
            EXPECT_GT(volumeOf(body.shape.shape()), 0);
            for (const std::string& name : body.shape.index().faceNames)
                EXPECT_TRUE(name.starts_with(body.id + ".")) << name;
        }
    }
}

TEST(ImportStep, AssemblyInstancesBecomeBodiesAtTheirPlacementsWithTheirColours) {
    TempFolder folder;
    const std::string path = folder.file("two brackets.step");
    {
        XcafDocument document;
        const Handle(TDocStd_Document)& doc = document.get();
        Handle(XCAFDoc_ShapeTool) shapes = XCAFDoc_DocumentTool::ShapeTool(doc->Main());
        Handle(XCAFDoc_ColorTool) colours = XCAFDoc_DocumentTool::ColorTool(doc->Main());
        TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 20, 5).Shape();
        TDF_Label part = shapes->AddShape(box, false);
        TDataStd_Name::Set(part, "Bracket");
        colours->SetColor(part, Quantity_Color(1, 0, 0, Quantity_TOC_RGB), XCAFDoc_ColorSurf);
        TopoDS_Face top;
        for (TopExp_Explorer f(box, TopAbs_FACE); f.More(); f.Next()) top = TopoDS::Face(f.Current());
        TDF_Label face = shapes->AddSubShape(part, top);
        colours->SetColor(face, Quantity_Color(0, 0, 1, Quantity_TOC_RGB), XCAFDoc_ColorSurf);
        TDF_Label assembly = shapes->NewShape();
        TDataStd_Name::Set(assembly, "Pair");
        gp_Trsf first, second;
        first.SetTranslation(gp_Vec(100, 0, 0));
        second.SetTranslation(gp_Vec(0, -50, 7));
        shapes->AddComponent(assembly, part, TopLoc_Location(first));
        shapes->AddComponent(assembly, part, TopLoc_Location(second));
        shapes->UpdateAssemblies();
        STEPCAFControl_Writer writer;
        ASSERT_TRUE(writer.Transfer(doc, STEPControl_AsIs));
        ASSERT_EQ(writer.Write(path.c_str()), IFSelect_RetDone);
    }

    Model m;
    ASSERT_TRUE(m.run(CommandRecord("create_box").set("width", 1).set("depth", 1).set("height", 1).set("name", "Body1")).ok);
    CommandResult done = m.import(path);
    ASSERT_TRUE(done.ok) << done.message;
    EXPECT_EQ(done.message, "Imported 2 bodies.");
    const auto bodies = m.bodies();
    ASSERT_EQ(bodies.size(), 3u);
    const gp_Pnt expected[2] = {gp_Pnt(105, 10, 2.5), gp_Pnt(5, -40, 9.5)};
    for (int i = 0; i < 2; ++i) {
        const GeometryObject& body = *bodies[static_cast<std::size_t>(i + 1)];
        EXPECT_EQ(body.id, "Body" + std::to_string(i + 2)) << "the next free numbers";
        EXPECT_EQ(body.label, "Bracket");
        EXPECT_NEAR(volumeOf(body.shape.shape()), 1000, 1e-6);
        EXPECT_LT(centreOf(body.shape.shape()).Distance(expected[i]), 1e-6);
        EXPECT_EQ(body.appearance, "#ff0000");
        ASSERT_EQ(body.faceAppearances.size(), 1u);
        const auto& [faceName, colour] = *body.faceAppearances.begin();
        EXPECT_EQ(colour, "#0000ff");
        // The painted face is the box's last, its top at z = 5 before placement.
        EXPECT_EQ(faceName, body.id + ".top");
    }
}

TEST(ImportStl, UnitsScaleTheMeshAndNameItAfterTheFile) {
    TempFolder folder;
    const std::string path = folder.file("cube.STL");
    writeBinaryStl(path, boxTriangles(gp_Pnt(0, 0, 0), 10, 10, 10));
    struct Case {
        const char* unit;
        double scale;
    };
    for (Case c : {Case{nullptr, 1}, Case{"mm", 1}, Case{"cm", 10}, Case{"in", 25.4},
                   Case{"ft", 304.8}, Case{"m", 1000}}) {
        SCOPED_TRACE(c.unit ? c.unit : "default");
        Model m;
        CommandResult done = m.import(path, c.unit);
        ASSERT_TRUE(done.ok) << done.message;
        EXPECT_EQ(done.message, "Imported 1 body.");
        const GeometryObject& body = *m.bodies().at(0);
        EXPECT_EQ(body.label, "cube");
        EXPECT_TRUE(isSolid(body.shape.shape()));
        const double size = 10 * c.scale;
        EXPECT_NEAR(volumeOf(body.shape.shape()), size * size * size, 1e-9 * size * size * size);
        EXPECT_EQ(body.shape.index().faceNames.size(), 6u);
        EXPECT_TRUE(body.appearance.empty());
    }
}

TEST(ImportStl, AHoleGivesAnOpenShellBody) {
    TempFolder folder;
    std::vector<Triangle> open = boxTriangles(gp_Pnt(0, 0, 0), 10, 10, 10);
    open.erase(open.begin(), open.begin() + 2); // no bottom
    writeBinaryStl(folder.file("tray.stl"), open);
    Model m;
    CommandResult done = m.import(folder.file("tray.stl"));
    ASSERT_TRUE(done.ok) << done.message;
    const TopoDS_Shape& shape = m.bodies().at(0)->shape.shape();
    EXPECT_FALSE(isSolid(shape));
    EXPECT_TRUE(TopExp_Explorer(shape, TopAbs_SHELL).More());
    EXPECT_EQ(m.bodies().at(0)->shape.index().faceNames.size(), 5u);
}

TEST(ImportStl, TheTriangleLimitIsNamedAndHeld) {
    TempFolder folder;
    // 150001 triangles: a fan of slivers is enough; the count is refused before sewing.
    std::vector<Triangle> many(150001, Triangle{gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0), gp_Pnt(0, 1, 0)});
    writeBinaryStl(folder.file("dense.stl"), many);
    Model m;
    const Model::State before = m.state();
    CommandResult refused = m.import(folder.file("dense.stl"));
    EXPECT_EQ(refused.message, "dense.stl has 150001 triangles; up to 150000 can be made into a "
                               "solid. Reduce the mesh first.");
    EXPECT_TRUE(m.state() == before);

    // Exactly at a limit the mesh is sewn; one over it is not.
    writeBinaryStl(folder.file("cube.stl"), boxTriangles(gp_Pnt(0, 0, 0), 1, 1, 1));
    EXPECT_TRUE(readStl(folder.file("cube.stl"), units::Length::Millimeters, 12));
    EXPECT_EQ(readStl(folder.file("cube.stl"), units::Length::Millimeters, 11).error(),
              "cube.stl has 12 triangles; up to 11 can be made into a solid. Reduce the mesh "
              "first.");
}

TEST(ImportModel, UndoRemovesEveryBodyAndRedoBringsTheSameBack) {
    TempFolder folder;
    std::vector<Triangle> two = boxTriangles(gp_Pnt(0, 0, 0), 1, 1, 1);
    writeBinaryStl(folder.file("one.stl"), two);
    Model m;
    ASSERT_TRUE(m.run(CommandRecord("create_box").set("width", 2).set("depth", 2).set("height", 2)).ok);
    ASSERT_TRUE(m.import(folder.file("one.stl")).ok);
    ASSERT_EQ(m.bodies().size(), 2u);
    const GeometryObject* imported = m.bodies()[1];
    const std::uint64_t serial = imported->serial;
    const TopoDS_Shape shape = imported->shape.shape();
    EXPECT_EQ(imported->id, "Body1");

    ASSERT_TRUE(m.stack.undo());
    EXPECT_EQ(m.bodies().size(), 1u);
    EXPECT_EQ(m.document.find("Body1"), nullptr);
    ASSERT_TRUE(m.stack.redo().ok);
    ASSERT_EQ(m.bodies().size(), 2u);
    EXPECT_EQ(m.bodies()[1]->serial, serial);
    EXPECT_EQ(m.bodies()[1]->id, "Body1");
    EXPECT_TRUE(m.bodies()[1]->shape.shape().IsSame(shape));
    EXPECT_TRUE(m.stack.undo());
    EXPECT_EQ(m.bodies().size(), 1u);
}

TEST(ImportModel, EveryBadInputGetsItsSentenceAndChangesNothing) {
    TempFolder folder;
    writeText(folder.file("notes.step"), "These are not the shapes you are looking for.\n");
    writeText(folder.file("empty.stl"), "");
    writeText(folder.file("words.stl"), "solid words\nfacet normal nonsense\nendsolid\n");
    const std::string screw = std::string(kStepData) + "/screw.step";
    if (fs::exists(screw)) {
        std::ifstream in(screw, std::ios::binary);
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        writeText(folder.file("truncated.step"), text.substr(0, text.size() / 2));
    }
    const double nan = std::numeric_limits<double>::quiet_NaN();
    writeBinaryStl(folder.file("nan.stl"),
                   {{gp_Pnt(nan, 0, 0), gp_Pnt(1, nan, 0), gp_Pnt(0, 1, nan)}});
    writeBinaryStl(folder.file("flat.stl"), {{gp_Pnt(0, 0, 0), gp_Pnt(1, 1, 1), gp_Pnt(2, 2, 2)},
                                             {gp_Pnt(0, 0, 0), gp_Pnt(0, 0, 0), gp_Pnt(0, 0, 1)}});

    struct Case {
        CommandRecord record;
        std::vector<std::string> sentences; // any of them
    };
    auto importOf = [](const std::string& path) {
        return CommandRecord("import_model").set("path", path);
    };
    std::vector<Case> cases = {
        {CommandRecord("import_model"), {"import_model: give the file's 'path'."}},
        {importOf(""), {"import_model: give the file's 'path'."}},
        {importOf(folder.file("model.obj")), {"import_model: a .step, .stp or .stl file, please."}},
        {importOf(folder.file("model")), {"import_model: a .step, .stp or .stl file, please."}},
        {importOf(folder.file("cube.stl")).set("unit", "inches"),
         {"import_model: 'unit' must be mm, cm, m, in or ft."}},
        {importOf(folder.file("cube.stl")).set("unit", 25.4), {"import_model: 'unit' must be text."}},
        {importOf(folder.file("missing.STP")), {"No file at " + folder.file("missing.STP")}},
        {importOf(folder.file("cube.stl.gz")), {"import_model: a .step, .stp or .stl file, please."}},
        {importOf(folder.file("notes.step")),
         {"Couldn't read " + folder.file("notes.step") + " as STEP."}},
        {importOf(folder.file("empty.stl")), {"Couldn't read " + folder.file("empty.stl") + " as STL."}},
        {importOf(folder.file("words.stl")), {"Couldn't read " + folder.file("words.stl") + " as STL.",
                                               "There are no usable triangles."}},
        {importOf(folder.file("nan.stl")), {"There are no usable triangles."}},
        {importOf(folder.file("flat.stl")), {"There are no usable triangles."}},
    };
    if (fs::exists(folder.file("truncated.step")))
        cases.push_back({importOf(folder.file("truncated.step")),
                         {"Couldn't read " + folder.file("truncated.step") + " as STEP.",
                          folder.file("truncated.step") + ": nothing in it could be turned into shapes.",
                          folder.file("truncated.step") + " has no solids or surfaces."}});
    Model m;
    ASSERT_TRUE(m.run(CommandRecord("create_box").set("width", 2).set("depth", 2).set("height", 2)).ok);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.record.toCall());
        const Model::State before = m.state();
        CommandResult refused = m.run(c.record);
        EXPECT_FALSE(refused.ok);
        EXPECT_NE(std::find(c.sentences.begin(), c.sentences.end(), refused.message),
                  c.sentences.end())
            << refused.message;
        EXPECT_TRUE(m.state() == before);
    }
}

// Files nobody here wrote: each comes in (a solid when closed, a shell when not)
// or is refused with a sentence; nothing crashes.
void importEach(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        Model m;
        CommandResult done = m.import(file);
        if (!done.ok) {
            EXPECT_FALSE(done.message.empty());
            EXPECT_TRUE(m.bodies().empty());
            continue;
        }
        ASSERT_EQ(m.bodies().size(), 1u);
        const TopoDS_Shape& shape = m.bodies()[0]->shape.shape();
        EXPECT_TRUE(TopExp_Explorer(shape, TopAbs_FACE).More());
        if (isSolid(shape)) {
            EXPECT_GT(volumeOf(shape), 0);
        }
    }
}

TEST(ImportStl, SmallRealWorldMeshesComeInOrAreRefused) {
    const std::vector<std::string> files =
        filesUnder({"/usr/share/openscad/testdata", "/usr/share/openscad/regression"}, ".stl");
    if (files.empty()) GTEST_SKIP() << "openscad-testing-data is not installed";
    importEach(files);
}

// The kernel's samples up to a megabyte (a few thousand triangles); the larger
// ones take tens of seconds each to sew and are swept by hand, not on every build.
TEST(ImportStl, ShippedMeshesComeInOrAreRefused) {
    std::vector<std::string> files = filesUnder({kStlData}, ".stl");
    std::erase_if(files, [](const std::string& file) { return fs::file_size(file) > 1'000'000; });
    if (files.empty()) GTEST_SKIP() << "no STL samples in " << kStlData;
    importEach(files);
}

} // namespace
} // namespace cad::exchange::testing
