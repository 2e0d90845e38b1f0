// How long the constraint solver takes on the standard workloads (W1 rectangles,
// W2 staircase), by blocks and, at sizes where it finishes, the whole-sketch dense
// method it replaced.
#include "SketchWorkloads.h"

#include "sketch/SketchReference.h"
#include "sketch/SketchSolver.h"
#include "sketch/solver/SolverOptions.h"

#include <benchmark/benchmark.h>

using namespace cad;

namespace {

SolverOptions method(const benchmark::State& state) {
    SolverOptions options;
    options.method = state.range(1) ? SolverMethod::Dense : SolverMethod::Blocks;
    return options;
}

void setLabel(benchmark::State& state) { state.SetLabel(state.range(1) ? "dense" : "blocks"); }

// W1 (a): a full solve and the freedom analysis.
void BM_W1_SolveAndAnalyse(benchmark::State& state) {
    const auto w = workloads::rectangles(static_cast<int>(state.range(0)));
    const SolverOptions options = method(state);
    for (auto _ : state) {
        auto solved = solveSketch(w.entities, w.constraints, {}, {}, options);
        if (!solved) state.SkipWithError(solved.error().c_str());
        SketchAnalysis analysis = analyseSketch(*solved, w.constraints, options);
        if (analysis.degreesOfFreedom != 4 * state.range(0)) state.SkipWithError("wrong freedom");
        benchmark::DoNotOptimize(analysis);
    }
    setLabel(state);
}

// W1 (b): adding a horizontal_distance of 12 on rectangle 0's bottom line.
void BM_W1_AddHorizontalDistance(benchmark::State& state) {
    const auto w = workloads::rectangles(static_cast<int>(state.range(0)));
    const SolverOptions options = method(state);
    SketchConstraint c;
    c.type = ConstraintType::HorizontalDistance;
    c.refs = {{"Line1", "start"}, {"Line1", "end"}};
    c.value = 12;
    for (auto _ : state) {
        auto prepared = prepareConstraint(w.entities, c, true);
        auto added = addConstraint(w.entities, w.constraints, *prepared, options);
        if (!added) state.SkipWithError(added.error().c_str());
        benchmark::DoNotOptimize(added);
    }
    setLabel(state);
}

void BM_W2_Solve(benchmark::State& state) {
    const auto w = workloads::staircase(static_cast<int>(state.range(0)));
    const SolverOptions options = method(state);
    for (auto _ : state) {
        auto solved = solveSketch(w.entities, w.constraints, {}, {}, options);
        if (!solved) state.SkipWithError(solved.error().c_str());
        benchmark::DoNotOptimize(solved);
    }
    setLabel(state);
}

// W2 after every step dimension changed from 5 to 6: the whole staircase moves.
void BM_W2_SolveAfterEdit(benchmark::State& state) {
    auto w = workloads::staircase(static_cast<int>(state.range(0)));
    for (SketchConstraint& c : w.constraints)
        if (c.type == ConstraintType::Distance) c.value = 6;
    const SolverOptions options = method(state);
    for (auto _ : state) {
        auto solved = solveSketch(w.entities, w.constraints, {}, {}, options);
        if (!solved) state.SkipWithError(solved.error().c_str());
        benchmark::DoNotOptimize(solved);
    }
    setLabel(state);
}

void BM_W2_Drag(benchmark::State& state) {
    const int m = static_cast<int>(state.range(0));
    const auto w = workloads::staircase(m);
    const SolverOptions options = method(state);
    SketchDrag drag;
    drag.point = workloads::staircaseDragPoint(m);
    Point2 now = pointAt(*resolveReference(drag.point, w.entities), w.entities);
    drag.target = {now.x + 0.5, now.y + 0.3};
    for (auto _ : state) {
        auto solved = solveSketch(w.entities, w.constraints, {}, drag, options);
        if (!solved) state.SkipWithError(solved.error().c_str());
        benchmark::DoNotOptimize(solved);
    }
    setLabel(state);
}

void BM_W2_Analyse(benchmark::State& state) {
    const auto w = workloads::staircase(static_cast<int>(state.range(0)));
    const SolverOptions options = method(state);
    for (auto _ : state) {
        SketchAnalysis analysis = analyseSketch(w.entities, w.constraints, options);
        benchmark::DoNotOptimize(analysis);
    }
    setLabel(state);
}

constexpr int kBlocks = 0, kDense = 1;

// Sizes per workload: the fast solver up to the targets' sizes, the dense baseline
// only where it finishes in reasonable time.
void w1Sizes(benchmark::internal::Benchmark* b) {
    for (int n : {100, 300, 1000, 10000}) b->Args({n, kBlocks});
    for (int n : {100, 300}) b->Args({n, kDense});
    b->Unit(benchmark::kMillisecond);
}
void w2Sizes(benchmark::internal::Benchmark* b) {
    for (int m : {100, 300, 1000}) b->Args({m, kBlocks});
    for (int m : {100, 300}) b->Args({m, kDense});
    b->Unit(benchmark::kMillisecond);
}
void w2AnalyseSizes(benchmark::internal::Benchmark* b) {
    for (int m : {100, 300, 1000}) b->Args({m, kBlocks});
    b->Args({100, kDense});
    b->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK(BM_W1_SolveAndAnalyse)->Apply(w1Sizes);
BENCHMARK(BM_W1_AddHorizontalDistance)->Apply(w1Sizes);
BENCHMARK(BM_W2_Solve)->Apply(w2Sizes);
BENCHMARK(BM_W2_SolveAfterEdit)->Apply(w2Sizes);
BENCHMARK(BM_W2_Drag)->Apply(w2Sizes);
BENCHMARK(BM_W2_Analyse)->Apply(w2AnalyseSizes);
