// The command log: every command the document runs, written as an API call, with
// undo, redo, failures and the window's own notes, newest at the bottom.
#pragma once

#include <QPlainTextEdit>
#include <QString>

namespace cad {
struct CommandEvent;
}

namespace cad::ui {

// The rich-text line for one command event (the call HTML-escaped).
QString commandLogLine(const cad::CommandEvent& event);
// The rich-text line for a note from the window ("# Opened ...").
QString commandLogNote(const QString& note);

class CommandLog : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit CommandLog(QWidget* parent = nullptr);

    void addEvent(const cad::CommandEvent& event);
    void addNote(const QString& note);

private:
    void appendLine(const QString& html);
};

} // namespace cad::ui
