// Flat drawings through the window: a sketch exported from the browser's menu as
// DXF and SVG in the document's unit, and a refusal that writes nothing; artwork
// brought in through the Import Drawing form, chosen in a dialog or dropped.
#include "tests/ui/WindowFixture.h"

#include "rendering/Viewport.h"
#include "sketch/SketchObject.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/ObjectBrowser.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>

#include <gp_Pln.hxx>

#include <algorithm>
#include <limits>

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
    void write(const QString& name, const QByteArray& bytes) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    const SketchObject* sketch(const char* id) {
        return window->document().findAs<SketchObject>(id);
    }
    FeatureForm* form() { return window->forms().isOpen() ? window->forms().form() : nullptr; }
    void setRow(const QString& key, const QString& text) {
        auto* edit = qobject_cast<QLineEdit*>(form()->editor(key));
        ASSERT_NE(edit, nullptr);
        edit->setText(text);
    }
    // The box around a sketch's circles: centre x, centre y and the largest radius.
    static std::array<double, 3> circles(const SketchObject& s) {
        double minX = std::numeric_limits<double>::max(), maxX = -minX, minY = minX, maxY = -minX,
               radius = 0;
        for (const SketchEntity& e : s.entities)
            if (const auto* circle = std::get_if<SketchCircle>(&e.geometry)) {
                minX = std::min(minX, circle->center.x - circle->radius);
                maxX = std::max(maxX, circle->center.x + circle->radius);
                minY = std::min(minY, circle->center.y - circle->radius);
                maxY = std::max(maxY, circle->center.y + circle->radius);
                radius = std::max(radius, circle->radius);
            }
        return {(minX + maxX) / 2, (minY + maxY) / 2, radius};
    }
    QTemporaryDir folder;
};

// A 50 mm square with a 20 mm circle in its middle.
const QByteArray kSquareSvg =
    "<svg xmlns='http://www.w3.org/2000/svg' width='50mm' height='50mm' viewBox='0 0 50 50'>"
    "<rect x='0' y='0' width='50' height='50' fill='none' stroke='black'/>"
    "<circle cx='25' cy='25' r='10' fill='none' stroke='black'/></svg>";

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

TEST_F(DrawingWindowTest, ArtworkChosenInTheSketchComesInAtTheWidthAskedInOneStep) {
    sketchPlate();
    auto* action = window->findChild<QAction*>(QStringLiteral("importDrawing"));
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->text(), QStringLiteral("Import Drawing"));
    EXPECT_FALSE(action->isEnabled()); // only while a sketch is edited
    window->editSketch("Sketch1");
    ASSERT_TRUE(action->isEnabled());

    write("square.svg", kSquareSvg);
    prompts.openAnswer = path("square.svg");
    action->trigger();
    EXPECT_EQ(prompts.lastFilter, QStringLiteral("Drawings (*.svg *.dxf *.ai *.pdf);;SVG (*.svg);;"
                                                 "DXF (*.dxf);;Illustrator (*.ai);;PDF (*.pdf)"));
    ASSERT_NE(form(), nullptr);
    EXPECT_EQ(form()->title(), QStringLiteral("Import Drawing"));
    EXPECT_FALSE(form()->has(QStringLiteral("plane"))); // it goes into the edited sketch
    EXPECT_EQ(form()->text(QStringLiteral("width")), QStringLiteral("50"));
    QStringList tips;
    for (const QLabel* label : form()->findChildren<QLabel*>(QStringLiteral("fieldLabel")))
        if (label->text() == QLatin1String("Width")) tips << label->toolTip();
    EXPECT_EQ(tips, QStringList{QStringLiteral("The drawing is 50 mm wide as drawn")});

    setRow(QStringLiteral("width"), QStringLiteral("0"));
    EXPECT_EQ(form()->message(), QStringLiteral("The width must be greater than zero."));
    EXPECT_FALSE(form()->acceptEnabled());

    const std::size_t before = sketch("Sketch1")->entities.size();
    setRow(QStringLiteral("width"), QStringLiteral("100"));
    ASSERT_TRUE(window->forms().accept());
    const std::size_t after = sketch("Sketch1")->entities.size();
    EXPECT_EQ(after, before + 5); // four lines and the circle
    const auto [cx, cy, radius] = circles(*sketch("Sketch1"));
    EXPECT_NEAR(radius, 20, 1e-9); // twice the size: 100 wide instead of 50
    EXPECT_NEAR(cx, 50, 1e-9);     // an SVG goes to the corner by default
    EXPECT_NEAR(cy, 50, 1e-9);

    window->commandStack().undo();
    EXPECT_EQ(sketch("Sketch1")->entities.size(), before);
}

TEST_F(DrawingWindowTest, ADrawingDroppedWithNoSketchOpenLandsCentredWhereItFellOnANewSketch) {
    // A 30 x 10 DXF outline with a circle of radius 4 in its middle, in millimetres.
    write("plate.dxf", "0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n4\n0\nENDSEC\n"
                       "0\nSECTION\n2\nENTITIES\n"
                       "0\nLWPOLYLINE\n8\n0\n90\n4\n70\n1\n"
                       "10\n100\n20\n100\n10\n130\n20\n100\n10\n130\n20\n110\n10\n100\n20\n110\n"
                       "0\nCIRCLE\n8\n0\n10\n115\n20\n105\n40\n4\n0\nENDSEC\n0\nEOF\n");
    rendering::Viewport& view = window->viewport();
    const QPoint spot = view.rect().center() + QPoint(40, -30);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path("plate.dxf"))});
    QDragEnterEvent enter(spot, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent dropped(spot, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &dropped);

    ASSERT_NE(form(), nullptr);
    EXPECT_EQ(form()->references(QStringLiteral("plane")), std::vector<std::string>{"XY"});
    EXPECT_EQ(form()->text(QStringLiteral("place")), QStringLiteral("center"));
    const std::size_t objects = window->document().objects().size();
    ASSERT_TRUE(window->forms().accept());
    const SketchObject* made = sketch("Sketch1");
    ASSERT_NE(made, nullptr);
    // Where the drop point meets the XY plane, worked out from the camera here.
    const std::optional<gp_Pnt> hit = view.unprojectToPlane(spot, gp_Pln(gp::XOY()));
    ASSERT_TRUE(hit.has_value());
    const auto [cx, cy, radius] = circles(*made);
    EXPECT_NEAR(radius, 4, 1e-9);
    EXPECT_NEAR(cx, hit->X(), 1e-6);
    EXPECT_NEAR(cy, hit->Y(), 1e-6);

    // The new sketch and its drawing go in one undo step.
    window->commandStack().undo();
    EXPECT_EQ(window->document().objects().size(), objects);
    EXPECT_EQ(sketch("Sketch1"), nullptr);

    // A file no reader takes is said in a box, and no form opens.
    write("broken.dxf", "AutoCAD Binary DXF\r\n\x1a");
    EXPECT_FALSE(window->importDrawingFile(path("broken.dxf")));
    EXPECT_FALSE(window->forms().isOpen());
    EXPECT_EQ(prompts.asked.last(),
              QStringLiteral("Import Drawing|Binary DXF isn't supported; save it as ASCII DXF."));
}

} // namespace
} // namespace cad::ui::testing
