// The 3D view on a virtual X screen: what it draws, how it repairs and turns the
// camera, and how it treats stored views, the cube menu, tools and the SpaceMouse.
#include "rendering/Viewport.h"
#include "rendering/SpaceMouse.h"

#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <AIS_Shape.hxx>
#include <BRepPrimAPI_MakeBox.hxx>

#include <gtest/gtest.h>

#include <memory>

using cad::rendering::Viewport;

namespace {

constexpr int viewWidth = 800;
constexpr int viewHeight = 600;

class ViewportTest : public ::testing::Test {
protected:
    void SetUp() override {
        QSettings().clear();
        window = std::make_unique<QWidget>();
        auto* layout = new QVBoxLayout(window.get());
        layout->setContentsMargins(0, 0, 0, 0);
        viewport = new Viewport(window.get());
        layout->addWidget(viewport);
        window->resize(viewWidth, viewHeight);
        QSignalSpy painted(viewport, &Viewport::firstFramePainted);
        window->show();
        ASSERT_TRUE(painted.wait(20000)) << "no first frame";
        ASSERT_TRUE(viewport->isReady());
    }
    void TearDown() override {
        window.reset();
        QSettings().clear();
    }

    void showBox(const Quantity_Color& colour) {
        Handle(AIS_Shape) box =
            new AIS_Shape(BRepPrimAPI_MakeBox(gp_Pnt(-10, -10, -10), 20, 20, 20).Shape());
        box->SetColor(colour);
        viewport->context()->Display(box, AIS_Shaded, 0, false);
        viewport->fitAll();
    }
    // Lets Qt deliver pending updates so the view paints the current camera.
    void settle(int ms = 100) { QTest::qWait(ms); }

    void send(QEvent::Type type, QPointF position, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QMouseEvent event(type, position, viewport->mapToGlobal(position), button, buttons,
                          modifiers);
        QApplication::sendEvent(viewport, &event);
    }
    gp_Dir direction() const { return viewport->view()->Camera()->Direction(); }
    gp_Dir up() const { return viewport->view()->Camera()->Up(); }
    QPointF cubeCentre() const { return QPointF(viewport->width() - 40, 40); }

    std::unique_ptr<QWidget> window;
    Viewport* viewport = nullptr;
};

bool near(const gp_Dir& a, const gp_Dir& b, double tolerance = 1e-6) {
    return a.IsEqual(b, tolerance);
}

int difference(QRgb a, QRgb b) {
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
           std::abs(qBlue(a) - qBlue(b));
}

TEST_F(ViewportTest, DrawsShadedBoxGradientAndCube) {
    showBox(Quantity_Color(200 / 255.0, 60 / 255.0, 40 / 255.0, Quantity_TOC_sRGB));
    settle(300);
    const QImage image = viewport->grabFramebuffer();
    if (const QByteArray folder = qgetenv("KORVEL_TEST_SCREENSHOTS"); !folder.isEmpty())
        image.save(QString::fromLocal8Bit(folder) + "/viewport.png");
    ASSERT_FALSE(image.isNull());

    // The box's colour around the centre: red dominates, shaded but not black.
    const QPoint centre = image.rect().center();
    for (QPoint offset : {QPoint(0, 0), QPoint(-20, 10), QPoint(20, 10), QPoint(0, -30)}) {
        const QColor pixel = image.pixelColor(centre + offset);
        EXPECT_GT(pixel.red(), 90) << "at offset " << offset.x() << "," << offset.y();
        EXPECT_GT(pixel.red(), pixel.green() + 40);
        EXPECT_GT(pixel.red(), pixel.blue() + 40);
    }

    // The gradient in the three corners away from the cube: dark warm greys, darker
    // at the top than at the bottom.
    const QColor topLeft = image.pixelColor(5, 5);
    const QColor bottomLeft = image.pixelColor(5, image.height() - 6);
    const QColor bottomRight = image.pixelColor(image.width() - 6, image.height() - 6);
    for (const QColor& pixel : {topLeft, bottomLeft, bottomRight}) {
        EXPECT_LE(pixel.red(), 60);
        EXPECT_GE(pixel.red(), 10);
        EXPECT_GE(pixel.red(), pixel.blue());
    }
    EXPECT_LT(topLeft.red() + topLeft.green(), bottomLeft.red() + bottomLeft.green());

    // The cube stands in the top-right corner: some pixels there differ clearly from
    // the background next to them.
    const int corner = viewport->cubeCornerSize();
    const QRgb background = image.pixel(image.width() - corner - 10, 5);
    int differing = 0;
    for (int y = 0; y < corner; ++y)
        for (int x = image.width() - corner; x < image.width(); ++x)
            if (difference(image.pixel(x, y), background) > 60) ++differing;
    EXPECT_GT(differing, corner * corner / 5);
}

TEST_F(ViewportTest, RepairsDegenerateUpOnNextFrame) {
    struct Case {
        gp_Dir direction;
        gp_Dir expectedUp;
    };
    for (const Case& c :
         {Case{gp_Dir(0, 0, -1), gp_Dir(0, 1, 0)}, Case{gp_Dir(1, 0, 0), gp_Dir(0, 0, 1)}}) {
        const Handle(Graphic3d_Camera)& camera = viewport->view()->Camera();
        camera->SetDirection(c.direction);
        camera->SetUp(c.direction);
        viewport->requestRedraw();
        settle();
        EXPECT_TRUE(near(up(), c.expectedUp)) << up().X() << " " << up().Y() << " " << up().Z();
        EXPECT_TRUE(near(direction(), c.direction));
    }
}

TEST_F(ViewportTest, RightDragOrbitsAndIgnoresJumps) {
    showBox(Quantity_Color(Quantity_NOC_GRAY));
    settle();
    const gp_Dir before = direction();
    const QPointF start(400, 300);
    send(QEvent::MouseButtonPress, start, Qt::RightButton, Qt::RightButton);
    send(QEvent::MouseMove, start + QPointF(30, 0), Qt::NoButton, Qt::RightButton);
    const gp_Dir turned = direction();
    EXPECT_FALSE(near(turned, before));
    // Yaw turns about world Z: the direction's height is unchanged.
    EXPECT_NEAR(turned.Z(), before.Z(), 1e-9);

    send(QEvent::MouseMove, start + QPointF(30 + 260, 0), Qt::NoButton, Qt::RightButton);
    EXPECT_TRUE(near(direction(), turned)) << "a jump of 260 pixels rotated the view";
    send(QEvent::MouseMove, start + QPointF(290, -251), Qt::NoButton, Qt::RightButton);
    EXPECT_TRUE(near(direction(), turned));

    // Motion resumes from the position after the jump; a vertical move pitches.
    send(QEvent::MouseMove, start + QPointF(290, -231), Qt::NoButton, Qt::RightButton);
    EXPECT_GT(std::abs(direction().Z() - turned.Z()), 1e-3);
    send(QEvent::MouseButtonRelease, start + QPointF(290, -231), Qt::RightButton, Qt::NoButton);

    // After the release, moves no longer orbit.
    const gp_Dir released = direction();
    send(QEvent::MouseMove, start + QPointF(100, 0), Qt::NoButton, Qt::NoButton);
    EXPECT_TRUE(near(direction(), released));
}

TEST_F(ViewportTest, StoredHomeIsUsedOnlyWhenValid) {
    const gp_Dir isometric(-1, 1, -1);
    struct Case {
        const char* name;
        QVariant value;
        gp_Dir expectedDirection;
    };
    const Case cases[] = {
        {"zero up", QVariantList{0.0, 0.0, -1.0, 0.0, 0.0, 0.0}, isometric},
        {"parallel", QVariantList{0.0, 0.0, -1.0, 0.0, 0.0, 2.0}, isometric},
        {"five numbers", QVariantList{0.0, 0.0, -1.0, 0.0, 1.0}, isometric},
        {"not numbers", QStringList{"a", "b", "c", "d", "e", "f"}, isometric},
        {"top view", QVariantList{0.0, 0.0, -1.0, 0.0, 1.0, 0.0}, gp_Dir(0, 0, -1)},
        {"stored as text", QStringList{"1", "0", "0", "0", "0", "1"}, gp_Dir(1, 0, 0)},
    };
    for (const Case& c : cases) {
        QSettings().setValue("view/home", c.value);
        viewport->setStandardView(V3d_Xpos, false);
        viewport->goHome(false);
        EXPECT_TRUE(near(direction(), c.expectedDirection)) << c.name;
    }
    viewport->setHomeFromCurrent();
    viewport->resetHome();
    EXPECT_FALSE(QSettings().contains("view/home"));
    viewport->goHome(false);
    EXPECT_TRUE(near(direction(), isometric));
}

TEST_F(ViewportTest, HomeAndFrontFromCurrentView) {
    QSignalSpy toasts(viewport, &Viewport::toastRequested);
    viewport->setStandardView(V3d_Zpos, false);
    viewport->setHomeFromCurrent();
    viewport->setStandardView(V3d_Xpos, false);
    viewport->goHome(false);
    EXPECT_TRUE(near(direction(), gp_Dir(0, 0, -1)));

    // The right side becomes the front: the front view now looks along −X, and the
    // top view still looks down.
    viewport->setStandardView(V3d_Xpos, false);
    viewport->setFrontFromCurrent();
    viewport->setStandardView(V3d_Zpos, false);
    viewport->setStandardView(V3d_Yneg, false);
    EXPECT_TRUE(near(direction(), gp_Dir(-1, 0, 0)));
    EXPECT_TRUE(near(up(), gp_Dir(0, 0, 1)));
    EXPECT_EQ(QSettings().value("view/front").toList().size(), 9);

    viewport->resetFront();
    viewport->setStandardView(V3d_Yneg, false);
    EXPECT_TRUE(near(direction(), gp_Dir(0, 1, 0)));
    ASSERT_EQ(toasts.size(), 2);
    EXPECT_EQ(toasts[0][0].toString(), "Home is this view");
    EXPECT_EQ(toasts[1][0].toString(), "Front is this view");
}

TEST_F(ViewportTest, NudgesTurnAndRollAfterAnimation) {
    viewport->setStandardView(V3d_Yneg, false);
    viewport->nudgeView(0); // turn left: look along screen right
    EXPECT_TRUE(QTest::qWaitFor([&] { return near(direction(), gp_Dir(1, 0, 0), 1e-4); }, 3000));
    viewport->nudgeView(4); // roll left: up becomes screen right
    EXPECT_TRUE(QTest::qWaitFor([&] { return near(up(), gp_Dir(0, -1, 0), 1e-4); }, 3000));
}

TEST_F(ViewportTest, RightClickOnCubeOpensItsMenu) {
    viewport->setPerspective(false);
    send(QEvent::MouseButtonPress, cubeCentre(), Qt::RightButton, Qt::RightButton);
    send(QEvent::MouseButtonRelease, cubeCentre(), Qt::RightButton, Qt::NoButton);
    auto* menu = viewport->findChild<QMenu*>("viewCubeMenu");
    ASSERT_NE(menu, nullptr);
    QStringList names, labels;
    for (QAction* action : menu->actions())
        if (!action->isSeparator()) {
            names << action->objectName();
            labels << action->text();
        }
    EXPECT_EQ(names, (QStringList{"orthographic", "perspective", "setHome", "resetHome", "setFront",
                                  "resetFront"}));
    EXPECT_EQ(labels, (QStringList{"Orthographic", "Perspective", "Set Current View as Home",
                                   "Reset Home", "Set Current View as Front", "Reset Front"}));
    EXPECT_TRUE(menu->findChild<QAction*>("orthographic")->isChecked());
    menu->findChild<QAction*>("perspective")->trigger();
    EXPECT_TRUE(viewport->isPerspective());
    EXPECT_TRUE(QSettings().value("view/perspective").toBool());
    menu->close();

    // A right drag elsewhere orbits instead of opening a menu.
    QTest::qWait(50);
    send(QEvent::MouseButtonPress, QPointF(300, 300), Qt::RightButton, Qt::RightButton);
    send(QEvent::MouseButtonRelease, QPointF(300, 300), Qt::RightButton, Qt::NoButton);
    EXPECT_EQ(viewport->findChildren<QMenu*>("viewCubeMenu").size(), 0);
}

TEST_F(ViewportTest, LeftClickOnCubeFaceTurnsToItThroughTheFront) {
    // The top face lies in the upper part of the cube's corner square.
    const QPointF top(viewport->width() - 45, 18);
    const auto click = [&] {
        send(QEvent::MouseMove, top, Qt::NoButton, Qt::NoButton);
        settle(50);
        send(QEvent::MouseButtonPress, top, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, top, Qt::LeftButton, Qt::NoButton);
    };
    click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return near(direction(), gp_Dir(0, 0, -1), 1e-4); }, 3000));

    // With the right side as front, the cube turns with it and its top is still the top.
    viewport->setStandardView(V3d_Xpos, false);
    viewport->setFrontFromCurrent();
    viewport->goHome(false);
    settle();
    click();
    // The turn ends when both the direction and the up vector have arrived.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return near(direction(), gp_Dir(0, 0, -1), 1e-4) && near(up(), gp_Dir(-1, 0, 0), 1e-4);
        },
        3000))
        << up().X() << " " << up().Y() << " " << up().Z();
}

class RecordingTool : public cad::rendering::ViewportTool {
public:
    bool mousePress(QPointF position, Qt::KeyboardModifiers) override {
        presses.push_back(position);
        return consume;
    }
    void mouseMove(QPointF, Qt::KeyboardModifiers) override { ++moves; }
    void mouseRelease(QPointF, Qt::KeyboardModifiers) override { ++releases; }
    void leave() override {}
    std::vector<QPointF> presses;
    int moves = 0;
    int releases = 0;
    bool consume = true;
};

TEST_F(ViewportTest, ToolGetsPressesExceptOnTheCube) {
    RecordingTool tool;
    viewport->setTool(&tool);
    viewport->setToolCursor(Qt::CrossCursor);
    EXPECT_EQ(viewport->cursor().shape(), Qt::CrossCursor);

    send(QEvent::MouseButtonPress, QPointF(200, 300), Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, QPointF(200, 300), Qt::LeftButton, Qt::NoButton);
    send(QEvent::MouseMove, QPointF(210, 300), Qt::NoButton, Qt::NoButton);
    ASSERT_EQ(tool.presses.size(), 1u);
    EXPECT_EQ(tool.presses[0], QPointF(200, 300));
    EXPECT_EQ(tool.releases, 1);
    EXPECT_EQ(tool.moves, 1);

    send(QEvent::MouseButtonPress, cubeCentre(), Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, cubeCentre(), Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(tool.presses.size(), 1u);
    EXPECT_EQ(tool.releases, 1);

    // During an orbit the tool sees neither moves nor the blank cursor's restore.
    send(QEvent::MouseButtonPress, QPointF(400, 300), Qt::RightButton, Qt::RightButton);
    send(QEvent::MouseMove, QPointF(410, 300), Qt::NoButton, Qt::RightButton);
    EXPECT_EQ(tool.moves, 1);
    EXPECT_EQ(viewport->cursor().shape(), Qt::BlankCursor);
    send(QEvent::MouseButtonRelease, QPointF(410, 300), Qt::RightButton, Qt::NoButton);
    EXPECT_EQ(viewport->cursor().shape(), Qt::CrossCursor);
    viewport->setTool(nullptr);
}

TEST_F(ViewportTest, WheelZoomsExceptRightAfterSpaceMouseMotion) {
    showBox(Quantity_Color(Quantity_NOC_GRAY));
    const auto wheel = [&] {
        const QPointF at(400, 300);
        QWheelEvent event(at, viewport->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &event);
        settle(50);
    };
    double scale = viewport->view()->Camera()->Scale();
    wheel();
    EXPECT_NE(viewport->view()->Camera()->Scale(), scale);

    auto* spaceMouse = viewport->findChild<cad::rendering::SpaceMouse*>();
    ASSERT_NE(spaceMouse, nullptr);
    QSignalSpy motion(spaceMouse, &cad::rendering::SpaceMouse::motion);
    spaceMouse->handleAxes({{0, 300, 0}, {0, 0, 0}}); // push away: zoom in
    ASSERT_TRUE(motion.wait(500));
    spaceMouse->handleAxes({}); // the cap is let go
    QTest::qWait(20);
    scale = viewport->view()->Camera()->Scale();
    wheel();
    EXPECT_DOUBLE_EQ(viewport->view()->Camera()->Scale(), scale);
    // Once the puck has been quiet for 300 ms the wheel zooms again.
    QTest::qWait(300);
    wheel();
    EXPECT_NE(viewport->view()->Camera()->Scale(), scale);
}

TEST_F(ViewportTest, UnprojectsOntoPlanesAndFacesThem) {
    viewport->lookAtPlane(gp_Ax3(gp_Pnt(0, 0, 5), gp_Dir(0, 0, 1), gp_Dir(1, 0, 0)), 100);
    EXPECT_TRUE(near(direction(), gp_Dir(0, 0, -1)));
    EXPECT_TRUE(near(up(), gp_Dir(0, 1, 0)));
    EXPECT_NEAR(viewport->view()->Camera()->Scale(), 140, 1e-9);

    const gp_Pln plane(gp_Pnt(0, 0, 5), gp_Dir(0, 0, 1));
    const QPointF centre(viewport->width() / 2.0, viewport->height() / 2.0);
    const auto middle = viewport->unprojectToPlane(centre, plane);
    ASSERT_TRUE(middle.has_value());
    EXPECT_NEAR(middle->X(), 0, 1e-6);
    EXPECT_NEAR(middle->Y(), 0, 1e-6);
    EXPECT_NEAR(middle->Z(), 5, 1e-9);
    // Right of the centre is +X, above it +Y, the view 140 units high.
    const auto right =
        viewport->unprojectToPlane(centre + QPointF(0, -viewport->height() / 4.0), plane);
    ASSERT_TRUE(right.has_value());
    EXPECT_NEAR(right->Y(), 35, 1e-6);
    EXPECT_FALSE(
        viewport->unprojectToPlane(centre, gp_Pln(gp_Pnt(0, 0, 0), gp_Dir(1, 0, 0))).has_value());
    EXPECT_TRUE(viewport->pickRay(centre).Direction().IsEqual(gp_Dir(0, 0, -1), 1e-9));
}

} // namespace
