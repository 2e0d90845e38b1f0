// The one-time move from OstrovanCAD to Korvel Studio. Autosaves, crash reports,
// downloads and screenshots belong to the old installation and stay behind.
#include "app/Migration.h"

#include "ui/DataPaths.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace cad::app {

namespace {

const QString markerName = QStringLiteral("carried-over-from-ostrovancad");
const QString carriedOverKey = QStringLiteral("rebrand/settingsCarriedOver");

bool leftBehind(const QString& name) {
    for (const char* skipped : {"recovery", "crashes", "updates", "screenshots"})
        if (name.compare(QLatin1String(skipped), Qt::CaseInsensitive) == 0) return true;
    return false;
}

int copyFileNoOverwrite(const QString& source, const QString& target) {
    if (QFileInfo::exists(target) || QFileInfo(target).isSymLink()) return 0;
    QDir().mkpath(QFileInfo(target).absolutePath());
    return QFile::copy(source, target) ? 1 : 0;
}

// Copies the former data folder's files once; true when at least one file came across.
bool copyFormerFiles(const QString& oldFolder, const QString& newFolder) {
    if (!QFileInfo(oldFolder).isDir()) return false;
    const QString marker = newFolder + "/" + markerName;
    if (QFileInfo::exists(marker)) return false;

    int copied = 0;
    const QFileInfoList entries = QDir(oldFolder).entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QFileInfo& entry : entries) {
        if (leftBehind(entry.fileName())) continue;
        copied += copyTreeNoOverwrite(entry.filePath(), newFolder + "/" + entry.fileName());
    }

    // Written even when nothing was copied, so the folder is looked at only once.
    QDir().mkpath(newFolder);
    QFile file(marker);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        file.write("OstrovanCAD's data was copied here when Korvel Studio first ran.\n");
    return copied > 0;
}

// Copies the settings the new store does not have yet; true when any came across.
bool carryOverSettings() {
    QSettings settings(QSettings::NativeFormat, QSettings::UserScope,
                       QStringLiteral("KorvelStudio"), QStringLiteral("KorvelStudio"));
    if (settings.value(carriedOverKey).toBool()) return false;
    bool carried = false;
    const QSettings former(QSettings::NativeFormat, QSettings::UserScope,
                           QStringLiteral("OstrovanCAD"), QStringLiteral("OstrovanCAD"));
    for (const QString& key : former.allKeys()) {
        if (settings.contains(key)) continue;
        settings.setValue(key, former.value(key));
        carried = true;
    }
    settings.setValue(carriedOverKey, true);
    return carried;
}

} // namespace

int copyTreeNoOverwrite(const QString& source, const QString& target) {
    const QFileInfo info(source);
    if (!info.isDir()) return info.exists() ? copyFileNoOverwrite(source, target) : 0;
    int copied = 0;
    const QDir root(source);
    QDirIterator files(source, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        copied += copyFileNoOverwrite(file, target + "/" + root.relativeFilePath(file));
    }
    return copied;
}

bool migrateFormerData() {
    // A folder chosen through the environment (tests, portable installs) stays as it is.
    if (!qEnvironmentVariable("KORVEL_DATA_DIR").isEmpty()) return false;
    const QString newFolder = cad::ui::dataDirectory();
    const QString oldFolder =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/OstrovanCAD";
    const bool copied = copyFormerFiles(oldFolder, newFolder);
    const bool carried = carryOverSettings();
    return copied || carried;
}

void showRenameNotice(QWidget* parent, MessagePrompt& prompt) {
    const QString informative =
        QStringLiteral("Your settings, tool libraries and footprints have come across, so there "
                       "is nothing to set up again.") +
        QStringLiteral("\n\n") +
        QStringLiteral("Projects now save as .%1 files. Your .%2 files open as before.")
            .arg(QStringLiteral("kv3"), QStringLiteral("osv"));
    prompt.information(parent, QStringLiteral("OstrovanCAD is now Korvel Studio"),
                       QStringLiteral("OstrovanCAD is now Korvel Studio: the same software, with a "
                                      "new name and look."),
                       informative);
}

} // namespace cad::app
