// The small card of value fields a drawing tool offers ("Length", "Angle"...): typing
// a digit in the view opens it with the digit in the first field, Tab moves between
// fields, Enter completes the step and Esc closes the card.
#pragma once

#ifndef Q_MOC_RUN
#include "ui/sketch/DrawingTools.h"
#endif

#include <QFrame>
#include <QString>

#include <vector>

namespace cad::ui {

class LengthEdit;

class InlineFields : public QFrame {
    Q_OBJECT
public:
    explicit InlineFields(QWidget* parent);

    // Rebuilds the rows when the list differs; every field starts empty. Hidden.
    void setFields(const std::vector<InlineField>& fields);
    bool hasFields() const { return !fields_.empty(); }
    // Shows the card and puts `first` into the first field, which takes the focus.
    void startTyping(const QString& first);
    // Empties the fields and hides the card.
    void clear();
    bool isTyping() const { return !isHidden(); }

    // The values of the fields whose text evaluates; false when a field holds text
    // that does not.
    bool typedValues(TypedValues& values) const;
    LengthEdit* field(const QString& key) const;

signals:
    void edited();
    void submitted();
    void cancelled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<InlineField> fields_;
    std::vector<LengthEdit*> edits_;
};

} // namespace cad::ui
