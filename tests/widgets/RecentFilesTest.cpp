// The recent-projects rules and the "Open Recent" menu they fill.
#include "ui/widgets/RecentFiles.h"

#include <QAction>
#include <QDir>
#include <QMenu>

#include <gtest/gtest.h>

namespace {

using cad::ui::fillRecentMenu;
using cad::ui::recentMenuLabel;
using cad::ui::withRecentFile;

QString project(int n) { return QStringLiteral("/work/projects/part%1.kv3").arg(n); }

TEST(RecentFiles, TenNewestFirstWithoutDuplicatesInAnyLetterCase) {
    QStringList list;
    for (int n = 1; n <= 11; ++n) list = withRecentFile(list, project(n));
    ASSERT_EQ(list.size(), 10);
    EXPECT_EQ(list.first(), project(11));
    EXPECT_EQ(list.last(), project(2));

    list = withRecentFile(list, QStringLiteral("/WORK/projects/PART5.kv3"));
    EXPECT_EQ(list.size(), 10);
    EXPECT_EQ(list.first(), QStringLiteral("/WORK/projects/PART5.kv3"));
    EXPECT_FALSE(list.contains(project(5)));

    // Paths are stored absolute.
    EXPECT_EQ(withRecentFile({}, QStringLiteral("sub/../plate.kv3")).first(),
              QDir::current().absoluteFilePath(QStringLiteral("plate.kv3")));
}

TEST(RecentFiles, LabelsCarryAcceleratorsOneToNineAndIndentAfter) {
    const QString path = QStringLiteral("/work/projects/bracket.kv3");
    const QString tail =
        QStringLiteral("bracket.kv3   ") + QDir::toNativeSeparators("/work/projects");
    EXPECT_EQ(recentMenuLabel(1, path), QStringLiteral("&1  ") + tail);
    EXPECT_EQ(recentMenuLabel(9, path), QStringLiteral("&9  ") + tail);
    EXPECT_EQ(recentMenuLabel(10, path), QStringLiteral("    ") + tail);
}

TEST(RecentFiles, MenuEntriesOpenTheirFileAndClearEmpties) {
    QMenu menu;
    fillRecentMenu(
        &menu, {}, [](const QString&) {}, [] {});
    ASSERT_EQ(menu.actions().size(), 1);
    EXPECT_EQ(menu.actions().first()->text(), QStringLiteral("No recent files"));
    EXPECT_FALSE(menu.actions().first()->isEnabled());

    // Filling again leaves nothing of the last filling behind.
    QString opened;
    int cleared = 0;
    fillRecentMenu(
        &menu, {project(1), project(2)}, [&](const QString& path) { opened = path; },
        [&] { ++cleared; });
    const QList<QAction*> entries = menu.actions();
    ASSERT_EQ(entries.size(), 4);
    EXPECT_EQ(entries[0]->text(), recentMenuLabel(1, project(1)));
    EXPECT_TRUE(entries[2]->isSeparator());
    EXPECT_EQ(entries[3]->text(), QStringLiteral("Clear Recent"));
    entries[1]->trigger();
    EXPECT_EQ(opened, project(2));
    entries[3]->trigger();
    EXPECT_EQ(cleared, 1);
}

} // namespace
