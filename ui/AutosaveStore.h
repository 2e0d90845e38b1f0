// The folders and files behind autosave, recovery and backups: one locked recovery
// folder per running instance, the orphans crashed instances left, and rotating backups.
#pragma once

#include "core/Document.h"
#include "core/ObjectTypes.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

class QLockFile;

namespace cad::ui {

// One autosave left behind by an instance that is no longer running.
struct RecoveryEntry {
    QString folder;       // the orphaned session folder
    QString autosavePath; // folder + "/autosave.kv3"
    QString originalPath; // the project it belongs to; empty when never saved or unknown
    QDateTime savedAt;    // from info.json, else the autosave file's modification time
};

class AutosaveStore {
public:
    using Clock = std::function<QDateTime()>;

    // Keeps the data folder and the object types the project writer needs; no file is
    // touched. `now` gives the local time written as "savedAt".
    AutosaveStore(QString root, ObjectTypes types,
                  Clock now = [] { return QDateTime::currentDateTime(); });
    // Releases the lock but keeps the session folder: call endSession on a clean exit, or
    // the folder's autosave is offered again as an orphan.
    ~AutosaveStore();
    AutosaveStore(const AutosaveStore&) = delete;
    AutosaveStore& operator=(const AutosaveStore&) = delete;

    const QString& root() const { return root_; }
    // Empty until the session begins; then a random UUID without braces.
    const QString& sessionId() const { return sessionId_; }
    // root + "/recovery/" + sessionId.
    QString sessionFolder() const;

    // Makes sure this instance has its own locked session folder; true when it does.
    bool beginSession();
    // Writes the document and its info.json into the session folder; an error sentence
    // or empty on success.
    QString writeAutosave(const Document& document, const QString& originalPath);
    // Deletes the autosave and info.json; the folder and its lock stay.
    void removeAutosave();
    // Releases the lock and deletes the session folder; harmless when nothing is held.
    void endSession();

    // The autosaves of instances that are no longer running, newest first. Folders of
    // ended instances without an autosave are deleted on the way.
    QList<RecoveryEntry> findOrphans() const;
    // Deletes the entry's folder with everything in it.
    static void discard(const RecoveryEntry& entry);

    // root + "/backups".
    QString backupsFolder() const;
    // Copies the file at `path` into backups/<base name>/ under its modification time and
    // keeps only the newest `keep` backups of that base name. Failures are ignored.
    void backupBeforeSave(const QString& path, int keep) const;

private:
    QString autosaveFile() const;
    QString infoFile() const;

    QString root_;
    ObjectTypes types_;
    Clock now_;
    QString sessionId_;
    std::unique_ptr<QLockFile> lock_;
};

} // namespace cad::ui
