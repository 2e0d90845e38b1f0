// Tool groups: which buttons show, what the settings remember, the title menu and
// the variant button whose face follows the last variant used.
#include "ui/widgets/ToolGroup.h"
#include "ui/widgets/ToolMenuButton.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSettings>
#include <QToolButton>

#include <gtest/gtest.h>

#include <memory>

namespace {

using cad::ui::actionKey;
using cad::ui::ToolGroup;

class ToolGroupTest : public ::testing::Test {
protected:
    void SetUp() override {
        QSettings().clear();
        for (const char* label : {"&Alpha", "Bravo...", "Charlie", "Delta", "Echo"})
            actions.push_back(new QAction(QString::fromLatin1(label), &owner));
    }
    void TearDown() override { QSettings().clear(); }

    std::unique_ptr<ToolGroup> makeGroup(const QStringList& pinned = {"Alpha", "Charlie"}) {
        return std::make_unique<ToolGroup>(QStringLiteral("test.create"), QStringLiteral("CREATE"),
                                           actions, pinned);
    }
    static QStringList keysOf(const QList<QAction*>& list) {
        QStringList keys;
        for (QAction* action : list) keys << actionKey(action);
        return keys;
    }
    static void nextTurn() { QCoreApplication::processEvents(); }

    QObject owner;
    QList<QAction*> actions;
};

TEST_F(ToolGroupTest, KeysDropAcceleratorsAndEllipses) {
    EXPECT_EQ(actionKey(QStringLiteral("&Open...")), QStringLiteral("Open"));
    EXPECT_EQ(actionKey(QStringLiteral(" Save As\u2026 ")), QStringLiteral("Save As"));
    EXPECT_EQ(actionKey(QStringLiteral("Import 3D Model...")), QStringLiteral("Import 3D Model"));
}

TEST_F(ToolGroupTest, UsedKeepsTheFourNewest) {
    auto group = makeGroup();
    for (QAction* action : actions) action->trigger();
    const QStringList newest{"Echo", "Delta", "Charlie", "Bravo"};
    EXPECT_EQ(group->usedKeys(), newest);
    EXPECT_EQ(QSettings().value("toolbar/test.create/used").toStringList(), newest);

    actions[2]->trigger(); // Charlie again moves to the front without a second entry
    EXPECT_EQ(group->usedKeys(), (QStringList{"Charlie", "Echo", "Delta", "Bravo"}));
}

TEST_F(ToolGroupTest, PinnedModeShowsStoredPinsInGroupOrder) {
    QSettings().setValue("toolbar/test.create/pinned", QStringList{"Delta", "Bravo"});
    auto group = makeGroup();
    EXPECT_FALSE(group->recentMode());
    EXPECT_EQ(keysOf(group->shownActions()), (QStringList{"Bravo", "Delta"}));
    ASSERT_EQ(group->buttons().size(), 2);
    for (QToolButton* button : group->buttons()) {
        EXPECT_TRUE(button->autoRaise());
        EXPECT_EQ(button->iconSize(), QSize(18, 18));
        EXPECT_EQ(button->minimumWidth(), 32);
        EXPECT_EQ(button->maximumWidth(), 32);
    }
    EXPECT_EQ(group->buttons()[0]->defaultAction(), actions[1]);
}

TEST_F(ToolGroupTest, RecentModeShowsUsedNewestFirst) {
    QSettings().setValue("toolbar/test.create/mode", "recent");
    QSettings().setValue("toolbar/test.create/used", QStringList{"Echo", "Alpha"});
    auto group = makeGroup();
    EXPECT_TRUE(group->recentMode());
    EXPECT_EQ(keysOf(group->shownActions()), (QStringList{"Echo", "Alpha"}));

    // A trigger rebuilds the row on the next turn of the event loop, not at once.
    actions[3]->trigger();
    EXPECT_EQ(keysOf(group->shownActions()), (QStringList{"Delta", "Echo", "Alpha"}));
    EXPECT_EQ(group->buttons().size(), 2);
    nextTurn();
    ASSERT_EQ(group->buttons().size(), 3);
    EXPECT_EQ(group->buttons()[0]->defaultAction(), actions[3]);
}

TEST_F(ToolGroupTest, RecentModeWithNothingUsedShowsThePinned) {
    QSettings().setValue("toolbar/test.create/mode", "recent");
    auto group = makeGroup();
    EXPECT_EQ(keysOf(group->shownActions()), (QStringList{"Alpha", "Charlie"}));
}

TEST_F(ToolGroupTest, DefaultPinsAreRestrictedToActionsThatExist) {
    EXPECT_EQ(makeGroup({"Charlie", "Zulu", "Bravo..."})->pinnedKeys(),
              (QStringList{"Charlie", "Bravo"}));
    EXPECT_EQ(makeGroup({"Zulu", "Yankee"})->pinnedKeys(),
              (QStringList{"Alpha", "Bravo", "Charlie", "Delta", "Echo"}));
}

TEST_F(ToolGroupTest, TitleMenuSwitchesModeAndPins) {
    auto group = makeGroup();
    QToolButton* title = group->titleButton();
    EXPECT_EQ(title->objectName(), QStringLiteral("panelLabel"));
    EXPECT_EQ(title->text(), QString::fromUtf8("CREATE ▾"));
    EXPECT_EQ(title->toolTip(), QStringLiteral("All create tools"));

    QMenu* menu = group->menu();
    emit menu->aboutToShow();
    const QList<QAction*> entries = menu->actions();
    for (int i = 0; i < actions.size(); ++i) EXPECT_EQ(entries[i], actions[i]);
    EXPECT_TRUE(entries[5]->isSeparator());
    QMenu* toolbar = entries[6]->menu<QMenu*>();
    ASSERT_NE(toolbar, nullptr);
    EXPECT_EQ(entries[6]->text(), QStringLiteral("Toolbar"));
    ASSERT_EQ(toolbar->actions().size(), 2);
    QAction* showPinned = toolbar->actions()[0];
    QAction* showRecent = toolbar->actions()[1];
    EXPECT_EQ(showPinned->text(), QStringLiteral("Show Pinned Tools"));
    EXPECT_EQ(showRecent->text(), QStringLiteral("Show Last 4 Used"));
    EXPECT_TRUE(showPinned->isChecked());

    EXPECT_EQ(entries[7]->text(), QStringLiteral("Pinned"));
    QAction* pinBravo = entries[9];
    EXPECT_EQ(pinBravo->text(), QStringLiteral("Bravo"));
    EXPECT_FALSE(pinBravo->isChecked());
    pinBravo->trigger();
    EXPECT_EQ(QSettings().value("toolbar/test.create/pinned").toStringList(),
              (QStringList{"Alpha", "Charlie", "Bravo"}));
    nextTurn();
    EXPECT_EQ(group->buttons().size(), 3);

    showRecent->trigger();
    EXPECT_TRUE(group->recentMode());
    EXPECT_EQ(QSettings().value("toolbar/test.create/mode").toString(), QStringLiteral("recent"));
    emit menu->aboutToShow();
    EXPECT_TRUE(showRecent->isChecked());
    EXPECT_FALSE(showPinned->isChecked());
}

TEST_F(ToolGroupTest, VariantButtonShowsTheLastVariantUsed) {
    QMenu variants;
    QAction* rectangle = variants.addAction(QStringLiteral("Rectangle"));
    QAction* centered = variants.addAction(QStringLiteral("Center Rectangle"));
    QAction holder(QStringLiteral("Rectangle"));
    holder.setMenu(&variants);
    QList<QAction*> tools{actions[0], &holder};
    ToolGroup group(QStringLiteral("test.sketch"), QStringLiteral("CREATE"), tools, {"Rectangle"});

    ASSERT_EQ(group.buttons().size(), 1);
    auto* button = qobject_cast<cad::ui::ToolMenuButton*>(group.buttons()[0]);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->objectName(), QStringLiteral("toolMenuButton"));
    EXPECT_EQ(button->face(), rectangle);
    EXPECT_EQ(button->menu(), &variants);
    EXPECT_EQ(button->width(), 32 + cad::ui::ToolMenuButton::kMenuPartWidth);

    centered->trigger();
    EXPECT_EQ(button->face(), centered);
    EXPECT_EQ(button->menu(), &variants);
    EXPECT_EQ(group.usedKeys(), QStringList{"Rectangle"});

    // A rebuilt row keeps the face.
    group.rebuild();
    auto* rebuilt = qobject_cast<cad::ui::ToolMenuButton*>(group.buttons()[0]);
    ASSERT_NE(rebuilt, nullptr);
    EXPECT_EQ(rebuilt->face(), centered);
}

} // namespace
