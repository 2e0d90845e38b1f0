// The window's questions as real Qt message boxes and file dialogs.
#include "ui/WindowPrompt.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace cad::ui {

namespace {

class DialogPrompt : public WindowPrompt {
public:
    SaveChoice askSave(QWidget* parent, const QString& title, const QString& text) override {
        const QMessageBox::StandardButton answer = QMessageBox::question(
            parent, title, text, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
            QMessageBox::Save);
        if (answer == QMessageBox::Save) return SaveChoice::Save;
        if (answer == QMessageBox::Discard) return SaveChoice::Discard;
        return SaveChoice::Cancel;
    }

    bool askDeleteDependents(QWidget* parent, const QString& text) override {
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Delete"), text,
                        QMessageBox::Yes | QMessageBox::Cancel, parent);
        box.setObjectName(QStringLiteral("deleteDependents"));
        box.button(QMessageBox::Yes)->setText(QStringLiteral("Delete All"));
        box.setDefaultButton(QMessageBox::Cancel);
        return box.exec() == QMessageBox::Yes;
    }

    RestoreChoice askRestore(QWidget* parent, const QString& text) override {
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Restore your work?"), text,
                        QMessageBox::NoButton, parent);
        QPushButton* restore = box.addButton(QStringLiteral("Restore"), QMessageBox::AcceptRole);
        QPushButton* discard =
            box.addButton(QStringLiteral("Discard"), QMessageBox::DestructiveRole);
        QPushButton* later = box.addButton(QStringLiteral("Decide Later"), QMessageBox::RejectRole);
        box.setDefaultButton(restore);
        box.setEscapeButton(later);
        box.exec();
        if (box.clickedButton() == restore) return RestoreChoice::Restore;
        if (box.clickedButton() == discard) return RestoreChoice::Discard;
        return RestoreChoice::Later;
    }

    void warning(QWidget* parent, const QString& title, const QString& text) override {
        QMessageBox::warning(parent, title, text);
    }

    void information(QWidget* parent, const QString& title, const QString& text) override {
        QMessageBox::information(parent, title, text);
    }

    QString openFileName(QWidget* parent, const QString& title, const QString& folder,
                         const QString& filter) override {
        return QFileDialog::getOpenFileName(parent, title, folder, filter);
    }

    QString saveFileName(QWidget* parent, const QString& title, const QString& proposed,
                         const QString& filter) override {
        return QFileDialog::getSaveFileName(parent, title, proposed, filter);
    }
};

} // namespace

std::unique_ptr<WindowPrompt> dialogPrompt() { return std::make_unique<DialogPrompt>(); }

} // namespace cad::ui
