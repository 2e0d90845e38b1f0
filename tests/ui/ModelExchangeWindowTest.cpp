// 3D models through the window: Export STEP/STL from the File menu and the browser,
// Import 3D Model from the menu and by dropping a file, and what a bad file does.
#include "tests/ui/WindowFixture.h"

#include "ui/panels/ObjectBrowser.h"
#include "ui/presentation/DocumentPresenter.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>

namespace cad::ui::testing {
namespace {

class ModelExchangeTest : public WindowTest {
protected:
    QString path(const QString& name) const { return folder.path() + "/" + name; }
    QString toast() { return window->toastLabel().text(); }
    std::vector<std::string> bodyLabels() {
        std::vector<std::string> labels;
        for (const auto& object : window->document().objects())
            if (dynamic_cast<const GeometryObject*>(object.get()))
                labels.push_back(object->displayName());
        return labels;
    }
    QTemporaryDir folder;
};

TEST_F(ModelExchangeTest, ExportedStepComesBackFromTheMenuWithItsBodies) {
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(addBox(40).ok);
    // Export STEP names the file "Model" and says how many bodies went.
    prompts.saveAnswer = path("pair"); // no extension: the format's is added
    window->exportModelFromUser(ModelFormat::Step);
    EXPECT_TRUE(prompts.lastProposedName.endsWith("/Model.step"));
    EXPECT_EQ(prompts.lastFilter, QStringLiteral("STEP model (*.step *.stp)"));
    ASSERT_TRUE(QFileInfo::exists(path("pair.step")));
    EXPECT_EQ(toast(), QStringLiteral("Exported pair.step  ·  2 bodies"));
    // The export dialog comes back to the folder it wrote to.
    EXPECT_EQ(QSettings().value("folders/exports").toString(), folder.path());

    window->newDocument();
    prompts.openAnswer = path("pair.step");
    window->importModelFromUser();
    EXPECT_EQ(prompts.lastFilter,
              QStringLiteral("3D models (*.step *.stp *.stl);;STEP (*.step *.stp);;STL (*.stl)"));
    EXPECT_EQ(toast(), QStringLiteral("Imported 2 bodies."));
    EXPECT_EQ(bodyLabels(), (std::vector<std::string>{"Box1", "Box2"}));
    EXPECT_NEAR(bodyBox(window->document(), "Body2").CornerMin().X(), 40, 1e-6);
    EXPECT_FALSE(window->presenter().presentationOf("Body1").IsNull());
    // One undo takes the whole file back out.
    window->commandStack().undo();
    EXPECT_TRUE(bodyLabels().empty());
}

TEST_F(ModelExchangeTest, OneBodyGoesOutFromTheBrowserAsStlAndComesBackInMillimetres) {
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(addBox(40).ok);
    auto* browser = window->findChild<ObjectBrowser*>();
    ASSERT_NE(browser, nullptr);
    // The browser catches up with the document between events.
    ASSERT_TRUE(waitUntil([&] { return browser->itemFor("Box2") != nullptr; }));
    std::unique_ptr<QMenu> menu(browser->contextMenuFor(browser->itemFor("Box2")));
    ASSERT_NE(menu, nullptr);
    auto* exportStl = menu->findChild<QAction*>("exportBodyStl");
    ASSERT_NE(exportStl, nullptr);
    EXPECT_EQ(exportStl->text(), QStringLiteral("Export as STL..."));
    EXPECT_NE(menu->findChild<QAction*>("exportBodyStep"), nullptr);
    prompts.saveAnswer = path("one.stl");
    exportStl->trigger();
    EXPECT_TRUE(prompts.lastProposedName.endsWith("/Box2.stl"));
    EXPECT_EQ(toast(), QStringLiteral("Exported one.stl"));

    // Dropping the mesh on the view brings it in; STL carries no unit.
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path("one.stl"))});
    rendering::Viewport& view = window->viewport();
    const QPoint centre = view.rect().center();
    QDragEnterEvent enter(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent dropped(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &dropped);
    EXPECT_EQ(toast(), QStringLiteral("Imported 1 body.  ·  read as millimeters"));
    const Bnd_Box box = bodyBox(window->document(), "Body1");
    ASSERT_FALSE(box.IsVoid());
    EXPECT_NEAR(box.CornerMin().X(), 40, 1e-3);
    EXPECT_NEAR(box.CornerMax().X(), 50, 1e-3);
}

TEST_F(ModelExchangeTest, BadFilesAndNothingToExportChangeNothing) {
    // Nothing visible: the export says so and asks for no file.
    window->exportModelFromUser(ModelFormat::Stl);
    EXPECT_EQ(prompts.asked.value(0),
              QStringLiteral("Export STL|There are no visible bodies to export."));

    ASSERT_TRUE(addBox().ok);
    QFile text(path("notes.step"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("these are notes, not a model\n");
    text.close();
    const std::size_t objects = window->document().objects().size();
    EXPECT_FALSE(window->importModel(path("notes.step")));
    EXPECT_TRUE(toast().contains("as STEP")) << toast().toStdString();
    EXPECT_EQ(window->document().objects().size(), objects);
    window->commandStack().undo();
    EXPECT_EQ(window->document().find("Box1"), nullptr); // the undo was the box's

    // A folder that isn't there: the old state stays and the user is told.
    ASSERT_TRUE(addBox().ok);
    prompts.saveAnswer = path("missing/folder/part.step");
    window->exportModelFromUser(ModelFormat::Step);
    EXPECT_TRUE(prompts.asked.last().startsWith("Export STEP|Couldn't write"))
        << prompts.asked.last().toStdString();
}

} // namespace
} // namespace cad::ui::testing
