// Autosave folders: sessions and their locks, orphans left by ended instances, and the
// backups kept before a save, all inside a temporary data folder.
#include "ui/AutosaveStore.h"

#include "core/DocumentJson.h"
#include "core/JsonLayout.h"
#include "core/ProjectFile.h"
#include "tests/core/TestObjects.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

using namespace cad;
using cad::ui::AutosaveStore;
using cad::ui::RecoveryEntry;

namespace {

ObjectTypes testTypes() {
    ObjectTypes types;
    types.add({"Sketch", "sketch", [] { return test::thing("Sketch", ""); }, nullptr, nullptr});
    return types;
}

void fillDocument(Document& doc) {
    doc.setParameters({{"w", "6in", units::Length::Inches, true, "panel width"}});
    doc.add(test::thing("Sketch", "Sketch1", "Base outline"));
}

std::string documentText(const Document& doc) {
    SideFiles side;
    return layoutJson(writeDocumentJson(doc, side, testTypes()));
}

QDateTime at(const char* iso) { return QDateTime::fromString(iso, Qt::ISODate); }

AutosaveStore::Clock clockAt(const char* iso) {
    return [time = at(iso)] { return time; };
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes, const QDateTime& modified = {}) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    file.write(bytes);
    file.flush();
    if (modified.isValid()) file.setFileTime(modified, QFileDevice::FileModificationTime);
}

// The ID of a process that has certainly ended.
qint64 endedProcessId() {
    const pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

struct AutosaveStoreTest : ::testing::Test {
    QTemporaryDir dir;
    QString root() const { return dir.path() + "/data"; }
    QString recovery() const { return root() + "/recovery"; }
};

TEST_F(AutosaveStoreTest, SessionHoldsItsFolderFromBeginToEnd) {
    AutosaveStore store(root(), testTypes(), clockAt("2025-03-14T09:26:53"));
    EXPECT_FALSE(QFileInfo::exists(root())) << "construction touches no file";
    EXPECT_TRUE(store.sessionId().isEmpty());

    ASSERT_TRUE(store.beginSession());
    const QString id = store.sessionId();
    const QRegularExpression uuid("^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$");
    EXPECT_TRUE(uuid.match(id).hasMatch()) << id.toStdString();
    EXPECT_EQ(store.sessionFolder(), recovery() + "/" + id);
    EXPECT_TRUE(QFileInfo::exists(store.sessionFolder() + "/session.lock"));
    ASSERT_TRUE(store.beginSession());
    EXPECT_EQ(store.sessionId(), id) << "a held session is kept";

    Document doc;
    fillDocument(doc);
    ASSERT_EQ(store.writeAutosave(doc, "/home/ana/bracket.kv3"), "");
    const QJsonObject info =
        QJsonDocument::fromJson(readAll(store.sessionFolder() + "/info.json")).object();
    EXPECT_EQ(info.value("originalPath").toString(), "/home/ana/bracket.kv3");
    EXPECT_EQ(info.value("savedAt").toString(), "2025-03-14T09:26:53");
    const QByteArray saved = readAll(store.sessionFolder() + "/autosave.kv3");
    auto manifest = (*ArchiveReader::open(saved.toStdString()))->read("manifest.json");
    EXPECT_NE(manifest->find("\"Korvel Studio autosave\""), std::string::npos);

    store.removeAutosave();
    EXPECT_EQ(QDir(store.sessionFolder()).entryList(QDir::Files), QStringList{"session.lock"});

    store.endSession();
    EXPECT_FALSE(QFileInfo::exists(store.sessionFolder()));
    store.endSession();
    EXPECT_FALSE(QFileInfo::exists(store.sessionFolder()));
}

TEST_F(AutosaveStoreTest, UnusableRootNamesTheFolder) {
    writeFile(root(), "a file where the data folder should be");
    AutosaveStore store(root(), testTypes());
    Document doc;
    EXPECT_EQ(store.writeAutosave(doc, ""),
              "Could not create the recovery folder in " + QDir::toNativeSeparators(root()) + ".");
}

TEST_F(AutosaveStoreTest, RunningSessionsAreNotOrphansUntilTheirOwnerEnds) {
    Document doc;
    fillDocument(doc);
    auto first =
        std::make_unique<AutosaveStore>(root(), testTypes(), clockAt("2025-03-14T09:26:53"));
    ASSERT_EQ(first->writeAutosave(doc, "/p/bracket.kv3"), "");
    const QString firstFolder = first->sessionFolder();

    AutosaveStore second(root(), testTypes());
    ASSERT_TRUE(second.beginSession());
    EXPECT_TRUE(second.findOrphans().isEmpty()) << "the first instance still holds its lock";

    first.reset(); // gone without ending its session, as in a crash
    const QList<RecoveryEntry> orphans = second.findOrphans();
    ASSERT_EQ(orphans.size(), 1);
    EXPECT_EQ(orphans[0].folder, firstFolder);
    EXPECT_EQ(orphans[0].originalPath, "/p/bracket.kv3");
    EXPECT_EQ(orphans[0].savedAt, at("2025-03-14T09:26:53"));
    auto back = readProject(orphans[0].autosavePath.toStdString(), testTypes());
    ASSERT_TRUE(back.ok()) << back.error();
    EXPECT_EQ(documentText(**back), documentText(doc));

    AutosaveStore::discard(orphans[0]);
    EXPECT_FALSE(QFileInfo::exists(firstFolder));
    EXPECT_TRUE(QFileInfo::exists(second.sessionFolder()));
}

TEST_F(AutosaveStoreTest, OrphansComeNewestFirstWhateverTheirInfo) {
    Document doc;
    QString lockText;
    QStringList folders;
    for (const char* time : {"2025-03-14T08:00:00", "2025-03-14T10:00:00", "2025-03-14T09:00:00"}) {
        AutosaveStore crashed(root(), testTypes(), clockAt(time));
        ASSERT_EQ(crashed.writeAutosave(doc, ""), "");
        lockText = QString::fromUtf8(readAll(crashed.sessionFolder() + "/session.lock"));
        folders.append(crashed.sessionFolder());
    }
    // The first one's lock outlived its process; its info.json is damaged.
    QStringList lines = lockText.split('\n');
    lines[0] = QString::number(endedProcessId());
    writeFile(folders[0] + "/session.lock", lines.join('\n').toUtf8());
    writeFile(folders[0] + "/info.json", "{not json");
    const QDateTime modified = at("2025-03-14T11:00:00");
    QFile autosave(folders[0] + "/autosave.kv3");
    ASSERT_TRUE(autosave.open(QIODevice::ReadWrite));
    ASSERT_TRUE(autosave.setFileTime(modified, QFileDevice::FileModificationTime));
    autosave.close();
    // A session that ended without ever needing an autosave.
    ASSERT_TRUE(QDir().mkpath(recovery() + "/empty-session"));

    AutosaveStore next(root(), testTypes());
    const QList<RecoveryEntry> orphans = next.findOrphans();
    ASSERT_EQ(orphans.size(), 3);
    EXPECT_EQ(orphans[0].folder, folders[0]);
    EXPECT_EQ(orphans[0].savedAt, modified);
    EXPECT_EQ(orphans[0].originalPath, "");
    EXPECT_EQ(orphans[1].folder, folders[1]);
    EXPECT_EQ(orphans[2].folder, folders[2]);
    EXPECT_FALSE(QFileInfo::exists(recovery() + "/empty-session"));
}

TEST_F(AutosaveStoreTest, BackupsKeepTheNewestTenOfAProject) {
    AutosaveStore store(root(), testTypes());
    const QString project = dir.path() + "/part.kv3";
    store.backupBeforeSave(project, 10); // a first save has nothing to back up
    EXPECT_FALSE(QFileInfo::exists(store.backupsFolder()));

    const QDateTime first = at("2025-03-14T09:00:00");
    for (int i = 0; i < 11; ++i) {
        writeFile(project, "version " + QByteArray::number(i), first.addSecs(i * 61));
        store.backupBeforeSave(project, 10);
    }
    const QDir folder(store.backupsFolder() + "/part");
    QStringList names = folder.entryList(QDir::Files, QDir::Name);
    ASSERT_EQ(names.size(), 10);
    EXPECT_EQ(names.front(), "part-20250314-090101.kv3") << "the oldest is gone";
    EXPECT_EQ(names.back(), "part-20250314-091010.kv3");
    EXPECT_EQ(readAll(folder.filePath(names.back())), "version 10");

    // Same modification time as the last backup: nothing is copied, trimming still runs.
    writeFile(folder.filePath("part-20000101-000000.kv3"), "older than all");
    writeFile(project, "changed in place", first.addSecs(10 * 61));
    store.backupBeforeSave(project, 10);
    names = folder.entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(names.size(), 10);
    EXPECT_FALSE(names.contains("part-20000101-000000.kv3"));
    EXPECT_EQ(readAll(folder.filePath(names.back())), "version 10");
}

} // namespace

int main(int argc, char** argv) {
    // The lock files record the application's name next to the process ID.
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
