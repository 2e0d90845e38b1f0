// The main window's file operations: new, open, save, save as, recent projects,
// dropped project and model files, closing with unsaved changes and window captures.
#include "ui/MainWindow.h"

#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"

#include "core/ProjectFile.h"
#include "core/Version.h"
#include "core/units/Length.h"
#include "mcp/QueryTools.h"
#include "rendering/Viewport.h"
#include "ui/DataPaths.h"
#include "ui/MainWindowMcpHost.h"
#include "ui/McpBridge.h"
#include "ui/widgets/CommandLog.h"
#include "ui/widgets/RecentFiles.h"
#include "ui/widgets/WindowTexts.h"

#include <QCloseEvent>
#include <QDateTime>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QPixmap>
#include <QSettings>
#include <QStandardPaths>
#include <QThread>
#include <QUrl>

namespace cad::ui {

namespace {

const QString kProjectSuffix = QStringLiteral("kv3");
const QString kFormerProjectSuffix = QStringLiteral("osv");
const QString kRecentFilesKey = QStringLiteral("recentFiles");

// A test hook for interrupted saves: with KORVEL_SAVE_HOLD_MS set, a save waits that
// long between writing "<file>.saving" and renaming it over the file, so a test can
// kill the program in between and check that the old file is intact.
SaveSteps saveSteps() {
    SaveSteps steps = SaveSteps::real();
    bool valid = false;
    const int hold = qEnvironmentVariableIntValue("KORVEL_SAVE_HOLD_MS", &valid);
    if (valid && hold > 0)
        steps.replace = [hold, rename = steps.replace](const std::string& from,
                                                       const std::string& to) {
            QThread::msleep(static_cast<unsigned long>(hold));
            return rename(from, to);
        };
    return steps;
}

std::string generatorName() {
    return std::string("Korvel Studio v") + kApplicationVersion;
}

QString documentsFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

bool isProjectFile(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == kProjectSuffix || suffix == kFormerProjectSuffix;
}

// The one local file a drag carries; empty unless there is exactly one.
QString singleLocalFile(const QMimeData* data) {
    if (!data || !data->hasUrls()) return {};
    const QList<QUrl> urls = data->urls();
    if (urls.size() != 1 || !urls.front().isLocalFile()) return {};
    return urls.front().toLocalFile();
}

} // namespace

bool MainWindow::maybeSave() {
    if (!isModified()) return true;
    const QString name =
        documentPath_.isEmpty() ? QStringLiteral("Untitled") : QFileInfo(documentPath_).fileName();
    switch (prompt_->askSave(this, QStringLiteral("Unsaved changes"),
                             QStringLiteral("Save changes to %1?").arg(name))) {
    case WindowPrompt::SaveChoice::Save:
        return save();
    case WindowPrompt::SaveChoice::Discard:
        return true;
    case WindowPrompt::SaveChoice::Cancel:
        break;
    }
    return false;
}

void MainWindow::newDocument() {
    Document fresh;
    // New documents start with the unit and material the user prefers.
    const QSettings settings;
    const std::string unit =
        settings.value(QStringLiteral("prefs/unit"), QStringLiteral("mm")).toString().toStdString();
    if (const std::optional<units::Length> length = units::parseUnitName(unit))
        fresh.setLengthUnit(*length);
    if (const QString material = settings.value(QStringLiteral("prefs/material")).toString();
        !material.isEmpty())
        fresh.setDefaultMaterial(material.toStdString());

    beforeDocumentReplaced();
    document_.replaceWith(std::move(fresh));
    stack_.clear();
    savedPosition_ = stack_.position();
    documentPath_.clear();
    afterDocumentReplaced();
    commandLog_->addNote(QStringLiteral("New document"));
}

void MainWindow::newFromUser() {
    if (maybeSave()) newDocument();
}

Result<void> MainWindow::openProject(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    Result<std::unique_ptr<Document>> read =
        readProject(absolute.toStdString(), mcp::allObjectTypes());
    if (!read)
        return fail(
            QStringLiteral("%1: %2").arg(path, QString::fromStdString(read.error())).toStdString());

    beforeDocumentReplaced();
    document_.replaceWith(std::move(**read));
    stack_.clear();
    savedPosition_ = stack_.position();
    documentPath_ = absolute;
    addRecentFile(absolute);
    afterDocumentReplaced();
    commandLog_->addNote(QStringLiteral("Opened %1").arg(QDir::toNativeSeparators(absolute)));
    return {};
}

void MainWindow::openFromUser() {
    if (!maybeSave()) return;
    const QString folder =
        documentPath_.isEmpty() ? documentsFolder() : QFileInfo(documentPath_).absolutePath();
    const QString chosen = prompt_->openFileName(this, QStringLiteral("Open Project"), folder,
                                                 QStringLiteral("Korvel Studio project (*.%1 *.%2)")
                                                     .arg(kProjectSuffix, kFormerProjectSuffix));
    if (chosen.isEmpty()) return;
    if (const Result<void> opened = openProject(chosen); !opened)
        prompt_->warning(this, QStringLiteral("Open Project"),
                         QString::fromStdString(opened.error()));
}

Result<void> MainWindow::saveProject(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    // A form's live edit is not part of the document: the file gets what the history
    // says, and the form shows its edit again afterwards.
    FormSession* session = forms_ ? forms_->session() : nullptr;
    const bool hadTrial = session && stack_.hasTrial();
    if (hadTrial) session->withdraw();
    // The file about to be overwritten goes to the backups first.
    backupBeforeSave(absolute);
    const Result<void> written =
        writeProject(document_, absolute.toStdString(), generatorName(), mcp::allObjectTypes(),
                     saveSteps());
    if (hadTrial) forms_->refresh();
    if (!written) return written;
    savedPosition_ = stack_.position();
    documentPath_ = absolute;
    addRecentFile(absolute);
    updateWindowTitle();
    updateAutosaveTimer();
    return {};
}

bool MainWindow::save() {
    if (documentPath_.isEmpty()) return saveAs();
    if (const Result<void> saved = saveProject(documentPath_); !saved) {
        prompt_->warning(this, QStringLiteral("Save Project"),
                         QString::fromStdString(saved.error()));
        return false;
    }
    return true;
}

bool MainWindow::saveAs() {
    const QString proposed = documentPath_.isEmpty()
                                 ? documentsFolder() + QStringLiteral("/Untitled.") + kProjectSuffix
                                 : QFileInfo(documentPath_).absolutePath() + "/" +
                                       QFileInfo(documentPath_).completeBaseName() + "." +
                                       kProjectSuffix;
    const QString chosen =
        prompt_->saveFileName(this, QStringLiteral("Save Project"), proposed,
                              QStringLiteral("Korvel Studio project (*.%1)").arg(kProjectSuffix));
    if (chosen.isEmpty()) return false;
    if (const Result<void> saved = saveProject(saveAsFileName(chosen)); !saved) {
        prompt_->warning(this, QStringLiteral("Save Project"),
                         QString::fromStdString(saved.error()));
        return false;
    }
    return true;
}

QStringList MainWindow::recentFiles() const {
    return QSettings().value(kRecentFilesKey).toStringList();
}

void MainWindow::addRecentFile(const QString& path) {
    writeRecentFiles(withRecentFile(recentFiles(), path));
}

void MainWindow::writeRecentFiles(const QStringList& files) {
    QSettings().setValue(kRecentFilesKey, files);
}

void MainWindow::openRecent(const QString& path) {
    if (!QFileInfo::exists(path)) {
        prompt_->information(this, QStringLiteral("Open Recent"),
                             QStringLiteral("%1 is no longer there, so it was taken off the list.")
                                 .arg(QDir::toNativeSeparators(path)));
        QStringList files = recentFiles();
        files.removeIf([&path](const QString& entry) {
            return entry.compare(path, Qt::CaseInsensitive) == 0;
        });
        writeRecentFiles(files);
        return;
    }
    if (!maybeSave()) return;
    if (const Result<void> opened = openProject(path); !opened)
        prompt_->warning(this, QStringLiteral("Open Project"),
                         QString::fromStdString(opened.error()));
}

bool MainWindow::handleDrop(QEvent* event) {
    if (event->type() == QEvent::DragEnter) {
        auto* enter = static_cast<QDragEnterEvent*>(event);
        // Projects open; STEP and STL files come in as bodies; drawings go into a
        // sketch through the Import Drawing form.
        const QString path = singleLocalFile(enter->mimeData());
        if (isProjectFile(path) || isModelFile(path) || isDrawingFile(path)) {
            enter->acceptProposedAction();
            return true;
        }
        return false;
    }
    if (event->type() == QEvent::Drop) {
        auto* drop = static_cast<QDropEvent*>(event);
        const QString path = singleLocalFile(drop->mimeData());
        if (isModelFile(path)) {
            drop->acceptProposedAction();
            importModel(path);
            return true;
        }
        if (isDrawingFile(path)) {
            drop->acceptProposedAction();
            importDrawingFile(path, drop->position());
            return true;
        }
        if (!isProjectFile(path)) return false;
        drop->acceptProposedAction();
        if (maybeSave())
            if (const Result<void> opened = openProject(path); !opened)
                prompt_->warning(this, QStringLiteral("Open Project"),
                                 QString::fromStdString(opened.error()));
        return true;
    }
    return false;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!closingForUpdate_ && !maybeSave()) {
        event->ignore();
        return;
    }
    // A clean exit leaves nothing to recover.
    endAutosave();
    // The agents stop with the window: the socket goes away now.
    bridge_.reset();
    host_.reset();
    appSettings()->setValue(QStringLiteral("window/geometry"), saveGeometry());
    event->accept();
}

QString MainWindow::captureWindow() {
    const QString folder = dataDirectory() + QStringLiteral("/screenshots");
    if (!QDir().mkpath(folder)) return {};
    const QString file =
        folder +
        QStringLiteral("/korvel-%1.png")
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz")));
    if (!grab().save(file, "PNG")) return {};
    commandLog_->addNote(
        QStringLiteral("Saved screenshot: %1").arg(QDir::toNativeSeparators(file)));
    return file;
}

} // namespace cad::ui
