// The sidebar, the overlay card and the tool strip's overflow.
#include "ui/widgets/OverlayPanel.h"
#include "ui/widgets/Sidebar.h"
#include "ui/widgets/ToolGroup.h"
#include "ui/widgets/ToolStrip.h"

#include <QAction>
#include <QActionGroup>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QToolButton>

#include <gtest/gtest.h>

namespace {

using cad::ui::OverlayPanel;
using cad::ui::Sidebar;
using cad::ui::ToolGroup;
using cad::ui::ToolStrip;

class PanelsTest : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }
    void TearDown() override { QSettings().clear(); }
};

TEST_F(PanelsTest, SidebarCollapsesToIconsAndRemembers) {
    {
        Sidebar sidebar;
        EXPECT_EQ(sidebar.objectName(), QStringLiteral("sidebar"));
        EXPECT_TRUE(sidebar.isExpanded());
        EXPECT_EQ(sidebar.width(), 184);
        QPushButton* toggle = sidebar.toggleButton();
        EXPECT_EQ(toggle->objectName(), QStringLiteral("sidebarToggle"));
        EXPECT_EQ(toggle->text(), QStringLiteral("Collapse"));
        EXPECT_EQ(toggle->toolTip(), QStringLiteral("Collapse Sidebar"));
        QPushButton* docs =
            sidebar.addLinkButton(QStringLiteral("documentation"), QStringLiteral("book"),
                                  QStringLiteral("Documentation"), [] {});
        EXPECT_EQ(docs->text(), QStringLiteral("Documentation"));

        toggle->click();
        EXPECT_FALSE(sidebar.isExpanded());
        EXPECT_EQ(sidebar.width(), 48);
        EXPECT_TRUE(toggle->text().isEmpty());
        EXPECT_EQ(toggle->toolTip(), QStringLiteral("Expand Sidebar"));
        EXPECT_TRUE(docs->text().isEmpty());
        EXPECT_FALSE(docs->icon().isNull());
        EXPECT_EQ(QSettings().value("ui/sidebarExpanded").toBool(), false);
    }
    Sidebar again;
    EXPECT_FALSE(again.isExpanded());
    EXPECT_EQ(again.width(), 48);
    again.setExpanded(true);
    EXPECT_EQ(again.width(), 184);
    EXPECT_EQ(QSettings().value("ui/sidebarExpanded").toBool(), true);
}

TEST_F(PanelsTest, WorkspaceButtonsFollowTheirActions) {
    QObject owner;
    QActionGroup workspaces(&owner);
    QAction* design = workspaces.addAction(QStringLiteral("Design"));
    QAction* cam = workspaces.addAction(QStringLiteral("CAM (Experimental)"));
    for (QAction* action : {design, cam}) action->setCheckable(true);
    design->setChecked(true);
    int camRuns = 0;
    QObject::connect(cam, &QAction::triggered, [&] { ++camRuns; });

    Sidebar sidebar;
    QPushButton* designButton =
        sidebar.addWorkspaceButton(design, QStringLiteral("designWorkspace"));
    QPushButton* camButton = sidebar.addWorkspaceButton(cam, QStringLiteral("camWorkspace"));
    EXPECT_EQ(camButton->objectName(), QStringLiteral("camWorkspace"));
    EXPECT_EQ(camButton->text(), QStringLiteral("CAM (Experimental)"));
    EXPECT_TRUE(camButton->property("sidebar").toBool());
    EXPECT_TRUE(designButton->isChecked());
    EXPECT_FALSE(camButton->isChecked());

    camButton->click();
    EXPECT_EQ(camRuns, 1);
    EXPECT_TRUE(cam->isChecked());
    EXPECT_TRUE(camButton->isChecked());
    EXPECT_FALSE(designButton->isChecked());
    camButton->click(); // already the workspace: stays on, runs nothing
    EXPECT_EQ(camRuns, 1);
    EXPECT_TRUE(camButton->isChecked());

    design->trigger(); // the window's shortcut
    EXPECT_TRUE(designButton->isChecked());
    EXPECT_FALSE(camButton->isChecked());
}

TEST_F(PanelsTest, SidebarLinksAndVersion) {
    Sidebar sidebar;
    int opened = 0;
    QPushButton* tutorials =
        sidebar.addLinkButton(QStringLiteral("tutorials"), QStringLiteral("tutorial"),
                              QStringLiteral("Tutorials"), [&] { ++opened; });
    tutorials->click();
    EXPECT_EQ(opened, 1);
    EXPECT_TRUE(tutorials->property("sidebar").toBool());

    int checks = 0;
    QPushButton* version = sidebar.setVersionButton(QStringLiteral("v0.9.5"), [&] { ++checks; });
    EXPECT_EQ(version->text(), QStringLiteral("v0.9.5"));
    EXPECT_EQ(version->toolTip(), QStringLiteral("Check for Updates"));
    EXPECT_EQ(version->styleSheet(),
              QStringLiteral("QPushButton { color: #857c71; background: transparent; border: "
                             "none; font-size: 7pt; padding: 2px 0; }QPushButton:hover { color: "
                             "#f1eee6; }"));
    version->click();
    EXPECT_EQ(checks, 1);
    // Setting it again replaces the handler rather than adding a second one.
    sidebar.setVersionButton(QStringLiteral("v1.0"), [&] { checks += 10; });
    version->click();
    EXPECT_EQ(checks, 11);
}

TEST_F(PanelsTest, OverlayPanelFoldsItsContent) {
    auto* content = new QLabel(QStringLiteral("rows"));
    OverlayPanel panel(QStringLiteral("terminal"), QStringLiteral("Command Log"), content);
    panel.show();
    EXPECT_EQ(panel.objectName(), QStringLiteral("overlayPanel"));
    EXPECT_EQ(panel.titleLabel()->objectName(), QStringLiteral("panelTitle"));
    EXPECT_EQ(panel.titleLabel()->text(), QStringLiteral("Command Log"));
    EXPECT_EQ(content->parentWidget(), &panel);
    QToolButton* collapse = panel.collapseButton();
    EXPECT_EQ(collapse->toolTip(), QStringLiteral("Collapse"));
    EXPECT_TRUE(content->isVisible());

    int changes = 0;
    QObject::connect(&panel, &OverlayPanel::collapsedChanged, [&] { ++changes; });
    collapse->click();
    EXPECT_TRUE(panel.isCollapsed());
    EXPECT_FALSE(content->isVisible());
    collapse->click();
    EXPECT_FALSE(panel.isCollapsed());
    EXPECT_TRUE(content->isVisible());
    EXPECT_EQ(changes, 2);
}

TEST_F(PanelsTest, StripSendsGroupsThatDoNotFitToOverflow) {
    QObject owner;
    ToolStrip strip(QStringLiteral("modelingTools"));
    const char* keys[] = {"s.create", "s.modify", "s.inspect"};
    for (const char* key : keys) {
        QList<QAction*> tools;
        for (int i = 0; i < 4; ++i)
            tools << new QAction(QStringLiteral("%1 %2").arg(QLatin1String(key)).arg(i), &owner);
        strip.addGroup(new ToolGroup(QString::fromLatin1(key), QStringLiteral("GROUP"), tools, {}));
    }
    EXPECT_EQ(strip.objectName(), QStringLiteral("modelingTools"));
    EXPECT_EQ(strip.overflowButton()->objectName(), QStringLiteral("overflowButton"));
    EXPECT_EQ(strip.overflowButton()->toolTip(), QStringLiteral("More tools"));

    strip.resize(strip.sizeHint().width() + 50, 60);
    strip.show();
    EXPECT_TRUE(strip.overflowGroups().isEmpty());
    EXPECT_FALSE(strip.overflowButton()->isVisible());

    // Room for about one and a half groups: the last two go to the overflow menu.
    strip.resize(strip.groups()[0]->sizeHint().width() * 3 / 2 + 40, 60);
    ASSERT_EQ(strip.overflowGroups().size(), 2);
    EXPECT_EQ(strip.overflowGroups()[0]->key(), QStringLiteral("s.modify"));
    EXPECT_TRUE(strip.overflowButton()->isVisible());
    EXPECT_TRUE(strip.groups()[0]->isVisible());

    QMenu* more = strip.overflowButton()->menu();
    emit more->aboutToShow();
    QStringList texts;
    for (QAction* entry : more->actions()) texts << entry->text();
    EXPECT_TRUE(texts.contains(QStringLiteral("s.inspect 3")));
    EXPECT_FALSE(texts.contains(QStringLiteral("s.create 0")));

    strip.resize(strip.sizeHint().width() + 50, 60);
    EXPECT_TRUE(strip.overflowGroups().isEmpty());
    EXPECT_FALSE(strip.overflowButton()->isVisible());
}

} // namespace
