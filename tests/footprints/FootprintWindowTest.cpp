// Footprints in the window: Insert Footprint and Save as Footprint sit in the sketch
// CREATE group and work only while a sketch is edited; saving asks a name, the panel
// places into the edited sketch as one undo step, and a click in the view places too.
#include "tests/support/TempFolder.h"
#include "tests/ui/WindowFixture.h"

#include "sketch/SketchObject.h"
#include "sketch/footprints/FootprintLibrary.h"
#include "ui/panels/FootprintPanel.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/sketch/SketchSession.h"
#include "ui/widgets/ToolGroup.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>

namespace cad::ui::testing {
namespace {

class FootprintWindowTest : public WindowTest {
protected:
    void SetUp() override {
        qputenv("KORVEL_DATA_DIR", QByteArray::fromStdString(data.path().string()));
        WindowTest::SetUp();
    }
    void TearDown() override {
        WindowTest::TearDown();
        qunsetenv("KORVEL_DATA_DIR");
    }
    QAction* action(const char* name) {
        return window->findChild<QAction*>(QString::fromLatin1(name));
    }
    const SketchObject& sketch(const char* id) {
        return *window->document().findAs<SketchObject>(id);
    }

    cad::testing::TempFolder data;
};

TEST_F(FootprintWindowTest, SavesTheEditedSketchAndPlacesFootprintsIntoIt) {
    ToolGroup* create = nullptr;
    for (ToolGroup* group : window->findChildren<ToolGroup*>())
        if (group->key() == QStringLiteral("sketch.create")) create = group;
    ASSERT_NE(create, nullptr);
    QStringList labels;
    for (QAction* a : create->allActions()) labels << a->text();
    EXPECT_EQ(labels.indexOf("Project") + 1, labels.indexOf("Import Drawing"));
    EXPECT_EQ(labels.indexOf("Import Drawing") + 1, labels.indexOf("Insert Footprint"));
    EXPECT_EQ(labels.indexOf("Insert Footprint") + 1, labels.indexOf("Save as Footprint"));
    EXPECT_FALSE(action("insertFootprint")->isEnabled());
    EXPECT_FALSE(action("saveFootprint")->isEnabled());

    ASSERT_TRUE(window->runCommand(CommandRecord("create_sketch").set("plane", "XY")).ok);
    ASSERT_TRUE(window
                    ->runCommand(CommandRecord("add_circle")
                                     .set("sketch", "Sketch1")
                                     .set("cx", 4.0)
                                     .set("cy", 0.0)
                                     .set("radius", 1.0))
                    .ok);
    window->editSketch("Sketch1");
    EXPECT_TRUE(action("insertFootprint")->isEnabled());
    EXPECT_TRUE(action("saveFootprint")->isEnabled());

    // The name is asked; a cancel saves nothing.
    std::optional<QString> answer;
    window->setFootprintNameAsker([&](QWidget*) { return answer; });
    EXPECT_FALSE(window->saveSketchAsFootprint());
    answer = QStringLiteral("Peg");
    EXPECT_TRUE(window->saveSketchAsFootprint());
    EXPECT_EQ(window->toastLabel().text(), "Saved the footprint 'Peg'.");
    EXPECT_FALSE(window->saveSketchAsFootprint());
    EXPECT_EQ(window->toastLabel().text(), "A footprint named 'Peg' already exists.");
    ASSERT_TRUE(FootprintLibrary().find("Peg"));

    action("insertFootprint")->trigger();
    FootprintPanel* panel = window->footprintPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    ASSERT_EQ(panel->list()->count(), 1);
    const std::size_t steps = window->commandStack().undoCount();
    panel->placeButton()->click();
    EXPECT_EQ(window->toastLabel().text(),
              "Placed 'Peg' in Sketch1; its reference point is Point1.");
    EXPECT_EQ(window->commandStack().undoCount(), steps + 1);
    EXPECT_EQ(sketch("Sketch1").entities.size(), 3u);

    // Place by Click: the view's next click goes to the panel, then the session has it back.
    panel->clickButton()->click();
    EXPECT_NE(window->viewport().tool(), &window->sketchSession());
    const QPoint middle(window->viewport().width() / 2, window->viewport().height() / 2);
    QTest::mouseClick(&window->viewport(), Qt::LeftButton, Qt::NoModifier, middle);
    EXPECT_TRUE(waitUntil([&] { return sketch("Sketch1").entities.size() == 5; }));
    EXPECT_FALSE(panel->clickButton()->isChecked());
    EXPECT_EQ(window->viewport().tool(), &window->sketchSession());

    // Finishing the sketch closes the panel and disables the actions.
    window->finishSketch();
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(action("insertFootprint")->isEnabled());

    // A sketch that isn't being edited is saved from its row in the browser.
    auto* browser = window->findChild<ObjectBrowser*>();
    ASSERT_NE(browser, nullptr);
    ASSERT_TRUE(waitUntil([&] { return browser->itemFor("Sketch1") != nullptr; }));
    std::unique_ptr<QMenu> menu(browser->contextMenuFor(browser->itemFor("Sketch1")));
    ASSERT_NE(menu, nullptr);
    auto* save = menu->findChild<QAction*>("saveSketchFootprint");
    ASSERT_NE(save, nullptr);
    EXPECT_EQ(save->text(), QStringLiteral("Save as Footprint..."));
    answer = QStringLiteral("Peg and pads");
    save->trigger();
    EXPECT_EQ(window->toastLabel().text(), "Saved the footprint 'Peg and pads'.");
    const Result<StoredFootprint> saved = FootprintLibrary().find("Peg and pads");
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->footprint.entities.size(), 5u); // the circle and both placed copies
}

} // namespace
} // namespace cad::ui::testing
