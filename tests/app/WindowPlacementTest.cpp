// Where the main window appears: the rectangle arithmetic over tables of screens, and
// the settings-driven glue on the offscreen screen.
#include "app/WindowPlacement.h"

#include "ui/DataPaths.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QWidget>

#include <gtest/gtest.h>

#include <optional>

using namespace cad::app;

namespace {

std::string text(const std::optional<QRect>& rect) {
    if (!rect) return "none";
    return std::to_string(rect->x()) + "," + std::to_string(rect->y()) + " " +
           std::to_string(rect->width()) + "x" + std::to_string(rect->height());
}

} // namespace

TEST(WindowPlacement, DefaultIsNinetyPercentCappedAndCentred) {
    const struct {
        QRect available, expected;
    } cases[] = {
        {{0, 0, 1920, 1040}, {240, 70, 1440, 900}},  {{0, 0, 1280, 720}, {64, 36, 1152, 648}},
        {{0, 0, 2560, 1400}, {560, 250, 1440, 900}}, {{1920, 24, 1280, 720}, {1984, 60, 1152, 648}},
        {{0, 0, 801, 601}, {41, 31, 720, 540}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(defaultWindowRect(c.available)), text(c.expected)) << text(c.available);
}

TEST(WindowPlacement, RestoredFrameIsKeptPulledInsideOrDropped) {
    const QRect screen(0, 0, 1920, 1040);
    const QRect left(0, 0, 1920, 1080), right(1920, 0, 1920, 1080);
    const struct {
        const char* what;
        QRect frame;
        QList<QRect> screens;
        std::optional<QRect> expected;
    } cases[] = {
        {"inside stays", {100, 80, 800, 600}, {screen}, QRect(100, 80, 800, 600)},
        {"mostly on a detached screen", {1800, 100, 800, 600}, {screen}, std::nullopt},
        {"wholly on a detached screen", {3000, 100, 800, 600}, {screen}, std::nullopt},
        {"off the right edge", {1400, 100, 800, 600}, {screen}, QRect(1120, 100, 800, 600)},
        {"off the bottom edge", {100, 700, 800, 600}, {screen}, QRect(100, 440, 800, 600)},
        {"above and left", {-100, -50, 800, 600}, {screen}, QRect(0, 0, 800, 600)},
        {"exactly half visible", {1520, 0, 800, 600}, {screen}, QRect(1120, 0, 800, 600)},
        {"larger than the screen", {0, 0, 2000, 1200}, {screen}, QRect(0, 0, 1920, 1040)},
        {"more on the second screen",
         {1700, 100, 800, 600},
         {left, right},
         QRect(1920, 100, 800, 600)},
        {"a tie keeps the first", {1520, 100, 800, 600}, {left, right}, QRect(1120, 100, 800, 600)},
        {"no screens", {0, 0, 800, 600}, {}, std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(clampRestoredFrame(c.frame, c.screens)), text(c.expected)) << c.what;
}

class WindowPlacementOnScreen : public ::testing::Test {
protected:
    void SetUp() override { qputenv("KORVEL_DATA_DIR", data.path().toUtf8()); }
    void TearDown() override { qunsetenv("KORVEL_DATA_DIR"); }
    QTemporaryDir data;
};

TEST_F(WindowPlacementOnScreen, WithoutSavedGeometryTheDefaultIsUsed) {
    QWidget window;
    restoreWindowGeometry(window);
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(text(window.geometry()), text(defaultWindowRect(available)));
}

TEST_F(WindowPlacementOnScreen, SavedMaximizedWindowStaysMaximized) {
    QByteArray saved;
    {
        QWidget earlier;
        earlier.setGeometry(50, 40, 300, 200);
        earlier.setWindowState(Qt::WindowMaximized);
        saved = earlier.saveGeometry();
    }
    cad::ui::appSettings()->setValue("window/geometry", saved);
    QWidget window;
    restoreWindowGeometry(window);
    EXPECT_TRUE(window.isMaximized());
}

TEST_F(WindowPlacementOnScreen, SavedGeometryInsideTheScreenIsKept) {
    QByteArray saved;
    {
        QWidget earlier;
        earlier.setGeometry(50, 40, 300, 200);
        saved = earlier.saveGeometry();
    }
    cad::ui::appSettings()->setValue("window/geometry", saved);
    QWidget window;
    restoreWindowGeometry(window);
    EXPECT_EQ(text(window.geometry()), text(QRect(50, 40, 300, 200)));
}
