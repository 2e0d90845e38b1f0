// Checking and writing issue reports.
#include "ui/updates/IssueReport.h"

#include "ui/updates/ServiceSettings.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QSysInfo>

namespace cad::ui {

QString reportProblem(const IssueReportDraft& draft) {
    static const QRegularExpression emailPattern(QStringLiteral("^[^@\\s]+@[^@\\s]+\\.[^@\\s]+$"));
    if (draft.title.trimmed().isEmpty()) return QStringLiteral("Give it a title.");
    if (draft.description.trimmed().isEmpty())
        return QStringLiteral("Describe what happened or what you'd like.");
    const QString email = draft.email.trimmed();
    if (!email.isEmpty() && !emailPattern.match(email).hasMatch())
        return QStringLiteral("That email address doesn't look right. Fix it, or leave it empty.");
    for (const ReportAttachment& attachment : draft.attachments) {
        if (attachment.name == QLatin1String(kModelAttachmentName) &&
            attachment.data.size() > kMaxModelBytes)
            return QStringLiteral("The model is over 20 MB, too big to attach. Untick it, or send "
                                  "it to %1.")
                .arg(supportEmail());
    }
    return {};
}

QString systemDescription() {
    return QStringLiteral("%1; %2 %3; %4")
        .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
             QSysInfo::currentCpuArchitecture());
}

QJsonObject buildIssueReport(const IssueReportDraft& draft, const QString& version,
                             const QString& system) {
    QJsonArray attachments;
    for (const ReportAttachment& attachment : draft.attachments)
        attachments.append(
            QJsonObject{{QStringLiteral("name"), attachment.name},
                        {QStringLiteral("type"), attachment.type},
                        {QStringLiteral("data"), QString::fromLatin1(attachment.data.toBase64())}});
    return QJsonObject{{QStringLiteral("type"), draft.kind},
                       {QStringLiteral("title"), draft.title.trimmed()},
                       {QStringLiteral("description"), draft.description.trimmed()},
                       {QStringLiteral("email"), draft.email.trimmed()},
                       {QStringLiteral("version"), version},
                       {QStringLiteral("system"), system},
                       {QStringLiteral("attachments"), attachments}};
}

} // namespace cad::ui
