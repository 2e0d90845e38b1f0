// The 3D view's speed under the machine's OpenGL (llvmpipe on the virtual screen):
// start-up to the first painted frame, and frame time while orbiting a body of about
// 100,000 triangles. Run on an X screen: tests/support/with-x build/bin/bench_viewport
#include "rendering/Viewport.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>

#include <AIS_Shape.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <benchmark/benchmark.h>

#include <memory>

using cad::rendering::Viewport;

namespace {

// Runs the event loop until the signal arrives; false after the timeout.
template <typename Signal> bool waitFor(Viewport* viewport, Signal signal, int timeoutMs = 20000) {
    QEventLoop loop;
    bool arrived = false;
    QObject::connect(viewport, signal, &loop, [&] {
        arrived = true;
        loop.quit();
    });
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    loop.exec();
    return arrived;
}

struct ShownViewport {
    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    Viewport* viewport = nullptr;
    ShownViewport() {
        auto* layout = new QVBoxLayout(window.get());
        layout->setContentsMargins(0, 0, 0, 0);
        viewport = new Viewport(window.get());
        layout->addWidget(viewport);
        window->resize(800, 600);
        window->show();
    }
};

int triangleCount(const TopoDS_Shape& shape) {
    int count = 0;
    for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next()) {
        TopLoc_Location location;
        if (Handle(Poly_Triangulation) mesh =
                BRep_Tool::Triangulation(TopoDS::Face(faces.Current()), location))
            count += mesh->NbTriangles();
    }
    return count;
}

// A torus meshed finely enough for about 100,000 triangles.
TopoDS_Shape meshedTorus(int& triangles) {
    double deflection = 0.005;
    for (int attempt = 0; attempt < 4; ++attempt) {
        TopoDS_Shape torus = BRepPrimAPI_MakeTorus(50, 15).Shape();
        BRepMesh_IncrementalMesh(torus, deflection, false, 0.5);
        triangles = triangleCount(torus);
        if (triangles > 90000 && triangles < 112000) return torus;
        deflection *= static_cast<double>(triangles) / 100000.0;
    }
    return BRepPrimAPI_MakeTorus(50, 15).Shape();
}

void StartupToFirstFrame(benchmark::State& state) {
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        ShownViewport shown;
        if (!waitFor(shown.viewport, &Viewport::firstFramePainted)) {
            state.SkipWithError("no first frame");
            return;
        }
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) / 1e9);
    }
}
BENCHMARK(StartupToFirstFrame)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(8);

void OrbitFrameTorus(benchmark::State& state) {
    ShownViewport shown;
    Viewport* viewport = shown.viewport;
    if (!waitFor(viewport, &Viewport::firstFramePainted)) {
        state.SkipWithError("no first frame");
        return;
    }
    int triangles = 0;
    Handle(AIS_Shape) body = new AIS_Shape(meshedTorus(triangles));
    body->Attributes()->SetAutoTriangulation(false);
    viewport->context()->Display(body, AIS_Shaded, 0, false);
    viewport->fitAll();
    waitFor(viewport, &QOpenGLWidget::frameSwapped);

    const QPointF centre(400, 300);
    const auto send = [&](QEvent::Type type, QPointF at, Qt::MouseButton button,
                          Qt::MouseButtons buttons) {
        QMouseEvent event(type, at, viewport->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport, &event);
    };
    send(QEvent::MouseButtonPress, centre, Qt::RightButton, Qt::RightButton);
    waitFor(viewport, &QOpenGLWidget::frameSwapped);
    int step = 0;
    for (auto _ : state) {
        // Back and forth along a short line, so the cursor never needs a warp.
        const double x = centre.x() + ((step++ / 20) % 2 == 0 ? step % 20 : 20 - step % 20) * 4.0;
        send(QEvent::MouseMove, QPointF(x, centre.y() + (step % 7)), Qt::NoButton, Qt::RightButton);
        if (!waitFor(viewport, &QOpenGLWidget::frameSwapped)) {
            state.SkipWithError("no frame while orbiting");
            break;
        }
    }
    send(QEvent::MouseButtonRelease, centre, Qt::RightButton, Qt::NoButton);
    state.counters["triangles"] = triangles;
}
BENCHMARK(OrbitFrameTorus)->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

} // namespace

int main(int argc, char** argv) {
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    QApplication application(argc, argv);
    QApplication::setOrganizationName("KorvelStudio");
    QApplication::setApplicationName("KorvelStudio");
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
