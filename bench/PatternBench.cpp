// The W5 pattern workload: a 100 x 100 x 5 plate with one 3 x 3 pocket 2 deep at
// (5, 5), patterned 10 x 10 at 9 mm; measures the pattern's compute and changing the
// pocket's depth, checking the volume each time. Beside it, the W3 plate's last
// feature edit with 20 reference planes and 5 section analyses in the document.
#include "PlateWorkload.h"

#include "mcp/AllCommands.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

using namespace cad;

namespace {

class PatternPlate {
public:
    PatternPlate() : stack_(document_, registry_) {
        mcp::registerAllCommands(registry_);
        run(CommandRecord("create_sketch").set("plane", "XY"));
        rectangle("Sketch1", 0, 0, 100, 100);
        run(CommandRecord("extrude").set("sketch", "Sketch1").set("distance", 5));
        run(CommandRecord("create_sketch").set("on", "Body1/Extrude1.end"));
        rectangle("Sketch2", 3.5, 3.5, 6.5, 6.5);
        run(CommandRecord("extrude")
                .set("sketch", "Sketch2")
                .set("distance", -2.0)
                .set("operation", "cut")
                .set("target", "Body1"));
        body_ = document_.findAs<GeometryObject>("Body1");
    }

    // The pattern, timed by the caller; undone afterwards with `unpattern`.
    void pattern() {
        run(CommandRecord("pattern_rectangular")
                .set("features", "Extrude2")
                .set("direction", "X")
                .set("count", 10)
                .set("spacing", 9.0)
                .set("direction2", "Y")
                .set("count2", 10)
                .set("spacing2", 9.0));
    }
    void unpattern() { stack_.undo(); }
    void setDepth(double depth) {
        depth_ = depth;
        run(CommandRecord("edit_feature").set("feature", "Extrude2").set("distance", -depth));
    }
    double depth() const { return depth_; }
    bool volumeIsRight(int pockets) const {
        GProp_GProps props;
        BRepGProp::VolumeProperties(body_->shape.shape(), props);
        const double expected = 100.0 * 100 * 5 - pockets * 9.0 * depth_;
        return std::abs(props.Mass() - expected) < 1e-6 * expected;
    }

private:
    void run(const CommandRecord& record) {
        CommandResult result = stack_.execute(record);
        if (!result.ok) throw std::runtime_error(record.toCall() + ": " + result.message);
    }
    void rectangle(const char* sketch, double x1, double y1, double x2, double y2) {
        run(CommandRecord("add_rectangle")
                .set("sketch", sketch)
                .set("x1", x1)
                .set("y1", y1)
                .set("x2", x2)
                .set("y2", y2));
    }

    Document document_;
    CommandRegistry registry_;
    CommandStack stack_;
    GeometryObject* body_ = nullptr;
    double depth_ = 2;
};

bool check(benchmark::State& state, const PatternPlate& plate, int pockets) {
    state.PauseTiming();
    const bool right = plate.volumeIsRight(pockets);
    if (!right) state.SkipWithError("the patterned plate's volume is wrong");
    state.ResumeTiming();
    return right;
}

void BM_W5_PatternCompute(benchmark::State& state) {
    PatternPlate plate;
    for (auto _ : state) {
        plate.pattern();
        if (!check(state, plate, 100)) break;
        state.PauseTiming();
        plate.unpattern();
        state.ResumeTiming();
    }
}

void BM_W5_PocketDepth(benchmark::State& state) {
    PatternPlate plate;
    plate.pattern();
    for (auto _ : state) {
        plate.setDepth(plate.depth() == 2 ? 1 : 2);
        if (!check(state, plate, 100)) break;
    }
}

// The W3 plate's last feature edit when the document also holds 20 reference planes
// on the plate's faces and 5 sections: the planes follow the body they're defined from.
void BM_W3_LastFeatureWithPlanes(benchmark::State& state) {
    workloads::Plate plate(100);
    for (int i = 0; i < 20; ++i)
        plate.run(CommandRecord("add_plane")
                      .set("kind", "offset")
                      .set("references", i % 2 ? "Body1/Extrude1.end" : "Body1/Extrude1.start")
                      .set("distance", 1.0 + i));
    const char* cuts[] = {"XZ", "YZ", "Plane1", "Plane2", "Body1/Extrude1.end"};
    for (const char* cut : cuts)
        plate.run(CommandRecord("add_section").set("references", cut).set("distance", 10.0));
    for (auto _ : state) {
        plate.setLastDepth(plate.lastDepth() == 2 ? 1 : 2);
        if (!workloads::checkVolume(state, plate)) break;
    }
}

} // namespace

BENCHMARK(BM_W5_PatternCompute)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_W5_PocketDepth)->Unit(benchmark::kMillisecond)->Iterations(4);
BENCHMARK(BM_W3_LastFeatureWithPlanes)->Unit(benchmark::kMillisecond)->Iterations(6);
