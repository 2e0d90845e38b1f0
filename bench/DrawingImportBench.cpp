// Importing a generated DXF of 10,000 segments (1,000 closed ten-sided polylines)
// into a sketch, joined by coincidences; then solving that sketch, and adding one
// dimension to it, which re-solves only the outline it touches.
#include "sketch/SketchSolver.h"
#include "sketch/drawingimport/DrawingToSketch.h"
#include "sketch/drawingimport/dxf/DxfReader.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <string>

using namespace cad;
using namespace cad::drawingimport;

namespace {

std::string tenThousandSegments() {
    std::string dxf = "0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n4\n0\nENDSEC\n"
                      "0\nSECTION\n2\nENTITIES\n";
    for (int i = 0; i < 1000; ++i) {
        const double cx = (i % 40) * 30.0, cy = (i / 40) * 30.0;
        dxf += "0\nLWPOLYLINE\n8\n0\n90\n10\n70\n1\n";
        for (int k = 0; k < 10; ++k) {
            const double a = 2 * std::numbers::pi * k / 10;
            dxf += "10\n" + std::to_string(cx + 10 * std::cos(a)) + "\n20\n" +
                   std::to_string(cy + 10 * std::sin(a)) + "\n";
        }
    }
    return dxf + "0\nENDSEC\n0\nEOF\n";
}

struct Imported {
    std::vector<SketchEntity> entities;
    std::vector<SketchConstraint> constraints;
};

Imported importOnce(const std::string& text) {
    Imported out;
    Result<ImportedDrawing> drawing = readDxfText(text, "bench.dxf");
    if (!drawing) return out;
    DrawingToSketchOptions options;
    options.place = DrawingPlace::File;
    if (!drawingToSketch(*drawing, out.entities, out.constraints, options)) out.entities.clear();
    return out;
}

void BM_ImportDxf10kSegments(benchmark::State& state) {
    const std::string text = tenThousandSegments();
    for (auto _ : state) {
        Imported sketch = importOnce(text);
        if (sketch.entities.size() != 10000) state.SkipWithError("wrong number of entities");
        benchmark::DoNotOptimize(sketch);
    }
}

void BM_SolveImported10kSegments(benchmark::State& state) {
    const Imported sketch = importOnce(tenThousandSegments());
    for (auto _ : state) {
        auto solved = solveSketch(sketch.entities, sketch.constraints);
        if (!solved) state.SkipWithError(solved.error().c_str());
        benchmark::DoNotOptimize(solved);
    }
}

void BM_DimensionOnImported10kSegments(benchmark::State& state) {
    const Imported sketch = importOnce(tenThousandSegments());
    SketchConstraint c;
    c.type = ConstraintType::Distance;
    c.refs = {{sketch.entities.front().id, "start"}, {sketch.entities.front().id, "end"}};
    c.value = 6;
    for (auto _ : state) {
        auto prepared = prepareConstraint(sketch.entities, c, true);
        auto added = addConstraint(sketch.entities, sketch.constraints, *prepared);
        if (!added) state.SkipWithError(added.error().c_str());
        benchmark::DoNotOptimize(added);
    }
}

} // namespace

BENCHMARK(BM_ImportDxf10kSegments)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SolveImported10kSegments)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DimensionOnImported10kSegments)->Unit(benchmark::kMillisecond);
