// How long the browser and the history panel take to catch up after one command in
// a document of 500 objects (250 sketches and 250 boxes, all of them history steps):
// a rename, a new box, and a roll back that changes every row. Only the panels'
// refresh (with the layout and painting that follow it) is timed; the command
// itself is reported beside it as "command_ms".
// Runs on Qt's offscreen platform: build/bin/bench_browser
#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "mcp/AllCommands.h"
#include "ui/panels/HistoryPanel.h"
#include "ui/panels/ObjectBrowser.h"

#include <QApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>

using namespace cad;

namespace {

constexpr int kPairs = 250;

template <typename F> double secondsOf(F&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The document, both panels on it, and the command path they use.
struct Workload {
    Document document;
    CommandRegistry registry;
    CommandStack stack{document, registry};
    ui::ObjectBrowser* browser = nullptr;
    ui::HistoryPanel* history = nullptr;
    QWidget window;

    Workload() {
        mcp::registerAllCommands(registry);
        for (int i = 0; i < kPairs; ++i) {
            run(CommandRecord("create_sketch").set("plane", "XY"));
            run(CommandRecord("create_box")
                    .set("width", 5)
                    .set("depth", 5)
                    .set("height", 5)
                    .set("x", 10 * i));
        }
        ui::PanelHooks hooks{[this](const CommandRecord& r) { return stack.execute(r).ok; },
                             [this] { stack.beginGroup(); },
                             [this] { stack.endGroup(); },
                             {}};
        browser = new ui::ObjectBrowser(document, hooks, &window);
        history = new ui::HistoryPanel(document, hooks, &window);
        browser->setGeometry(0, 0, 300, 800);
        history->setGeometry(300, 0, ui::HistoryPanel::kExpandedWidth, 800);
        window.resize(600, 800);
        window.show();
        QCoreApplication::processEvents();
    }
    ~Workload() {
        // The panels observe the document, so they go first.
        delete browser;
        delete history;
    }
    void run(const CommandRecord& record) {
        if (!stack.execute(record).ok) throw std::runtime_error(record.toCall());
    }
    // Times the panels' catching up after `command`: their refresh, then the event
    // loop's turn that lays the rows out and paints them.
    template <typename F> void time(benchmark::State& state, double& commandSeconds, F&& command) {
        commandSeconds += secondsOf(command);
        state.SetIterationTime(secondsOf([&] {
            browser->refresh();
            history->refresh();
            QCoreApplication::processEvents();
        }));
    }
};

// Made by the first benchmark that runs, dropped before the application goes.
std::unique_ptr<Workload> shared;

Workload& workload() {
    if (!shared) shared = std::make_unique<Workload>();
    return *shared;
}

void report(benchmark::State& state, double commandSeconds) {
    state.counters["objects"] = static_cast<double>(workload().document.objects().size());
    state.counters["command_ms"] =
        1e3 * commandSeconds /
        static_cast<double>(std::max<benchmark::IterationCount>(1, state.iterations()));
}

void RefreshAfterRename(benchmark::State& state) {
    Workload& w = workload();
    double command = 0;
    int n = 0;
    for (auto _ : state) {
        const std::string name = "Plate " + std::to_string(n++ % 2);
        w.time(state, command, [&] {
            w.run(CommandRecord("rename_object").set("object", "Box125").set("name", name));
        });
    }
    report(state, command);
}
BENCHMARK(RefreshAfterRename)->UseManualTime()->Unit(benchmark::kMillisecond);

void RefreshAfterAddingABox(benchmark::State& state) {
    Workload& w = workload();
    double command = 0;
    for (auto _ : state) {
        w.time(state, command, [&] {
            w.run(CommandRecord("create_box").set("width", 3).set("depth", 3).set("height", 3));
        });
        state.PauseTiming();
        w.stack.undo();
        w.browser->refresh();
        w.history->refresh();
        state.ResumeTiming();
    }
    report(state, command);
}
BENCHMARK(RefreshAfterAddingABox)->UseManualTime()->Unit(benchmark::kMillisecond);

// Rolling back to the middle restyles every later row, and back again.
void RefreshAfterRollBack(benchmark::State& state) {
    Workload& w = workload();
    double command = 0;
    int n = 0;
    for (auto _ : state) {
        const char* to = n++ % 2 == 0 ? "Sketch125" : "";
        w.time(state, command, [&] { w.run(CommandRecord("roll_back").set("to", to)); });
    }
    report(state, command);
}
BENCHMARK(RefreshAfterRollBack)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setOrganizationName("KorvelStudio");
    QApplication::setApplicationName("KorvelStudio");
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    shared.reset();
    benchmark::Shutdown();
    return 0;
}
