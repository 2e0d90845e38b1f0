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
    int opened = 0;
    {
        Sidebar sidebar;
        EXPECT_TRUE(sidebar.isExpanded());
        EXPECT_EQ(sidebar.width(), 184);
        QPushButton* docs =
            sidebar.addLinkButton(QStringLiteral("documentation"), QStringLiteral("book"),
                                  QStringLiteral("Documentation"), [&] { ++opened; });
        docs->click();
        EXPECT_EQ(opened, 1);

        sidebar.toggleButton()->click();
        EXPECT_FALSE(sidebar.isExpanded());
        EXPECT_EQ(sidebar.width(), 48);
        EXPECT_EQ(sidebar.toggleButton()->toolTip(), QStringLiteral("Expand Sidebar"));
        EXPECT_TRUE(docs->text().isEmpty());
        EXPECT_FALSE(docs->icon().isNull());
    }
    Sidebar again;
    EXPECT_FALSE(again.isExpanded());
    EXPECT_EQ(again.width(), 48);
    again.setExpanded(true);
    EXPECT_EQ(again.width(), 184);
    EXPECT_EQ(QSettings().value("ui/sidebarExpanded").toBool(), true);

    // The version button: setting it again replaces the handler, not adds one.
    int checks = 0;
    QPushButton* version = again.setVersionButton(QStringLiteral("v0.9.5"), [&] { ++checks; });
    again.setVersionButton(QStringLiteral("v1.0"), [&] { checks += 10; });
    version->click();
    EXPECT_EQ(version->text(), QStringLiteral("v1.0"));
    EXPECT_EQ(checks, 10);
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
    EXPECT_TRUE(designButton->isChecked());
    EXPECT_FALSE(camButton->isChecked());

    camButton->click();
    camButton->click(); // already the workspace: stays on, runs nothing
    EXPECT_EQ(camRuns, 1);
    EXPECT_TRUE(cam->isChecked());
    EXPECT_TRUE(camButton->isChecked());
    EXPECT_FALSE(designButton->isChecked());

    design->trigger(); // the window's shortcut
    EXPECT_TRUE(designButton->isChecked());
    EXPECT_FALSE(camButton->isChecked());
}

TEST_F(PanelsTest, OverlayPanelFoldsItsContent) {
    auto* content = new QLabel(QStringLiteral("rows"));
    OverlayPanel panel(QStringLiteral("terminal"), QStringLiteral("Command Log"), content);
    panel.show();
    int changes = 0;
    QObject::connect(&panel, &OverlayPanel::collapsedChanged, [&] { ++changes; });
    panel.collapseButton()->click();
    EXPECT_TRUE(panel.isCollapsed());
    EXPECT_FALSE(content->isVisible());
    panel.collapseButton()->click();
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
