// The main window's state after commands: title and modified mark, undo and redo,
// Box placement, failures as toasts, deletion, the filter, units, and what the
// menus, top bar and overlays hold.
#include "tests/ui/WindowFixture.h"

#include "ui/presentation/DocumentPresenter.h"
#include "ui/widgets/CommandLog.h"

#include <AIS_InteractiveContext.hxx>

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QTextDocument>
#include <QToolButton>

namespace cad::ui::testing {
namespace {

QAction* findAction(MainWindow& window, const QString& name) {
    return window.findChild<QAction*>(name);
}

TEST_F(WindowTest, TitleMarksChangesUntilUndoReturnsToTheSavedPosition) {
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — Untitled"));
    auto* label = window->findChild<QLabel*>(QStringLiteral("docTitle"));
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), QStringLiteral("Untitled"));
    EXPECT_EQ(label->toolTip(), QStringLiteral("Not saved yet"));
    auto* saveButton = window->findChild<QToolButton*>(QStringLiteral("saveButton"));
    ASSERT_NE(saveButton, nullptr);
    EXPECT_FALSE(saveButton->property("modified").toBool());

    findAction(*window, QStringLiteral("box"))->trigger();
    EXPECT_TRUE(window->isModified());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — Untitled •"));
    EXPECT_TRUE(saveButton->property("modified").toBool());

    findAction(*window, QStringLiteral("undo"))->trigger();
    EXPECT_FALSE(window->isModified());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — Untitled"));
    EXPECT_FALSE(saveButton->property("modified").toBool());

    // Redo goes forward again: modified once more.
    findAction(*window, QStringLiteral("redo"))->trigger();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — Untitled •"));
}

TEST_F(WindowTest, UndoAndRedoNameTheCommandTheyWouldActOn) {
    QAction* undo = findAction(*window, QStringLiteral("undo"));
    QAction* redo = findAction(*window, QStringLiteral("redo"));
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_TRUE(undo->toolTip().contains(QStringLiteral("Nothing to undo")));
    EXPECT_TRUE(redo->toolTip().contains(QStringLiteral("Nothing to redo")));

    ASSERT_TRUE(addBox().ok);
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_TRUE(undo->toolTip().contains(QStringLiteral("create_box")));
    EXPECT_TRUE(undo->toolTip().contains(QStringLiteral("Ctrl+Z")));
    EXPECT_FALSE(redo->isEnabled());

    undo->trigger();
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_TRUE(redo->isEnabled());
    EXPECT_TRUE(redo->toolTip().contains(QStringLiteral("create_box")));
    EXPECT_TRUE(undo->toolTip().contains(QStringLiteral("Nothing to undo")));
}

TEST_F(WindowTest, BoxStartsAtTheOriginAndLaterOnesGoBeyondTheLargestX) {
    QAction* box = findAction(*window, QStringLiteral("box"));
    box->trigger();
    const Bnd_Box first = bodyBox(window->document(), "Box1");
    ASSERT_FALSE(first.IsVoid());
    EXPECT_NEAR(first.CornerMin().X(), 0, 1e-6);
    EXPECT_NEAR(first.CornerMin().Y(), 0, 1e-6);
    EXPECT_NEAR(first.CornerMax().X(), 100, 1e-6);
    EXPECT_NEAR(first.CornerMax().Y(), 50, 1e-6);
    EXPECT_NEAR(first.CornerMax().Z(), 25, 1e-6);
    EXPECT_FALSE(window->presenter().presentationOf("Box1").IsNull());

    // A body placed further out decides where the next one goes, not the newest.
    ASSERT_TRUE(addBox(300).ok);
    ASSERT_TRUE(addBox(-50).ok);
    box->trigger();
    const Bnd_Box next = bodyBox(window->document(), "Box4");
    ASSERT_FALSE(next.IsVoid());
    EXPECT_NEAR(next.CornerMin().X(), 330, 1e-6);
    EXPECT_NEAR(next.CornerMin().Y(), 0, 1e-6);
    EXPECT_NEAR(next.CornerMin().Z(), 0, 1e-6);
}

TEST_F(WindowTest, AFailedCommandShowsAToastAndARedLineAndChangesNothing) {
    ASSERT_TRUE(addBox().ok);
    const std::size_t before = window->document().objects().size();
    const CommandResult result = window->runCommand(
        CommandRecord("create_box").set("width", 0.0).set("depth", 5.0).set("height", 5.0));
    ASSERT_FALSE(result.ok);
    EXPECT_EQ(window->document().objects().size(), before);

    QLabel& toast = window->toastLabel();
    EXPECT_TRUE(toast.isVisible());
    EXPECT_EQ(toast.text(), QString::fromStdString(result.message));
    // The toast sits over the view, clear of the cube's corner.
    const int corner = window->viewport().cubeCornerSize();
    EXPECT_LE(toast.geometry().right(), window->viewport().width() - corner / 2);

    const QString log = window->commandLog().document()->toHtml();
    EXPECT_TRUE(log.contains(QStringLiteral("#e06a6a"))) << log.toStdString();
    EXPECT_TRUE(
        window->commandLog().toPlainText().contains(QString::fromStdString(result.message)));
    // The failure is not a step to undo.
    EXPECT_TRUE(findAction(*window, QStringLiteral("undo"))
                    ->toolTip()
                    .contains(QStringLiteral("create_box")));
    EXPECT_EQ(window->commandStack().undoCount(), 1u);
}

// A sketch with a rectangle extruded into Body1: the sketch is used by others.
void buildExtrudedSketch(MainWindow& window) {
    ASSERT_TRUE(window.runCommand(CommandRecord("create_sketch").set("plane", "XY")).ok);
    ASSERT_TRUE(window
                    .runCommand(CommandRecord("add_rectangle")
                                    .set("sketch", "Sketch1")
                                    .set("x1", 0.0)
                                    .set("y1", 0.0)
                                    .set("x2", 40.0)
                                    .set("y2", 30.0))
                    .ok);
    const CommandResult extruded =
        window.runCommand(CommandRecord("extrude").set("sketch", "Sketch1").set("distance", 10.0));
    ASSERT_TRUE(extruded.ok) << extruded.message;
}

TEST_F(WindowTest, DeletingAnObjectOthersUseAsksFirstAndUndoesAsOneStep) {
    buildExtrudedSketch(*window);
    const std::size_t objects = window->document().objects().size();
    const std::size_t steps = window->commandStack().undoCount();

    // Cancelled: nothing goes.
    prompts.deleteAll = false;
    window->deleteObjects({"Sketch1"});
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].startsWith(QStringLiteral("Delete|Sketch1 is used by ")))
        << prompts.asked[0].toStdString();
    EXPECT_TRUE(prompts.asked[0].endsWith(QStringLiteral(".\n\nDelete those too?")));
    EXPECT_EQ(window->document().objects().size(), objects);

    // Delete All: the sketch and its users go, and one undo brings them all back.
    prompts.deleteAll = true;
    window->deleteObjects({"Sketch1"});
    EXPECT_EQ(window->document().find("Sketch1"), nullptr);
    EXPECT_EQ(window->document().find("Extrude1"), nullptr);
    EXPECT_EQ(window->commandStack().undoCount(), steps + 1);
    findAction(*window, QStringLiteral("undo"))->trigger();
    EXPECT_EQ(window->document().objects().size(), objects);
    EXPECT_FALSE(window->presenter().presentationOf("Sketch1").IsNull());
}

TEST_F(WindowTest, AFacePickedInTheViewIsNotDeletedOnItsOwn) {
    findAction(*window, QStringLiteral("showOrigin"))->setChecked(false);
    findAction(*window, QStringLiteral("box"))->trigger();
    rendering::Viewport& view = window->viewport();
    view.setStandardView(V3d_Zpos, false);
    view.fitAll();
    view.repaint();
    const Handle(AIS_InteractiveContext)& context = view.context();
    const double ratio = view.devicePixelRatioF();
    // Picking works once the view has drawn at its final size.
    ASSERT_TRUE(waitUntil([&] {
        context->MoveTo(static_cast<int>(view.width() / 2 * ratio),
                        static_cast<int>(view.height() / 2 * ratio), view.view(), false);
        return context->HasDetected();
    }));
    context->SelectDetected();
    ASSERT_EQ(context->NbSelected(), 1);

    findAction(*window, QStringLiteral("delete"))->trigger();
    EXPECT_NE(window->document().find("Box1"), nullptr);
    EXPECT_EQ(window->toastLabel().text(),
              QStringLiteral("A face, edge or vertex can't be deleted on its own. To delete the "
                             "body, select it in the browser."));

    // Esc (Clear Selection) empties the selection.
    findAction(*window, QStringLiteral("clearSelection"))->trigger();
    EXPECT_EQ(context->NbSelected(), 0);
}

TEST_F(WindowTest, DeleteWithNothingSelectedDoesNothing) {
    ASSERT_TRUE(addBox().ok);
    window->clearSelection();
    findAction(*window, QStringLiteral("delete"))->trigger();
    EXPECT_NE(window->document().find("Box1"), nullptr);
    EXPECT_FALSE(window->toastLabel().isVisible());
}

TEST_F(WindowTest, FilterTogglesReachThePresenter) {
    QAction* faces = findAction(*window, QStringLiteral("facesFilter"));
    QAction* edges = findAction(*window, QStringLiteral("edgesFilter"));
    QAction* vertices = findAction(*window, QStringLiteral("verticesFilter"));
    ASSERT_TRUE(faces && edges && vertices);
    EXPECT_EQ(faces->isChecked(), window->presenter().facesSelectable());

    edges->setChecked(true);
    EXPECT_TRUE(window->presenter().edgesSelectable());
    faces->setChecked(false);
    EXPECT_FALSE(window->presenter().facesSelectable());
    vertices->setChecked(true);
    EXPECT_TRUE(window->presenter().verticesSelectable());
    vertices->setChecked(false);
    EXPECT_FALSE(window->presenter().verticesSelectable());
}

TEST_F(WindowTest, OriginToggleIsRemembered) {
    QAction* origin = findAction(*window, QStringLiteral("showOrigin"));
    ASSERT_NE(origin, nullptr);
    waitUntil([] { return false; }, 50); // the deferred start-up work
    EXPECT_EQ(window->presenter().originVisible(), origin->isChecked());
    origin->setChecked(!origin->isChecked());
    EXPECT_EQ(window->presenter().originVisible(), origin->isChecked());
    EXPECT_EQ(QSettings().value(QStringLiteral("view/origin")).toBool(), origin->isChecked());
}

TEST_F(WindowTest, UnitButtonRunsSetUnitsAndFollowsUndo) {
    auto* button = window->findChild<QToolButton*>(QStringLiteral("unitButton"));
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), QStringLiteral("mm"));
    QAction* inches = nullptr;
    for (QAction* choice : button->menu()->actions())
        if (choice->text() == QStringLiteral("Inches")) inches = choice;
    ASSERT_NE(inches, nullptr);
    inches->trigger();
    EXPECT_EQ(button->text(), QStringLiteral("in"));
    window->commandStack().undo();
    EXPECT_EQ(button->text(), QStringLiteral("mm"));
}

TEST_F(WindowTest, MenusHoldOnlyWhatIsBuilt) {
    auto* menuButton = window->findChild<QToolButton*>(QStringLiteral("menuButton"));
    ASSERT_NE(menuButton, nullptr);
    QStringList layout;
    for (QAction* entry : menuButton->menu()->actions()) {
        QStringList items;
        for (QAction* item : entry->menu()->actions())
            items.append(item->isSeparator() ? QStringLiteral("-") : item->text());
        layout.append(entry->text() + ": " + items.join(QStringLiteral(", ")));
    }
    EXPECT_EQ(layout,
              QStringList({
                  "File: New, Open…, Open Recent, -, Save, Save As…",
                  "Edit: Undo, Redo, -, Delete, Clear Selection",
                  "Create: Box",
                  "View: Home View, Fit, -, Front, Top, Right, Isometric, -, Origin, Command Log",
                  "Help: Capture Window, Open Crash Reports Folder",
              }));
}

TEST_F(WindowTest, OverlaysAndCubeControlsStayClearOfTheCube) {
    auto* hint = window->findChild<QLabel*>(QStringLiteral("hint"));
    ASSERT_NE(hint, nullptr);
    EXPECT_EQ(hint->text(),
              QStringLiteral("Middle-drag pan  ·  Right-drag orbit  ·  Wheel zoom  ·  F fit"));
    auto* hud = window->findChild<QLabel*>(QStringLiteral("hud"));
    ASSERT_NE(hud, nullptr);
    EXPECT_FALSE(hud->isVisible());

    for (const QSize size : {QSize(1200, 800), QSize(700, 500)}) {
        window->resize(size);
        waitUntil([&] { return window->size() == size; }, 2000);
        rendering::Viewport& view = window->viewport();
        const double ratio = view.devicePixelRatioF();
        const int corner = static_cast<int>(view.cubeCornerSize() / ratio);
        const QRect cube(view.width() - corner, 0, corner, corner);
        const QList<QToolButton*> controls =
            view.findChildren<QToolButton*>(QStringLiteral("cubeControl"));
        ASSERT_EQ(controls.size(), 7);
        for (QToolButton* control : controls) {
            EXPECT_FALSE(control->geometry().intersects(cube));
            EXPECT_TRUE(view.rect().contains(control->geometry()))
                << control->property("cubeRole").toString().toStdString() << " " << control->x()
                << "," << control->y() << " in " << view.width() << "x" << view.height();
        }
        window->showToast(QStringLiteral("A short note"));
        EXPECT_FALSE(window->toastLabel().geometry().intersects(cube));
        EXPECT_TRUE(view.rect().contains(hint->geometry()))
            << hint->x() << "," << hint->y() << " " << hint->width() << "x" << hint->height()
            << " in " << view.width() << "x" << view.height();
    }
}

TEST_F(WindowTest, CommandLogToggleShowsItsPanel) {
    QAction* toggle = findAction(*window, QStringLiteral("commandLogToggle"));
    ASSERT_NE(toggle, nullptr);
    EXPECT_EQ(toggle->shortcut(), QKeySequence(QStringLiteral("Ctrl+L")));
    auto* panel = window->findChild<QWidget*>(QStringLiteral("commandLogPanel"));
    ASSERT_NE(panel, nullptr);
    EXPECT_FALSE(panel->isVisible());
    toggle->setChecked(true);
    EXPECT_TRUE(panel->isVisible());
    ASSERT_TRUE(addBox().ok);
    EXPECT_TRUE(window->commandLog().toPlainText().contains(QStringLiteral("create_box(")));
    toggle->setChecked(false);
    EXPECT_FALSE(panel->isVisible());
}

} // namespace
} // namespace cad::ui::testing
