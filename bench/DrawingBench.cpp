// Writing a 10,000-item flat drawing (lines, arcs, circles and closed polylines on
// several layers) as DXF and as SVG files.
#include "sketch/drawing/DrawingWriters.h"

#include <benchmark/benchmark.h>

#include <filesystem>

using namespace cad::drawing;

namespace {

Drawing tenThousandItems() {
    Drawing d;
    const char* layers[] = {"CUT", "CUT_INSIDE", "ENGRAVE", "BEND"};
    for (int i = 0; i < 10000; ++i) {
        const double x = (i % 100) * 7.25, y = (i / 100) * 5.5;
        const char* layer = layers[i % 4];
        switch (i % 4) {
        case 0:
            d.items.push_back({ItemKind::Line, layer, {{x, y}, {x + 5, y + 3}}, 0, 0, 0, false});
            break;
        case 1:
            d.items.push_back({ItemKind::Circle, layer, {{x, y}}, 1.5, 0, 0, false});
            break;
        case 2:
            d.items.push_back({ItemKind::Arc, layer, {{x, y}}, 2, 30, 250, false});
            break;
        default:
            d.items.push_back({ItemKind::Polyline,
                               layer,
                               {{x, y}, {x + 4, y}, {x + 4, y + 2}, {x, y + 2}},
                               0,
                               0,
                               0,
                               true});
        }
    }
    return d;
}

using Writer = cad::Result<void> (*)(const Drawing&, const std::string&);

void writeFile(benchmark::State& state, Writer writer, const char* name) {
    const Drawing drawing = tenThousandItems();
    const std::string path = (std::filesystem::temp_directory_path() / name).string();
    for (auto _ : state)
        if (cad::Result<void> ok = writer(drawing, path); !ok) {
            state.SkipWithError(ok.error().c_str());
            break;
        }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(path));
    std::filesystem::remove(path);
}

void BM_WriteDxf10k(benchmark::State& state) {
    writeFile(state, &writeDxf, "korvel-bench-drawing.dxf");
}
void BM_WriteSvg10k(benchmark::State& state) {
    writeFile(state, &writeSvg, "korvel-bench-drawing.svg");
}

} // namespace

BENCHMARK(BM_WriteDxf10k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteSvg10k)->Unit(benchmark::kMillisecond);
