// import_drawing through the command stack: sizes and joins, placement and scale,
// groups, one-step undo, refusals that leave the sketch alone, every installed
// sample SVG, a round trip through the SVG writer, and a large drawing's speed.
#include "sketch/drawingimport/ImportDrawingCommand.h"
#include "sketch/drawing/DrawingWriters.h"
#include "sketch/drawingimport/DrawingToSketch.h"
#include "tests/sketch/SketchSession.h"

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <numbers>
#include <unistd.h>

namespace cad::test {
namespace {

namespace fs = std::filesystem;
constexpr double kTol = 1e-6;

std::string mmSvg(const std::string& body, double size = 100) {
    const std::string s = std::to_string(size);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + s + "mm\" height=\"" + s +
           "mm\" viewBox=\"0 0 " + s + " " + s + "\">" + body + "</svg>";
}

class ImportDrawing : public SketchSession {
protected:
    ImportDrawing() {
        registerDrawingImportCommands(registry);
        dir_ = fs::temp_directory_path() / ("korvel-import-" + std::to_string(getpid()));
        fs::create_directories(dir_);
        newSketch();
    }
    ~ImportDrawing() override { fs::remove_all(dir_); }

    std::string file(const std::string& name, const std::string& text) {
        const fs::path path = dir_ / name;
        std::ofstream(path, std::ios::binary) << text;
        return path.string();
    }
    CommandRecord import(const std::string& path, Args more = {}) {
        CommandRecord r = on("import_drawing", more);
        r.set("path", path);
        return r;
    }
    template <typename Kind> std::vector<Kind> all() {
        std::vector<Kind> out;
        for (const SketchEntity& e : sketch().entities)
            if (auto* g = std::get_if<Kind>(&e.geometry)) out.push_back(*g);
        return out;
    }

    fs::path dir_;
};

TEST_F(ImportDrawing, SquareAndCircleImportAsJoinedLinesAndACircleInOneUndoStep) {
    line(-5, -5, -1, -1); // already there: must survive the import and its undo
    const std::string before = snapshot();
    const std::string path =
        file("square.svg", mmSvg("<rect x=\"10\" y=\"10\" width=\"50\" height=\"50\" "
                                 "fill=\"none\" stroke=\"black\"/>"
                                 "<circle cx=\"80\" cy=\"80\" r=\"10\" stroke=\"black\"/>"));
    EXPECT_EQ(ok(import(path)), "Imported 5 curves from the SVG file (80.00 x 80.00 mm).");
    const auto lines = all<SketchLine>();
    ASSERT_EQ(lines.size(), 5u);
    for (std::size_t k = 1; k < 5; ++k)
        EXPECT_NEAR(
            std::hypot(lines[k].end.x - lines[k].start.x, lines[k].end.y - lines[k].start.y), 50,
            kTol);
    ASSERT_EQ(all<SketchCircle>().size(), 1u);
    EXPECT_NEAR(all<SketchCircle>()[0].radius, 10, kTol);
    // Placed by the lower-left of the bounds: the circle reaches (0, 0) below the square.
    EXPECT_NEAR(all<SketchCircle>()[0].center.x, 70, kTol);
    EXPECT_NEAR(all<SketchCircle>()[0].center.y, 10, kTol);

    // Four coincidences close the square, end to start, and hold as they stand.
    ASSERT_EQ(sketch().constraints.size(), 4u);
    for (const SketchConstraint& c : sketch().constraints) {
        EXPECT_EQ(c.type, ConstraintType::Coincident);
        EXPECT_EQ(c.refs[0].part, "end");
        EXPECT_EQ(c.refs[1].part, "start");
        const auto& a = std::get<SketchLine>(entity(c.refs[0].entity).geometry);
        const auto& b = std::get<SketchLine>(entity(c.refs[1].entity).geometry);
        EXPECT_EQ(a.end, b.start);
    }
    // One new group holds exactly the imported entities.
    for (const SketchEntity& e : sketch().entities)
        EXPECT_EQ(e.group, e.id == "Line1" ? "" : "Group1") << e.id;

    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(snapshot(), before);

    // A second import takes the next group and construction when asked.
    ok(import(path));
    ok(import(path, {{"construction", true}}));
    int second = 0;
    for (const SketchEntity& e : sketch().entities)
        if (e.group == "Group2") {
            ++second;
            EXPECT_TRUE(e.construction);
        }
    EXPECT_EQ(second, 5);
}

TEST_F(ImportDrawing, PlacementScaleAndWidth) {
    const std::string path = file("r.svg", mmSvg("<rect x=\"20\" y=\"30\" width=\"50\" "
                                                 "height=\"20\" fill=\"none\" stroke=\"red\"/>"));
    auto corners = [&] {
        double minX = 1e9, minY = 1e9, maxX = -1e9, maxY = -1e9;
        for (const SketchLine& l : all<SketchLine>())
            for (Point2 p : {l.start, l.end}) {
                minX = std::min(minX, p.x), minY = std::min(minY, p.y);
                maxX = std::max(maxX, p.x), maxY = std::max(maxY, p.y);
            }
        return std::array<double, 4>{minX, minY, maxX, maxY};
    };
    ok(import(path));
    auto box = corners();
    EXPECT_NEAR(box[0], 0, kTol);
    EXPECT_NEAR(box[1], 0, kTol);
    EXPECT_NEAR(box[2], 50, kTol);
    EXPECT_NEAR(box[3], 20, kTol);
    stack.undo();
    ok(import(path, {{"width", 100.0}, {"place", "center"}, {"x", 5.0}, {"y", "1 cm"}}));
    box = corners();
    EXPECT_NEAR(box[0], -45, kTol);
    EXPECT_NEAR(box[2], 55, kTol);
    EXPECT_NEAR(box[1], -10, kTol);
    EXPECT_NEAR(box[3], 30, kTol);
    stack.undo();
    // The file's own coordinates (y up, so the page's top-left is (0, 0)), scaled about them.
    ok(import(path, {{"place", "file"}, {"scale", 2.0}}));
    box = corners();
    EXPECT_NEAR(box[0], 40, kTol);
    EXPECT_NEAR(box[3], -60, kTol);
    EXPECT_NEAR(box[1], -100, kTol);
}

TEST_F(ImportDrawing, RefusalsSayWhyAndAddNothing) {
    line(0, 0, 10, 0);
    const std::string before = snapshot();
    const std::string good = file("good.svg", mmSvg("<rect width=\"5\" height=\"5\"/>"));
    const std::string flat = file("flat.svg", mmSvg("<line x1=\"5\" y1=\"0\" x2=\"5\" y2=\"9\" "
                                                    "stroke=\"black\"/>"));
    const std::string empty = file("empty.svg", mmSvg("<g/>"));
    const std::string text = file("notes.svg", "just some words");
    const std::string other = file("pic.png", "x");
    const std::string fake = file("pic.pdf", "no markers here");
    const std::string missing = (dir_ / "gone.svg").string();
    const std::pair<CommandRecord, std::string> cases[] = {
        {import(empty), empty + " has no visible shapes."},
        {import(text), text + " isn't an SVG drawing I can read."},
        {import(other), "Import .svg, .dxf, .ai or .pdf files."},
        {import(fake), fake + " isn't a PDF or Illustrator file I can read."},
        {import(missing), "Couldn't open " + missing},
        {import(good, {{"scale", 0.0}}),
         "import_drawing: 'scale' must be a number greater than zero."},
        {import(good, {{"scale", -2.0}}),
         "import_drawing: 'scale' must be a number greater than zero."},
        {import(good, {{"scale", 1e300}}),
         "At that scale the drawing would be too large for a sketch."},
        {import(good, {{"scale", 1e-300}}), "Nothing in the drawing became sketch geometry."},
        {import(flat, {{"width", 10.0}}), "The drawing has no width to scale."},
        {import(good, {{"place", "middle"}}),
         "import_drawing: 'place' must be corner, center or file."},
        {import(good, {{"construction", "maybe"}}),
         "import_drawing: 'construction' must be true or false."},
        {import("  "), "import_drawing: give the file's path."},
        {CommandRecord("import_drawing").set("path", good), "import_drawing: missing 'sketch'."},
    };
    for (const auto& [record, message] : cases) {
        EXPECT_EQ(error(record), message);
        EXPECT_EQ(snapshot(), before);
    }
}

// The reader goes by the extension in any case; DXF keeps its own coordinates unless told.
TEST_F(ImportDrawing, DxfByExtensionInItsOwnCoordinates) {
    const std::string dxf =
        file("inch.DXF", "0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n1\n0\nENDSEC\n"
                         "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n2\n20\n3\n"
                         "11\n3\n21\n3\n0\nENDSEC\n0\nEOF\n");
    EXPECT_EQ(ok(import(dxf)), "Imported 1 curves from the DXF file (25.40 x 0.00 mm).");
    const SketchLine l = all<SketchLine>().at(0);
    EXPECT_NEAR(l.start.x, 50.8, kTol);
    EXPECT_NEAR(l.start.y, 76.2, kTol);
    EXPECT_NEAR(l.end.x, 76.2, kTol);
    stack.undo();
    ok(import(dxf, {{"place", "corner"}}));
    EXPECT_NEAR(all<SketchLine>().at(0).start.x, 0, kTol);
}

// Each installed sample SVG either imports or is refused with a sentence.
TEST_F(ImportDrawing, InstalledSampleSvgs) {
    const fs::path root = "/usr/share/openscad/testdata/svg";
    if (!fs::exists(root)) GTEST_SKIP() << "openscad-testing-data isn't installed";
    int tried = 0, imported = 0;
    for (const auto& item : fs::recursive_directory_iterator(root)) {
        if (item.path().extension() != ".svg") continue;
        ++tried;
        const CommandResult r = run(import(item.path().string()));
        ASSERT_FALSE(r.message.empty());
        EXPECT_EQ(r.message.back(), '.') << r.message;
        if (r.ok) ++imported;
        std::cout << (r.ok ? "imported " : "refused  ") << item.path().filename().string() << ": "
                  << r.message << "\n";
    }
    EXPECT_GT(imported, tried / 2);
}

// A sketch drawn by hand, written by the SVG writer and read back, is the same
// geometry: lines, a circle, an arc either way round and a polyline.
TEST_F(ImportDrawing, RoundTripThroughTheSvgWriter) {
    using drawing::DrawingItem;
    using drawing::ItemKind;
    drawing::Drawing out;
    out.items.push_back({ItemKind::Line, "0", {{0, 0}, {40, 0}}, 0, 0, 0, false});
    out.items.push_back({ItemKind::Circle, "0", {{20, 15}}, 5, 0, 0, false});
    out.items.push_back({ItemKind::Arc, "0", {{40, 10}}, 10, -90, 90, false});
    out.items.push_back({ItemKind::Arc, "0", {{10, 30}}, 7.5, 30, 300, false});
    out.items.push_back(
        {ItemKind::Polyline, "0", {{0, 0}, {0, 30}, {12.345678, 40}}, 0, 0, 0, false});
    ok(import(file("round.svg", drawing::svgText(out))));

    const auto lines = all<SketchLine>();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_NEAR(lines[0].end.x, 40, kTol);
    EXPECT_NEAR(lines[2].end.x, 12.345678, kTol);
    EXPECT_NEAR(lines[2].end.y, 40, kTol);
    EXPECT_NEAR(all<SketchCircle>()[0].center.x, 20, kTol);
    EXPECT_NEAR(all<SketchCircle>()[0].center.y, 15, kTol);
    EXPECT_NEAR(all<SketchCircle>()[0].radius, 5, kTol);
    const auto arcs = all<SketchArc>();
    ASSERT_EQ(arcs.size(), 2u);
    auto endOf = [](const SketchArc& a, bool end) {
        const double t = (a.startAngle + (end ? a.sweepAngle : 0)) * std::numbers::pi / 180;
        return Point2{a.center.x + a.radius * std::cos(t), a.center.y + a.radius * std::sin(t)};
    };
    for (const SketchArc& a : arcs) {
        const DrawingItem& want = out.items[a.radius > 9 ? 2 : 3];
        EXPECT_NEAR(a.center.x, want.points[0].x, kTol);
        EXPECT_NEAR(a.center.y, want.points[0].y, kTol);
        EXPECT_NEAR(a.radius, want.radius, kTol);
        // The same curve: start and end as drawn, whichever way it was stored.
        const double s = want.startAngle * std::numbers::pi / 180,
                     e = want.endAngle * std::numbers::pi / 180;
        const Point2 ws{want.points[0].x + want.radius * std::cos(s),
                        want.points[0].y + want.radius * std::sin(s)};
        const Point2 we{want.points[0].x + want.radius * std::cos(e),
                        want.points[0].y + want.radius * std::sin(e)};
        const bool forward = std::hypot(endOf(a, false).x - ws.x, endOf(a, false).y - ws.y) < kTol;
        const Point2 first = forward ? ws : we, last = forward ? we : ws;
        EXPECT_NEAR(endOf(a, false).x, first.x, kTol);
        EXPECT_NEAR(endOf(a, true).y, last.y, kTol);
        EXPECT_NEAR(std::abs(a.sweepAngle), std::fmod(want.endAngle - want.startAngle + 360, 360),
                    1e-5);
    }
}

// Ten thousand joined segments go in well under a second.
TEST(DrawingToSketchSpeed, TenThousandSegments) {
    drawingimport::ImportedDrawing drawing;
    drawingimport::DrawingPath path;
    for (int k = 0; k < 10000; ++k) {
        const double a = k * 2 * std::numbers::pi / 10000,
                     b = (k + 1) * 2 * std::numbers::pi / 10000;
        path.pieces.push_back(
            {drawingimport::PieceKind::Segment,
             {{100 * std::cos(a), 100 * std::sin(a)}, {100 * std::cos(b), 100 * std::sin(b)}},
             {},
             0,
             0,
             0});
    }
    path.closed = true;
    drawing.paths.push_back(path);
    std::vector<SketchEntity> entities(1);
    entities[0].id = "Line2";
    entities[0].geometry = SketchLine{{0, 0}, {1, 1}};
    std::vector<SketchConstraint> constraints;
    const auto start = std::chrono::steady_clock::now();
    auto made = drawingimport::drawingToSketch(drawing, entities, constraints, {});
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    ASSERT_TRUE(made.ok());
    EXPECT_LT(seconds, 0.5);
    EXPECT_EQ(made->curves, 10000u);
    EXPECT_EQ(constraints.size(), 10000u); // closed: the last joins the first
    EXPECT_EQ(entities[1].id, "Line1");    // numbers in use are skipped, free ones taken
    EXPECT_EQ(entities[2].id, "Line3");
    EXPECT_EQ(constraints.back().refs[1].text(), "Line1.start");
}

} // namespace
} // namespace cad::test
