// A nest of sixty mixed parts (plates with holes, L shapes, discs, a wedge and strips
// drawn at odd angles) written as DXF by the drawing writer and checked by ezdxf and
// shapely: a clean audit, no two parts closer than the spacing, every part inside its
// sheet less the margin, and the usage recomputed from the outlines.
#include "geometry/sheet/nest/Nesting.h"
#include "geometry/sheet/nest/TurnedItems.h"
#include "sketch/drawing/DrawingWriters.h"
#include "tests/support/ProgramOutput.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace cad::nest {
namespace {

using drawing::Drawing;
using drawing::DrawingPoint;
using drawing::ItemKind;

NestPart part(std::string name, std::vector<DrawingPoint> outline, std::int32_t quantity) {
    NestPart p{std::move(name), {}, quantity};
    p.drawing.items.push_back(
        {ItemKind::Polyline, "CUT_OUTSIDE", std::move(outline), 0, 0, 0, true});
    return p;
}

std::vector<NestPart> sixtyParts() {
    std::vector<NestPart> parts;
    parts.push_back(part("Plate", {{0, 0}, {120, 0}, {120, 80}, {0, 80}}, 8));
    parts.back().drawing.items.push_back(
        {ItemKind::Circle, "CUT_INSIDE", {{20, 20}}, 6, 0, 0, false});
    parts.back().drawing.items.push_back(
        {ItemKind::Arc, "CUT_INSIDE", {{90, 40}}, 15, 200, 340, false});
    parts.push_back(part("Angle", {{0, 0}, {90, 0}, {90, 20}, {20, 20}, {20, 60}, {0, 60}}, 10));
    turnDrawing(parts.back().drawing, 25, {7, -3});
    NestPart disc{"Disc", {}, 12};
    disc.drawing.items.push_back({ItemKind::Circle, "CUT_OUTSIDE", {{-40, 12}}, 30, 0, 0, false});
    disc.drawing.items.push_back({ItemKind::Circle, "CUT_INSIDE", {{-40, 12}}, 10, 0, 0, false});
    parts.push_back(disc);
    parts.push_back(part("Wedge", {{0, 0}, {70, 10}, {15, 45}}, 10));
    parts.push_back(part("Strip", {{0, 0}, {250, 0}, {250, 25}, {0, 25}}, 8));
    parts.back().drawing.items.push_back(
        {ItemKind::Line, "BEND", {{125, 0}, {125, 25}}, 0, 0, 0, false});
    turnDrawing(parts.back().drawing, 17, {-30, 50});
    parts.push_back(part("Tab", {{0, 0}, {40, 0}, {40, 30}, {0, 30}}, 12));
    turnDrawing(parts.back().drawing, 63, {0, 0});
    parts.push_back(part("Unused", {{0, 0}, {10, 0}, {10, 10}}, 0));
    return parts;
}

TEST(NestLayoutCheck, EzdxfAndShapelyFindTheLayoutSoundAndTheUsageRight) {
    if (cad::testing::programOutput("/usr/bin/python3 -c 'import ezdxf, shapely'") != "")
        GTEST_SKIP() << "python3-ezdxf and python3-shapely are needed";
    NestRequest request{sixtyParts(), 600, 400, 3, 5, true};
    Result<NestResult> result = nest(request);
    ASSERT_TRUE(result) << result.error();
    ASSERT_EQ(result->placements.size(), 60u);
    ASSERT_GT(result->sheetCount, 1) << "the check should span several sheets";

    cad::testing::TempFolder scratch;
    ASSERT_TRUE(drawing::writeDxf(result->drawing, scratch.file("nest.dxf")));
    nlohmann::json side{{"width", 600}, {"height", 400}, {"gap", result->sheetGap},
                        {"spacing", 3}, {"margin", 5},   {"placements", nlohmann::json::array()}};
    for (const NestPlacement& p : result->placements)
        side["placements"].push_back({{"part", p.part}, {"sheet", p.sheet}});
    std::ofstream(scratch.file("nest.json")) << side.dump();

    const std::string out =
        cad::testing::programOutput("/usr/bin/python3 " KORVEL_NEST_CHECK_SCRIPT " " +
                                    scratch.file("nest.dxf") + " " + scratch.file("nest.json"));
    const std::string expected = "errors 0\nparts 60\nsheets " +
                                 std::to_string(result->sheetCount) +
                                 "\ntoo_close 0\noutside 0\nwrong_sheet 0\nusage ";
    ASSERT_EQ(out.substr(0, expected.size()), expected) << out;
    EXPECT_NEAR(std::strtod(out.c_str() + expected.size(), nullptr), result->usage, 1e-9) << out;
}

} // namespace
} // namespace cad::nest
