// The field people type sizes into: a line edit that keeps the text as typed
// ("10 + 2mm", "width / 2") and evaluates it as a length in the document's unit, or
// as a plain number, showing the evaluator's sentence with a red border when the
// text does not evaluate.
#pragma once

#ifndef Q_MOC_RUN
#include "core/Result.h"
#endif

#include <QLineEdit>
#include <QString>

namespace cad::ui {

class LengthEdit : public QLineEdit {
    Q_OBJECT
public:
    enum class Kind { Length, Number };

    explicit LengthEdit(QWidget* parent = nullptr, Kind kind = Kind::Length);

    Kind kind() const { return kind_; }
    void setKind(Kind kind);

    // The text's value: millimetres for a length (bare numbers in the document's
    // unit), the plain number otherwise; the evaluator's sentence when it does not
    // evaluate, or "Type a value." when the field is empty.
    Result<double> value() const;
    // True while the text evaluates.
    bool isValid() const { return valid_; }
    // The error shown (empty while valid).
    const QString& errorText() const { return error_; }

    // Shows a length in millimetres in the document's unit, or a plain number,
    // without the unit word ("12.5").
    void setValue(double value);

    // Evaluates again (the unit or the parameters may have changed).
    void revalidate();

signals:
    // The text changed and now does (or does not) evaluate.
    void validityChanged(bool valid);
    // Enter was pressed while the text evaluates.
    void accepted(double value);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void check();

    Kind kind_;
    bool valid_ = false;
    QString error_;
};

} // namespace cad::ui
