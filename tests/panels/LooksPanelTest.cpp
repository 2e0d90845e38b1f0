// The looks panel lists the tables, paints and gives materials through the commands
// (one undo step each), takes face picks, shows mass and failures, and follows undo.
#include "PanelsFixture.h"

#include "core/GeometryObject.h"
#include "geometry/materials/MaterialTables.h"
#include "ui/panels/LooksPanel.h"

#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

namespace cad::ui::testing {

namespace {

class LooksPanelTest : public PanelsFixture {
protected:
    LooksPanel& panel() {
        if (!panel_) {
            panel_ = std::make_unique<LooksPanel>(document, [this](const CommandRecord& record) {
                ran.push_back(record);
                return stack.execute(record);
            });
            panel_->resize(300, 540);
        }
        return *panel_;
    }
    // The ids of the rows that stand for a choice, top to bottom ("" for None).
    static QStringList ids(QTreeWidget* list) {
        QStringList found;
        for (QTreeWidgetItemIterator it(list); *it; ++it)
            if (const QVariant id = (*it)->data(0, LooksPanel::kIdRole); id.isValid())
                found << id.toString();
        return found;
    }
    static QTreeWidgetItem* row(QTreeWidget* list, const QString& id) {
        for (QTreeWidgetItemIterator it(list); *it; ++it)
            if ((*it)->data(0, LooksPanel::kIdRole).toString() == id) return *it;
        return nullptr;
    }
    // Clicks the row as a person does.
    static void choose(QTreeWidget* list, const QString& id) {
        QTreeWidgetItem* item = row(list, id);
        ASSERT_NE(item, nullptr) << id.toStdString();
        list->scrollToItem(item);
        const QPoint centre = list->visualItemRect(item).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, centre);
    }
    const GeometryObject& body(const char* id) {
        return *dynamic_cast<const GeometryObject*>(document.find(id));
    }
    std::string face(const char* id, std::size_t index) {
        return std::string(id) + "/" + body(id).shape.index().faceNames.at(index);
    }

    std::unique_ptr<LooksPanel> panel_;
};

} // namespace

TEST_F(LooksPanelTest, ListsEveryPresetAndMaterialInTableOrderUnderTheirCategories) {
    const auto text = [](std::string_view id) {
        return QString::fromUtf8(id.data(), static_cast<qsizetype>(id.size()));
    };
    QStringList presets{""}, materialIds{""};
    for (const AppearancePreset& preset : appearancePresets()) presets << text(preset.id);
    for (const Material& material : materials()) materialIds << text(material.id);
    EXPECT_EQ(ids(panel().appearanceList()), presets);
    EXPECT_EQ(ids(panel().materialList()), materialIds);

    // Headings in table order, each preset under its own, with a swatch and its finish.
    QStringList headings;
    for (int i = 0; i < panel().appearanceList()->topLevelItemCount(); ++i)
        headings << panel().appearanceList()->topLevelItem(i)->text(0);
    EXPECT_EQ(headings, QStringList({"None", "Metal", "Anodized", "Paint", "Plastic", "Clear",
                                     "Wood", "Other"}));
    QTreeWidgetItem* glass = row(panel().appearanceList(), "glass_clear");
    EXPECT_EQ(glass->parent()->text(0), "Clear");
    EXPECT_EQ(glass->text(0), "Glass, Clear");
    EXPECT_FALSE(glass->icon(0).isNull());
    EXPECT_TRUE(glass->toolTip(0).contains("glass finish")) << glass->toolTip(0).toStdString();
    EXPECT_TRUE(glass->toolTip(0).contains("25% opaque"));
    QTreeWidgetItem* steel = row(panel().materialList(), "steel_1045");
    EXPECT_EQ(steel->parent()->text(0), "Metal");
    EXPECT_EQ(steel->text(1), QStringLiteral("7870 kg/m³"));
}

TEST_F(LooksPanelTest, PresetOnABodyIsOneUndoStepAndThePanelFollowsUndo) {
    box();
    panel().open(LooksMode::Appearance, {"Box1", "Sketch9"});
    EXPECT_EQ(panel().targets(), std::vector<std::string>{"Box1"});
    EXPECT_EQ(panel().title(), "Appearance");
    const std::uint64_t before = stack.position();

    choose(panel().appearanceList(), "anodized_red");
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_EQ(ran[0].toCall(), "set_appearance(targets=\"Box1\", appearance=\"anodized_red\")");
    EXPECT_EQ(body("Box1").appearance, "anodized_red");
    EXPECT_EQ(stack.position(), before + 1);
    EXPECT_FALSE(panel().messageIsError());
    EXPECT_EQ(panel().summary(), "Box1: Anodized Red");
    EXPECT_EQ(panel().appearanceList()->currentItem(),
              row(panel().appearanceList(), "anodized_red"));

    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(stack.position(), before);
    EXPECT_EQ(body("Box1").appearance, "");
    settle();
    EXPECT_EQ(panel().summary(), "Box1: default look");
    EXPECT_EQ(panel().appearanceList()->currentItem(), row(panel().appearanceList(), ""));

    // A deleted body leaves the targets; the prompt asks for new ones and nothing runs.
    ok(CommandRecord("delete_object").set("object", "Box1"));
    settle();
    EXPECT_TRUE(panel().targets().empty());
    EXPECT_TRUE(panel().targetText().startsWith("Pick faces"));
    ran.clear();
    choose(panel().appearanceList(), "paint_red");
    EXPECT_TRUE(ran.empty());
    EXPECT_TRUE(panel().messageIsError());
}

TEST_F(LooksPanelTest, FacesArePaintedByNameAndPicksToggle) {
    box();
    const std::string top = face("Box1", 0), side = face("Box1", 1);
    panel().open(LooksMode::Appearance, {top});
    panel().picked({side});
    EXPECT_EQ(panel().targets(), (std::vector<std::string>{top, side}));
    panel().picked({side}); // a second click takes it back
    EXPECT_EQ(panel().targets(), std::vector<std::string>{top});

    // A custom colour with the chosen finish, on the face alone.
    QColor offered;
    panel().setColorChooser([&](const QColor& initial) -> std::optional<QColor> {
        offered = initial;
        return QColor(0x3a, 0x7b, 0xd5);
    });
    panel().finishChoice()->setCurrentText("glossy");
    QTest::mouseClick(panel().customButton(), Qt::LeftButton);
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_EQ(ran[0].toCall(),
              "set_appearance(targets=\"" + top + "\", appearance=\"#3a7bd5/glossy\")");
    EXPECT_EQ(body("Box1").faceAppearances.at(top.substr(5)), "#3a7bd5/glossy");
    EXPECT_EQ(body("Box1").appearance, "");
    EXPECT_TRUE(panel().summary().endsWith("Custom #3a7bd5/glossy"));
    // A cancelled dialog runs nothing; None takes the face's colour off.
    panel().setColorChooser([](const QColor&) { return std::optional<QColor>(); });
    EXPECT_FALSE(panel().chooseCustomColor());
    choose(panel().appearanceList(), "");
    EXPECT_EQ(ran.size(), 2u);
    EXPECT_TRUE(body("Box1").faceAppearances.empty());

    // In material mode a face stands for its body.
    panel().open(LooksMode::Material, {top});
    EXPECT_EQ(panel().targetText(), "Box1");
    choose(panel().materialList(), "pla");
    EXPECT_EQ(ran.back().toCall(), "set_material(objects=\"Box1\", material=\"pla\")");
}

TEST_F(LooksPanelTest, MaterialModeShowsTheMassAndNoneTakesTheMaterialOff) {
    ok(CommandRecord("create_box").set("width", 10).set("depth", 20).set("height", 30));
    panel().open(LooksMode::Material, {"Box1"});
    EXPECT_EQ(panel().title(), "Physical Material");
    EXPECT_EQ(panel().summary(), "Box1: no physical material");
    choose(panel().materialList(), "aluminum_6061");
    EXPECT_EQ(body("Box1").material, "aluminum_6061");
    // 6000 mm³ of 2700 kg/m³.
    EXPECT_EQ(panel().summary(), QStringLiteral("Box1: Aluminum 6061-T6 · Mass 0.0162 kg"));
    EXPECT_EQ(panel().message(), "Made of Aluminum 6061-T6.");
    choose(panel().materialList(), "steel_1045");
    EXPECT_TRUE(panel().summary().endsWith("Mass 0.0472 kg")) << panel().summary().toStdString();
    choose(panel().materialList(), "");
    EXPECT_EQ(body("Box1").material, "");
    EXPECT_EQ(panel().summary(), "Box1: no physical material");
}

TEST_F(LooksPanelTest, AFailureShowsItsSentenceAndChangesNothing) {
    box();
    panel().open(LooksMode::Appearance, {"Box1/Box1.nowhere"});
    const std::uint64_t before = stack.position();
    choose(panel().appearanceList(), "gold");
    EXPECT_TRUE(panel().messageIsError());
    EXPECT_EQ(panel().message(),
              "'Box1.nowhere' is not a face of Box1 (get_body lists its faces).");
    EXPECT_EQ(stack.position(), before);
    EXPECT_TRUE(body("Box1").faceAppearances.empty());
}

TEST_F(LooksPanelTest, EscapeAndTheCloseButtonCloseIt) {
    box();
    panel().open(LooksMode::Appearance, {"Box1"});
    QSignalSpy closed(&panel(), &LooksPanel::closed);
    QTest::keyClick(&panel(), Qt::Key_Escape);
    EXPECT_FALSE(panel().isVisible());
    panel().open(LooksMode::Material, {"Box1"});
    QTest::mouseClick(panel().closeButton(), Qt::LeftButton);
    EXPECT_FALSE(panel().isVisible());
    EXPECT_EQ(closed.size(), 2);
}

} // namespace cad::ui::testing
