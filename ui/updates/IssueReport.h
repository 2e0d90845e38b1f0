// An issue report as the report panel gathers it: checked field by field in a fixed
// order, then written as the JSON the service takes (attachments in base64).
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

namespace cad::ui {

struct ReportAttachment {
    QString name; // "view.png", "command-log.txt", "model.kv3"
    QString type; // "image/png", "text/plain", "application/octet-stream"
    QByteArray data;
};

struct IssueReportDraft {
    QString kind = QStringLiteral("bug"); // "bug", "feature" or "question"
    QString title;
    QString description;
    QString email; // empty when not given
    QList<ReportAttachment> attachments;
};

// The largest model that may be attached.
inline constexpr qint64 kMaxModelBytes = 20LL * 1024 * 1024;
// The model attachment's name; its size is what the last check looks at.
inline constexpr const char* kModelAttachmentName = "model.kv3";

// The first problem, in this order: no title, no description, an e-mail address
// that isn't one, a model over kMaxModelBytes; empty when the draft may be sent.
QString reportProblem(const IssueReportDraft& draft);

// This machine for the report: "Debian GNU/Linux 12 (bookworm); Linux 6.1.0-18-amd64;
// x86_64" (product, kernel type and version, processor architecture).
QString systemDescription();

// The report's JSON: "type", "title", "description", "email", "version", "system",
// "attachments". The sender adds "id" and "at".
QJsonObject buildIssueReport(const IssueReportDraft& draft, const QString& version,
                             const QString& system = systemDescription());

} // namespace cad::ui
