// The flat drawing writers: numbers written the same in every locale, DXF that
// ezdxf audits clean and reads back with the same entities, layers and
// coordinates, and SVG that librsvg renders at its real size.
#include "sketch/drawing/DrawingWriters.h"
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

DrawingItem polyline(std::vector<DrawingPoint> points, bool closed, std::string layer = "CUT") {
    return {ItemKind::Polyline, std::move(layer), std::move(points), 0, 0, 0, closed};
}

// A 40 x 20 outline from the origin with a hole of radius 5 at (10, 10), an arc and
// a slot-end line on other layers.
Drawing plate(units::Length unit = units::Length::Millimeters) {
    Drawing d;
    d.unit = unit;
    d.items.push_back(polyline({{0, 0}, {40, 0}, {40, 20}, {0, 20}}, true));
    d.items.push_back({ItemKind::Circle, "CUT", {{10, 10}}, 5, 0, 0, false});
    d.items.push_back({ItemKind::Arc, "ENGRAVE", {{30, 10}}, 4, 0, 90, false});
    d.items.push_back({ItemKind::Line, "FOO", {{25, 2}, {35, 2}}, 0, 0, 0, false});
    return d;
}

TEST(DrawingNumbers, SixDecimalsWithoutTrailingZerosAndNoTinyValues) {
    EXPECT_EQ(drawingNumber(1e-12), "0");
    EXPECT_EQ(drawingNumber(-4e-10), "0");
    EXPECT_EQ(drawingNumber(2.5), "2.5");
    EXPECT_EQ(drawingNumber(100), "100");
    EXPECT_EQ(drawingNumber(12.5), "12.5");
    EXPECT_EQ(drawingNumber(-3.25), "-3.25");
    EXPECT_EQ(drawingNumber(10 / 25.4), "0.393701");
    EXPECT_EQ(drawingNumber(-1e-7), "0");
    EXPECT_EQ(drawingNumber(1234567.0000004), "1234567");
}

TEST(DxfWriter, EzdxfAuditsCleanAndReadsTheSameEntitiesLayersAndCoordinates) {
    if (!fs::exists("/usr/bin/python3") || programOutput("/usr/bin/python3 -c 'import ezdxf'") != "")
        GTEST_SKIP() << "python3-ezdxf is not installed";
    TempFolder scratch;
    const std::string path = scratch.file("plate.dxf");
    ASSERT_TRUE(writeDxf(plate(), path));
    const std::string script =
        "import ezdxf,sys\n"
        "d=ezdxf.readfile(sys.argv[1]); a=d.audit()\n"
        "print('errors',len(a.errors))\n"
        "print('units',d.header['$INSUNITS'],d.header['$MEASUREMENT'])\n"
        "for l in d.layers: print('layer',l.dxf.name,l.dxf.color)\n"
        "for e in d.modelspace():\n"
        " t=e.dxftype()\n"
        " if t=='POLYLINE': print(t,e.dxf.layer,e.is_closed,' "
        "'.join('%g,%g'%(v.dxf.location.x,v.dxf.location.y) for v in e.vertices))\n"
        " elif t=='CIRCLE': "
        "print(t,e.dxf.layer,'%g,%g'%(e.dxf.center.x,e.dxf.center.y),e.dxf.radius)\n"
        " elif t=='ARC': "
        "print(t,e.dxf.layer,'%g,%g'%(e.dxf.center.x,e.dxf.center.y),e.dxf.radius,e.dxf.start_"
        "angle,e.dxf.end_angle)\n"
        " elif t=='LINE': print(t,e.dxf.layer,'%g,%g "
        "%g,%g'%(e.dxf.start.x,e.dxf.start.y,e.dxf.end.x,e.dxf.end.y))\n";
    std::ofstream(scratch.file("read.py")) << script;
    const std::string out = programOutput("/usr/bin/python3 " + scratch.file("read.py") + " " + path);
    for (const char* line :
         {"errors 0\n", "units 4 1\n", "layer CUT 1\n", "layer ENGRAVE 5\n", "layer FOO 7\n",
          "POLYLINE CUT True 0,0 40,0 40,20 0,20\n", "CIRCLE CUT 10,10 5.0\n",
          "ARC ENGRAVE 30,10 4.0 0.0 90.0\n", "LINE FOO 25,2 35,2\n"})
        EXPECT_NE(out.find(line), std::string::npos) << line << " in\n" << out;
}

TEST(DxfWriter, InchesAndTheExtents) {
    Drawing d;
    d.unit = units::Length::Inches;
    d.items.push_back(polyline({{0, 0}, {10 / 25.4, 0}, {10 / 25.4, 10 / 25.4}}, false));
    // An arc from 0 to 90 degrees reaches its circle's top and right: the extents.
    d.items.push_back({ItemKind::Arc, "CUT", {{-1, -1}}, 2, 0, 90, false});
    const std::string text = dxfText(d);
    EXPECT_NE(text.find("$INSUNITS\n70\n1\n9\n$MEASUREMENT\n70\n0\n"), std::string::npos);
    EXPECT_NE(text.find("$EXTMIN\n10\n-1\n20\n-1\n9\n$EXTMAX\n10\n1\n20\n1\n"), std::string::npos);
    EXPECT_NE(text.find("10\n0.393701\n20\n0.393701\n30\n0\n"), std::string::npos);
    EXPECT_TRUE(text.ends_with("0\nENDSEC\n0\nEOF\n"));
}

// The width and height of a PNG, from its header.
std::pair<int, int> pngSize(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    unsigned char header[24] = {};
    in.read(reinterpret_cast<char*>(header), sizeof header);
    auto big = [&](int at) {
        return header[at] << 24 | header[at + 1] << 16 | header[at + 2] << 8 | header[at + 3];
    };
    return {big(16), big(20)};
}

TEST(SvgWriter, LibrsvgRendersItAtItsRealSize) {
    if (!fs::exists("/usr/bin/rsvg-convert")) GTEST_SKIP() << "librsvg2-bin is not installed";
    TempFolder scratch;
    const std::string path = scratch.file("plate.svg");
    ASSERT_TRUE(writeSvg(plate(), path));
    // At 25.4 dots per inch a millimetre is a pixel.
    const std::string png = scratch.file("plate.png");
    EXPECT_EQ(programOutput("/usr/bin/rsvg-convert --dpi-x 25.4 --dpi-y 25.4 -o " + png + " " + path), "");
    EXPECT_EQ(pngSize(png), std::make_pair(40, 20));

    const std::string text = svgText(plate());
    EXPECT_NE(text.find("width=\"40mm\" height=\"20mm\" viewBox=\"0 0 40 20\""), std::string::npos);
    // y flips: the hole's centre 10 up from the bottom is 10 down from the top.
    EXPECT_NE(text.find("  <circle cx=\"10\" cy=\"10\" r=\"5\"/>\n"), std::string::npos);
    EXPECT_NE(text.find("<path d=\"M0 20 L 40 20 L 40 0 L 0 0 Z\"/>"), std::string::npos);
    // Right to top of its circle, counter-clockwise as drawn: the small arc, negative sweep.
    EXPECT_NE(text.find("<path d=\"M34 10 A 4 4 0 0 0 30 6\"/>"), std::string::npos);
    EXPECT_NE(text.find(" <g id=\"FOO\" fill=\"none\" stroke=\"#000000\" stroke-width=\"0.1\">"),
              std::string::npos);
}

TEST(SvgWriter, FeetAreSizedInInchesAndUnwritablePathsSaySo) {
    Drawing d = plate(units::Length::Feet);
    const std::string text = svgText(d);
    EXPECT_NE(text.find("width=\"480in\" height=\"240in\" viewBox=\"0 0 40 20\""),
              std::string::npos);
    EXPECT_NE(text.find("stroke-width=\"0.008333\""), std::string::npos);
    EXPECT_EQ(writeSvg(d, "/nonexistent/folder/a.svg").error(),
              "Couldn't write /nonexistent/folder/a.svg.");
    EXPECT_EQ(writeDxf(d, "/nonexistent/folder/a.dxf").error(),
              "Couldn't write /nonexistent/folder/a.dxf.");
}

} // namespace
} // namespace cad::drawing
