// What the sketch session does on every mouse move (pick, snap, preview, caption; not
// the painting) in a sketch of 1,000 lines and 2,000 constraints (W1, 250 rectangles):
// the line tool after its first click, and hovering in the select state.
#include "SketchWorkloads.h"

#include "core/Document.h"
#include "sketch/SketchObject.h"
#include "ui/sketch/SketchSession.h"

#include <QApplication>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

using namespace cad;

namespace {

// The session needs widgets, so a QApplication on the offscreen platform, made once.
void ensureApplication() {
    static int argc = 1;
    static char name[] = "bench_sketch_session";
    static char* argv[] = {name, nullptr};
    static QApplication* application = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    (void)application;
}

struct Setup {
    QWidget host;
    Document document;
    std::unique_ptr<ui::SketchSession> session;
    std::vector<QPointF> path;

    explicit Setup(int tool) {
        auto sketch = std::make_unique<SketchObject>();
        sketch->id = "Sketch1";
        workloads::SketchWorkload w = workloads::rectangles(250);
        sketch->entities = std::move(w.entities);
        sketch->constraints = std::move(w.constraints);
        document.add(std::move(sketch));
        host.resize(1600, 1000);
        // 1 px per mm: the 50 × 5 rectangles of 10 × 6 fill most of the view.
        session = std::make_unique<ui::SketchSession>(
            &host, std::make_unique<ui::AffineSketchView>(QPointF(50, 500), 1.0));
        session->setDocument(&document);
        session->begin("Sketch1");
        session->setTool(tool);
        if (tool == ui::SketchSession::Line) {
            session->mouseMove({60, 480}, Qt::NoModifier);
            session->mousePress({60, 480}, Qt::NoModifier);
        }
        // A diagonal sweep over the rectangles: on corners, on edges and between.
        for (int i = 0; i < 997; ++i)
            path.emplace_back(50 + (i * 37) % 1500 + 0.37 * (i % 7), 500 - (i * 13) % 150);
    }
};

void run(benchmark::State& state, int tool) {
    ensureApplication();
    Setup setup(tool);
    const int step = tool == ui::SketchSession::Line ? 1 : 0;
    if (!setup.session->isActive() || setup.session->step() != step)
        state.SkipWithError("the session did not start as it should");
    std::size_t i = 0;
    for (auto _ : state) {
        setup.session->mouseMove(setup.path[i], Qt::NoModifier);
        i = (i + 1) % setup.path.size();
        benchmark::DoNotOptimize(setup.session->caption().size());
    }
    state.SetLabel("W1 N=250: 1000 lines, 2000 constraints");
}

void BM_LineToolMove(benchmark::State& state) { run(state, ui::SketchSession::Line); }
void BM_SelectHover(benchmark::State& state) { run(state, ui::SketchSession::Select); }

BENCHMARK(BM_LineToolMove)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SelectHover)->Unit(benchmark::kMicrosecond);

} // namespace
