// W7 nesting: 500 parts from the 30 outlines of the workload's file (rectangles, L
// shapes, discs with holes) on its 1000 x 500 sheets, spacing 3, margin 5, turning
// allowed. Times nest() and reports its sheets and usage; when libnest2d is installed,
// the same outlines go through its no-fit-polygon nester as a reference.
#include "geometry/sheet/nest/Nesting.h"
#include "geometry/sheet/nest/TightestRectangle.h"
#include "geometry/sheet/nest/TurnedItems.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#ifdef KORVEL_HAVE_LIBNEST2D
#include <libnest2d/libnest2d.hpp>
#endif

using namespace cad::nest;
using cad::drawing::DrawingPoint;
using cad::drawing::ItemKind;

namespace {

constexpr double kPi = 3.14159265358979323846;

// The workload's own file: thirty outlines in mm (outer ring and holes), their
// quantities, the sheet, spacing and margin. KORVEL_W7_PARTS overrides where it is.
std::string w7Path() {
    if (const char* path = std::getenv("KORVEL_W7_PARTS"); path && *path) return path;
    return KORVEL_W7_PARTS;
}

std::vector<DrawingPoint> pointList(const nlohmann::json& points) {
    std::vector<DrawingPoint> out;
    for (const auto& p : points) out.push_back({p.at(0).get<double>(), p.at(1).get<double>()});
    return out;
}

struct W7 {
    std::vector<NestPart> parts;
    double width = 0, height = 0, spacing = 0, margin = 0;
};

cad::Result<W7> readW7() {
    std::ifstream in(w7Path());
    if (!in) return cad::fail("Couldn't read " + w7Path());
    const nlohmann::json file = nlohmann::json::parse(in, nullptr, false);
    if (file.is_discarded()) return cad::fail(w7Path() + " isn't JSON.");
    try {
        W7 w7;
        const auto& sheet = file.at("sheet");
        w7.width = sheet.at("width").get<double>();
        w7.height = sheet.at("height").get<double>();
        w7.spacing = sheet.at("spacing").get<double>();
        w7.margin = sheet.at("margin").get<double>();
        for (const auto& outline : file.at("outlines")) {
            const std::string id = outline.at("id").get<std::string>();
            NestPart part{id, {}, file.at("quantities").at(id).get<int>()};
            part.drawing.items.push_back(
                {ItemKind::Polyline, "CUT_OUTSIDE", pointList(outline.at("outer")), 0, 0, 0, true});
            for (const auto& hole : outline.at("holes"))
                part.drawing.items.push_back(
                    {ItemKind::Polyline, "CUT_INSIDE", pointList(hole), 0, 0, 0, true});
            w7.parts.push_back(std::move(part));
        }
        return w7;
    } catch (const nlohmann::json::exception& e) {
        return cad::fail(w7Path() + ": " + e.what());
    }
}

// A part's outer outline as a polygon (a circle in 72 steps), counter-clockwise.
std::vector<DrawingPoint> outerOutline(const cad::drawing::Drawing& drawing) {
    for (const auto& item : drawing.items) {
        if (item.layer != "CUT_OUTSIDE") continue;
        if (item.kind == ItemKind::Polyline) return item.points;
        std::vector<DrawingPoint> ring;
        for (int k = 0; k < 72; ++k)
            ring.push_back({item.points[0].x + item.radius * std::cos(k * kPi / 36),
                            item.points[0].y + item.radius * std::sin(k * kPi / 36)});
        return ring;
    }
    return {};
}

double polygonArea(const std::vector<DrawingPoint>& ring) {
    double twice = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const DrawingPoint a = ring[i], b = ring[(i + 1) % ring.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    return std::abs(twice) / 2;
}

double outlineArea(const std::vector<NestPart>& parts) {
    double area = 0;
    for (const NestPart& p : parts) area += polygonArea(outerOutline(p.drawing)) * p.quantity;
    return area;
}

void BM_W7Nest(benchmark::State& state) {
    const cad::Result<W7> w7 = readW7();
    if (!w7) {
        state.SkipWithError(w7.error().c_str());
        return;
    }
    const NestRequest request{w7->parts, w7->width, w7->height, w7->spacing, w7->margin, true};
    cad::Result<NestResult> result = cad::fail("not run");
    for (auto _ : state) {
        result = nest(request);
        benchmark::DoNotOptimize(result);
    }
    if (!result) {
        state.SkipWithError(result.error().c_str());
        return;
    }
    const double sheetsArea = result->sheetCount * w7->width * w7->height;
    state.counters["parts"] = static_cast<double>(result->placements.size());
    state.counters["sheets"] = result->sheetCount;
    state.counters["usage_pct"] = result->usage * 100;
    state.counters["outline_usage_pct"] = outlineArea(request.parts) / sheetsArea * 100;
}
BENCHMARK(BM_W7Nest)->Unit(benchmark::kMillisecond);

#ifdef KORVEL_HAVE_LIBNEST2D
// The same copies through libnest2d's no-fit-polygon placer and first-fit selection,
// each outline first turned to its tightest rectangle as nest() turns it. Its bin is
// the sheet less the margin, grown by the spacing: libnest2d keeps half the spacing
// around every part, the bin's edges included.
void BM_W7Libnest2d(benchmark::State& state) {
    const cad::Result<W7> w7 = readW7();
    if (!w7) {
        state.SkipWithError(w7.error().c_str());
        return;
    }
    const double kWidth = w7->width, kHeight = w7->height, kSpacing = w7->spacing,
                 kMargin = w7->margin;
    const NestRequest request{w7->parts, kWidth, kHeight, kSpacing, kMargin, true};
    double rectangleArea = 0;
    std::vector<libnest2d::Item> items;
    for (const NestPart& part : request.parts) {
        cad::drawing::Drawing turned = part.drawing;
        turnDrawing(turned, tightestAngle(turned), {0, 0});
        const cad::drawing::DrawingBounds box = cad::drawing::drawingBounds(turned);
        rectangleArea += (box.maxX - box.minX) * (box.maxY - box.minY) * part.quantity;
        std::vector<DrawingPoint> ring = outerOutline(turned);
        ClipperLib::Path path; // clockwise and closed, as libnest2d's Clipper backend wants
        for (auto p = ring.rbegin(); p != ring.rend(); ++p)
            path.push_back({libnest2d::mm(p->x), libnest2d::mm(p->y)});
        path.push_back(path.front());
        for (int copy = 0; copy < part.quantity; ++copy) items.emplace_back(path);
    }
    const auto bin = libnest2d::Box(libnest2d::mm(kWidth - 2 * kMargin + kSpacing),
                                    libnest2d::mm(kHeight - 2 * kMargin + kSpacing));
    std::size_t bins = 0;
    for (auto _ : state) {
        std::vector<libnest2d::Item> run = items;
        bins = libnest2d::nest(run, bin, libnest2d::mm(kSpacing));
        std::size_t unplaced = 0;
        for (const libnest2d::Item& item : run) unplaced += item.binId() < 0 ? 1 : 0;
        state.counters["unplaced"] = static_cast<double>(unplaced);
    }
    const double sheetsArea = static_cast<double>(bins) * kWidth * kHeight;
    state.counters["parts"] = static_cast<double>(items.size());
    state.counters["sheets"] = static_cast<double>(bins);
    state.counters["usage_pct"] = rectangleArea / sheetsArea * 100;
    state.counters["outline_usage_pct"] = outlineArea(request.parts) / sheetsArea * 100;
}
BENCHMARK(BM_W7Libnest2d)->Unit(benchmark::kMillisecond)->Iterations(1);
#endif

} // namespace
