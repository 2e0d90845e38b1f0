// The window's side of autosave: the timer that writes a recovery copy a while after
// the first unsaved change, the question at start when a crashed instance left one,
// restoring it, backups before a save, and the File menu's backups folder.
#include "ui/MainWindow.h"

#include "core/ProjectFile.h"
#include "mcp/QueryTools.h"
#include "rendering/Viewport.h"
#include "ui/AutosaveStore.h"
#include "ui/DataPaths.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/widgets/CommandLog.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QTimer>
#include <QUrl>

#include <limits>

namespace cad::ui {

int autosaveInterval() {
    bool parsed = false;
    const int milliseconds = qEnvironmentVariable("KORVEL_AUTOSAVE_MS").toInt(&parsed);
    return parsed && milliseconds >= 1 ? milliseconds : 60000;
}

void MainWindow::startAutosave() {
    autosave_ = std::make_unique<AutosaveStore>(dataDirectory(), mcp::allObjectTypes());
    // The folder and its lock exist from the first moment, so an instance starting
    // alongside can't take this one's folder for a crashed one's.
    autosave_->beginSession();
    autosaveTimer_ = new QTimer(this);
    autosaveTimer_->setSingleShot(true);
    autosaveTimer_->setInterval(autosaveInterval());
    connect(autosaveTimer_, &QTimer::timeout, this, &MainWindow::autosaveNow);
}

void MainWindow::updateAutosaveTimer() {
    if (!autosave_) return;
    if (!isModified()) {
        // Nothing unsaved: no recovery copy is needed.
        autosaveTimer_->stop();
        autosave_->removeAutosave();
        return;
    }
    // A running timer is left alone, so a burst of edits doesn't put the copy off.
    if (!autosaveTimer_->isActive()) autosaveTimer_->start();
}

void MainWindow::autosaveNow() {
    if (!autosave_) return;
    autosaveTimer_->stop();
    if (!isModified()) {
        autosave_->removeAutosave();
        return;
    }
    // A form's live edit is not part of the document.
    FormSession* session = forms_ ? forms_->session() : nullptr;
    const bool hadTrial = session && stack_.hasTrial();
    if (hadTrial) session->withdraw();
    const QString error = autosave_->writeAutosave(document_, documentPath_);
    if (hadTrial) forms_->refresh();
    // Reported once a window: a broken disk must not speak up every minute.
    if (!error.isEmpty() && !autosaveFailureReported_) {
        autosaveFailureReported_ = true;
        const QString text = QStringLiteral("Autosave failed: %1").arg(error);
        commandLog_->addNote(text);
        showToast(text);
    }
}

bool MainWindow::offerRecovery() {
    if (!autosave_) return false;
    const QList<RecoveryEntry> entries = autosave_->findOrphans();
    if (entries.isEmpty()) return false;
    const RecoveryEntry& entry = entries.front();
    const QString what =
        entry.originalPath.isEmpty()
            ? QStringLiteral("an unsaved document")
            : QStringLiteral("“%1”").arg(QFileInfo(entry.originalPath).fileName());
    QString text = QStringLiteral("Korvel Studio didn't close properly. An autosaved copy of %1 "
                                  "from %2 can be restored.")
                       .arg(what, QLocale().toString(entry.savedAt, QLocale::ShortFormat));
    if (entries.size() > 1) {
        const qsizetype more = entries.size() - 1;
        text += QStringLiteral("\n") +
                (more == 1 ? QStringLiteral("1 more autosave will be offered next time.")
                           : QStringLiteral("%1 more autosaves will be offered next time.")
                                 .arg(more));
    }
    switch (prompt_->askRestore(this, text)) {
    case WindowPrompt::RestoreChoice::Restore:
        return restoreAutosave(entry);
    case WindowPrompt::RestoreChoice::Discard:
        AutosaveStore::discard(entry);
        return false;
    case WindowPrompt::RestoreChoice::Later:
        return false;
    }
    return false;
}

bool MainWindow::restoreAutosave(const RecoveryEntry& entry) {
    Result<std::unique_ptr<Document>> read =
        readProject(entry.autosavePath.toStdString(), mcp::allObjectTypes());
    if (!read) {
        // The copy stays, to be offered again next time.
        prompt_->warning(this, QStringLiteral("Restore"), QString::fromStdString(read.error()));
        return false;
    }
    beforeDocumentReplaced();
    document_.replaceWith(std::move(**read));
    stack_.clear();
    // No history position equals this: the restored work counts as unsaved until saved.
    savedPosition_ = std::numeric_limits<std::uint64_t>::max();
    documentPath_ = entry.originalPath;
    afterDocumentReplaced();
    // The new copy exists before the old one goes.
    autosaveNow();
    AutosaveStore::discard(entry);
    commandLog_->addNote(QStringLiteral("Restored autosave from %1")
                             .arg(QLocale().toString(entry.savedAt, QLocale::ShortFormat)));
    return true;
}

void MainWindow::backupBeforeSave(const QString& path) {
    if (autosave_) autosave_->backupBeforeSave(path, 10);
}

void MainWindow::endAutosave() {
    if (!autosave_) return;
    autosaveTimer_->stop();
    autosave_->endSession();
}

void MainWindow::showBackupsFolder() {
    const QString folder = autosave_ ? autosave_->backupsFolder()
                                     : dataDirectory() + QStringLiteral("/backups");
    QDir().mkpath(folder);
    QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
}

} // namespace cad::ui
