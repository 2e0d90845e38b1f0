// Recovery folders guarded by lock files, autosaves written as ordinary project files,
// and the backups copied aside before a save overwrites a project.
#include "ui/AutosaveStore.h"

#include "core/ProjectFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QUuid>

#include <algorithm>

namespace cad::ui {

namespace {

const QString kLockName = QStringLiteral("session.lock");
const QString kAutosaveName = QStringLiteral("autosave.kv3");
const QString kInfoName = QStringLiteral("info.json");
const std::string kGenerator = "Korvel Studio autosave";

// A lock that never goes stale by age: only an ended owner process frees it.
std::unique_ptr<QLockFile> takeLock(const QString& folder) {
    auto lock = std::make_unique<QLockFile>(folder + "/" + kLockName);
    lock->setStaleLockTime(0);
    if (!lock->tryLock(0)) return nullptr;
    return lock;
}

// Fills originalPath and savedAt from info.json when it can be read; anything missing
// or malformed leaves the entry's values as they were.
void readInfo(const QString& path, RecoveryEntry& entry) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return;
    const QJsonObject info = QJsonDocument::fromJson(file.readAll()).object();
    entry.originalPath = info.value("originalPath").toString();
    const QDateTime savedAt = QDateTime::fromString(info.value("savedAt").toString(), Qt::ISODate);
    if (savedAt.isValid()) entry.savedAt = savedAt;
}

} // namespace

AutosaveStore::AutosaveStore(QString root, ObjectTypes types, Clock now)
    : root_(std::move(root)), types_(std::move(types)), now_(std::move(now)) {}

AutosaveStore::~AutosaveStore() = default;

QString AutosaveStore::sessionFolder() const { return root_ + "/recovery/" + sessionId_; }
QString AutosaveStore::autosaveFile() const { return sessionFolder() + "/" + kAutosaveName; }
QString AutosaveStore::infoFile() const { return sessionFolder() + "/" + kInfoName; }
QString AutosaveStore::backupsFolder() const { return root_ + "/backups"; }

bool AutosaveStore::beginSession() {
    if (lock_) return true;
    sessionId_ = QUuid::createUuid().toString(QUuid::WithoutBraces);
    if (!QDir().mkpath(sessionFolder())) return false;
    lock_ = takeLock(sessionFolder());
    return lock_ != nullptr;
}

QString AutosaveStore::writeAutosave(const Document& document, const QString& originalPath) {
    if (!beginSession())
        return QStringLiteral("Could not create the recovery folder in %1.")
            .arg(QDir::toNativeSeparators(root_));
    const Result<void> written =
        writeProject(document, autosaveFile().toStdString(), kGenerator, types_);
    if (!written) return QString::fromStdString(written.error());

    const QJsonObject info{
        {"originalPath", originalPath},
        {"savedAt", now_().toLocalTime().toString("yyyy-MM-dd'T'HH:mm:ss")},
    };
    QFile file(infoFile());
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(QJsonDocument(info).toJson(QJsonDocument::Indented));
    return {};
}

void AutosaveStore::removeAutosave() {
    if (!lock_) return;
    QFile::remove(autosaveFile());
    QFile::remove(infoFile());
}

void AutosaveStore::endSession() {
    if (!lock_) return;
    lock_->unlock();
    lock_.reset();
    QDir(sessionFolder()).removeRecursively();
}

QList<RecoveryEntry> AutosaveStore::findOrphans() const {
    QList<RecoveryEntry> entries;
    const QDir recovery(root_ + "/recovery");
    for (const QString& name : recovery.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (name == sessionId_) continue;
        const QString folder = recovery.filePath(name);
        // A lock we cannot take belongs to an instance that is still running.
        if (!takeLock(folder)) continue;
        RecoveryEntry entry{folder, folder + "/" + kAutosaveName, {}, {}};
        const QFileInfo autosave(entry.autosavePath);
        if (!autosave.isFile()) {
            QDir(folder).removeRecursively();
            continue;
        }
        entry.savedAt = autosave.lastModified();
        readInfo(folder + "/" + kInfoName, entry);
        entries.append(entry);
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const RecoveryEntry& a, const RecoveryEntry& b) {
                         return a.savedAt > b.savedAt;
                     });
    return entries;
}

void AutosaveStore::discard(const RecoveryEntry& entry) {
    // QDir("") is the working directory: never remove that for an empty entry.
    if (entry.folder.isEmpty()) return;
    QDir(entry.folder).removeRecursively();
}

void AutosaveStore::backupBeforeSave(const QString& path, int keep) const {
    const QFileInfo source(path);
    if (!source.isFile()) return;
    const QString base = source.completeBaseName();
    const QString suffix = "." + source.suffix();
    const QString folder = backupsFolder() + "/" + base;
    if (!QDir().mkpath(folder)) return;

    const QString stamp = source.lastModified().toLocalTime().toString("yyyyMMdd-HHmmss");
    const QString target = folder + "/" + base + "-" + stamp + suffix;
    if (!QFileInfo::exists(target)) QFile::copy(path, target);

    // Matched by hand rather than as a wildcard so brackets or stars in a project's
    // name are taken literally; the time stamps make name order oldest first.
    const QString prefix = base + "-";
    QStringList backups;
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        if (name.size() >= prefix.size() + suffix.size() && name.startsWith(prefix) &&
            name.endsWith(suffix))
            backups.append(name);
    }
    std::sort(backups.begin(), backups.end());
    const qsizetype limit = std::max(keep, 0);
    for (qsizetype i = 0; i < backups.size() - limit; ++i) QFile::remove(folder + "/" + backups[i]);
}

} // namespace cad::ui
