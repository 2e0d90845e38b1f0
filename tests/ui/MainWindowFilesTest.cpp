// The main window's files: save as and its name rule, open and its failures,
// unsaved changes on close and new, recent projects and captures.
#include "tests/ui/WindowFixture.h"

#include "ui/DataPaths.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/widgets/CommandLog.h"

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
    QTemporaryDir folder;
};

TEST_F(FilesTest, SaveAsAppendsTheExtensionAndNamesTheWindow) {
    ASSERT_TRUE(addBox().ok);
    prompts.saveAnswer = path("bracket");
    ASSERT_TRUE(window->saveAs());
    EXPECT_EQ(prompts.lastProposedName,
              QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                  "/Untitled.kv3");
    EXPECT_EQ(prompts.lastFilter, QStringLiteral("Korvel Studio project (*.kv3)"));
    EXPECT_TRUE(QFileInfo::exists(path("bracket.kv3")));
    EXPECT_EQ(window->documentPath(), path("bracket.kv3"));
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — bracket"));
    EXPECT_FALSE(window->isModified());
    EXPECT_EQ(window->recentFiles().value(0), path("bracket.kv3"));

    // A capitalised extension is kept as it is; the next proposal is the current file.
    prompts.saveAnswer = path("Plate.KV3");
    ASSERT_TRUE(window->saveAs());
    EXPECT_EQ(prompts.lastProposedName, path("bracket.kv3"));
    EXPECT_EQ(window->documentPath(), path("Plate.KV3"));

    // Cancelling the dialog saves nothing.
    prompts.saveAnswer.clear();
    EXPECT_FALSE(window->saveAs());
    EXPECT_EQ(window->documentPath(), path("Plate.KV3"));
}

TEST_F(FilesTest, SaveAndOpenRoundTrip) {
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(addBox(40).ok);
    ASSERT_TRUE(window->saveProject(path("two.kv3")).ok());
    window->newDocument();
    EXPECT_TRUE(window->document().objects().empty());
    EXPECT_TRUE(window->documentPath().isEmpty());
    EXPECT_TRUE(window->commandLog().toPlainText().contains(QStringLiteral("New document")));

    const Result<void> opened = window->openProject(path("two.kv3"));
    ASSERT_TRUE(opened.ok()) << opened.error();
    EXPECT_NE(window->document().find("Box2"), nullptr);
    EXPECT_FALSE(window->presenter().presentationOf("Box2").IsNull());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — two"));
    EXPECT_FALSE(window->isModified());
    EXPECT_FALSE(window->commandStack().canUndo());
    EXPECT_TRUE(window->commandLog().toPlainText().contains(
        QStringLiteral("Opened %1").arg(QDir::toNativeSeparators(path("two.kv3")))));
    const Bnd_Box second = bodyBox(window->document(), "Box2");
    EXPECT_NEAR(second.CornerMin().X(), 40, 1e-6);
}

TEST_F(FilesTest, ABadFileIsRefusedAndTheDocumentStays) {
    ASSERT_TRUE(addBox().ok);
    QFile bad(path("bad.kv3"));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("not a zip at all");
    bad.close();

    const Result<void> opened = window->openProject(path("bad.kv3"));
    ASSERT_FALSE(opened.ok());
    EXPECT_EQ(opened.error().rfind((path("bad.kv3") + ": ").toStdString(), 0), 0u)
        << opened.error();
    EXPECT_GT(opened.error().size(), (path("bad.kv3") + ": ").toStdString().size());
    EXPECT_NE(window->document().find("Box1"), nullptr);
    EXPECT_TRUE(window->documentPath().isEmpty());
    EXPECT_TRUE(window->isModified());

    // From the Open dialog the same failure is a warning box.
    prompts.saveChoice = WindowPrompt::SaveChoice::Discard;
    prompts.openAnswer = path("bad.kv3");
    window->openFromUser();
    EXPECT_EQ(prompts.asked.last(),
              QStringLiteral("Open Project|") + QString::fromStdString(opened.error()));
    EXPECT_EQ(prompts.lastFilter, QStringLiteral("Korvel Studio project (*.kv3 *.osv)"));
    EXPECT_NE(window->document().find("Box1"), nullptr);
}

TEST_F(FilesTest, ASaveThatFailsWarnsAndKeepsTheMark) {
    ASSERT_TRUE(addBox().ok);
    prompts.saveAnswer = path("missing/folder/part");
    EXPECT_FALSE(window->saveAs());
    ASSERT_FALSE(prompts.asked.isEmpty());
    EXPECT_TRUE(prompts.asked.last().startsWith(QStringLiteral("Save Project|")));
    EXPECT_TRUE(window->isModified());
    EXPECT_TRUE(window->documentPath().isEmpty());
}

TEST_F(FilesTest, CancelKeepsTheWindowOpenAndDiscardClosesIt) {
    ASSERT_TRUE(addBox().ok);
    prompts.saveChoice = WindowPrompt::SaveChoice::Cancel;
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(prompts.asked.value(0), QStringLiteral("Unsaved changes|Save changes to Untitled?"));

    // New asks the same way and, cancelled, keeps the document.
    window->newFromUser();
    EXPECT_NE(window->document().find("Box1"), nullptr);

    prompts.saveChoice = WindowPrompt::SaveChoice::Discard;
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(appSettings()->value(QStringLiteral("window/geometry")).toByteArray().isEmpty());
}

TEST_F(FilesTest, SaveFromTheCloseQuestionWritesTheFile) {
    ASSERT_TRUE(window->saveProject(path("kept.kv3")).ok());
    ASSERT_TRUE(addBox().ok);
    prompts.saveChoice = WindowPrompt::SaveChoice::Save;
    EXPECT_TRUE(window->maybeSave());
    EXPECT_EQ(prompts.asked.value(0), QStringLiteral("Unsaved changes|Save changes to kept.kv3?"));
    EXPECT_FALSE(window->isModified());
    window->newDocument();
    ASSERT_TRUE(window->openProject(path("kept.kv3")).ok());
    EXPECT_NE(window->document().find("Box1"), nullptr);
}

TEST_F(FilesTest, AVanishedRecentFileIsTakenOffTheList) {
    ASSERT_TRUE(window->saveProject(path("gone.kv3")).ok());
    ASSERT_TRUE(window->saveProject(path("here.kv3")).ok());
    ASSERT_TRUE(QFile::remove(path("gone.kv3")));
    EXPECT_EQ(window->recentFiles(), QStringList({path("here.kv3"), path("gone.kv3")}));

    window->openRecent(path("gone.kv3"));
    EXPECT_EQ(prompts.asked.last(),
              QStringLiteral("Open Recent|%1 is no longer there, so it was taken off the list.")
                  .arg(QDir::toNativeSeparators(path("gone.kv3"))));
    EXPECT_EQ(window->recentFiles(), QStringList({path("here.kv3")}));

    // Opening a listed file again moves it to the top without a second entry.
    ASSERT_TRUE(window->saveProject(path("other.kv3")).ok());
    window->openRecent(path("here.kv3"));
    EXPECT_EQ(window->documentPath(), path("here.kv3"));
    EXPECT_EQ(window->recentFiles(), QStringList({path("here.kv3"), path("other.kv3")}));
}

TEST_F(FilesTest, TheRecentMenuIsBuiltWhenItOpens) {
    auto* menu = window->findChild<QMenu*>(QStringLiteral("recentMenu"));
    ASSERT_NE(menu, nullptr);
    Q_EMIT menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("No recent files"));
    EXPECT_FALSE(menu->actions()[0]->isEnabled());

    ASSERT_TRUE(window->saveProject(path("a.kv3")).ok());
    ASSERT_TRUE(window->saveProject(path("b.kv3")).ok());
    Q_EMIT menu->aboutToShow();
    QStringList texts;
    for (QAction* entry : menu->actions()) texts.append(entry->isSeparator() ? "-" : entry->text());
    ASSERT_EQ(texts.size(), 4);
    EXPECT_TRUE(texts[0].startsWith(QStringLiteral("&1  b")));
    EXPECT_EQ(texts.mid(2), QStringList({"-", "Clear Recent"}));

    // Choosing an entry opens it.
    window->newDocument();
    menu->actions()[1]->trigger();
    EXPECT_EQ(window->documentPath(), path("a.kv3"));
}

TEST_F(FilesTest, DroppingOneProjectOnTheViewOpensIt) {
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(window->saveProject(path("dropped.kv3")).ok());
    window->newDocument();
    ASSERT_TRUE(addBox(5).ok); // unsaved: the drop asks first
    prompts.saveChoice = WindowPrompt::SaveChoice::Discard;

    rendering::Viewport& view = window->viewport();
    const QPoint centre = view.rect().center();
    const auto drop = [&](const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &enter);
        const bool accepted = enter.isAccepted();
        QDropEvent dropped(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &dropped);
        return accepted;
    };

    // Two files, or a file of another kind, are not taken.
    QFile other(path("notes.txt"));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.close();
    EXPECT_FALSE(drop({QUrl::fromLocalFile(path("notes.txt"))}));
    EXPECT_FALSE(
        drop({QUrl::fromLocalFile(path("dropped.kv3")), QUrl::fromLocalFile(path("dropped.kv3"))}));
    EXPECT_TRUE(window->documentPath().isEmpty());

    EXPECT_TRUE(drop({QUrl::fromLocalFile(path("dropped.kv3"))}));
    EXPECT_EQ(prompts.asked.value(0), QStringLiteral("Unsaved changes|Save changes to Untitled?"));
    EXPECT_EQ(window->documentPath(), path("dropped.kv3"));
    EXPECT_NEAR(bodyBox(window->document(), "Box1").CornerMin().X(), 0, 1e-6);
}

TEST_F(FilesTest, CaptureWindowWritesAPictureOfTheWholeWindow) {
    qputenv("KORVEL_DATA_DIR", folder.path().toUtf8());
    ASSERT_TRUE(addBox().ok);
    const QString file = window->captureWindow();
    qunsetenv("KORVEL_DATA_DIR");
    ASSERT_FALSE(file.isEmpty());
    EXPECT_TRUE(file.startsWith(path("screenshots/korvel-")));
    const QImage image(file);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), window->size() * window->devicePixelRatioF());
    EXPECT_TRUE(window->commandLog().toPlainText().contains(QStringLiteral("Saved screenshot: ")));
    // Kept for a look by hand when asked for.
    if (const QString keep = qEnvironmentVariable("KORVEL_KEEP_CAPTURE"); !keep.isEmpty())
        QFile::copy(file, keep);
}

} // namespace
} // namespace cad::ui::testing
