// Flat drawings through the window: a sketch exported from the browser's menu as
// DXF and SVG in the document's unit, and a refusal that writes nothing.
#include "tests/ui/WindowFixture.h"

#include "ui/panels/ObjectBrowser.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QSettings>
#include <QTemporaryDir>

namespace cad::ui::testing {
namespace {

class DrawingWindowTest : public WindowTest {
protected:
    QString path(const QString& name) const { return folder.path() + "/" + name; }
    QString toast() { return window->toastLabel().text(); }
    QString read(const QString& name) {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    // Sketch1 on XY holding a 40 x 20 rectangle.
    void sketchPlate() {
        CommandRecord sketch("create_sketch");
        sketch.set("plane", "XY");
        ASSERT_TRUE(window->runCommand(sketch).ok);
        CommandRecord rectangle("add_rectangle");
        rectangle.set("sketch", "Sketch1")
            .set("x1", 0.0)
            .set("y1", 0.0)
            .set("x2", 40.0)
            .set("y2", 20.0);
        ASSERT_TRUE(window->runCommand(rectangle).ok);
    }
    QTemporaryDir folder;
};

TEST_F(DrawingWindowTest, ASketchGoesOutFromTheBrowserAsDxfAndSvgInTheDocumentsUnit) {
    sketchPlate();
    auto* browser = window->findChild<ObjectBrowser*>();
    ASSERT_NE(browser, nullptr);
    ASSERT_TRUE(waitUntil([&] { return browser->itemFor("Sketch1") != nullptr; }));
    std::unique_ptr<QMenu> menu(browser->contextMenuFor(browser->itemFor("Sketch1")));
    ASSERT_NE(menu, nullptr);
    auto* dxf = menu->findChild<QAction*>("exportSketchDxf");
    auto* svg = menu->findChild<QAction*>("exportSketchSvg");
    ASSERT_TRUE(dxf && svg);
    EXPECT_EQ(dxf->text(), QStringLiteral("Export as DXF..."));
    EXPECT_EQ(menu->findChild<QAction*>("exportBodyStep"), nullptr);

    prompts.saveAnswer = path("plate"); // no extension: the format's is added
    dxf->trigger();
    EXPECT_TRUE(prompts.lastProposedName.endsWith("/Sketch1.dxf"));
    EXPECT_EQ(prompts.lastFilter, QStringLiteral("DXF drawing (*.dxf)"));
    EXPECT_EQ(toast(), QStringLiteral("Exported plate.dxf"));
    EXPECT_TRUE(read("plate.dxf").contains("POLYLINE\n8\nCUT\n"));
    EXPECT_EQ(QSettings().value("folders/drawings").toString(), folder.path());

    CommandRecord units("set_units");
    units.set("length", "in");
    ASSERT_TRUE(window->runCommand(units).ok);
    prompts.saveAnswer = path("plate.svg");
    svg->trigger();
    EXPECT_EQ(toast(), QStringLiteral("Exported plate.svg"));
    const QString text = read("plate.svg");
    EXPECT_TRUE(text.contains("width=\"1.574803in\" height=\"0.787402in\"")) << text.toStdString();

    // A file that can't be written is said in a box and nothing is left behind.
    prompts.saveAnswer = folder.path() + "/missing/plate.svg";
    svg->trigger();
    EXPECT_EQ(prompts.asked.last(), QStringLiteral("Export Sketch1|Couldn't write %1.")
                                          .arg(folder.path() + "/missing/plate.svg"));
}

} // namespace
} // namespace cad::ui::testing
