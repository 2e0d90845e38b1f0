// The palette offers the enabled actions, filters them by label (substrings first,
// then scattered letters), and runs the chosen one from the keyboard.
#include "ui/panels/CommandPalette.h"

#include <QAction>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using cad::ui::CommandPalette;
using cad::ui::paletteMatches;

QStringList shown(const CommandPalette& palette) {
    QStringList labels;
    for (int i = 0; i < palette.list()->count(); ++i) labels << palette.list()->item(i)->text();
    return labels;
}

TEST(CommandPalette, MatchesSubstringsFirstThenLettersInOrder) {
    const QStringList labels = {"Save As...", "Export STEP", "Extrude", "Sketch", "Redo"};
    EXPECT_EQ(paletteMatches(labels, "T"), QList<int>({2, 3, 1})); // earlier match first
    EXPECT_EQ(paletteMatches(labels, "SKE"), QList<int>({3}));
    EXPECT_EQ(paletteMatches(labels, "sas"), QList<int>({0}));   // S-a-S
    EXPECT_EQ(paletteMatches(labels, "st"), QList<int>({1, 3})); // "STEP", then S-ke-t-ch
    EXPECT_EQ(paletteMatches(labels, ""), QList<int>({0, 1, 2, 3, 4}));
    EXPECT_TRUE(paletteMatches(labels, "zz").isEmpty());
}

TEST(CommandPalette, FiltersTheEnabledActionsAndRunsTheChosenOne) {
    QAction extrude("&Extrude");
    QAction exportStep("Export STEP...");
    QAction sketch("Sketch");
    QAction undo("Undo");
    exportStep.setEnabled(false);
    int extrudes = 0;
    int sketches = 0;
    QObject::connect(&extrude, &QAction::triggered, [&] { ++extrudes; });
    QObject::connect(&sketch, &QAction::triggered, [&] { ++sketches; });

    CommandPalette palette([&] { return QList<QAction*>{&extrude, &exportStep, &sketch, &undo}; });
    palette.open();
    ASSERT_TRUE(palette.isVisible());
    EXPECT_EQ(palette.searchLine()->placeholderText(), "Search tools and commands");
    EXPECT_EQ(shown(palette), QStringList({"Extrude", "Sketch", "Undo"}));

    QTest::keyClicks(palette.searchLine(), "e");
    EXPECT_EQ(shown(palette), QStringList({"Extrude", "Sketch"}));
    QTest::keyClick(palette.searchLine(), Qt::Key_Down);
    QTest::keyClick(palette.searchLine(), Qt::Key_Return);
    EXPECT_EQ(sketches, 1);
    EXPECT_EQ(extrudes, 0);
    EXPECT_FALSE(palette.isVisible());

    palette.open();
    EXPECT_EQ(palette.searchLine()->text(), "");
    QTest::keyClicks(palette.searchLine(), "xtr");
    QTest::keyClick(palette.searchLine(), Qt::Key_Escape);
    EXPECT_FALSE(palette.isVisible());
    EXPECT_EQ(extrudes, 0);
}

} // namespace
