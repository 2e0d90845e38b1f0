// The browser follows the document row by row, its eyes and folder eyes run
// set_visibility (a folder's as one undo step), and its menu, inline rename,
// selection and double-click reach the window.
#include "PanelsFixture.h"

#include "ui/panels/ObjectBrowser.h"
#include "ui/panels/ObjectRows.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace cad::ui::testing {

namespace {

class ObjectBrowserTest : public PanelsFixture {
protected:
    QStringList childTexts(QTreeWidgetItem* parent) const {
        QStringList texts;
        for (int i = 0; i < parent->childCount(); ++i) texts << parent->child(i)->text(0);
        return texts;
    }
    void clickEye(ObjectBrowser& browser, QTreeWidgetItem* item) {
        const QRect rect = browser.visualItemRect(item);
        const int x = browser.header()->sectionViewportPosition(ObjectBrowser::kEyeColumn) + 8;
        QTest::mouseClick(browser.viewport(), Qt::LeftButton, {}, QPoint(x, rect.center().y()));
    }
    static QAction* entry(QMenu* menu, const char* name) {
        return menu ? menu->findChild<QAction*>(QString::fromLatin1(name)) : nullptr;
    }
};

} // namespace

TEST_F(ObjectBrowserTest, RowsFollowAddsRenamesAndRemovesInPlace) {
    ObjectBrowser browser(document, hooks());
    EXPECT_EQ(browser.rootItem()->text(0), "Untitled");
    for (const QString& folder : browserFolders())
        EXPECT_TRUE(browser.folderItem(folder)->isHidden()) << folder.toStdString();

    plate();
    box();
    settle();
    QTreeWidgetItem* sketches = browser.folderItem("Sketches");
    QTreeWidgetItem* bodies = browser.folderItem("Bodies");
    EXPECT_FALSE(sketches->isHidden());
    EXPECT_TRUE(browser.folderItem("Planes")->isHidden());
    EXPECT_EQ(childTexts(sketches), QStringList{"Sketch1"});
    EXPECT_EQ(childTexts(bodies), QStringList({"Body1", "Box1"}));
    EXPECT_EQ(childTexts(browser.itemFor("Body1")), QStringList{"Extrude1"});
    EXPECT_EQ(browser.itemFor("Extrude1")->data(0, kIdRole).toString(), "Extrude1");
    EXPECT_TRUE(browser.itemFor("Extrude1")->toolTip(ObjectBrowser::kEyeColumn).isEmpty());

    // A rename rewrites the row it had; nothing else is rebuilt.
    QTreeWidgetItem* boxRow = browser.itemFor("Box1");
    QTreeWidgetItem* bodyRow = browser.itemFor("Body1");
    ok(CommandRecord("rename_object").set("object", "Box1").set("name", "Crate"));
    settle();
    EXPECT_EQ(browser.itemFor("Box1"), boxRow);
    EXPECT_EQ(boxRow->text(0), "Crate");
    EXPECT_EQ(boxRow->toolTip(0), "Box1");
    EXPECT_EQ(browser.itemFor("Body1"), bodyRow);

    ok(CommandRecord("delete_object").set("object", "Body1"));
    settle();
    EXPECT_EQ(browser.itemFor("Body1"), nullptr);
    EXPECT_EQ(childTexts(bodies), QStringList{"Crate"});
    ASSERT_TRUE(stack.undo());
    settle();
    EXPECT_EQ(childTexts(bodies), QStringList({"Body1", "Crate"}));
    EXPECT_EQ(childTexts(browser.itemFor("Body1")), QStringList{"Extrude1"});

    // Opening another project replaces every object; the rows follow.
    Document other;
    document.replaceWith(std::move(other));
    settle();
    EXPECT_TRUE(bodies->isHidden());
    EXPECT_EQ(bodies->childCount(), 0);
}

TEST_F(ObjectBrowserTest, EyesRunSetVisibilityAndAFolderUndoesAsOneStep) {
    for (int i = 0; i < 3; ++i) box();
    ObjectBrowser browser(document, hooks());
    browser.resize(300, 400);
    browser.show();
    QTreeWidgetItem* bodies = browser.folderItem("Bodies");
    EXPECT_EQ(bodies->toolTip(ObjectBrowser::kEyeColumn), "Hide all");

    // One row's eye: one command, and the selection stays as it was.
    browser.setSelectedObjects({"Box1"});
    clickEye(browser, browser.itemFor("Box2"));
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_EQ(ran[0].toCall(), "set_visibility(object=\"Box2\", visible=false)");
    EXPECT_EQ(browser.selectedObjects(), QStringList{"Box1"});
    settle();
    EXPECT_EQ(browser.itemFor("Box2")->toolTip(ObjectBrowser::kEyeColumn), "Show");

    // The folder hides the rest, one command per object it changes, one undo step.
    ran.clear();
    const std::size_t steps = stack.undoCount();
    clickEye(browser, bodies);
    ASSERT_EQ(ran.size(), 2u);
    EXPECT_EQ(ran[0].toCall(), "set_visibility(object=\"Box1\", visible=false)");
    EXPECT_EQ(ran[1].toCall(), "set_visibility(object=\"Box3\", visible=false)");
    EXPECT_EQ(stack.undoCount(), steps + 1);
    settle();
    EXPECT_EQ(bodies->toolTip(ObjectBrowser::kEyeColumn), "Show all");

    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(document.find("Box1")->visible);
    EXPECT_FALSE(document.find("Box2")->visible);
    EXPECT_TRUE(document.find("Box3")->visible);

    // "Show all" once everything is hidden.
    ok(CommandRecord("set_visibility").set("object", "Box1").set("visible", false));
    ok(CommandRecord("set_visibility").set("object", "Box3").set("visible", false));
    ran.clear();
    browser.toggleVisibility(bodies);
    EXPECT_EQ(ran.size(), 3u);
    for (const char* id : {"Box1", "Box2", "Box3"}) EXPECT_TRUE(document.find(id)->visible);
}

TEST_F(ObjectBrowserTest, MenuRenameSelectionAndDoubleClickReachTheWindow) {
    plate();
    box();
    ObjectBrowser browser(document, hooks());
    browser.resize(300, 400);
    browser.show();
    QSignalSpy selections(&browser, &ObjectBrowser::objectsSelected);
    QSignalSpy sketchEdits(&browser, &ObjectBrowser::editSketchRequested);
    QSignalSpy featureEdits(&browser, &ObjectBrowser::editFeatureRequested);

    browser.itemFor("Box1")->setSelected(true);
    browser.itemFor("Sketch1")->setSelected(true);
    ASSERT_FALSE(selections.isEmpty());
    EXPECT_EQ(selections.last().at(0).toStringList(), QStringList({"Sketch1", "Box1"}));

    // Delete takes the whole selection when the row is part of it, else the row.
    std::unique_ptr<QMenu> menu(browser.contextMenuFor(browser.itemFor("Box1")));
    EXPECT_EQ(entry(menu.get(), "editObject"), nullptr); // a box has no form
    entry(menu.get(), "deleteObject")->trigger();
    menu.reset(browser.contextMenuFor(browser.itemFor("Extrude1")));
    entry(menu.get(), "deleteObject")->trigger();
    entry(menu.get(), "editObject")->trigger();
    ASSERT_EQ(deleted.size(), 2u);
    EXPECT_EQ(deleted[0], (std::vector<std::string>{"Sketch1", "Box1"}));
    EXPECT_EQ(deleted[1], std::vector<std::string>{"Extrude1"});
    EXPECT_EQ(featureEdits.size(), 1);
    EXPECT_EQ(browser.contextMenuFor(browser.folderItem("Bodies")), nullptr);

    const QRect sketchRect = browser.visualItemRect(browser.itemFor("Sketch1"));
    // A double-click comes after a click, as from a real mouse.
    QTest::mouseClick(browser.viewport(), Qt::LeftButton, {}, sketchRect.center());
    QTest::mouseDClick(browser.viewport(), Qt::LeftButton, {}, sketchRect.center());
    ASSERT_EQ(sketchEdits.size(), 1);
    EXPECT_EQ(sketchEdits[0].at(0).toString(), "Sketch1");

    // Rename edits in place and commits through rename_object.
    menu.reset(browser.contextMenuFor(browser.itemFor("Box1")));
    entry(menu.get(), "renameObject")->trigger();
    auto* editor = browser.findChild<QLineEdit*>("browserRenameEdit");
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->text(), "Box1");
    editor->setText("Crate");
    QTest::keyClick(editor, Qt::Key_Return);
    settle(); // the editor commits once the key is handled
    ASSERT_FALSE(ran.empty());
    EXPECT_EQ(ran.back().toCall(), "rename_object(object=\"Box1\", name=\"Crate\")");
    settle();
    EXPECT_EQ(browser.itemFor("Box1")->text(0), "Crate");
}

TEST_F(ObjectBrowserTest, MaterialAndAppearanceEntriesOnlyOnBodies) {
    plate();
    box();
    ObjectBrowser browser(document, hooks());
    QSignalSpy materials(&browser, &ObjectBrowser::materialRequested);
    QSignalSpy appearances(&browser, &ObjectBrowser::appearanceRequested);
    for (const char* id : {"Sketch1", "Extrude1"}) {
        std::unique_ptr<QMenu> menu(browser.contextMenuFor(browser.itemFor(id)));
        EXPECT_EQ(entry(menu.get(), "objectMaterial"), nullptr) << id;
        EXPECT_EQ(entry(menu.get(), "objectAppearance"), nullptr) << id;
    }
    std::unique_ptr<QMenu> menu(browser.contextMenuFor(browser.itemFor("Body1")));
    ASSERT_NE(entry(menu.get(), "objectMaterial"), nullptr);
    EXPECT_EQ(entry(menu.get(), "objectMaterial")->text(), "Physical Material...");
    EXPECT_EQ(entry(menu.get(), "objectAppearance")->text(), "Appearance...");
    entry(menu.get(), "objectMaterial")->trigger();
    menu.reset(browser.contextMenuFor(browser.itemFor("Box1")));
    entry(menu.get(), "objectAppearance")->trigger();
    ASSERT_EQ(materials.size(), 1);
    ASSERT_EQ(appearances.size(), 1);
    EXPECT_EQ(materials[0].at(0).toString(), "Body1");
    EXPECT_EQ(appearances[0].at(0).toString(), "Box1");
}

} // namespace cad::ui::testing
