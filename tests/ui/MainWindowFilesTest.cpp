// The main window's files: save as and open, their failures, unsaved changes on
// close and new, recent projects, drops and captures.
#include "tests/ui/WindowFixture.h"

#include "ui/DataPaths.h"
#include "ui/presentation/DocumentPresenter.h"

#include <QAction>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMenu>
#include <QMimeData>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

namespace cad::ui::testing {
namespace {

class FilesTest : public WindowTest {
protected:
    QString path(const QString& name) const { return folder.path() + "/" + name; }
    void write(const QString& name, const QByteArray& bytes) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QTemporaryDir folder;
};

TEST_F(FilesTest, SaveAsNamesTheWindowAndOpenBringsTheBodiesBack) {
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(addBox(40).ok);
    prompts.saveAnswer = path("bracket");
    ASSERT_TRUE(window->saveAs());
    EXPECT_EQ(prompts.lastProposedName,
              QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                  "/Untitled.kv3");
    EXPECT_EQ(prompts.lastFilter, QStringLiteral("Korvel Studio project (*.kv3)"));
    EXPECT_TRUE(QFileInfo::exists(path("bracket.kv3")));
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — bracket"));
    EXPECT_FALSE(window->isModified());

    // Cancelling the dialog, or a folder that isn't there, saves nothing.
    prompts.saveAnswer.clear();
    EXPECT_FALSE(window->saveAs());
    prompts.saveAnswer = path("missing/folder/part");
    ASSERT_TRUE(addBox(80).ok);
    EXPECT_FALSE(window->saveAs());
    EXPECT_TRUE(prompts.asked.last().startsWith(QStringLiteral("Save Project|")));
    EXPECT_EQ(window->documentPath(), path("bracket.kv3"));
    EXPECT_TRUE(window->isModified());

    window->newDocument();
    EXPECT_TRUE(window->document().objects().empty());
    const Result<void> opened = window->openProject(path("bracket.kv3"));
    ASSERT_TRUE(opened.ok()) << opened.error();
    EXPECT_FALSE(window->presenter().presentationOf("Box2").IsNull());
    EXPECT_NEAR(bodyBox(window->document(), "Box2").CornerMin().X(), 40, 1e-6);
    EXPECT_EQ(window->document().find("Box3"), nullptr);
    EXPECT_FALSE(window->isModified());
    EXPECT_FALSE(window->commandStack().canUndo());
}

TEST_F(FilesTest, ABadFileIsRefusedAndTheDocumentStays) {
    ASSERT_TRUE(addBox().ok);
    write("bad.kv3", "not a zip at all");
    prompts.openAnswer = path("bad.kv3");
    window->openFromUser();
    EXPECT_TRUE(prompts.asked.last().startsWith("Open Project|" + path("bad.kv3") + ": "))
        << prompts.asked.join('\n').toStdString();
    EXPECT_EQ(prompts.lastFilter, QStringLiteral("Korvel Studio project (*.kv3 *.osv)"));
    EXPECT_NE(window->document().find("Box1"), nullptr);
    EXPECT_TRUE(window->isModified());
}

TEST_F(FilesTest, UnsavedChangesAskOnCloseAndNew) {
    ASSERT_TRUE(window->saveProject(path("kept.kv3")).ok());
    ASSERT_TRUE(addBox().ok);
    prompts.saveChoice = WindowPrompt::SaveChoice::Cancel;
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(prompts.asked.value(0), QStringLiteral("Unsaved changes|Save changes to kept.kv3?"));
    window->newFromUser();
    EXPECT_NE(window->document().find("Box1"), nullptr);

    // Save from the question writes the file; Discard then closes.
    prompts.saveChoice = WindowPrompt::SaveChoice::Save;
    EXPECT_TRUE(window->maybeSave());
    EXPECT_FALSE(window->isModified());
    ASSERT_TRUE(addBox(20).ok);
    prompts.saveChoice = WindowPrompt::SaveChoice::Discard;
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(appSettings()->value(QStringLiteral("window/geometry")).toByteArray().isEmpty());
    ASSERT_TRUE(window->openProject(path("kept.kv3")).ok());
    EXPECT_NE(window->document().find("Box1"), nullptr);
    EXPECT_EQ(window->document().find("Box2"), nullptr);
}

TEST_F(FilesTest, RecentProjectsOpenFromTheMenuAndVanishedOnesLeaveIt) {
    ASSERT_TRUE(window->saveProject(path("gone.kv3")).ok());
    ASSERT_TRUE(window->saveProject(path("here.kv3")).ok());
    ASSERT_TRUE(QFile::remove(path("gone.kv3")));
    auto* menu = window->findChild<QMenu*>(QStringLiteral("recentMenu"));
    ASSERT_NE(menu, nullptr);
    Q_EMIT menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 4); // here, gone, separator, Clear Recent

    menu->actions()[1]->trigger();
    EXPECT_EQ(prompts.asked.last(),
              QStringLiteral("Open Recent|%1 is no longer there, so it was taken off the list.")
                  .arg(QDir::toNativeSeparators(path("gone.kv3"))));
    EXPECT_EQ(window->recentFiles(), QStringList({path("here.kv3")}));

    // Opening a listed file moves it to the top without a second entry.
    ASSERT_TRUE(window->saveProject(path("other.kv3")).ok());
    window->newDocument();
    window->openRecent(path("here.kv3"));
    EXPECT_EQ(window->documentPath(), path("here.kv3"));
    EXPECT_EQ(window->recentFiles(), QStringList({path("here.kv3"), path("other.kv3")}));
}

TEST_F(FilesTest, DroppingOneProjectOnTheViewOpensIt) {
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(window->saveProject(path("dropped.kv3")).ok());
    window->newDocument();
    ASSERT_TRUE(addBox(5).ok); // unsaved: the drop asks first
    prompts.saveChoice = WindowPrompt::SaveChoice::Discard;
    write("notes.txt", {});

    rendering::Viewport& view = window->viewport();
    const QPoint centre = view.rect().center();
    const auto drop = [&](const QStringList& names) {
        QList<QUrl> urls;
        for (const QString& name : names) urls.append(QUrl::fromLocalFile(path(name)));
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &enter);
        QDropEvent dropped(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &dropped);
        return enter.isAccepted();
    };
    // Two files, or a file of another kind, are not taken.
    EXPECT_FALSE(drop({"notes.txt"}));
    EXPECT_FALSE(drop({"dropped.kv3", "dropped.kv3"}));
    EXPECT_TRUE(window->documentPath().isEmpty());

    EXPECT_TRUE(drop({"dropped.kv3"}));
    EXPECT_EQ(prompts.asked.value(0), QStringLiteral("Unsaved changes|Save changes to Untitled?"));
    EXPECT_EQ(window->documentPath(), path("dropped.kv3"));
    EXPECT_NEAR(bodyBox(window->document(), "Box1").CornerMin().X(), 0, 1e-6);
}

TEST_F(FilesTest, CaptureWindowWritesAPictureOfTheWholeWindow) {
    qputenv("KORVEL_DATA_DIR", folder.path().toUtf8());
    ASSERT_TRUE(addBox().ok);
    const QString file = window->captureWindow();
    qunsetenv("KORVEL_DATA_DIR");
    EXPECT_TRUE(file.startsWith(path("screenshots/korvel-")));
    const QImage image(file);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), window->size() * window->devicePixelRatioF());
    if (const QString keep = qEnvironmentVariable("KORVEL_KEEP_CAPTURE"); !keep.isEmpty())
        QFile::copy(file, keep);
}

} // namespace
} // namespace cad::ui::testing
