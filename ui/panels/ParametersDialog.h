// The parameters dialog: the document's named parameters in a table (name,
// expression, value, comment) edited in place, a last empty row to add one, and
// Delete; every change is a parameter command, and a refused one is put back in the
// table with the command's sentence in the message line.
#pragma once

// moc needs none of the model's headers (and cannot parse C++20 concepts).
#ifndef Q_MOC_RUN
#include "core/Command.h"
#endif

#include <QDialog>
#include <QString>
#include <QStringList>

#include <functional>

class QLabel;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace cad {
class Document;
}

namespace cad::ui {

class ParametersDialog : public QDialog {
    Q_OBJECT
public:
    enum Column { NameColumn = 0, ExpressionColumn = 1, ValueColumn = 2, CommentColumn = 3 };
    // The window's command path; the dialog needs the refusal's sentence as well.
    using Runner = std::function<CommandResult(const CommandRecord&)>;
    // Asks a yes-or-no question; true to go on.
    using Ask = std::function<bool(const QString& question)>;

    ParametersDialog(Document& document, Runner run, QWidget* parent = nullptr);

    // Replaces the question box (a message box by default).
    void setAsk(Ask ask) { ask_ = std::move(ask); }

    // Reads the parameters again; the window calls it after commands while the
    // dialog is open (parameters change without objects changing).
    void refresh();

    QTableWidget* table() const { return table_; }
    QLabel* messageLabel() const { return message_; }
    QPushButton* deleteButton() const { return delete_; }

    // Deletes the parameter of the current row, asking first when values use it.
    void deleteCurrent();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void onEdited(QTableWidgetItem* item);
    bool runChange(const CommandRecord& record);
    void revert(QTableWidgetItem* item, const QString& text);
    void showMessage(const QString& text, bool error);
    void updateButtons();

    Document& document_;
    Runner run_;
    Ask ask_;
    QLabel* message_;
    QTableWidget* table_;
    QPushButton* delete_;
    QStringList names_;      // the parameter of each row, in table order
    QStringList pendingRow_; // what is typed in the last row before it makes a parameter
    bool updating_ = false;
};

} // namespace cad::ui
