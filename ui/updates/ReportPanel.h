// The "Report an Issue" panel: kind, title, details and an optional e-mail address,
// with boxes to attach a picture of the view, the command log and the current
// model. What it attaches comes through small functions the window hands it, so
// the panel knows nothing of the window; sending goes through the ReportSender.
#pragma once

#include "core/Result.h"

#include <QByteArray>
#include <QDialog>
#include <QString>

#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace cad::ui {

class ReportSender;
struct ReportOutcome;

class ReportPanel : public QDialog {
    Q_OBJECT
public:
    // Each may be left empty: its box is then disabled.
    struct Sources {
        std::function<QByteArray()> viewPicture;   // the view as PNG bytes
        std::function<QString()> commandLog;       // the command log as plain text
        std::function<Result<QByteArray>()> model; // the current model as .kv3 bytes
        QString modelFileName;                     // the document's file name; empty when none
    };

    ReportPanel(ReportSender& sender, const QString& version, Sources sources,
                QWidget* parent = nullptr);

    // The document's file name for the model box's text; empty when it has none.
    void setModelFileName(const QString& fileName);

    // Checks the fields, then sends; the same as clicking "Send".
    void send();
    bool isSending() const { return sending_; }

    QLabel* messageLabel() const { return message_; }
    QPushButton* primaryButton() const { return primary_; }
    QPushButton* cancelButton() const { return cancel_; }

    // Closing is refused while a report is on its way; a panel closed after sending
    // or by cancelling starts empty next time.
    void done(int result) override;

private:
    void showMessage(const QString& text, bool error);
    void finish(const ReportOutcome& outcome);
    void clearFields();

    ReportSender& sender_;
    QString version_;
    Sources sources_;
    QComboBox* kind_;
    QLineEdit* title_;
    QPlainTextEdit* description_;
    QLineEdit* email_;
    QCheckBox* picture_;
    QCheckBox* log_;
    QCheckBox* model_;
    QLabel* message_;
    QPushButton* cancel_;
    QPushButton* primary_;
    bool sending_ = false;
    bool sent_ = false;
};

} // namespace cad::ui
