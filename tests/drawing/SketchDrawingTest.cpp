// A sketch as a drawing and as files: exact circles and arcs, one closed polyline
// per outline, text engraved as closed glyph contours, construction only when
// asked, real units; the files read back by ezdxf and rendered by librsvg.
#include "sketch/drawing/SketchDrawing.h"
#include "sketch/SketchObject.h"
#include "sketch/drawing/SketchExport.h"
#include "tests/support/ProgramOutput.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace cad::drawing {
namespace {

namespace fs = std::filesystem;

using cad::testing::programOutput;
using cad::testing::TempFolder;

SketchEntity entity(std::string id, SketchGeometry geometry, bool construction = false) {
    SketchEntity e;
    e.id = std::move(id);
    e.geometry = std::move(geometry);
    e.construction = construction;
    return e;
}

// A 40 x 20 rectangle with a hole of diameter 10 at its middle.
std::vector<SketchEntity> plate() {
    return {entity("Rectangle1", SketchRectangle{{0, 0}, 40, 20}),
            entity("Circle1", SketchCircle{{20, 10}, 5})};
}

TEST(SketchDrawing, OutlinesArcsPointsAndConstructionOnTheirLayers) {
    std::vector<SketchEntity> sketch = plate();
    sketch.push_back(entity("Arc1", SketchArc{{0, 0}, 3, 90, -120}));
    sketch.push_back(entity("Slot1", SketchSlot{{0, 30}, {10, 30}, 4}));
    sketch.push_back(entity("Line1", SketchLine{{0, 40}, {5, 40}}));
    sketch.push_back(entity("Point1", SketchPoint{{7, 7}}));
    sketch.push_back(entity("Line2", SketchLine{{0, 0}, {40, 20}}, true));

    const Drawing d = sketchDrawing(sketch, units::Length::Millimeters, false);
    ASSERT_EQ(d.items.size(), 6u);
    const DrawingItem& outline = d.items[0];
    EXPECT_EQ(outline.kind, ItemKind::Polyline);
    EXPECT_TRUE(outline.closed);
    EXPECT_EQ(outline.points.size(), 4u);
    EXPECT_EQ(outline.layer, "CUT");
    EXPECT_EQ(d.items[1].kind, ItemKind::Circle);
    EXPECT_DOUBLE_EQ(d.items[1].radius, 5);
    // Clockwise from 90° by 120° is counter-clockwise from 330° to 450°.
    EXPECT_EQ(d.items[2].kind, ItemKind::Arc);
    EXPECT_DOUBLE_EQ(d.items[2].startAngle, 330);
    EXPECT_DOUBLE_EQ(d.items[2].endAngle, 450);
    // The slot's sides and ends run on as one closed outline.
    const DrawingItem& slot = d.items[3];
    EXPECT_EQ(slot.kind, ItemKind::Polyline);
    EXPECT_TRUE(slot.closed);
    for (const DrawingPoint& p : slot.points) {
        const double along = std::clamp(p.x, 0.0, 10.0);
        EXPECT_NEAR(std::hypot(p.x - along, p.y - 30), 2, 0.001) << p.x << "," << p.y;
    }
    EXPECT_EQ(d.items[4].kind, ItemKind::Line);
    EXPECT_EQ(d.items[5].kind, ItemKind::Point);

    const Drawing inches = sketchDrawing(sketch, units::Length::Inches, true);
    ASSERT_EQ(inches.items.size(), 7u);
    EXPECT_EQ(inches.items[6].layer, "CONSTRUCTION");
    EXPECT_NEAR(inches.items[6].points[1].x, 40 / 25.4, 1e-12);
    EXPECT_NEAR(inches.items[1].radius, 5 / 25.4, 1e-12);
}

TEST(SketchDrawing, TextIsEngravedAsClosedContours) {
    SketchText text;
    text.text = "O8";
    text.font = "Liberation Sans";
    text.height = 10;
    const Drawing d = sketchDrawing({entity("Text1", text)}, units::Length::Millimeters, false);
    // An O has two contours, an 8 three.
    ASSERT_EQ(d.items.size(), 5u);
    for (const DrawingItem& item : d.items) {
        EXPECT_EQ(item.layer, "ENGRAVE");
        EXPECT_EQ(item.kind, ItemKind::Polyline);
        EXPECT_TRUE(item.closed);
        EXPECT_GT(item.points.size(), 8u);
    }
    const DrawingBounds box = drawingBounds(d);
    EXPECT_NEAR(box.maxY - box.minY, 10, 0.5); // cap height, with the O's overshoot
}

TEST(SketchExport, DxfAndSvgFilesAsOtherProgramsReadThem) {
    SketchObject sketch;
    sketch.id = "Sketch1";
    sketch.entities = plate();
    TempFolder scratch;
    EXPECT_EQ(
        exportSketch(sketch, scratch.file("a.pdf"), units::Length::Millimeters, false).error(),
        "Export as .dxf or .svg.");

    const std::string dxf = scratch.file("plate.DXF");
    ASSERT_EQ(*exportSketch(sketch, dxf, units::Length::Millimeters, false), "Wrote " + dxf + ".");
    if (programOutput("/usr/bin/python3 -c 'import ezdxf'") == "") {
        const std::string out = programOutput(
            "/usr/bin/python3 -c \"import ezdxf,sys\nd=ezdxf.readfile(sys.argv[1])\n"
            "print(len(d.audit().errors))\nfor e in d.modelspace():\n"
            " if e.dxftype()=='POLYLINE': print(e.dxf.layer,e.is_closed,sorted(set((round(v.dxf."
            "location.x,6),round(v.dxf.location.y,6)) for v in e.vertices)))\n"
            " else: print(e.dxftype(),e.dxf.layer,e.dxf.radius)\" " +
            dxf);
        EXPECT_EQ(out, "0\nCUT True [(0.0, 0.0), (0.0, 20.0), (40.0, 0.0), (40.0, 20.0)]\n"
                       "CIRCLE CUT 5.0\n");
    }

    const std::string svg = scratch.file("plate.svg");
    ASSERT_TRUE(exportSketch(sketch, svg, units::Length::Millimeters, false));
    std::ifstream in(svg);
    const std::string text((std::istreambuf_iterator<char>(in)), {});
    EXPECT_NE(text.find("width=\"40mm\" height=\"20mm\" viewBox=\"0 0 40 20\""), std::string::npos);
    if (fs::exists("/usr/bin/rsvg-convert")) {
        EXPECT_EQ(programOutput("/usr/bin/rsvg-convert -o " + scratch.file("p.png") + " " + svg),
                  "");
    }

    // A failed write leaves the file that was there: here the temporary file beside
    // it can't be made, because a folder has its name.
    const std::string kept = scratch.file("kept.svg");
    std::ofstream(kept) << "old";
    fs::create_directory(scratch.file(".kept.svg.writing"));
    fs::create_directory(scratch.file(".kept.svg.writing/inside"));
    EXPECT_EQ(exportSketch(sketch, kept, units::Length::Millimeters, false).error(),
              "Couldn't write " + kept + ".");
    std::ifstream old(kept);
    EXPECT_EQ(std::string((std::istreambuf_iterator<char>(old)), {}), "old");
}

} // namespace
} // namespace cad::drawing
