// The W3 plate workload: a 100 x 100 x 5 plate with K bosses and pockets, each from
// its own fully constrained sketch at z = 5. Measures a full recompute, changing the
// last feature's depth, and changing the plate's width, checking the volume each
// time; booleans run with the kernel's parallel mode on (1) or off (0).
#include "PlateWorkload.h"

#include "geometry/ShapeBoolean.h"

#include <benchmark/benchmark.h>

using namespace cad;
using workloads::checkVolume;
using workloads::Plate;

namespace {

void BM_W3_FullRecompute(benchmark::State& state) {
    geometry::setParallelBooleans(state.range(1) != 0);
    Plate plate(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        plate.document().recomputeAll();
        if (!checkVolume(state, plate)) break;
    }
}

void BM_W3_LastFeatureDepth(benchmark::State& state) {
    geometry::setParallelBooleans(state.range(1) != 0);
    Plate plate(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        plate.setLastDepth(plate.lastDepth() == 2 ? 1 : 2);
        if (!checkVolume(state, plate)) break;
    }
}

void BM_W3_PlateWidth(benchmark::State& state) {
    geometry::setParallelBooleans(state.range(1) != 0);
    Plate plate(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        plate.setWidth(plate.width() == 100 ? 110 : 100);
        if (!checkVolume(state, plate)) break;
    }
}

} // namespace

BENCHMARK(BM_W3_FullRecompute)
    ->ArgsProduct({{10, 50, 100}, {1, 0}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
BENCHMARK(BM_W3_LastFeatureDepth)
    ->ArgsProduct({{10, 50, 100}, {1, 0}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(6);
BENCHMARK(BM_W3_PlateWidth)
    ->ArgsProduct({{10, 50, 100}, {1, 0}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
