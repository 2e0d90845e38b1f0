// The report sender's tasks. Each runs on a pool thread with its own network
// manager and event loop; everything they share with the sender's thread (the
// settings, the pending folder, the running loops, the object answers are posted
// to) is behind one mutex, so the sender may go away while a task still runs.
#include "ui/updates/ReportSender.h"

#include "ui/updates/ServiceSettings.h"

#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QMutex>
#include <QMutexLocker>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QSaveFile>
#include <QSet>
#include <QThreadPool>
#include <QUuid>
#include <QtDebug>

#include <optional>

namespace cad::ui {

struct ReportSender::Shared {
    QMutex mutex;
    QString base;
    QString folder;
    int timeout = kTimeoutMs;
    std::optional<QSslConfiguration> ssl;
    QObject* relay = nullptr; // lives on the sender's thread; answers are posted to it
    bool closing = false;
    bool pendingRunning = false;
    int saved = 0;           // reports kept by this sender, to order those of the same millisecond
    QSet<QEventLoop*> loops; // the requests running now, ended when the sender goes
};

namespace {

using Shared = ReportSender::Shared;

const char* const kQueuedText =
    "The Korvel Studio server can't be reached right now. Your report is saved and will be "
    "sent the next time Korvel Studio starts online.";

struct PostAnswer {
    enum class Kind { Accepted, Rejected, Unreachable };
    Kind kind = Kind::Unreachable;
    int status = 0;
    QString reference;
    QString error; // the network layer's text when unreachable
};

// POSTs one report and waits for the answer on this (pool) thread.
PostAnswer post(Shared& shared, const QByteArray& body) {
    QNetworkAccessManager network;
    QEventLoop loop;
    QNetworkRequest request;
    {
        QMutexLocker lock(&shared.mutex);
        if (shared.closing)
            return {PostAnswer::Kind::Unreachable, 0, {}, QStringLiteral("closing")};
        shared.loops.insert(&loop);
        request.setUrl(QUrl(shared.base + QStringLiteral("/api/report")));
        request.setTransferTimeout(shared.timeout);
        if (shared.ssl) request.setSslConfiguration(*shared.ssl);
    }
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setRawHeader("Accept", "application/json");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);

    QNetworkReply* reply = network.post(request, body);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished()) loop.exec();
    {
        QMutexLocker lock(&shared.mutex);
        shared.loops.remove(&loop);
    }
    if (!reply->isFinished()) reply->abort(); // the sender is going away

    PostAnswer answer;
    answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (answer.status == 200 || answer.status == 201) {
        answer.kind = PostAnswer::Kind::Accepted;
        const QJsonObject object = QJsonDocument::fromJson(reply->readAll()).object();
        const QJsonValue reference = object.value(QStringLiteral("reference"));
        if (reference.isString())
            answer.reference = reference.toString();
        else if (reference.isDouble())
            answer.reference = QString::number(reference.toInteger());
    } else if (answer.status != 0) {
        answer.kind = PostAnswer::Kind::Rejected;
    } else {
        answer.error = reply->errorString();
    }
    delete reply;
    return answer;
}

// Writes the report as one file of the pending folder, all or nothing.
bool savePending(Shared& shared, const QJsonObject& report) {
    QMutexLocker lock(&shared.mutex);
    if (!QDir().mkpath(shared.folder)) return false;
    // Names sort oldest first: time, then the order within this run.
    const QString name =
        QStringLiteral("%1-%2-%3.json")
            .arg(QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmsszzz")))
            .arg(++shared.saved, 4, 10, QLatin1Char('0'))
            .arg(report.value(QStringLiteral("id")).toString());
    QSaveFile file(QDir(shared.folder).filePath(name));
    if (!file.open(QIODevice::WriteOnly)) return false;
    file.write(QJsonDocument(report).toJson(QJsonDocument::Compact));
    return file.commit();
}

// Runs call on the sender's thread, unless the sender is gone.
void deliver(Shared& shared, std::function<void()> call) {
    QMutexLocker lock(&shared.mutex);
    if (shared.relay)
        QMetaObject::invokeMethod(shared.relay, std::move(call), Qt::QueuedConnection);
}

ReportOutcome sendOne(Shared& shared, QJsonObject report) {
    QString base;
    {
        QMutexLocker lock(&shared.mutex);
        base = shared.base;
    }
    if (base.isEmpty())
        return {ReportOutcome::Kind::Failed, {}, QString::fromLatin1(kNoServiceText)};

    report.insert(QStringLiteral("id"), QUuid::createUuid().toString(QUuid::WithoutBraces));
    report.insert(QStringLiteral("at"),
                  QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    const PostAnswer answer = post(shared, QJsonDocument(report).toJson(QJsonDocument::Compact));
    switch (answer.kind) {
    case PostAnswer::Kind::Accepted:
        return {ReportOutcome::Kind::Sent, answer.reference,
                answer.reference.isEmpty()
                    ? QStringLiteral("Thanks, your report was sent.")
                    : QStringLiteral("Thanks, your report was sent. Its reference is %1.")
                          .arg(answer.reference)};
    case PostAnswer::Kind::Rejected:
        return {ReportOutcome::Kind::Failed,
                {},
                QStringLiteral("It couldn't be sent: The report wasn't accepted (HTTP %1).")
                    .arg(answer.status)};
    case PostAnswer::Kind::Unreachable:
        break;
    }
    if (savePending(shared, report))
        return {ReportOutcome::Kind::Queued, {}, QString::fromLatin1(kQueuedText)};
    return {ReportOutcome::Kind::Failed,
            {},
            QStringLiteral("It couldn't be sent: %1").arg(answer.error)};
}

int sendAllPending(Shared& shared) {
    QStringList files;
    {
        QMutexLocker lock(&shared.mutex);
        if (shared.pendingRunning || shared.closing || shared.base.isEmpty()) return 0;
        shared.pendingRunning = true;
        const QDir folder(shared.folder);
        for (const QString& name :
             folder.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name))
            files.append(folder.filePath(name));
    }
    int sent = 0;
    for (const QString& path : files) {
        QByteArray body;
        {
            QMutexLocker lock(&shared.mutex);
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly)) continue;
            body = file.readAll();
            QJsonParseError error;
            const QJsonDocument document = QJsonDocument::fromJson(body, &error);
            if (error.error != QJsonParseError::NoError || !document.isObject()) {
                qWarning("Removed the pending report %s: it isn't a readable report.",
                         qPrintable(QDir::toNativeSeparators(path)));
                file.close();
                QFile::remove(path);
                continue;
            }
        }
        const PostAnswer answer = post(shared, body);
        if (answer.kind == PostAnswer::Kind::Unreachable) break;
        if (answer.kind == PostAnswer::Kind::Accepted) {
            QMutexLocker lock(&shared.mutex);
            QFile::remove(path);
            ++sent;
        }
    }
    QMutexLocker lock(&shared.mutex);
    shared.pendingRunning = false;
    return sent;
}

} // namespace

ReportSender::ReportSender(const QString& baseUrl, const QString& pendingFolder)
    : shared_(std::make_shared<Shared>()) {
    shared_->base = baseUrl.trimmed();
    while (shared_->base.endsWith(QLatin1Char('/'))) shared_->base.chop(1);
    shared_->folder = pendingFolder;
    shared_->relay = new QObject;
}

ReportSender::~ReportSender() {
    QObject* relay = nullptr;
    {
        QMutexLocker lock(&shared_->mutex);
        shared_->closing = true;
        for (QEventLoop* loop : std::as_const(shared_->loops))
            QMetaObject::invokeMethod(loop, "quit", Qt::QueuedConnection);
        relay = shared_->relay;
        shared_->relay = nullptr;
    }
    delete relay; // answers already posted to it are dropped with it
}

void ReportSender::setTimeout(int milliseconds) {
    QMutexLocker lock(&shared_->mutex);
    shared_->timeout = milliseconds;
}

void ReportSender::setSslConfiguration(const QSslConfiguration& configuration) {
    QMutexLocker lock(&shared_->mutex);
    shared_->ssl = configuration;
}

QString ReportSender::pendingFolder() const {
    QMutexLocker lock(&shared_->mutex);
    return shared_->folder;
}

void ReportSender::sendReport(const QJsonObject& report, QObject* context, Done done) {
    std::shared_ptr<Shared> shared = shared_;
    const bool hasContext = context != nullptr;
    QPointer<QObject> guard(context);
    QThreadPool::globalInstance()->start([shared, report, hasContext, guard, done] {
        const ReportOutcome outcome = sendOne(*shared, report);
        deliver(*shared, [hasContext, guard, done, outcome] {
            if ((!hasContext || guard) && done) done(outcome);
        });
    });
}

void ReportSender::sendPending(QObject* context, std::function<void(int sent)> done) {
    std::shared_ptr<Shared> shared = shared_;
    const bool hasContext = context != nullptr;
    QPointer<QObject> guard(context);
    QThreadPool::globalInstance()->start([shared, hasContext, guard, done] {
        const int sent = sendAllPending(*shared);
        deliver(*shared, [hasContext, guard, done, sent] {
            if ((!hasContext || guard) && done) done(sent);
        });
    });
}

} // namespace cad::ui
