// The SHEET METAL tab and Nest Parts through the window: the tab swaps the strips,
// a sketch's strip still takes over, and the nest form lays the chosen bodies out,
// asks where to save, writes the sheets and says what it did.
#include "tests/ui/WindowFixture.h"

#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/widgets/ToolGroup.h"
#include "ui/widgets/ToolStrip.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>

namespace cad::ui::testing {
namespace {

class SheetMetalWindowTest : public WindowTest {
protected:
    QWidget* strip(const char* name) { return window->findChild<QWidget*>(name); }
    QStringList groupActions(const char* key) {
        QStringList labels;
        for (ToolGroup* group : window->findChildren<ToolGroup*>())
            if (group->key() == QLatin1String(key))
                for (QAction* a : group->allActions()) labels << a->text();
        return labels;
    }
    QTemporaryDir folder;
};

TEST_F(SheetMetalWindowTest, TheTabSwapsTheStripAndNestPartsSavesTheSheets) {
    auto* sheetTab = window->findChild<QToolButton*>(QStringLiteral("sheetTab"));
    ASSERT_NE(sheetTab, nullptr);
    EXPECT_EQ(sheetTab->text(), QStringLiteral("SHEET METAL"));
    EXPECT_TRUE(strip("modelingTools")->isVisible());
    EXPECT_FALSE(strip("sheetTools")->isVisible());
    sheetTab->click();
    EXPECT_FALSE(strip("modelingTools")->isVisible());
    EXPECT_TRUE(strip("sheetTools")->isVisible());
    EXPECT_EQ(groupActions("sheet.create"),
              (QStringList{"Sketch", "Extrude", "Flange", "Edge Flange", "Hem",
                           "Convert to Sheet Metal", "Hole", "Reference Plane"}));
    EXPECT_TRUE(groupActions("sheet.make").contains("Nest Parts"));
    // Every sheet metal tool has its icon (a missing one shows as cut-off text).
    for (ToolGroup* group : window->findChildren<ToolGroup*>()) {
        if (!group->key().startsWith(QLatin1String("sheet."))) continue;
        for (QAction* a : group->allActions())
            EXPECT_FALSE(a->icon().isNull()) << a->text().toStdString();
    }

    // A sketch's strip takes over, and the sheet metal strip comes back after it.
    ASSERT_TRUE(window->runCommand(CommandRecord("create_sketch").set("plane", "XY")).ok);
    window->editSketch("Sketch1");
    EXPECT_FALSE(strip("sheetTools")->isVisible());
    window->finishSketch();
    EXPECT_TRUE(strip("sheetTools")->isVisible());
    EXPECT_FALSE(strip("modelingTools")->isVisible());

    // Two 10 mm cubes, three of each, on a 50 x 30 sheet: with 3 mm between them and 5
    // from the edges, three 10 x 10 squares fit a sheet, so six take two.
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(addBox(40).ok);
    window->findChild<QAction*>(QStringLiteral("nestParts"))->trigger();
    FeatureForm* form = window->forms().form();
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->title(), QStringLiteral("Nest Parts"));
    EXPECT_EQ(form->primaryButton()->text(), QStringLiteral("Save..."));
    EXPECT_FALSE(form->acceptEnabled()); // no parts yet
    form->setReferences(QStringLiteral("bodies"), {"Box1", "Box2"});
    qobject_cast<QSpinBox*>(form->editor(QStringLiteral("quantity")))->setValue(3);
    qobject_cast<QLineEdit*>(form->editor(QStringLiteral("sheet_width")))->setText("50");
    qobject_cast<QLineEdit*>(form->editor(QStringLiteral("sheet_height")))->setText("30");
    ASSERT_TRUE(form->acceptEnabled());

    prompts.saveAnswer = folder.path() + "/cut"; // the format's extension is added
    ASSERT_TRUE(window->forms().accept()) << form->message().toStdString();
    EXPECT_EQ(window->toastLabel().text(),
              QStringLiteral("Saved cut.dxf  ·  6 parts on 2 sheet(s), 20.0% used"));
    QFile file(folder.path() + "/cut.dxf");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("\nSHEET\n"));
    // SOLID's MAKE group lays any flat body out too: with nothing selected it says
    // what to select; a cube seen square to its largest face is a 10 mm square.
    EXPECT_EQ(groupActions("model.make"), (QStringList{"Export Flat", "Nest Parts"}));
    window->presenter().selectObjects({});
    window->findChild<QAction*>(QStringLiteral("exportFlat"))->trigger();
    EXPECT_EQ(window->toastLabel().text(),
              QStringLiteral("Select a body (or the face to look at), then Export Flat."));
    window->presenter().selectObjects({"Box1"});
    prompts.saveAnswer = folder.path() + "/square.dxf";
    window->findChild<QAction*>(QStringLiteral("exportFlat"))->trigger();
    EXPECT_EQ(window->toastLabel().text(), QStringLiteral("Exported square.dxf  ·  10 x 10 mm"));
    EXPECT_TRUE(QFile::exists(folder.path() + "/square.dxf"));

    // The rows are remembered for the next nest.
    EXPECT_EQ(QSettings().value("nest/width").toDouble(), 50);
    EXPECT_EQ(QSettings().value("nest/format").toString(), QStringLiteral("dxf"));
}

} // namespace
} // namespace cad::ui::testing
