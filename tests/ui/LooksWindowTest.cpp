// The looks panel in the window: its actions in the MODIFY group, opening on the
// selection or from the browser's menu, a face clicked in the view, and giving way
// to Esc and to forms.
#include "tests/ui/WindowFixture.h"

#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/LooksPanel.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/presentation/ReferencePicker.h"
#include "ui/widgets/ToolGroup.h"

#include <QAction>
#include <QMenu>

namespace cad::ui::testing {
namespace {

using Targets = std::vector<std::string>;

TEST_F(WindowTest, LooksActionsSitInModifyAndOpenThePanelOnTheSelection) {
    ToolGroup* modify = nullptr;
    for (ToolGroup* group : window->findChildren<ToolGroup*>())
        if (group->key() == QStringLiteral("model.modify")) modify = group;
    ASSERT_NE(modify, nullptr);
    QStringList labels;
    for (QAction* action : modify->allActions()) labels << action->text();
    const auto at = [&](const char* label) { return labels.indexOf(QString::fromLatin1(label)); };
    EXPECT_LT(at("Path Pattern"), at("Appearance"));
    EXPECT_EQ(at("Appearance") + 1, at("Physical Material"));
    EXPECT_LT(at("Physical Material"), at("Delete"));
    EXPECT_LT(at("Delete"), at("Parameters"));
    auto* material = window->findChild<QAction*>(QStringLiteral("physicalMaterial"));
    ASSERT_NE(material, nullptr);
    EXPECT_FALSE(material->icon().isNull());

    ASSERT_TRUE(addBox().ok);
    window->presenter().selectObjects({"Box1"});
    material->trigger();
    LooksPanel* looks = window->looksPanel();
    EXPECT_TRUE(looks->isVisible());
    EXPECT_EQ(looks->mode(), LooksMode::Material);
    EXPECT_EQ(looks->targets(), Targets{"Box1"});
    EXPECT_TRUE(window->picker().isActive());
    window->escape();
    EXPECT_FALSE(looks->isVisible());
    EXPECT_FALSE(window->picker().isActive());

    // From the browser's menu, on that body.
    auto* browser = window->findChild<ObjectBrowser*>();
    ASSERT_TRUE(waitUntil([&] { return browser->itemFor("Box1") != nullptr; }));
    std::unique_ptr<QMenu> menu(browser->contextMenuFor(browser->itemFor("Box1")));
    menu->findChild<QAction*>(QStringLiteral("objectAppearance"))->trigger();
    EXPECT_TRUE(looks->isVisible());
    EXPECT_EQ(looks->mode(), LooksMode::Appearance);
    EXPECT_EQ(looks->targets(), Targets{"Box1"});

    // A form takes the view's clicks: the panel makes way and leaves the picks to it.
    window->findChild<QAction*>(QStringLiteral("edgeFillet"))->trigger();
    EXPECT_TRUE(window->forms().isOpen());
    EXPECT_FALSE(looks->isVisible());
    EXPECT_TRUE(window->picker().isActive());
}

TEST_F(WindowTest, AFaceClickedWhileThePanelShowsIsPaintedAlone) {
    window->findChild<QAction*>(QStringLiteral("showOrigin"))->setChecked(false);
    ASSERT_TRUE(addBox().ok);
    window->findChild<QAction*>(QStringLiteral("appearanceAction"))->trigger();
    LooksPanel* looks = window->looksPanel();
    ASSERT_TRUE(looks->isVisible());
    EXPECT_TRUE(looks->targets().empty());

    rendering::Viewport& view = window->viewport();
    view.setStandardView(V3d_Zpos, false);
    view.fitAll();
    QPoint top;
    // The view picks once it has drawn at its final size.
    ASSERT_TRUE(waitUntil([&] {
        view.repaint();
        int px = 0, py = 0;
        view.view()->Convert(5.0, 5.0, 10.0, px, py);
        top = QPoint(static_cast<int>(px / view.devicePixelRatioF()),
                     static_cast<int>(py / view.devicePixelRatioF()));
        return !window->picker().candidatesAt(top).empty();
    }));
    QTest::mouseClick(&view, Qt::LeftButton, {}, top);
    ASSERT_EQ(looks->targets(), Targets{"Box1/Box1.top"});
    EXPECT_TRUE(looks->applyAppearance(QStringLiteral("paint_red")));
    const auto* box = dynamic_cast<const GeometryObject*>(window->document().find("Box1"));
    EXPECT_EQ(box->faceAppearances,
              (std::map<std::string, std::string>{{"Box1.top", "paint_red"}}));
    EXPECT_EQ(box->appearance, "");
}

} // namespace
} // namespace cad::ui::testing
