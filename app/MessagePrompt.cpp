// Message boxes as the person sees them: QMessageBox, modal on its parent window.
#include "app/MessagePrompt.h"

#include <QMessageBox>

namespace cad::app {

namespace {

class MessageBoxPrompt final : public MessagePrompt {
public:
    void information(QWidget* parent, const QString& title, const QString& text,
                     const QString& informativeText) override {
        QMessageBox box(QMessageBox::Information, title, text, QMessageBox::Ok, parent);
        box.setInformativeText(informativeText);
        box.exec();
    }
    void warning(QWidget* parent, const QString& title, const QString& text) override {
        QMessageBox::warning(parent, title, text, QMessageBox::Ok);
    }
};

} // namespace

MessagePrompt& messageBoxPrompt() {
    static MessageBoxPrompt prompt;
    return prompt;
}

} // namespace cad::app
