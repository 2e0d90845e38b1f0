// The report sender against a real HTTP server on 127.0.0.1: the service's answers,
// an unreachable service keeping the report, and the saved reports sent later.
#include "TestServer.h"

#include "ui/updates/ReportSender.h"
#include "ui/updates/ServiceSettings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QUuid>

#include <gtest/gtest.h>

using namespace cad::ui;
using namespace cad::test;
using Kind = ReportOutcome::Kind;

namespace {

class ReportSenderTest : public ::testing::Test {
protected:
    QString pending() const { return dir.filePath(QStringLiteral("pending-reports")); }
    QStringList pendingFiles() const { return QDir(pending()).entryList(QDir::Files, QDir::Name); }

    ReportOutcome send(ReportSender& sender, const QString& title = QStringLiteral("Crash")) {
        std::optional<ReportOutcome> outcome;
        QObject context;
        sender.sendReport(QJsonObject{{"type", "bug"}, {"title", title}}, &context,
                          [&](const ReportOutcome& o) { outcome = o; });
        EXPECT_TRUE(waitUntil([&] { return outcome.has_value(); }));
        return outcome.value_or(ReportOutcome{});
    }
    int sendPending(ReportSender& sender) {
        std::optional<int> sent;
        sender.sendPending(nullptr, [&](int n) { sent = n; });
        EXPECT_TRUE(waitUntil([&] { return sent.has_value(); }));
        return sent.value_or(-1);
    }

    QTemporaryDir dir;
    TestServer server;
};

} // namespace

TEST_F(ReportSenderTest, ServiceAnswers) {
    ASSERT_TRUE(server.listen());
    ReportSender sender(server.baseUrl() + "/", pending());

    server.route("/api/report", {200, R"({"reference":"KS-1042"})", {}, false});
    ReportOutcome outcome = send(sender);
    EXPECT_EQ(outcome.kind, Kind::Sent);
    EXPECT_EQ(outcome.reference, QStringLiteral("KS-1042"));
    EXPECT_EQ(outcome.message,
              QStringLiteral("Thanks, your report was sent. Its reference is KS-1042."));
    ASSERT_EQ(server.requests().size(), 1);
    const Request& request = server.requests()[0];
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(request.headers.value("accept"), "application/json");
    const QJsonObject posted = QJsonDocument::fromJson(request.body).object();
    EXPECT_EQ(posted["title"].toString(), QStringLiteral("Crash"));
    EXPECT_FALSE(QUuid::fromString(posted["id"].toString()).isNull());
    const QDateTime at = QDateTime::fromString(posted["at"].toString(), Qt::ISODateWithMs);
    EXPECT_TRUE(at.isValid());
    EXPECT_EQ(at.timeSpec(), Qt::UTC);

    for (int status : {200, 201}) {
        server.route("/api/report", {status, "", {}, false});
        outcome = send(sender);
        EXPECT_EQ(outcome.kind, Kind::Sent) << status;
        EXPECT_EQ(outcome.message, QStringLiteral("Thanks, your report was sent."));
    }
    server.route("/api/report", {500, "down for maintenance", {}, false});
    outcome = send(sender);
    EXPECT_EQ(outcome.kind, Kind::Failed);
    EXPECT_EQ(outcome.message,
              QStringLiteral("It couldn't be sent: The report wasn't accepted (HTTP 500)."));
    EXPECT_TRUE(pendingFiles().isEmpty());

    ReportSender none(QString(), pending());
    outcome = send(none);
    EXPECT_EQ(outcome.kind, Kind::Failed);
    EXPECT_EQ(outcome.message, QString::fromLatin1(kNoServiceText));
}

TEST_F(ReportSenderTest, UnreachableServiceKeepsTheReportUntilALaterStart) {
    const quint16 port = closedPort();
    ReportSender sender(QStringLiteral("http://127.0.0.1:%1").arg(port), pending());
    ReportOutcome outcome = send(sender, QStringLiteral("First"));
    EXPECT_EQ(outcome.kind, Kind::Queued);
    EXPECT_EQ(outcome.message,
              QStringLiteral("The Korvel Studio server can't be reached right now. Your report is "
                             "saved and will be sent the next time Korvel Studio starts online."));
    EXPECT_EQ(send(sender, QStringLiteral("Second")).kind, Kind::Queued);
    ASSERT_EQ(pendingFiles().size(), 2);
    const QJsonObject saved = [&] {
        QFile file(QDir(pending()).filePath(pendingFiles()[0]));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QJsonDocument::fromJson(file.readAll()).object();
    }();
    EXPECT_EQ(saved["title"].toString(), QStringLiteral("First"));
    EXPECT_FALSE(saved["id"].toString().isEmpty());

    // Still down: nothing is sent, nothing lost.
    EXPECT_EQ(sendPending(sender), 0);
    EXPECT_EQ(pendingFiles().size(), 2);

    QFile junk(QDir(pending()).filePath("0-broken.json"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("{ not json");
    junk.close();

    ASSERT_TRUE(server.listen(port));
    server.route("/api/report", {201, "", {}, false});
    EXPECT_EQ(sendPending(sender), 2);
    EXPECT_TRUE(pendingFiles().isEmpty());
    ASSERT_EQ(server.requests().size(), 2);
    const QJsonObject first = QJsonDocument::fromJson(server.requests()[0].body).object();
    EXPECT_EQ(first["title"].toString(), QStringLiteral("First"));
    EXPECT_EQ(first["id"], saved["id"]); // the id it was given when first sent
}

TEST_F(ReportSenderTest, ServiceThatNeverAnswersCountsAsUnreachable) {
    ASSERT_TRUE(server.listen());
    server.route("/api/report", {200, {}, {}, true});
    ReportSender sender(server.baseUrl(), pending());
    sender.setTimeout(300);
    EXPECT_EQ(send(sender).kind, Kind::Queued);
    EXPECT_EQ(pendingFiles().size(), 1);

    // A sender going away ends its request at once; the report is still kept.
    auto closing = std::make_unique<ReportSender>(server.baseUrl(), pending());
    closing->sendReport(QJsonObject{{"title", "Late"}}, nullptr, {});
    ASSERT_TRUE(waitUntil([&] { return server.requests().size() == 2; }));
    closing.reset();
    EXPECT_TRUE(waitUntil([&] { return pendingFiles().size() == 2; }, 3000));
}
