// Tool groups: which buttons show, what the settings remember, the title menu and
// the variant button whose face follows the last variant used.
#include "ui/widgets/ToolGroup.h"
#include "ui/widgets/ToolMenuButton.h"

#include <QAction>
#include <QMenu>
#include <QCoreApplication>
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

TEST_F(ToolGroupTest, PinnedShowsStoredPinsInGroupOrderAndUsedKeepsTheFourNewest) {
    QSettings().setValue("toolbar/test.create/pinned", QStringList{"Delta", "Bravo"});
    auto group = makeGroup();
    EXPECT_FALSE(group->recentMode());
    EXPECT_EQ(keysOf(group->shownActions()), (QStringList{"Bravo", "Delta"}));
    ASSERT_EQ(group->buttons().size(), 2);
    EXPECT_EQ(group->buttons()[0]->defaultAction(), actions[1]);

    for (QAction* action : actions) action->trigger();
    actions[2]->trigger(); // Charlie again moves to the front without a second entry
    const QStringList newest{"Charlie", "Echo", "Delta", "Bravo"};
    EXPECT_EQ(group->usedKeys(), newest);
    EXPECT_EQ(QSettings().value("toolbar/test.create/used").toStringList(), newest);
}

TEST_F(ToolGroupTest, RecentModeShowsUsedNewestFirstElseThePinned) {
    QSettings().setValue("toolbar/test.create/mode", "recent");
    EXPECT_EQ(keysOf(makeGroup()->shownActions()), (QStringList{"Alpha", "Charlie"}));

    QSettings().setValue("toolbar/test.create/used", QStringList{"Echo", "Alpha"});
    auto group = makeGroup();
    EXPECT_TRUE(group->recentMode());
    EXPECT_EQ(keysOf(group->shownActions()), (QStringList{"Echo", "Alpha"}));
    // A trigger rebuilds the row on the next turn of the event loop, not at once.
    actions[3]->trigger();
    EXPECT_EQ(group->buttons().size(), 2);
    nextTurn();
    ASSERT_EQ(group->buttons().size(), 3);
    EXPECT_EQ(group->buttons()[0]->defaultAction(), actions[3]);
}

TEST_F(ToolGroupTest, DefaultPinsAreRestrictedToActionsThatExist) {
    EXPECT_EQ(makeGroup({"Charlie", "Zulu", "Bravo..."})->pinnedKeys(),
              (QStringList{"Charlie", "Bravo"}));
    EXPECT_EQ(makeGroup({"Zulu", "Yankee"})->pinnedKeys(),
              (QStringList{"Alpha", "Bravo", "Charlie", "Delta", "Echo"}));
}

TEST_F(ToolGroupTest, TitleMenuSwitchesModeAndPins) {
    auto group = makeGroup();
    EXPECT_EQ(group->titleButton()->text(), QString::fromUtf8("CREATE ▾"));
    QMenu* menu = group->menu();
    emit menu->aboutToShow();
    const QList<QAction*> entries = menu->actions();
    // The group's tools, a separator, the Toolbar submenu, then the pins.
    EXPECT_EQ(entries.mid(0, 5), actions);
    QMenu* toolbar = entries[6]->menu<QMenu*>();
    ASSERT_NE(toolbar, nullptr);
    ASSERT_EQ(toolbar->actions().size(), 2);
    QAction* showPinned = toolbar->actions()[0];
    QAction* showRecent = toolbar->actions()[1];
    EXPECT_EQ(showRecent->text(), QStringLiteral("Show Last 4 Used"));
    EXPECT_TRUE(showPinned->isChecked());

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
    EXPECT_EQ(button->face(), rectangle);

    centered->trigger();
    EXPECT_EQ(button->face(), centered);
    EXPECT_EQ(button->menu(), &variants);
    EXPECT_EQ(group.usedKeys(), QStringList{"Rectangle"});

    // A rebuilt row keeps the face.
    group.rebuild();
    EXPECT_EQ(qobject_cast<cad::ui::ToolMenuButton*>(group.buttons()[0])->face(), centered);
}

} // namespace
