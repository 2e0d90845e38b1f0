// The "Software Update" panel: the update checker's status line, the release notes
// of a newer release, and the action its state allows. It only shows the checker:
// every change arrives through the checker's signals.
#pragma once

#include <QDialog>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace cad::ui {

class UpdateChecker;

class UpdatePanel : public QDialog {
    Q_OBJECT
public:
    explicit UpdatePanel(UpdateChecker& checker, QWidget* parent = nullptr);

    QLabel* statusLabel() const { return status_; }
    QPlainTextEdit* notesView() const { return notes_; }
    // The state's action ("Download and Install", "Install Now", "Check Again");
    // hidden when there is none.
    QPushButton* primaryButton() const { return primary_; }
    QPushButton* closeButton() const { return close_; }

private:
    void refresh();
    void runPrimary();

    UpdateChecker& checker_;
    QLabel* status_;
    QPlainTextEdit* notes_;
    QPushButton* close_;
    QPushButton* primary_;
};

} // namespace cad::ui
