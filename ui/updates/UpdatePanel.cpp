// Showing the update checker's state and passing the panel's button on to it.
#include "ui/updates/UpdatePanel.h"

#include "ui/updates/UpdateChecker.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace cad::ui {

UpdatePanel::UpdatePanel(UpdateChecker& checker, QWidget* parent)
    : QDialog(parent), checker_(checker) {
    setObjectName(QStringLiteral("updateDialog"));
    setWindowTitle(QStringLiteral("Software Update"));
    resize(460, 320);

    auto* title = new QLabel(QStringLiteral("Software Update"), this);
    title->setObjectName(QStringLiteral("panelTitle"));
    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("updateStatus"));
    status_->setWordWrap(true);
    status_->setTextFormat(Qt::PlainText);
    notes_ = new QPlainTextEdit(this);
    notes_->setObjectName(QStringLiteral("updateNotes"));
    notes_->setReadOnly(true);

    close_ = new QPushButton(QStringLiteral("Close"), this);
    close_->setObjectName(QStringLiteral("secondaryButton"));
    close_->setAutoDefault(false);
    connect(close_, &QPushButton::clicked, this, &QDialog::reject);
    primary_ = new QPushButton(this);
    primary_->setObjectName(QStringLiteral("primaryButton"));
    primary_->setAutoDefault(false);
    connect(primary_, &QPushButton::clicked, this, &UpdatePanel::runPrimary);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(close_);
    buttons->addWidget(primary_);
    auto* column = new QVBoxLayout(this);
    column->addWidget(title);
    column->addWidget(status_);
    column->addWidget(notes_, 1);
    column->addStretch(0);
    column->addLayout(buttons);

    connect(&checker_, &UpdateChecker::stateChanged, this, &UpdatePanel::refresh);
    connect(&checker_, &UpdateChecker::progressChanged, this, &UpdatePanel::refresh);
    refresh();
}

void UpdatePanel::refresh() {
    status_->setText(checker_.statusText());
    const QString notes = checker_.notes();
    if (notes_->toPlainText() != notes) notes_->setPlainText(notes);
    notes_->setVisible(!notes.isEmpty());
    const QString action = checker_.primaryButtonText();
    primary_->setText(action);
    primary_->setVisible(!action.isEmpty());
}

void UpdatePanel::runPrimary() {
    switch (checker_.state()) {
    case UpdateChecker::State::Newer:
        checker_.download();
        break;
    case UpdateChecker::State::Ready:
        checker_.install();
        break;
    case UpdateChecker::State::Current:
    case UpdateChecker::State::Error:
        checker_.check(true);
        break;
    default:
        break;
    }
}

} // namespace cad::ui
