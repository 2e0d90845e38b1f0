// Flat patterns through the window: the Flat Pattern form sums up a bent bracket's
// blank and saves it as DXF; Edit Flat Pattern lays the bracket flat in its history
// until Finish folds it back (and undo ends the mode); the browser's Flat Pattern row
// toggles the mode and exports the blank.
#include "tests/ui/WindowFixture.h"

#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/widgets/ToolGroup.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QToolButton>

namespace cad::ui::testing {
namespace {

const QString kSelectPart =
    "Select the sheet metal body (or the face to keep fixed), then Edit Flat Pattern.";

class FlatPatternWindowTest : public WindowTest {
protected:
    // An L of 40 up and 60 along, 2 thick, inner radius 2, 50 wide: Body1.
    void bracket() {
        ASSERT_TRUE(window->runCommand(CommandRecord("create_sketch").set("plane", "XY")).ok);
        for (const auto& [x1, y1, x2, y2] :
             {std::array{0.0, 40.0, 0.0, 0.0}, std::array{0.0, 0.0, 60.0, 0.0}}) {
            CommandRecord line("add_line");
            line.set("sketch", "Sketch1").set("x1", x1).set("y1", y1).set("x2", x2).set("y2", y2);
            ASSERT_TRUE(window->runCommand(line).ok);
        }
        CommandRecord flange("sheet_flange");
        flange.set("sketch", "Sketch1").set("thickness", 2.0).set("bend_radius", 2.0);
        ASSERT_TRUE(window->runCommand(flange.set("width", 50.0)).ok);
    }
    QAction* action(const char* name) { return window->findChild<QAction*>(name); }
    QString toast() { return window->toastLabel().text(); }
    double height(const char* body) {
        double x0, y0, z0, x1, y1, z1;
        bodyBox(window->document(), body).Get(x0, y0, z0, x1, y1, z1);
        return y1 - y0;
    }
    int unfolds() {
        int count = 0;
        for (const auto& object : window->document().objects())
            count += object->id.starts_with("Unfold");
        return count;
    }
    QString summary(FeatureForm* form) {
        return qobject_cast<QLabel*>(form->editor("summary"))->text();
    }
    QTemporaryDir folder;
};

TEST_F(FlatPatternWindowTest, TheFormSumsUpTheBlankRefusesWhatIsNotSheetMetalAndSavesIt) {
    bracket();
    ASSERT_TRUE(addBox(100).ok);
    window->presenter().selectObjects({"Body1"});
    action("flatPattern")->trigger();
    FeatureForm* form = window->forms().form();
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->title(), QStringLiteral("Flat Pattern"));
    EXPECT_EQ(form->primaryButton()->text(), QStringLiteral("Save..."));
    EXPECT_EQ(form->text("body"), QStringLiteral("Body1"));
    // 40 and 60 less the bend's corners plus its flat length; 50 wide.
    const QRegularExpression shape(R"(^([\d.]+) x ([\d.]+) mm  ·  1 bend  ·  2 mm thick$)");
    QRegularExpressionMatch match = shape.match(summary(form));
    ASSERT_TRUE(match.hasMatch()) << summary(form).toStdString();
    EXPECT_NEAR(match.captured(1).toDouble(), 96.5, 1);
    EXPECT_EQ(match.captured(2), QStringLiteral("50"));
    ASSERT_TRUE(form->acceptEnabled());

    form->setReferences("body", {"Box1"});
    EXPECT_EQ(form->message(), QStringLiteral("Box1 isn't sheet metal: SHEET METAL › Convert to "
                                              "Sheet Metal first."));
    EXPECT_FALSE(form->acceptEnabled());
    EXPECT_TRUE(summary(form).isEmpty());
    form->setReferences("body", {"Body1"});
    qobject_cast<QLineEdit*>(form->editor("k_factor"))->setText("1.5");
    EXPECT_EQ(form->message(), QStringLiteral("The K-factor is between 0 and 1."));
    EXPECT_FALSE(form->acceptEnabled());
    qobject_cast<QLineEdit*>(form->editor("k_factor"))->setText("0.44");

    // Neither a bend nor the end of the bent part can stay put; a wall can.
    for (const char* face : {"Body1/Flange1.Bend(Line1,Line2)", "Body1/Flange1.cap"}) {
        form->activatePick("face");
        form->picked({face});
        EXPECT_EQ(form->message(), QStringLiteral("Pick a flat face of the part.")) << face;
        EXPECT_TRUE(form->references("face").empty());
    }
    form->activatePick("face");
    form->picked({"Body1/Flange1.Line1"});
    EXPECT_EQ(form->text("face"), QStringLiteral("Body1/Flange1.Line1"));
    // Seen square to that wall the blank stands the other way up.
    match = shape.match(summary(form));
    ASSERT_TRUE(match.hasMatch()) << summary(form).toStdString();
    EXPECT_EQ(match.captured(1), QStringLiteral("50"));

    prompts.saveAnswer = folder.path() + "/bracket"; // the format's extension is added
    ASSERT_TRUE(window->forms().accept()) << form->message().toStdString();
    EXPECT_TRUE(prompts.asked.contains("Save Body1 flat|"));
    EXPECT_EQ(toast(), QStringLiteral("Saved bracket.dxf"));
    QFile file(folder.path() + "/bracket.dxf");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray dxf = file.readAll();
    EXPECT_TRUE(dxf.contains("\nCUT_OUTSIDE\n"));
    EXPECT_TRUE(dxf.contains("\nBEND\n"));
    EXPECT_EQ(QSettings().value("flat/format").toString(), QStringLiteral("dxf"));
}

TEST_F(FlatPatternWindowTest, EditFlatPatternLaysThePartFlatUntilFinishedOrUndone) {
    bracket();
    QStringList make;
    for (ToolGroup* group : window->findChildren<ToolGroup*>())
        if (group->key() == QLatin1String("sheet.make"))
            for (QAction* a : group->allActions()) make << a->text();
    EXPECT_EQ(make, (QStringList{"Edit Flat Pattern", "Export Flat Pattern", "Nest Parts"}));
    auto* finishButton = window->findChild<QToolButton*>("finishFlatPatternButton");
    ASSERT_NE(finishButton, nullptr);
    EXPECT_FALSE(finishButton->isVisible());
    EXPECT_FALSE(action("finishFlatPattern")->isEnabled());

    action("editFlatPattern")->trigger(); // nothing selected
    EXPECT_EQ(toast(), kSelectPart);
    EXPECT_FALSE(window->editingFlatPattern());
    EXPECT_EQ(unfolds(), 0);

    window->presenter().selectObjects({"Body1"});
    action("editFlatPattern")->trigger();
    ASSERT_TRUE(window->editingFlatPattern());
    EXPECT_NEAR(height("Body1"), 2, 0.01); // lying flat on its largest face
    EXPECT_TRUE(finishButton->isVisible());
    EXPECT_TRUE(action("finishFlatPattern")->isEnabled());
    EXPECT_TRUE(window->findChild<QWidget*>("sheetTools")->isVisible());
    EXPECT_TRUE(window->findChild<QLabel*>("modeBanner")->text().contains("FLAT PATTERN"));

    finishButton->click();
    EXPECT_FALSE(window->editingFlatPattern());
    EXPECT_GT(height("Body1"), 30); // bent again
    EXPECT_FALSE(finishButton->isVisible());
    EXPECT_FALSE(action("finishFlatPattern")->isEnabled());

    // Flat again once the fold is undone: editing goes back to that Unfold.
    window->commandStack().undo();
    window->presenter().selectObjects({"Body1"});
    action("editFlatPattern")->trigger();
    ASSERT_TRUE(window->editingFlatPattern());
    EXPECT_EQ(unfolds(), 1);
    // Undoing the Unfold itself ends the mode.
    window->commandStack().undo();
    EXPECT_FALSE(window->editingFlatPattern());
    EXPECT_FALSE(finishButton->isVisible());
    EXPECT_GT(height("Body1"), 30);
}

TEST_F(FlatPatternWindowTest, TheBrowserRowTogglesTheModeAndExportsTheBlankInTheUnit) {
    bracket();
    ASSERT_TRUE(window->runCommand(CommandRecord("set_units").set("length", "in")).ok);
    ASSERT_TRUE(addBox(100).ok);
    auto* browser = window->findChild<ObjectBrowser*>();
    ASSERT_NE(browser, nullptr);
    ASSERT_TRUE(waitUntil([&] { return browser->itemFor("Box1") != nullptr; }));
    QTreeWidgetItem* row = browser->flatPatternItem("Body1");
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->text(0), QStringLiteral("Flat Pattern"));
    EXPECT_EQ(row->toolTip(0), QStringLiteral("Double-click to work on it flat"));
    EXPECT_EQ(browser->flatPatternItem("Box1"), nullptr);
    std::unique_ptr<QMenu> boxMenu(browser->contextMenuFor(browser->itemFor("Box1")));
    EXPECT_EQ(boxMenu->findChild<QAction*>("editFlatPatternRow"), nullptr);
    row->setSelected(true); // the row stands for its body
    EXPECT_EQ(browser->selectedObjects(), QStringList{"Body1"});

    emit browser->itemDoubleClicked(row, 0);
    ASSERT_TRUE(window->editingFlatPattern());
    row = browser->flatPatternItem("Body1");
    EXPECT_EQ(row->text(0), QStringLiteral("Flat Pattern  (editing)"));
    EXPECT_EQ(row->toolTip(0), QStringLiteral("Double-click to fold it back up"));

    std::unique_ptr<QMenu> menu(browser->contextMenuFor(browser->itemFor("Body1")));
    EXPECT_EQ(menu->findChild<QAction*>("editFlatPatternRow"), nullptr);
    prompts.saveAnswer = folder.path() + "/part.svg";
    menu->findChild<QAction*>("exportFlatSvg")->trigger();
    EXPECT_TRUE(prompts.asked.contains("Export Body1 flat|"));
    EXPECT_TRUE(QRegularExpression(R"(^Exported part\.svg  ·  3\.8\d* x 1\.9685 in$)")
                    .match(toast())
                    .hasMatch())
        << toast().toStdString();
    EXPECT_TRUE(QFile::exists(folder.path() + "/part.svg"));
    menu->findChild<QAction*>("exportFlatPatternRow")->trigger();
    FeatureForm* form = window->forms().form();
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->text("body"), QStringLiteral("Body1"));
    EXPECT_EQ(form->text("thickness"), QStringLiteral("0.0787"));
    EXPECT_TRUE(summary(form).endsWith("  ·  1 bend  ·  0.0787 in thick"))
        << summary(form).toStdString();

    std::unique_ptr<QMenu> rowMenu(browser->contextMenuFor(browser->flatPatternItem("Body1")));
    rowMenu->findChild<QAction*>("finishFlatPatternRow")->trigger();
    EXPECT_FALSE(window->editingFlatPattern());
    EXPECT_EQ(browser->flatPatternItem("Body1")->text(0), QStringLiteral("Flat Pattern"));
    EXPECT_GT(height("Body1"), 30);
}

} // namespace
} // namespace cad::ui::testing
