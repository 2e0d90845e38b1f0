// The window's side of update checks and issue reports: the checker and the report
// sender it owns, the "Software Update" and "Report an Issue" panels, the Help
// menu's entries and the sidebar's update button, and the start-up checks.
#include "ui/MainWindow.h"

#include "core/ProjectFile.h"
#include "core/Version.h"
#include "mcp/QueryTools.h"
#include "rendering/Viewport.h"
#include "ui/DataPaths.h"
#include "ui/updates/ReportPanel.h"
#include "ui/updates/ReportSender.h"
#include "ui/updates/ServiceSettings.h"
#include "ui/updates/UpdateChecker.h"
#include "ui/updates/UpdatePanel.h"
#include "ui/widgets/CommandLog.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

namespace cad::ui {

namespace {

const QString kAutoCheckKey = QStringLiteral("updates/autoCheck");
constexpr int kFirstCheckDelayMs = 15000;

} // namespace

void MainWindow::startUpdates() {
    const QString version = QString::fromLatin1(kApplicationVersion);
    updates_ = new UpdateChecker(serviceBaseUrl(), version, dataDirectory() + "/updates",
                                 nullptr, this);
    updates_->setAskToSave([this] { return maybeSave(); });
    connect(updates_, &UpdateChecker::stateChanged, this, &MainWindow::refreshUpdateButton);
    // The installer runs on its own now; the user was asked about unsaved work already.
    connect(updates_, &UpdateChecker::quitRequested, this, [this] {
        closingForUpdate_ = true;
        close();
    });
    reports_ = std::make_unique<ReportSender>(serviceBaseUrl(), dataDirectory() + "/pending-reports");
}

bool MainWindow::autoUpdates() const {
    return appSettings()->value(kAutoCheckKey, true).toBool();
}

void MainWindow::setAutoUpdates(bool on) {
    appSettings()->setValue(kAutoCheckKey, on);
    if (actions_.autoUpdates) actions_.autoUpdates->setChecked(on);
    if (updates_) updates_->setAutoCheck(on);
}

void MainWindow::startUpdateChecks() {
    // Reports written while the service was unreachable go first; the sender stops
    // at the first that still can't get through.
    if (reports_) reports_->sendPending(this);
    if (!updates_ || !autoUpdates()) return;
    QTimer::singleShot(kFirstCheckDelayMs, updates_, [checker = updates_] {
        checker->check(false);
    });
    updates_->setAutoCheck(true);
}

void MainWindow::refreshUpdateButton() {
    if (updateButton_) updateButton_->setVisible(updates_ && updates_->updateAvailable());
}

void MainWindow::showUpdates(bool checkNow) {
    if (!updates_) return;
    if (!updatePanel_) updatePanel_ = new UpdatePanel(*updates_, this);
    // A known newer release or a download under way is shown as it is.
    using State = UpdateChecker::State;
    const State state = updates_->state();
    if (checkNow && state != State::Checking && state != State::Downloading &&
        state != State::Ready)
        updates_->check(true);
    updatePanel_->show();
    updatePanel_->raise();
    updatePanel_->activateWindow();
}

ReportPanel& MainWindow::reportPanel() {
    if (!reportPanel_) {
        ReportPanel::Sources sources;
        sources.viewPicture = [this] {
            QByteArray bytes;
            const QImage image = viewport_->grabFramebuffer();
            if (image.isNull()) return bytes;
            QBuffer buffer(&bytes);
            buffer.open(QIODevice::WriteOnly);
            image.save(&buffer, "PNG");
            return bytes;
        };
        sources.commandLog = [this] { return commandLog_->toPlainText(); };
        sources.model = [this]() -> Result<QByteArray> {
            QTemporaryDir folder;
            if (!folder.isValid()) return fail("Couldn't make a temporary folder for the model.");
            const QString path = folder.filePath(QStringLiteral("report.kv3"));
            if (Result<void> written = writeProject(document_, path.toStdString(),
                                                    "Korvel Studio report",
                                                    mcp::allObjectTypes());
                !written)
                return Error(written);
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly)) return fail("Couldn't read the model back.");
            return file.readAll();
        };
        reportPanel_ = new ReportPanel(*reports_, QString::fromLatin1(kApplicationVersion),
                                       std::move(sources), this);
    }
    reportPanel_->setModelFileName(
        documentPath_.isEmpty() ? QString() : QFileInfo(documentPath_).fileName());
    return *reportPanel_;
}

void MainWindow::showReportPanel() {
    ReportPanel& panel = reportPanel();
    panel.open();
    panel.raise();
    panel.activateWindow();
}

} // namespace cad::ui
