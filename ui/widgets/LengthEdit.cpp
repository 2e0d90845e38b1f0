// The size field: evaluates what is typed through the expression language, in the
// unit and with the parameters of the document the window shows.
#include "ui/widgets/LengthEdit.h"

#include "core/units/ExpressionParser.h"
#include "core/units/Format.h"
#include "core/units/NameLookup.h"

#include <QKeyEvent>
#include <QStyle>

namespace cad::ui {

LengthEdit::LengthEdit(QWidget* parent, Kind kind) : QLineEdit(parent), kind_(kind) {
    setObjectName(QStringLiteral("lengthEdit"));
    connect(this, &QLineEdit::textChanged, this, [this] { check(); });
    check();
}

void LengthEdit::setKind(Kind kind) {
    kind_ = kind;
    check();
}

Result<double> LengthEdit::value() const {
    const std::string text = this->text().trimmed().toStdString();
    if (text.empty()) return Error{"Type a value."};
    if (kind_ == Kind::Length) return units::evaluateLength(text, units::currentLengthUnit());
    return units::evaluateNumber(text);
}

void LengthEdit::setValue(double value) {
    const units::Length unit = units::currentLengthUnit();
    setText(QString::fromStdString(kind_ == Kind::Length
                                       ? units::formatLength(value, unit, false)
                                       : units::formatNumber(value, units::Length::Millimeters)));
}

void LengthEdit::revalidate() { check(); }

void LengthEdit::check() {
    const Result<double> result = value();
    const bool valid = result.ok();
    const QString error = valid ? QString() : QString::fromStdString(result.error());
    const bool changed = valid != valid_ || error != error_;
    valid_ = valid;
    error_ = error;
    // The empty field is not an error to paint red: there is just nothing yet.
    const bool showError = !valid && !text().trimmed().isEmpty();
    if (property("error").toBool() != showError) {
        setProperty("error", showError);
        style()->unpolish(this);
        style()->polish(this);
    }
    setToolTip(showError ? error_ : QString());
    if (changed) emit validityChanged(valid_);
}

void LengthEdit::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        const Result<double> result = value();
        if (result.ok()) emit accepted(result.value());
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

} // namespace cad::ui
