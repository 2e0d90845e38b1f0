// The sketch session's view of the real 3D view under a virtual X screen: sketch
// points through the camera and back onto the plane, and an overlay that repaints
// with the view's frames without making the view draw again.
#include "core/Document.h"
#include "rendering/Viewport.h"
#include "sketch/SketchObject.h"
#include "ui/sketch/SketchSession.h"
#include "ui/sketch/ViewportSketchView.h"

#include <gp_Ax3.hxx>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

using namespace cad;

namespace {

TEST(ViewportSketchView, MapsThePlaneBothWaysAndLeavesAnIdleViewIdle) {
    rendering::Viewport viewport;
    viewport.resize(800, 600);
    viewport.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&viewport));
    QElapsedTimer timer;
    timer.start();
    while (!viewport.isReady() && timer.elapsed() < 20000) QTest::qWait(20);
    ASSERT_TRUE(viewport.isReady());

    // A sketch on XZ moved 5 mm along its normal, seen face on.
    PlaneFrame plane{{0, -5, 0}, {0, -1, 0}, {1, 0, 0}};
    viewport.lookAtPlane(gp_Ax3(gp_Pnt(0, -5, 0), gp_Dir(0, -1, 0), gp_Dir(1, 0, 0)), 100);
    viewport.repaint();
    QTest::qWait(50);

    auto view = std::make_unique<ui::ViewportSketchView>(viewport);
    view->setPlane(plane);
    for (Point2 p : {Point2{10, 20}, Point2{-30, 7}, Point2{0, 0}}) {
        const std::optional<Point2> back = view->toSketch(view->toScreen(p));
        ASSERT_TRUE(back);
        EXPECT_NEAR(back->x, p.x, 1e-6);
        EXPECT_NEAR(back->y, p.y, 1e-6);
    }
    // Sketch y runs up the screen and x to the right.
    EXPECT_LT(view->toScreen({0, 10}).y(), view->toScreen({0, 0}).y());
    EXPECT_GT(view->toScreen({10, 0}).x(), view->toScreen({0, 0}).x());

    Document document;
    auto sketch = std::make_unique<SketchObject>();
    sketch->id = "Sketch1";
    sketch->setFrame(plane);
    document.add(std::move(sketch));
    ui::SketchSession session(&viewport, std::move(view));
    session.setDocument(&document);
    session.begin("Sketch1");
    ASSERT_TRUE(session.isActive());
    QTest::qWait(300);
    QSignalSpy frames(&viewport, &QOpenGLWidget::frameSwapped);
    QTest::qWait(500);
    EXPECT_LE(frames.count(), 2);
}

} // namespace
