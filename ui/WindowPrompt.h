// The boxes and file dialogs the main window asks the user through, behind an
// interface so that tests answer them instead of a person.
#pragma once

#include <QString>

#include <memory>

class QWidget;

namespace cad::ui {

class WindowPrompt {
public:
    enum class SaveChoice { Save, Discard, Cancel };
    enum class RestoreChoice { Restore, Discard, Later };

    virtual ~WindowPrompt() = default;
    // A question with Save (the default), Discard and Cancel.
    virtual SaveChoice askSave(QWidget* parent, const QString& title, const QString& text) = 0;
    // The "Delete All" / Cancel warning for objects other objects still use; true for Delete All.
    virtual bool askDeleteDependents(QWidget* parent, const QString& text) = 0;
    // "Restore your work?" with Restore (the default), Discard and Decide Later; closing
    // the box is Decide Later.
    virtual RestoreChoice askRestore(QWidget* parent, const QString& text) = 0;
    virtual void warning(QWidget* parent, const QString& title, const QString& text) = 0;
    virtual void information(QWidget* parent, const QString& title, const QString& text) = 0;
    // A chosen file, or empty when the dialog was cancelled.
    virtual QString openFileName(QWidget* parent, const QString& title, const QString& folder,
                                 const QString& filter) = 0;
    virtual QString saveFileName(QWidget* parent, const QString& title, const QString& proposed,
                                 const QString& filter) = 0;
};

// The real message boxes and file dialogs.
std::unique_ptr<WindowPrompt> dialogPrompt();

} // namespace cad::ui
