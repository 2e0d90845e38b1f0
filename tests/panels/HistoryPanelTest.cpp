// The history panel: drops of the marker roll the history back and forward, drops
// of a step move it, the menu suppresses and builds, rows show their state, and the
// panel folds and remembers it.
#include "PanelsFixture.h"

#include "core/DocumentObject.h"
#include "ui/panels/HistoryList.h"
#include "ui/panels/HistoryPanel.h"
#include "ui/panels/ObjectRows.h"

#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QToolButton>

#include <memory>

namespace cad::ui::testing {

namespace {

class HistoryPanelTest : public PanelsFixture {
protected:
    // Sketch1 and Extrude1 (the plate), then Box1: three steps.
    void SetUp() override {
        PanelsFixture::SetUp();
        plate();
        box();
        panel = std::make_unique<HistoryPanel>(document, hooks());
        panel->resize(HistoryPanel::kExpandedWidth, 400);
        panel->show();
    }

    QStringList rows() const {
        QStringList texts;
        for (int i = 0; i < panel->list()->count(); ++i) {
            QListWidgetItem* item = panel->list()->item(i);
            texts << (item == panel->marker() ? QStringLiteral("|") : item->text());
        }
        return texts;
    }
    // Drops `dragged` on the upper half of `onto` (before it), or below the last row.
    void drop(QListWidgetItem* dragged, QListWidgetItem* onto) {
        QListWidget* list = panel->list();
        std::unique_ptr<QMimeData> mime(
            list->model()->mimeData({list->model()->index(list->row(dragged), 0)}));
        const QListWidgetItem* last = list->item(list->count() - 1);
        const QPoint at = onto ? list->visualItemRect(onto).center() - QPoint(0, 2)
                               : list->visualItemRect(last).bottomLeft() + QPoint(4, 20);
        QDragEnterEvent enter(at, Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list->viewport(), &enter);
        ASSERT_TRUE(enter.isAccepted());
        QDropEvent event(at, Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list->viewport(), &event);
        settle();
    }
    void trigger(QListWidgetItem* item, const char* name) {
        std::unique_ptr<QMenu> menu(panel->contextMenuFor(item));
        ASSERT_NE(menu, nullptr);
        QAction* action = menu->findChild<QAction*>(QString::fromLatin1(name));
        ASSERT_NE(action, nullptr) << name;
        action->trigger();
        settle();
    }

    std::unique_ptr<HistoryPanel> panel;
};

} // namespace

TEST_F(HistoryPanelTest, MarkerDroppedAtTheTopRollsEverythingBackAndBuildAllRestores) {
    EXPECT_EQ(rows(), QStringList({"Sketch1", "Extrude1", "Box1", "|"}));
    EXPECT_EQ(panel->marker()->toolTip(), "Drag to roll the history back or forward");

    drop(panel->marker(), panel->itemFor("Sketch1"));
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_EQ(ran[0].toCall(), "roll_back(to=\"Sketch1\")");
    EXPECT_EQ(document.rollback(), "Sketch1");
    EXPECT_EQ(rows(), QStringList({"|", "Sketch1", "Extrude1", "Box1"}));
    QListWidgetItem* extrude = panel->itemFor("Extrude1");
    EXPECT_EQ(extrude->toolTip(), "<b>Extrude1</b><br>Rolled back");
    EXPECT_EQ(extrude->data(kStateRole).toInt(), kRolledBack);

    // Build Up to Here keeps the step built: the marker goes after it.
    trigger(panel->itemFor("Sketch1"), "historyBuildTo");
    EXPECT_EQ(document.rollback(), "Extrude1");
    EXPECT_EQ(rows(), QStringList({"Sketch1", "|", "Extrude1", "Box1"}));
    EXPECT_EQ(panel->itemFor("Sketch1")->toolTip(), "<b>Sketch1</b>");

    trigger(panel->itemFor("Box1"), "historyBuildAll");
    EXPECT_EQ(document.rollback(), "");
    EXPECT_EQ(rows(), QStringList({"Sketch1", "Extrude1", "Box1", "|"}));
    EXPECT_EQ(extrude->data(kStateRole).toInt(), 0);

    // A drop where the marker already is runs nothing.
    ran.clear();
    drop(panel->marker(), nullptr);
    EXPECT_TRUE(ran.empty());
}

TEST_F(HistoryPanelTest, DroppingAStepMovesIt) {
    drop(panel->itemFor("Box1"), panel->itemFor("Sketch1"));
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_EQ(ran[0].toCall(), "move_step(step=\"Box1\", before=\"Sketch1\")");
    EXPECT_EQ(rows(), QStringList({"Box1", "Sketch1", "Extrude1", "|"}));

    drop(panel->itemFor("Box1"), nullptr);
    EXPECT_EQ(ran.back().toCall(), "move_step(step=\"Box1\")");
    EXPECT_EQ(rows(), QStringList({"Sketch1", "Extrude1", "Box1", "|"}));

    // Onto its own place: nothing; a refused move leaves the order alone.
    ran.clear();
    drop(panel->itemFor("Extrude1"), panel->itemFor("Box1"));
    EXPECT_TRUE(ran.empty());
    const std::size_t steps = stack.undoCount();
    drop(panel->itemFor("Extrude1"), panel->itemFor("Sketch1"));
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_EQ(ran[0].toCall(), "move_step(step=\"Extrude1\", before=\"Sketch1\")");
    EXPECT_EQ(stack.undoCount(), steps);
    EXPECT_EQ(rows(), QStringList({"Sketch1", "Extrude1", "Box1", "|"}));
}

TEST_F(HistoryPanelTest, RowsShowSuppressedAndFailingStepsAndThePanelFolds) {
    trigger(panel->itemFor("Extrude1"), "historySuppress");
    EXPECT_EQ(ran.back().toCall(), "suppress_feature(feature=\"Extrude1\", suppressed=true)");
    QListWidgetItem* extrude = panel->itemFor("Extrude1");
    EXPECT_EQ(extrude->toolTip(), "<b>Extrude1</b><br>Suppressed");
    EXPECT_EQ(extrude->data(kStateRole).toInt(), kSuppressed);
    std::unique_ptr<QMenu> menu(panel->contextMenuFor(extrude));
    EXPECT_EQ(menu->findChild<QAction*>("historySuppress")->text(), "Unsuppress");
    menu.reset(panel->contextMenuFor(panel->itemFor("Box1")));
    EXPECT_EQ(menu->findChild<QAction*>("historySuppress"), nullptr); // not a feature
    trigger(extrude, "historyRename");
    const auto* editor = panel->list()->findChild<QLineEdit*>("historyRenameEdit");
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->text(), "Extrude1");
    trigger(extrude, "historyDelete");
    EXPECT_EQ(deleted.back(), std::vector<std::string>{"Extrude1"});

    // A feature that failed in the last rebuild says why, in red.
    auto* feature = dynamic_cast<FeatureObject*>(document.find("Extrude1"));
    feature->error = "The extrusion distance must not be zero.";
    document.notifyChanged(*feature);
    settle();
    EXPECT_EQ(extrude->toolTip(),
              "<b>Extrude1</b><br>Suppressed<br>The extrusion distance must not be zero.");
    EXPECT_TRUE(extrude->data(kStateRole).toInt() & kFailed);

    EXPECT_EQ(panel->toggleButton()->toolTip(), "Collapse History");
    panel->toggleButton()->click();
    EXPECT_FALSE(panel->isExpanded());
    EXPECT_FALSE(panel->list()->isVisible());
    EXPECT_EQ(panel->width(), HistoryPanel::kCollapsedWidth);
    EXPECT_EQ(panel->toggleButton()->toolTip(), "Expand History");
    HistoryPanel again(document, hooks());
    EXPECT_FALSE(again.isExpanded());
}

} // namespace cad::ui::testing
