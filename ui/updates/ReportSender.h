// Sends issue reports to the maker's service, each as a blocking request on the
// global thread pool, and keeps those the service couldn't be reached for in the
// "pending-reports" folder until a later start sends them.
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QSslConfiguration>
#include <QString>

#include <functional>
#include <memory>

namespace cad::ui {

struct ReportOutcome {
    enum class Kind { Sent, Queued, Failed };
    Kind kind = Kind::Failed;
    QString reference; // the service's reference for a sent report; may be empty
    QString message;   // the sentence the report panel shows
};

class ReportSender {
public:
    using Done = std::function<void(const ReportOutcome& outcome)>;
    static constexpr int kTimeoutMs = 30000;

    // baseUrl is the service address (empty: nothing is sent, and the outcome says
    // so); pendingFolder holds the reports kept while the service is unreachable.
    // The sender belongs to the thread that makes it, where its answers arrive.
    ReportSender(const QString& baseUrl, const QString& pendingFolder);
    // Requests still running end at once; a report cut short is kept as pending.
    ~ReportSender();
    ReportSender(const ReportSender&) = delete;
    ReportSender& operator=(const ReportSender&) = delete;

    void setTimeout(int milliseconds);
    void setSslConfiguration(const QSslConfiguration& configuration);

    // POSTs the report, with a new "id" and "at", to base + "/api/report". The
    // outcome goes to done with a queued call on the sender's thread, unless
    // context (an object of that thread, may be null) is gone by then.
    // Sent: HTTP 200 or 201. Failed: another HTTP status, or no service. Queued: no
    // answer at all (refused, unknown host, timed out, any error below HTTP): the
    // report was saved as one JSON file into the pending folder.
    void sendReport(const QJsonObject& report, QObject* context, Done done);

    // Sends the pending reports oldest first, deleting each one accepted; stops at
    // the first that finds the service unreachable. Unreadable files are removed
    // with a warning. done, when given, hears how many were sent.
    void sendPending(QObject* context = nullptr, std::function<void(int sent)> done = {});

    QString pendingFolder() const;

    // Internal: what the sender shares with its running tasks (ReportSender.cpp).
    struct Shared;

private:
    std::shared_ptr<Shared> shared_;
};

} // namespace cad::ui
