// The look: style sheet tokens, palette, font choice and the rounded-menu filter.
#include "app/Theme.h"
#include "app/RoundedMenus.h"

#include <QApplication>
#include <QFontDatabase>
#include <QMenu>
#include <QStyle>

#include <gtest/gtest.h>

using namespace cad::ui::theme;

namespace {

int countLines(const QString& text) { return static_cast<int>(text.trimmed().count('\n')) + 1; }

} // namespace

TEST(ThemeStyleSheet, ReplacesEveryTokenWithoutLettingShortTokensEatLongOnes) {
    const QString sheet = themeStyleSheet();
    EXPECT_FALSE(sheet.contains('@')) << sheet.toStdString();
    // "@panel" replaced first would leave "#1e1b18Glass" and "#1e1b182".
    EXPECT_FALSE(sheet.contains("#1e1b18Glass"));
    EXPECT_FALSE(sheet.contains("#1e1b182"));
    EXPECT_FALSE(sheet.contains("#d08045Dim"));
    EXPECT_FALSE(sheet.contains("#d08045Border"));
    EXPECT_EQ(countLines(sheet), 113);
}

TEST(ThemeStyleSheet, WritesRulesWithTheirColours) {
    const QString sheet = themeStyleSheet();
    for (const char* rule : {
             "QWidget { color: #f1eee6; }",
             "#dimensionBar { background: rgba(30,27,24,0.92); border: 1px solid "
             "rgba(208,128,69,0.55); border-radius: 9px; }",
             "QTreeWidget#browserTree::item:selected { background: rgba(208,128,69,0.2); color: "
             "#f1eee6; }",
             "QToolButton:hover { background: #27231f; }",
             "QMenu { background: #1e1b18; border: 1px solid #3a342e; border-radius: 8px; "
             "padding: 5px; }",
             "QToolButton:disabled { color: #766d62; }",
             "#topBar { background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #1a1715, stop:1 "
             "#141210); border-bottom: 1px solid #3a342e; }",
             "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }",
         })
        EXPECT_TRUE(sheet.contains(QString::fromUtf8(rule))) << rule;
}

TEST(ThemeFont, PrefersSegoeVariableThenSegoeThenTheSystemFont) {
    const QString system = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    const struct {
        QStringList installed;
        QString chosen;
    } cases[] = {
        {{"DejaVu Sans", "Segoe UI", "Segoe UI Variable Text"}, "Segoe UI Variable Text"},
        {{"Segoe UI", "Noto Sans"}, "Segoe UI"},
        {{"segoe ui variable text", "SEGOE UI"}, system},
        {{}, system},
    };
    for (const auto& c : cases)
        EXPECT_EQ(themeFontFamily(c.installed), c.chosen) << c.installed.join(',').toStdString();
}

TEST(Theme, AppliesStylePaletteFontAndSheet) {
    auto& application = *qobject_cast<QApplication*>(QCoreApplication::instance());
    applyTheme(application);
    EXPECT_EQ(application.styleSheet(), themeStyleSheet());
    // The sheet wraps the style; without it the style underneath shows.
    application.setStyleSheet(QString());
    EXPECT_EQ(QApplication::style()->name(), "fusion");
    application.setStyleSheet(themeStyleSheet());
    EXPECT_DOUBLE_EQ(QApplication::font().pointSizeF(), 9.5);
    EXPECT_EQ(QApplication::font().family(), themeFontFamily(QFontDatabase::families()));

    const QPalette palette = QApplication::palette();
    EXPECT_EQ(palette.color(QPalette::Active, QPalette::Window).name(), "#141210");
    EXPECT_EQ(palette.color(QPalette::Inactive, QPalette::Highlight).name(), "#d08045");
    EXPECT_EQ(palette.color(QPalette::Active, QPalette::BrightText), QColor(Qt::white));
    EXPECT_EQ(palette.color(QPalette::Active, QPalette::PlaceholderText).name(), "#a0978c");
    EXPECT_EQ(palette.color(QPalette::Active, QPalette::Text).name(), "#f1eee6");
    for (const auto role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
        EXPECT_EQ(palette.color(QPalette::Disabled, role).name(), "#766d62");
    EXPECT_EQ(palette.color(QPalette::Disabled, QPalette::Base).name(), "#1e1b18");
}

TEST(Theme, MenusBecomeFramelessAndTranslucentOnceWithOneFilter) {
    auto& application = *qobject_cast<QApplication*>(QCoreApplication::instance());
    applyTheme(application);
    applyTheme(application);
    int filters = 0;
    for (QObject* child : application.children())
        if (dynamic_cast<RoundedMenus*>(child)) ++filters;
    EXPECT_EQ(filters, 1);

    QMenu menu;
    menu.addAction("Open");
    menu.ensurePolished();
    EXPECT_TRUE(menu.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_TRUE(menu.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(menu.windowFlags().testFlag(Qt::NoDropShadowWindowHint));

    QWidget plain;
    plain.ensurePolished();
    EXPECT_FALSE(plain.testAttribute(Qt::WA_TranslucentBackground));
}
