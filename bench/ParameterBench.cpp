// Parameter changes on the W3 plate whose last feature's depth follows a parameter
// (distance "-4 / d", d = 2): a refused set_parameter (a typo in the expression, and
// a value that breaks the feature), the undo of an accepted one, and an accepted one.
// Next to each undo or change the one feature computation it cannot avoid (the last
// feature on the shape before it) is timed again on its own, interleaved so that a
// busy machine weighs on both alike: "features_ms" is that computation and
// "beyond_ms" what the command cost on top of it. The same runs with the last
// feature suppressed compute nothing at all, so their time is all the rest.
#include "PlateWorkload.h"

#include "geometry/ExtrudeFeature.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <string>

using namespace cad;
using workloads::Plate;

namespace {

CommandRecord setDepthParameter(const char* expression) {
    return CommandRecord("set_parameter").set("name", "d").set("expression", expression);
}

void driveLastDepth(Plate& plate) {
    plate.run(setDepthParameter("2"));
    plate.run(CommandRecord("edit_feature")
                  .set("feature", plate.lastFeature())
                  .set("distance", "-4 / d"));
}

template <typename F> double secondsOf(F&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Sets the plate up, last feature suppressed when the benchmark's second argument is 1.
void prepare(Plate& plate, const benchmark::State& state) {
    driveLastDepth(plate);
    if (state.range(1) == 1)
        plate.run(CommandRecord("suppress_feature")
                      .set("feature", plate.lastFeature())
                      .set("suppressed", true));
}

// Times `command` (manual time) and, after it, the last feature computed alone.
class Split {
public:
    explicit Split(Plate& plate) : plate_(plate) {}

    template <typename F> bool time(benchmark::State& state, F&& command) {
        const double seconds = secondsOf(command);
        state.SetIterationTime(seconds);
        commandSeconds_ += seconds;
        const Document& document = plate_.document();
        const auto* feature =
            dynamic_cast<const ExtrudeFeature*>(document.find(plate_.lastFeature()));
        if (!feature || std::abs(feature->distance + plate_.lastDepth()) > 1e-9) {
            state.SkipWithError("the last feature's depth is wrong");
            return false;
        }
        if (state.range(1) == 1) return true; // suppressed: no shape to check
        const geometry::NamedShape* input = document.shapeBefore(plate_.lastFeature());
        bool computed = false;
        featureSeconds_ +=
            secondsOf([&] { computed = input && feature->apply(*input, document).ok(); });
        if (!computed)
            state.SkipWithError("the last feature does not compute");
        else if (!plate_.volumeIsRight())
            state.SkipWithError("the plate's volume is wrong");
        return computed && plate_.volumeIsRight();
    }
    void report(benchmark::State& state) const {
        const double n = static_cast<double>(state.iterations());
        if (n == 0) return;
        state.counters["features_ms"] = featureSeconds_ * 1e3 / n;
        state.counters["beyond_ms"] = (commandSeconds_ - featureSeconds_) * 1e3 / n;
    }

private:
    Plate& plate_;
    double commandSeconds_ = 0, featureSeconds_ = 0;
};

// Refused: 0, "2mmm" (no such unit); 1, "0" (Extrude<K+1>.distance divides by zero).
void BM_W3_ParameterRefused(benchmark::State& state) {
    Plate plate(static_cast<int>(state.range(0)));
    driveLastDepth(plate);
    const CommandRecord refused = setDepthParameter(state.range(1) == 0 ? "2mmm" : "0");
    bool carriedOut = false;
    for (auto _ : state)
        if (plate.attempt(refused)) {
            carriedOut = true;
            break;
        }
    if (carriedOut || !plate.volumeIsRight()) state.SkipWithError("the refusal changed the plate");
}

void BM_W3_ParameterUndo(benchmark::State& state) {
    Plate plate(static_cast<int>(state.range(0)));
    prepare(plate, state);
    Split split(plate);
    for (auto _ : state) {
        plate.run(setDepthParameter("4"));
        if (!split.time(state, [&] { plate.undo(); })) break;
    }
    split.report(state);
}

void BM_W3_ParameterSet(benchmark::State& state) {
    Plate plate(static_cast<int>(state.range(0)));
    prepare(plate, state);
    Split split(plate);
    for (auto _ : state) {
        const bool deeper = plate.lastDepth() == 1;
        plate.expectLastDepth(deeper ? 2 : 1);
        if (!split.time(state, [&] { plate.run(setDepthParameter(deeper ? "2" : "4")); })) break;
    }
    split.report(state);
}

} // namespace

BENCHMARK(BM_W3_ParameterRefused)
    ->ArgsProduct({{100}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(50);
BENCHMARK(BM_W3_ParameterUndo)
    ->ArgsProduct({{100}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);
BENCHMARK(BM_W3_ParameterSet)
    ->ArgsProduct({{100}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);
