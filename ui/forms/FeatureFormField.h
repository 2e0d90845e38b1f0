// The row record behind FeatureForm, shared by the files that implement it.
#pragma once

#include "ui/forms/FeatureForm.h"

#include <utility>
#include <vector>

class QLabel;
class QToolButton;
class QWidget;

namespace cad::ui {

struct FeatureForm::Field {
    QString key;
    FieldKind kind = FieldKind::Text;
    QString label;
    QLabel* labelWidget = nullptr;
    QWidget* editor = nullptr; // the widget holding the value
    QWidget* cell = nullptr;   // what sits in the value column (the editor, or a pick row)
    QToolButton* clear = nullptr;
    int row = 0;
    QString section; // the section row above, if any
    bool folded = false;
    bool shown = true;
    // Shown only while each of these rows holds one of its values.
    std::vector<std::pair<QString, QStringList>> when;
    PickRule rule;
    std::vector<std::string> references;
    bool readOnly = false;
};

} // namespace cad::ui
