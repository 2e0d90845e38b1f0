// The few message boxes the process shows itself, behind an interface so that tests
// can answer them instead of a person.
#pragma once

#include <QString>

class QWidget;

namespace cad::app {

class MessagePrompt {
public:
    virtual ~MessagePrompt() = default;
    // A modal information box with an OK button; informativeText may be empty.
    virtual void information(QWidget* parent, const QString& title, const QString& text,
                             const QString& informativeText) = 0;
    // A modal warning box with an OK button.
    virtual void warning(QWidget* parent, const QString& title, const QString& text) = 0;
};

// The real boxes (QMessageBox), for the running program.
MessagePrompt& messageBoxPrompt();

} // namespace cad::app
