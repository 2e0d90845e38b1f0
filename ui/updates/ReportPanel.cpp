// Gathering an issue report from the panel's fields, checking it in the fixed
// order, and showing how sending it went.
#include "ui/updates/ReportPanel.h"

#include "ui/updates/IssueReport.h"
#include "ui/updates/ReportSender.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace cad::ui {

namespace {

QLabel* fieldLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("fieldLabel"));
    return label;
}

} // namespace

ReportPanel::ReportPanel(ReportSender& sender, const QString& version, Sources sources,
                         QWidget* parent)
    : QDialog(parent), sender_(sender), version_(version), sources_(std::move(sources)) {
    setObjectName(QStringLiteral("reportDialog"));
    setWindowTitle(QStringLiteral("Report an Issue"));
    setModal(true);
    resize(480, 460);

    auto* title = new QLabel(QStringLiteral("Report an Issue"), this);
    title->setObjectName(QStringLiteral("panelTitle"));

    kind_ = new QComboBox(this);
    kind_->setObjectName(QStringLiteral("reportKind"));
    kind_->addItem(QStringLiteral("Bug"), QStringLiteral("bug"));
    kind_->addItem(QStringLiteral("Feature request"), QStringLiteral("feature"));
    kind_->addItem(QStringLiteral("Question"), QStringLiteral("question"));

    title_ = new QLineEdit(this);
    title_->setObjectName(QStringLiteral("reportTitle"));
    title_->setPlaceholderText(QStringLiteral("Fillet fails on the inside edge of a pocket"));

    description_ = new QPlainTextEdit(this);
    description_->setObjectName(QStringLiteral("reportDescription"));
    description_->setTabChangesFocus(true);
    description_->setPlaceholderText(QStringLiteral(
        "What happened, and what did you expect? The steps that lead to it help most."));

    email_ = new QLineEdit(this);
    email_->setObjectName(QStringLiteral("reportEmail"));
    email_->setPlaceholderText(QStringLiteral("name@example.com"));
    auto* emailHint =
        new QLabel(QStringLiteral("Optional: for a reply. It isn't shown with the report."), this);
    // Styled as the field labels are: muted and small.
    emailHint->setObjectName(QStringLiteral("fieldLabel"));
    emailHint->setWordWrap(true);

    picture_ = new QCheckBox(QStringLiteral("Attach a picture of the view"), this);
    picture_->setObjectName(QStringLiteral("reportScreenshot"));
    picture_->setEnabled(static_cast<bool>(sources_.viewPicture));
    log_ = new QCheckBox(QStringLiteral("Attach the command log (recent commands and file names)"),
                         this);
    log_->setObjectName(QStringLiteral("reportLog"));
    log_->setEnabled(static_cast<bool>(sources_.commandLog));
    model_ = new QCheckBox(this);
    model_->setObjectName(QStringLiteral("reportModel"));
    model_->setEnabled(static_cast<bool>(sources_.model));
    setModelFileName(sources_.modelFileName);

    message_ = new QLabel(this);
    message_->setObjectName(QStringLiteral("panelMessage"));
    message_->setWordWrap(true);
    message_->setTextFormat(Qt::PlainText);

    cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cancel_->setObjectName(QStringLiteral("secondaryButton"));
    cancel_->setAutoDefault(false);
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);
    primary_ = new QPushButton(QStringLiteral("Send"), this);
    primary_->setObjectName(QStringLiteral("primaryButton"));
    primary_->setAutoDefault(false);
    connect(primary_, &QPushButton::clicked, this, &ReportPanel::send);

    auto* fields = new QGridLayout;
    fields->addWidget(fieldLabel(QStringLiteral("Type"), this), 0, 0);
    fields->addWidget(kind_, 0, 1);
    fields->addWidget(fieldLabel(QStringLiteral("Title"), this), 1, 0);
    fields->addWidget(title_, 1, 1);
    fields->addWidget(fieldLabel(QStringLiteral("Details"), this), 2, 0, Qt::AlignTop);
    fields->addWidget(description_, 2, 1);
    fields->addWidget(fieldLabel(QStringLiteral("Email"), this), 3, 0);
    fields->addWidget(email_, 3, 1);
    fields->addWidget(emailHint, 4, 1);
    fields->setRowStretch(2, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cancel_);
    buttons->addWidget(primary_);

    auto* column = new QVBoxLayout(this);
    column->addWidget(title);
    column->addLayout(fields, 1);
    column->addWidget(picture_);
    column->addWidget(log_);
    column->addWidget(model_);
    column->addWidget(message_);
    column->addLayout(buttons);
}

void ReportPanel::setModelFileName(const QString& fileName) {
    sources_.modelFileName = fileName;
    model_->setText(fileName.isEmpty()
                        ? QStringLiteral("Attach the current model")
                        : QStringLiteral("Attach the current model (%1)").arg(fileName));
}

void ReportPanel::send() {
    if (sending_) return;
    if (sent_) {
        accept();
        return;
    }
    IssueReportDraft draft;
    draft.kind = kind_->currentData().toString();
    draft.title = title_->text();
    draft.description = description_->toPlainText();
    draft.email = email_->text();
    QString problem = reportProblem(draft);
    if (!problem.isEmpty()) {
        showMessage(problem, true);
        return;
    }

    if (picture_->isChecked() && sources_.viewPicture) {
        const QByteArray png = sources_.viewPicture();
        if (!png.isEmpty())
            draft.attachments.append(
                {QStringLiteral("view.png"), QStringLiteral("image/png"), png});
    }
    if (log_->isChecked() && sources_.commandLog)
        draft.attachments.append({QStringLiteral("command-log.txt"), QStringLiteral("text/plain"),
                                  sources_.commandLog().toUtf8()});
    if (model_->isChecked() && sources_.model) {
        Result<QByteArray> bytes = sources_.model();
        if (!bytes) {
            showMessage(QString::fromStdString(bytes.error()), true);
            return;
        }
        draft.attachments.append({QString::fromLatin1(kModelAttachmentName),
                                  QStringLiteral("application/octet-stream"),
                                  std::move(bytes).value()});
    }
    problem = reportProblem(draft);
    if (!problem.isEmpty()) {
        showMessage(problem, true);
        return;
    }

    sending_ = true;
    showMessage(QStringLiteral("Sending..."), false);
    primary_->setEnabled(false);
    cancel_->setEnabled(false);
    sender_.sendReport(buildIssueReport(draft, version_), this,
                       [this](const ReportOutcome& outcome) { finish(outcome); });
}

void ReportPanel::finish(const ReportOutcome& outcome) {
    sending_ = false;
    primary_->setEnabled(true);
    cancel_->setEnabled(true);
    showMessage(outcome.message, outcome.kind == ReportOutcome::Kind::Failed);
    if (outcome.kind != ReportOutcome::Kind::Failed) {
        sent_ = true;
        primary_->setText(QStringLiteral("Close"));
    }
}

void ReportPanel::done(int result) {
    if (sending_) return;
    if (sent_ || result == QDialog::Rejected) clearFields();
    QDialog::done(result);
}

void ReportPanel::clearFields() {
    kind_->setCurrentIndex(0);
    title_->clear();
    description_->clear();
    email_->clear();
    picture_->setChecked(false);
    log_->setChecked(false);
    model_->setChecked(false);
    showMessage({}, false);
    primary_->setText(QStringLiteral("Send"));
    sent_ = false;
}

void ReportPanel::showMessage(const QString& text, bool error) {
    message_->setText(text);
    if (message_->property("error").toBool() == error) return;
    message_->setProperty("error", error);
    message_->style()->unpolish(message_);
    message_->style()->polish(message_);
}

} // namespace cad::ui
