// The update checker: asks the maker's service for the latest release, downloads
// its installer into the updates folder, verifies it, and starts it. It owns the
// state the "Software Update" panel shows; the panel only listens to its signals.
//
// States: idle -> checking -> (current | newer | error); newer -> downloading ->
// (ready | error); ready -> installing, when the window is asked to quit. One
// request at a time: a check or download asked for while one runs is ignored.
// See ui/updates/Installer.h for what makes an installer safe to run here.
#pragma once

#include "ui/updates/ReleaseRecord.h"

#include <QObject>
#include <QPointer>
#include <QSslConfiguration>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QFile;
class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;
class QTimer;

namespace cad::ui {

class UpdateChecker : public QObject {
    Q_OBJECT
public:
    enum class State { Idle, Checking, Current, Newer, Downloading, Ready, Error, Installing };
    // Asks to save unsaved work as on close; false when the user cancelled.
    using AskToSave = std::function<bool()>;
    // Starts the installer at path as a process of its own; false when it couldn't.
    using Launcher = std::function<bool(const QString& path)>;

    static constexpr int kCheckIntervalMs = 21600000; // 6 hours between automatic checks
    static constexpr int kTransferTimeoutMs = 30000;

    // baseUrl is the service address (empty: no service, every check fails with a
    // sentence); downloadFolder is where installers are kept (made when missing).
    // Without a network manager the checker makes its own.
    UpdateChecker(const QString& baseUrl, const QString& currentVersion,
                  const QString& downloadFolder, QNetworkAccessManager* network = nullptr,
                  QObject* parent = nullptr);
    ~UpdateChecker() override;

    // Starts the release query unless a request runs. A failed check the user asked
    // for is also announced with checkFailed.
    void check(bool userInitiated);
    // Fetches the installer of a newer release (or goes straight to ready when a
    // verified one is on disk).
    void download();
    // Verifies the installer again, asks to save, starts it and asks to quit.
    void install();

    // Turns the repeating check (every kCheckIntervalMs) on or off.
    void setAutoCheck(bool on);
    bool autoCheck() const;

    void setAskToSave(AskToSave ask) { ask_ = std::move(ask); }
    // Replaces the default launcher (ui/updates/Installer.h startInstaller).
    void setLauncher(Launcher launcher) { launch_ = std::move(launcher); }
    void setTransferTimeout(int milliseconds) { timeout_ = milliseconds; }
    // TLS settings for every request (trusted certificates, for a private service).
    void setSslConfiguration(const QSslConfiguration& configuration) { ssl_ = configuration; }

    State state() const { return state_; }
    // The panel's status line for the current state.
    QString statusText() const;
    // The panel's action button: "Download and Install", "Install Now", "Check Again",
    // or empty when "Close" is the only button.
    QString primaryButtonText() const;
    // The release notes while a newer release is known; empty otherwise.
    QString notes() const;
    // Fraction of the download received, 0 to 1.
    double progress() const { return progress_; }
    // The last failure's sentence; empty after a check that worked.
    QString lastError() const { return error_; }
    const std::optional<ReleaseRecord>& release() const { return release_; }
    // The downloaded and verified installer; empty when there is none.
    QString installerPath() const { return installer_; }
    QString currentVersion() const { return current_; }
    // True while a release newer than the running version is known.
    bool updateAvailable() const;

signals:
    void stateChanged();
    void progressChanged(double fraction);
    // A check the user asked for failed, with the sentence the panel shows.
    void checkFailed(const QString& text);
    // The installer is started: the window should close now.
    void quitRequested();

private:
    QNetworkRequest makeRequest(const QUrl& url) const;
    void setState(State state);
    void fail(const QString& text);
    bool isNewer(const ReleaseRecord& record) const;
    void forgetInstaller();
    void onCheckFinished();
    void onDownloadData();
    void onDownloadProgress(qint64 received, qint64 total);
    void onDownloadFinished();
    // Size, hash, final name and installer check of a finished download; empty
    // when it became the verified installer, else the sentence.
    QString settleDownload();

    QString base_;
    QString current_;
    QString folder_;
    QNetworkAccessManager* network_;
    QTimer* timer_;
    QPointer<QNetworkReply> reply_;
    std::unique_ptr<QFile> part_; // the ".part" file while downloading
    QString finalPath_;           // where the running download goes when it checks out
    bool writeFailed_ = false;
    bool userCheck_ = false;
    int timeout_ = kTransferTimeoutMs;
    std::optional<QSslConfiguration> ssl_;
    AskToSave ask_;
    Launcher launch_;

    State state_ = State::Idle;
    std::optional<ReleaseRecord> release_;
    QString installer_;
    double progress_ = 0;
    QString error_;
};

} // namespace cad::ui
