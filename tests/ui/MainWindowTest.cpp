// The main window after commands and clicks: title, undo and redo, Box placement,
// failures, picking bodies and deleting them, names typed outside commands, units,
// and the overlays around the cube.
#include "tests/ui/WindowFixture.h"

#include "core/units/ExpressionParser.h"
#include "core/units/NameLookup.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/widgets/CommandLog.h"

#include <AIS_InteractiveContext.hxx>
#include <StdSelect_BRepOwner.hxx>

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QToolButton>

namespace cad::ui::testing {
namespace {

QAction* findAction(MainWindow& window, const QString& name) {
    return window.findChild<QAction*>(name);
}

TEST_F(WindowTest, UndoRedoAndTheSaveMarkFollowTheStack) {
    QAction* undo = findAction(*window, QStringLiteral("undo"));
    QAction* redo = findAction(*window, QStringLiteral("redo"));
    auto* saveButton = window->findChild<QToolButton*>(QStringLiteral("saveButton"));
    ASSERT_TRUE(undo && redo && saveButton);
    EXPECT_FALSE(undo->isEnabled());

    findAction(*window, QStringLiteral("box"))->trigger();
    EXPECT_TRUE(saveButton->property("modified").toBool());
    EXPECT_TRUE(undo->toolTip().contains(QStringLiteral("create_box")));
    undo->trigger();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — Untitled"));
    EXPECT_FALSE(saveButton->property("modified").toBool());
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_TRUE(redo->toolTip().contains(QStringLiteral("create_box")));
}

TEST_F(WindowTest, BoxStartsAtTheOriginAndLaterOnesGoBeyondTheLargestX) {
    QAction* box = findAction(*window, QStringLiteral("box"));
    box->trigger();
    const Bnd_Box first = bodyBox(window->document(), "Box1");
    ASSERT_FALSE(first.IsVoid());
    EXPECT_NEAR(first.CornerMin().X(), 0, 1e-6);
    EXPECT_NEAR(first.CornerMax().X(), 100, 1e-6);
    EXPECT_NEAR(first.CornerMax().Y(), 50, 1e-6);
    EXPECT_NEAR(first.CornerMax().Z(), 25, 1e-6);

    // A body placed further out decides where the next one goes, not the newest.
    ASSERT_TRUE(addBox(300).ok);
    ASSERT_TRUE(addBox(-50).ok);
    box->trigger();
    const Bnd_Box next = bodyBox(window->document(), "Box4");
    ASSERT_FALSE(next.IsVoid());
    EXPECT_NEAR(next.CornerMin().X(), 330, 1e-6);
    EXPECT_NEAR(next.CornerMin().Y(), 0, 1e-6);
}

TEST_F(WindowTest, AFailedCommandShowsAToastAndARedLineAndChangesNothing) {
    ASSERT_TRUE(addBox().ok);
    const CommandResult result = window->runCommand(
        CommandRecord("create_box").set("width", 0.0).set("depth", 5.0).set("height", 5.0));
    ASSERT_FALSE(result.ok);
    EXPECT_EQ(window->document().objects().size(), 1u);
    EXPECT_EQ(window->commandStack().undoCount(), 1u);

    QLabel& toast = window->toastLabel();
    EXPECT_TRUE(toast.isVisible());
    EXPECT_EQ(toast.text(), QString::fromStdString(result.message));
    EXPECT_TRUE(window->commandLog().document()->toHtml().contains(QStringLiteral("#e06a6a")));
}

// Bodies in the view, picked with real clicks, looking straight down on them.
class PickTest : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        findAction(*window, QStringLiteral("showOrigin"))->setChecked(false);
    }
    // Where a model point shows in the view, once the view is settled from above.
    QPoint shownAt(double x, double y, double z) {
        rendering::Viewport& view = window->viewport();
        view.setStandardView(V3d_Zpos, false);
        view.fitAll();
        view.repaint();
        int px = 0, py = 0;
        view.view()->Convert(x, y, z, px, py);
        const double ratio = view.devicePixelRatioF();
        return QPoint(static_cast<int>(px / ratio), static_cast<int>(py / ratio));
    }
    const Handle(AIS_InteractiveContext) & context() { return window->viewport().context(); }
    // Clicks there until something is selected; picking works once the view has
    // drawn at its final size.
    bool click(QPoint at) {
        return waitUntil([&] {
            QTest::mouseClick(&window->viewport(), Qt::LeftButton, {}, at);
            return waitUntil([&] { return context()->NbSelected() > 0; }, 2000);
        });
    }
    // A double-click as Qt delivers it: click, press, double-click, release.
    bool doubleClick(QPoint at) {
        QWidget* view = &window->viewport();
        return waitUntil([&] {
            QTest::mouseClick(view, Qt::LeftButton, {}, at);
            QTest::mousePress(view, Qt::LeftButton, {}, at);
            QTest::mouseDClick(view, Qt::LeftButton, {}, at);
            QTest::mouseRelease(view, Qt::LeftButton, {}, at);
            // A loaded machine may take a while; clicking again too soon would select
            // the face again and start over.
            return waitUntil([&] { return !wholeSelection().empty(); }, 2000);
        }, 30000);
    }
    // The object selected as a whole, empty when a face, edge or vertex is selected.
    std::string wholeSelection() {
        if (context()->NbSelected() != 1) return {};
        context()->InitSelected();
        const Handle(SelectMgr_EntityOwner) owner = context()->SelectedOwner();
        const auto shape = Handle(StdSelect_BRepOwner)::DownCast(owner);
        if (shape.IsNull() || shape->ComesFromDecomposition()) return {};
        return window->presenter().objectOf(owner);
    }
    QString logged(const CommandRecord& record) {
        return QStringLiteral("> ") + QString::fromStdString(record.toCall());
    }
};

TEST_F(PickTest, TheBodyFilterPicksWholeBodiesForDeleteAndFacesAreRefused) {
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(addBox(30).ok);
    QAction* bodies = findAction(*window, QStringLiteral("bodiesFilter"));
    QAction* faces = findAction(*window, QStringLiteral("facesFilter"));
    ASSERT_TRUE(bodies && faces);
    EXPECT_FALSE(bodies->isChecked());
    bodies->trigger();
    EXPECT_FALSE(faces->isChecked());
    EXPECT_TRUE(window->presenter().bodiesSelectable());
    EXPECT_FALSE(window->presenter().facesSelectable());

    ASSERT_TRUE(click(shownAt(5, 5, 10)));
    EXPECT_EQ(wholeSelection(), "Box1");
    findAction(*window, QStringLiteral("delete"))->trigger();
    EXPECT_EQ(window->document().find("Box1"), nullptr);
    EXPECT_NE(window->document().find("Box2"), nullptr);
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_TRUE(window->commandLog().toPlainText().contains(
        logged(CommandRecord("delete_object").set("object", "Box1"))));

    // Faces again: a face picked alone can't be deleted.
    faces->trigger();
    EXPECT_FALSE(bodies->isChecked());
    EXPECT_FALSE(window->presenter().bodiesSelectable());
    ASSERT_TRUE(click(shownAt(35, 5, 10)));
    EXPECT_EQ(wholeSelection(), "");
    findAction(*window, QStringLiteral("delete"))->trigger();
    EXPECT_NE(window->document().find("Box2"), nullptr);
    EXPECT_EQ(window->toastLabel().text(),
              QStringLiteral("A face, edge or vertex can't be deleted on its own. To delete the "
                             "body, select it in the browser."));

    // Esc empties the selection; Delete then does nothing.
    findAction(*window, QStringLiteral("clearSelection"))->trigger();
    EXPECT_EQ(context()->NbSelected(), 0);
    findAction(*window, QStringLiteral("delete"))->trigger();
    EXPECT_NE(window->document().find("Box2"), nullptr);
}

TEST_F(PickTest, ADoubleClickedBodyWithUsersAsksBeforeDeleting) {
    ASSERT_TRUE(addBox().ok);
    const CommandResult sketched =
        window->runCommand(CommandRecord("create_sketch").set("on", "Box1/Box1.top"));
    ASSERT_TRUE(sketched.ok) << sketched.message;
    const std::size_t objects = window->document().objects().size();
    const std::size_t steps = window->commandStack().undoCount();

    // A double-click on the top face, with the face filter on, selects the body.
    ASSERT_TRUE(doubleClick(shownAt(5, 5, 10)));
    EXPECT_EQ(wholeSelection(), "Box1");

    // Cancelled: nothing goes, and nothing failed.
    prompts.deleteAll = false;
    findAction(*window, QStringLiteral("delete"))->trigger();
    EXPECT_EQ(prompts.asked,
              QStringList({QStringLiteral("Delete|Box1 is used by Sketch1.\n\nDelete those too?")}));
    EXPECT_EQ(window->document().objects().size(), objects);
    EXPECT_FALSE(window->toastLabel().isVisible());
    EXPECT_EQ(window->commandStack().undoCount(), steps);

    // Delete All: the body and its user go in one step to undo.
    prompts.deleteAll = true;
    findAction(*window, QStringLiteral("delete"))->trigger();
    EXPECT_EQ(window->document().find("Box1"), nullptr);
    EXPECT_EQ(window->document().find("Sketch1"), nullptr);
    EXPECT_TRUE(window->commandLog().toPlainText().contains(logged(
        CommandRecord("delete_object").set("object", "Box1").set("with_dependents", true))));
    EXPECT_EQ(window->commandStack().undoCount(), steps + 1);
    findAction(*window, QStringLiteral("undo"))->trigger();
    EXPECT_EQ(window->document().objects().size(), objects);
    EXPECT_FALSE(window->presenter().presentationOf("Box1").IsNull());
}

TEST_F(WindowTest, ObjectsThatUseEachOtherGoTogetherWithoutAsking) {
    // A sketch and the extrusion that uses it, deleted together.
    ASSERT_TRUE(window->runCommand(CommandRecord("create_sketch").set("plane", "XY")).ok);
    ASSERT_TRUE(window
                    ->runCommand(CommandRecord("add_rectangle")
                                     .set("sketch", "Sketch1")
                                     .set("x1", 0.0)
                                     .set("y1", 0.0)
                                     .set("x2", 40.0)
                                     .set("y2", 30.0))
                    .ok);
    ASSERT_TRUE(
        window->runCommand(CommandRecord("extrude").set("sketch", "Sketch1").set("distance", 10.0))
            .ok);
    window->deleteObjects({"Sketch1", "Body1"});
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_FALSE(window->toastLabel().isVisible()) << window->toastLabel().text().toStdString();
    EXPECT_TRUE(window->document().objects().empty());
}

TEST_F(WindowTest, NamesTypedOutsideACommandResolveInTheWindowsDocument) {
    // What a form's field does with "w + 1": the current document's parameter, and
    // bare numbers in its unit; a New document in between changes nothing.
    ASSERT_TRUE(addBox().ok);
    window->newDocument();
    ASSERT_TRUE(window->runCommand(CommandRecord("set_units").set("length", "in")).ok);
    ASSERT_TRUE(
        window->runCommand(CommandRecord("set_parameter").set("name", "w").set("expression", "2in"))
            .ok);
    EXPECT_EQ(units::currentLengthUnit(), units::Length::Inches);
    const Result<double> typed = units::readLengthText("w + 1");
    ASSERT_TRUE(typed.ok()) << typed.error();
    EXPECT_NEAR(*typed, 76.2, 1e-9);
    // The same text in a command gives the same length.
    ASSERT_TRUE(window
                    ->runCommand(CommandRecord("create_box")
                                     .set("width", "w + 1")
                                     .set("depth", 5.0)
                                     .set("height", 5.0))
                    .ok);
    EXPECT_NEAR(bodyBox(window->document(), "Box1").CornerMax().X(), 76.2, 1e-6);

    window->newDocument();
    EXPECT_FALSE(units::readLengthText("w + 1").ok());
    EXPECT_EQ(units::currentLengthUnit(), window->document().lengthUnit());
}

TEST_F(WindowTest, UnitButtonAndOriginToggle) {
    auto* button = window->findChild<QToolButton*>(QStringLiteral("unitButton"));
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), QStringLiteral("mm"));
    for (QAction* choice : button->menu()->actions())
        if (choice->text() == QStringLiteral("Inches")) choice->trigger();
    EXPECT_EQ(button->text(), QStringLiteral("in"));
    window->commandStack().undo();
    EXPECT_EQ(button->text(), QStringLiteral("mm"));

    // The origin's visibility is remembered for the next session.
    QAction* origin = findAction(*window, QStringLiteral("showOrigin"));
    waitUntil([] { return false; }, 50); // the deferred start-up work
    EXPECT_EQ(window->presenter().originVisible(), origin->isChecked());
    origin->setChecked(!origin->isChecked());
    EXPECT_EQ(window->presenter().originVisible(), origin->isChecked());
    EXPECT_EQ(QSettings().value(QStringLiteral("view/origin")).toBool(), origin->isChecked());
}

TEST_F(WindowTest, OverlaysAndCubeControlsStayClearOfTheCube) {
    auto* hint = window->findChild<QLabel*>(QStringLiteral("hint"));
    ASSERT_NE(hint, nullptr);
    QAction* logToggle = findAction(*window, QStringLiteral("commandLogToggle"));
    auto* logPanel = window->findChild<QWidget*>(QStringLiteral("commandLogPanel"));
    ASSERT_TRUE(logToggle && logPanel);
    EXPECT_FALSE(logPanel->isVisible());
    logToggle->setChecked(true);
    EXPECT_TRUE(logPanel->isVisible());

    for (const QSize size : {QSize(1200, 800), QSize(700, 500)}) {
        window->resize(size);
        waitUntil([&] { return window->size() == size; }, 2000);
        rendering::Viewport& view = window->viewport();
        const int corner = static_cast<int>(view.cubeCornerSize() / view.devicePixelRatioF());
        const QRect cube(view.width() - corner, 0, corner, corner);
        const QList<QToolButton*> controls =
            view.findChildren<QToolButton*>(QStringLiteral("cubeControl"));
        ASSERT_EQ(controls.size(), 7);
        for (QToolButton* control : controls) {
            EXPECT_FALSE(control->geometry().intersects(cube));
            EXPECT_TRUE(view.rect().contains(control->geometry()))
                << control->property("cubeRole").toString().toStdString();
        }
        window->showToast(QStringLiteral("A short note"));
        EXPECT_FALSE(window->toastLabel().geometry().intersects(cube));
        // The hint shows where it fits whole, and only there.
        if (size.width() >= 1200) {
            EXPECT_TRUE(hint->isVisible());
        }
        EXPECT_TRUE(!hint->isVisible() || view.rect().contains(hint->geometry()));
    }
}

} // namespace
} // namespace cad::ui::testing
