// A prompt that answers the window's boxes and dialogs from the test and records
// what was asked, so that no test ever blocks on a modal box.
#pragma once

#include "ui/WindowPrompt.h"

#include <QString>
#include <QStringList>

namespace cad::ui::testing {

struct PromptLog {
    WindowPrompt::SaveChoice saveChoice = WindowPrompt::SaveChoice::Discard;
    bool deleteAll = false;
    WindowPrompt::RestoreChoice restoreChoice = WindowPrompt::RestoreChoice::Later;
    QString openAnswer;
    QString saveAnswer;
    // "title|text" of every box shown, in order.
    QStringList asked;
    QString lastProposedName;
    QString lastFilter;
};

class FakePrompt : public WindowPrompt {
public:
    explicit FakePrompt(PromptLog& log) : log_(log) {}

    SaveChoice askSave(QWidget*, const QString& title, const QString& text) override {
        log_.asked.append(title + "|" + text);
        return log_.saveChoice;
    }
    bool askDeleteDependents(QWidget*, const QString& text) override {
        log_.asked.append("Delete|" + text);
        return log_.deleteAll;
    }
    RestoreChoice askRestore(QWidget*, const QString& text) override {
        log_.asked.append("Restore your work?|" + text);
        return log_.restoreChoice;
    }
    void warning(QWidget*, const QString& title, const QString& text) override {
        log_.asked.append(title + "|" + text);
    }
    void information(QWidget*, const QString& title, const QString& text) override {
        log_.asked.append(title + "|" + text);
    }
    QString openFileName(QWidget*, const QString& title, const QString&,
                         const QString& filter) override {
        log_.asked.append(title + "|");
        log_.lastFilter = filter;
        return log_.openAnswer;
    }
    QString saveFileName(QWidget*, const QString& title, const QString& proposed,
                         const QString& filter) override {
        log_.asked.append(title + "|");
        log_.lastProposedName = proposed;
        log_.lastFilter = filter;
        return log_.saveAnswer;
    }

private:
    PromptLog& log_;
};

} // namespace cad::ui::testing
