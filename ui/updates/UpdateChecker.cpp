// The update checker's requests and the download's checks, all on the GUI thread's
// event loop: each reply finishes in a slot that moves the state on.
#include "ui/updates/UpdateChecker.h"

#include "ui/updates/Installer.h"
#include "ui/updates/ReleaseVersion.h"
#include "ui/updates/ServiceSettings.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace cad::ui {

namespace {

const char* const kNotUnderstood =
    "Couldn't check for updates: the server's answer wasn't understood.";
const char* const kNotSaved = "The downloaded update couldn't be saved.";
const char* const kDamaged = "The download didn't match the published installer (it may have "
                             "been damaged). Try again.";

// The file's SHA-256 as lower-case hexadecimal; nothing when it can't be read.
std::optional<QString> fileSha256(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!hash.addData(&file)) return std::nullopt;
    return QString::fromLatin1(hash.result().toHex());
}

// The version as the panel writes it: "v1.2.0" and "1.2.0" both read "1.2.0".
QString shownVersion(const QString& version) {
    QString text = version.trimmed();
    if (text.startsWith(QLatin1Char('v')) || text.startsWith(QLatin1Char('V'))) text.remove(0, 1);
    return text;
}

// The network layer's text without a closing full stop, except for a request that
// timed out: the checker cancels none of its own, so a cancelled one timed out.
QString networkError(const QNetworkReply& reply) {
    if (reply.error() == QNetworkReply::OperationCanceledError ||
        reply.error() == QNetworkReply::TimeoutError)
        return QStringLiteral("the server didn't answer in time");
    QString text = reply.errorString().trimmed();
    while (text.endsWith(QLatin1Char('.'))) text.chop(1);
    return text;
}

bool sameVersion(const QString& a, const QString& b) {
    const std::optional<ReleaseVersion> x = parseReleaseVersion(a);
    const std::optional<ReleaseVersion> y = parseReleaseVersion(b);
    if (x && y) return compareReleaseVersions(*x, *y) == 0;
    return a.trimmed() == b.trimmed();
}

} // namespace

UpdateChecker::UpdateChecker(const QString& baseUrl, const QString& currentVersion,
                             const QString& downloadFolder, QNetworkAccessManager* network,
                             QObject* parent)
    : QObject(parent), base_(baseUrl.trimmed()), current_(currentVersion), folder_(downloadFolder),
      network_(network ? network : new QNetworkAccessManager(this)), timer_(new QTimer(this)) {
    while (base_.endsWith(QLatin1Char('/'))) base_.chop(1);
    timer_->setInterval(kCheckIntervalMs);
    connect(timer_, &QTimer::timeout, this, [this] { check(false); });
}

UpdateChecker::~UpdateChecker() {
    if (reply_) {
        reply_->disconnect(this);
        reply_->abort();
        reply_->deleteLater();
    }
    if (part_) {
        part_->close();
        part_->remove();
    }
}

void UpdateChecker::setAutoCheck(bool on) {
    if (on)
        timer_->start();
    else
        timer_->stop();
}

bool UpdateChecker::autoCheck() const { return timer_->isActive(); }

QString UpdateChecker::statusText() const {
    const QString version = release_ ? shownVersion(release_->version) : QString();
    switch (state_) {
    case State::Idle:
        return {};
    case State::Checking:
        return QStringLiteral("Checking for updates...");
    case State::Current:
        return QStringLiteral("Korvel Studio %1 is up to date.").arg(current_);
    case State::Newer:
        return QStringLiteral("Korvel Studio %1 is available. You have %2.").arg(version, current_);
    case State::Downloading:
        return QStringLiteral("Downloading Korvel Studio %1... %2%")
            .arg(version)
            .arg(static_cast<int>(std::floor(progress_ * 100.0)));
    case State::Ready:
    case State::Installing:
        return QStringLiteral("Korvel Studio %1 is ready to install. Korvel Studio closes while it "
                              "installs (you'll be asked to save first).")
            .arg(version);
    case State::Error:
        return error_;
    }
    return {};
}

QString UpdateChecker::primaryButtonText() const {
    switch (state_) {
    case State::Newer:
        return QStringLiteral("Download and Install");
    case State::Ready:
        return QStringLiteral("Install Now");
    case State::Current:
    case State::Error:
        return QStringLiteral("Check Again");
    default:
        return {};
    }
}

QString UpdateChecker::notes() const { return updateAvailable() ? release_->notes : QString(); }

bool UpdateChecker::updateAvailable() const { return release_ && isNewer(*release_); }

bool UpdateChecker::isNewer(const ReleaseRecord& record) const {
    const std::optional<ReleaseVersion> offered = parseReleaseVersion(record.version);
    const std::optional<ReleaseVersion> running = parseReleaseVersion(current_);
    // A running version that isn't a version (a private build) takes any other release.
    if (!running) return record.version.trimmed() != current_.trimmed();
    return offered && compareReleaseVersions(*offered, *running) > 0;
}

QNetworkRequest UpdateChecker::makeRequest(const QUrl& url) const {
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("KorvelStudio/%1 update-check").arg(current_));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setTransferTimeout(timeout_);
    if (ssl_) request.setSslConfiguration(*ssl_);
    return request;
}

void UpdateChecker::setState(State state) {
    state_ = state;
    emit stateChanged();
}

void UpdateChecker::fail(const QString& text) {
    error_ = text;
    setState(State::Error);
    if (userCheck_) {
        userCheck_ = false;
        emit checkFailed(text);
    }
}

void UpdateChecker::forgetInstaller() {
    if (!installer_.isEmpty()) QFile::remove(installer_);
    installer_.clear();
}

void UpdateChecker::check(bool userInitiated) {
    if (reply_) {
        // A check the user asks for while one runs still hears how that one ends.
        if (userInitiated && state_ == State::Checking) userCheck_ = true;
        return;
    }
    userCheck_ = userInitiated;
    if (base_.isEmpty()) {
        fail(QString::fromLatin1(kNoServiceText));
        return;
    }
    setState(State::Checking);
    reply_ = network_->get(makeRequest(QUrl(base_ + QStringLiteral("/api/releases/latest"))));
    connect(reply_, &QNetworkReply::finished, this, &UpdateChecker::onCheckFinished);
}

void UpdateChecker::onCheckFinished() {
    QNetworkReply* reply = reply_;
    reply_ = nullptr;
    if (!reply) return;
    reply->deleteLater();

    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 404) {
        // No release is published: whatever runs is the latest.
        error_.clear();
        release_.reset();
        forgetInstaller();
        userCheck_ = false;
        setState(State::Current);
        return;
    }
    if (reply->error() != QNetworkReply::NoError) {
        fail(QStringLiteral("Couldn't check for updates: %1.").arg(networkError(*reply)));
        return;
    }
    std::optional<ReleaseRecord> record = parseReleaseRecord(reply->readAll(), reply->url());
    if (!record) {
        fail(QString::fromLatin1(kNotUnderstood));
        return;
    }
    if (release_ && !sameVersion(release_->version, record->version)) forgetInstaller();
    release_ = std::move(record);
    error_.clear();
    userCheck_ = false;
    if (!isNewer(*release_))
        setState(State::Current);
    else if (!installer_.isEmpty() && QFileInfo::exists(installer_))
        setState(State::Ready);
    else
        setState(State::Newer);
}

void UpdateChecker::download() {
    if (reply_ || !updateAvailable()) return;
    if (!installer_.isEmpty() && QFileInfo::exists(installer_)) {
        setState(State::Ready);
        return;
    }
    installer_.clear();
    userCheck_ = false;

    QDir().mkpath(folder_);
    finalPath_ =
        QDir(folder_).filePath(installerFileName(release_->url, shownVersion(release_->version)));
    part_ = std::make_unique<QFile>(finalPath_ + QStringLiteral(".part"));
    if (!part_->open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        const QString why = part_->errorString();
        part_.reset();
        fail(QStringLiteral("Couldn't save the update: %1").arg(why));
        return;
    }
    writeFailed_ = false;
    progress_ = 0;
    setState(State::Downloading);
    reply_ = network_->get(makeRequest(release_->url));
    connect(reply_, &QNetworkReply::readyRead, this, &UpdateChecker::onDownloadData);
    connect(reply_, &QNetworkReply::downloadProgress, this, &UpdateChecker::onDownloadProgress);
    connect(reply_, &QNetworkReply::finished, this, &UpdateChecker::onDownloadFinished);
}

void UpdateChecker::onDownloadData() {
    if (!reply_ || !part_ || writeFailed_) return;
    const QByteArray block = reply_->readAll();
    if (part_->write(block) != block.size()) {
        writeFailed_ = true;
        reply_->abort();
    }
}

void UpdateChecker::onDownloadProgress(qint64 received, qint64 total) {
    if (total <= 0 && release_) total = release_->size;
    const double fraction =
        total > 0 ? std::clamp(static_cast<double>(received) / static_cast<double>(total), 0.0, 1.0)
                  : 0.0;
    const bool newPercent = std::floor(fraction * 100.0) != std::floor(progress_ * 100.0);
    progress_ = fraction;
    if (newPercent) emit progressChanged(fraction);
}

void UpdateChecker::onDownloadFinished() {
    QNetworkReply* reply = reply_;
    if (!reply || !part_) return;
    onDownloadData();
    reply_ = nullptr;
    reply->deleteLater();

    QString problem;
    if (writeFailed_)
        problem = QString::fromLatin1(kNotSaved);
    else if (reply->error() != QNetworkReply::NoError)
        problem =
            QStringLiteral("The update couldn't be downloaded: %1.").arg(networkError(*reply));
    else if (!part_->flush())
        problem = QString::fromLatin1(kNotSaved);
    part_->close();
    if (problem.isEmpty()) problem = settleDownload();
    if (part_->exists()) part_->remove();
    part_.reset();
    if (!problem.isEmpty()) {
        fail(problem);
        return;
    }
    progress_ = 1.0;
    setState(State::Ready);
}

QString UpdateChecker::settleDownload() {
    const QString partPath = part_->fileName();
    if (release_->size > 0 && QFileInfo(partPath).size() != release_->size)
        return QStringLiteral("The download was incomplete. Try again.");
    const std::optional<QString> hash = fileSha256(partPath);
    if (!hash) return QStringLiteral("The downloaded update couldn't be read.");
    if (hash->compare(release_->sha256.trimmed(), Qt::CaseInsensitive) != 0)
        return QString::fromLatin1(kDamaged);

    if (QFileInfo::exists(finalPath_)) QFile::remove(finalPath_);
    if (!QFile::rename(partPath, finalPath_)) return QString::fromLatin1(kNotSaved);
    const QString refused = checkInstaller(finalPath_);
    if (!refused.isEmpty()) {
        QFile::remove(finalPath_);
        return refused;
    }
    installer_ = finalPath_;
    return {};
}

void UpdateChecker::install() {
    if (state_ != State::Ready || installer_.isEmpty() || !release_ || reply_) return;
    // The file may have changed on disk since it was checked: check it again.
    const std::optional<QString> hash = fileSha256(installer_);
    QString refused;
    if (!hash || hash->compare(release_->sha256.trimmed(), Qt::CaseInsensitive) != 0)
        refused = QString::fromLatin1(kDamaged);
    else
        refused = checkInstaller(installer_);
    if (!refused.isEmpty()) {
        forgetInstaller();
        fail(refused);
        return;
    }
    if (ask_ && !ask_()) return;
    const bool started = launch_ ? launch_(installer_) : startInstaller(installer_);
    if (!started) {
        fail(QStringLiteral("The installer couldn't be started. It is saved as %1.")
                 .arg(QDir::toNativeSeparators(installer_)));
        return;
    }
    setState(State::Installing);
    emit quitRequested();
}

} // namespace cad::ui
