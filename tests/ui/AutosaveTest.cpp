// The window's autosave: a recovery copy after the first unsaved change and gone once
// nothing is unsaved, a crashed instance's copy offered and restored as unsaved work,
// and backups of the file a save overwrites.
#include "tests/ui/WindowFixture.h"

#include "core/ProjectFile.h"
#include "mcp/QueryTools.h"
#include "ui/AutosaveStore.h"
#include "ui/DataPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace cad::ui::testing {
namespace {

class AutosaveTest : public WindowTest {
protected:
    void SetUp() override {
        qputenv("KORVEL_AUTOSAVE_MS", "50");
        WindowTest::SetUp();
    }
    void TearDown() override {
        WindowTest::TearDown();
        qputenv("KORVEL_AUTOSAVE_MS", "100000000");
    }
    QString autosaveFile() const {
        return window->autosaveStore()->sessionFolder() + QStringLiteral("/autosave.kv3");
    }
};

TEST_F(AutosaveTest, AnUnsavedChangeIsCopiedAndTheCopyGoesWhenNothingIsUnsaved) {
    ASSERT_NE(window->autosaveStore(), nullptr);
    EXPECT_TRUE(QFileInfo::exists(window->autosaveStore()->sessionFolder() + "/session.lock"));
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(waitUntil([this] { return QFileInfo::exists(autosaveFile()); }, 5000));

    // Undo back to where the document was saved (never): nothing left to recover.
    window->commandStack().undo();
    EXPECT_FALSE(QFileInfo::exists(autosaveFile()));
    EXPECT_TRUE(QFileInfo::exists(window->autosaveStore()->sessionFolder() + "/session.lock"));

    // A save removes the copy too, and a clean close the whole folder.
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(waitUntil([this] { return QFileInfo::exists(autosaveFile()); }, 5000));
    QTemporaryDir folder;
    ASSERT_TRUE(window->saveProject(folder.filePath("part.kv3")).ok());
    EXPECT_FALSE(QFileInfo::exists(autosaveFile()));
    const QString session = window->autosaveStore()->sessionFolder();
    window->close();
    EXPECT_FALSE(QFileInfo::exists(session));
}

TEST_F(AutosaveTest, ACrashedInstancesCopyIsOfferedAndRestoredAsUnsavedWork) {
    // What a crashed instance leaves: its autosave, its lock let go with the process.
    {
        ASSERT_TRUE(window->runCommand(CommandRecord("create_box")
                                           .set("width", 10.0)
                                           .set("depth", 20.0)
                                           .set("height", 30.0))
                        .ok);
        AutosaveStore crashed(dataDirectory(), mcp::allObjectTypes());
        ASSERT_TRUE(crashed.writeAutosave(window->document(), "/projects/bracket.kv3").isEmpty());
    }
    window->commandStack().undo();
    ASSERT_TRUE(window->document().objects().empty());

    // Decide Later changes nothing; Restore brings the box back, unsaved, with no history.
    prompts.restoreChoice = WindowPrompt::RestoreChoice::Later;
    EXPECT_FALSE(window->offerRecovery());
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked.front().startsWith(
        QStringLiteral("Restore your work?|Korvel Studio didn't close properly. An autosaved copy "
                       "of “bracket.kv3” from ")));
    prompts.restoreChoice = WindowPrompt::RestoreChoice::Restore;
    ASSERT_TRUE(window->offerRecovery());
    EXPECT_FALSE(bodyBox(window->document(), "Box1").IsVoid());
    EXPECT_TRUE(window->isModified());
    EXPECT_FALSE(window->commandStack().canUndo());
    EXPECT_EQ(window->documentPath(), QStringLiteral("/projects/bracket.kv3"));
    EXPECT_TRUE(window->windowTitle().endsWith(QStringLiteral(" •")));
    // The restored work is this instance's own copy now, and the old one is gone.
    EXPECT_TRUE(QFileInfo::exists(autosaveFile()));
    EXPECT_TRUE(window->autosaveStore()->findOrphans().isEmpty());
}

TEST_F(AutosaveTest, ADamagedCopyIsRefusedWithTheReadersSentenceAndKept) {
    QString damaged;
    {
        ASSERT_TRUE(addBox().ok);
        AutosaveStore crashed(dataDirectory(), mcp::allObjectTypes());
        ASSERT_TRUE(crashed.writeAutosave(window->document(), QString()).isEmpty());
        damaged = crashed.sessionFolder() + QStringLiteral("/autosave.kv3");
    }
    window->commandStack().undo();
    // Cut short, as a disk that filled up would leave it.
    QFile file(damaged);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.resize(file.size() / 2);
    file.close();

    prompts.restoreChoice = WindowPrompt::RestoreChoice::Restore;
    EXPECT_FALSE(window->offerRecovery());
    ASSERT_EQ(prompts.asked.size(), 2);
    EXPECT_TRUE(prompts.asked.back().startsWith(QStringLiteral("Restore|")))
        << prompts.asked.back().toStdString();
    EXPECT_TRUE(window->document().objects().empty());
    EXPECT_FALSE(window->isModified());
    // Offered again next time, until it is discarded.
    EXPECT_EQ(window->autosaveStore()->findOrphans().size(), 1);
}

TEST_F(AutosaveTest, SavingOverAFileKeepsTheEarlierVersionInTheBackups) {
    QTemporaryDir folder;
    const QString path = folder.filePath("plate.kv3");
    ASSERT_TRUE(addBox().ok);
    ASSERT_TRUE(window->saveProject(path).ok());
    // The second save overwrites a file from an earlier second.
    QFile(path).setFileTime(QDateTime::currentDateTime().addSecs(-3600),
                            QFileDevice::FileModificationTime);
    ASSERT_TRUE(addBox(30).ok);
    ASSERT_TRUE(window->saveProject(path).ok());
    const QDir backups(window->autosaveStore()->backupsFolder() + "/plate");
    const QStringList kept = backups.entryList({QStringLiteral("plate-*.kv3")}, QDir::Files);
    ASSERT_EQ(kept.size(), 1);
    // The backup is the first version: one box.
    Result<std::unique_ptr<Document>> first =
        readProject(backups.filePath(kept.front()).toStdString(), mcp::allObjectTypes());
    ASSERT_TRUE(first.ok());
    EXPECT_NE((*first)->find("Box1"), nullptr);
    EXPECT_EQ((*first)->find("Box2"), nullptr);
}

} // namespace
} // namespace cad::ui::testing
