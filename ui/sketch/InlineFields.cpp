// The value card of the drawing tools: one label and one size field per value, the
// keys handled here so that Tab stays inside the card.
#include "ui/sketch/InlineFields.h"

#include "ui/widgets/LengthEdit.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>

#include <algorithm>

namespace cad::ui {

InlineFields::InlineFields(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("dimensionBar"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 6, 10, 6);
    layout->setSpacing(6);
    hide();
}

void InlineFields::setFields(const std::vector<InlineField>& fields) {
    const bool same = fields.size() == fields_.size() &&
                      std::equal(fields.begin(), fields.end(), fields_.begin(),
                                 [](const InlineField& a, const InlineField& b) {
                                     return a.key == b.key && a.length == b.length;
                                 });
    if (!same) {
        QLayout* box = layout();
        while (QLayoutItem* item = box->takeAt(0)) {
            delete item->widget();
            delete item;
        }
        edits_.clear();
        fields_ = fields;
        for (const InlineField& field : fields_) {
            auto* label = new QLabel(QString::fromStdString(field.label), this);
            label->setObjectName(QStringLiteral("fieldLabel"));
            auto* edit = new LengthEdit(this, field.length ? LengthEdit::Kind::Length
                                                          : LengthEdit::Kind::Number);
            edit->setProperty("fieldKey", QString::fromStdString(field.key));
            edit->setAccessibleName(QString::fromStdString(field.label));
            edit->setFixedWidth(86);
            edit->installEventFilter(this);
            connect(edit, &QLineEdit::textChanged, this, &InlineFields::edited);
            box->addWidget(label);
            box->addWidget(edit);
            edits_.push_back(edit);
        }
        adjustSize();
    }
    clear();
}

void InlineFields::startTyping(const QString& first) {
    if (edits_.empty()) return;
    show();
    raise();
    LengthEdit* edit = edits_.front();
    edit->setFocus(Qt::OtherFocusReason);
    edit->setText(first);
}

void InlineFields::clear() {
    const bool hadFocus = isAncestorOf(QWidget::focusWidget());
    for (LengthEdit* edit : edits_) {
        const QSignalBlocker quiet(edit);
        edit->clear();
        edit->revalidate();
    }
    hide();
    if (hadFocus && parentWidget()) parentWidget()->setFocus(Qt::OtherFocusReason);
}

bool InlineFields::typedValues(TypedValues& values) const {
    bool valid = true;
    for (std::size_t i = 0; i < edits_.size(); ++i) {
        const QString text = edits_[i]->text().trimmed();
        if (text.isEmpty()) continue;
        const Result<double> value = edits_[i]->value();
        if (!value) {
            valid = false;
            continue;
        }
        values[fields_[i].key] = {*value, text.toStdString()};
    }
    return valid;
}

LengthEdit* InlineFields::field(const QString& key) const {
    for (std::size_t i = 0; i < edits_.size(); ++i)
        if (QString::fromStdString(fields_[i].key) == key) return edits_[i];
    return nullptr;
}

bool InlineFields::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QFrame::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const auto at = std::find(edits_.begin(), edits_.end(), watched);
    if (at == edits_.end()) return false;
    const auto index = static_cast<std::size_t>(at - edits_.begin());
    switch (key->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab: {
        const std::size_t n = edits_.size();
        const bool back = key->key() == Qt::Key_Backtab || (key->modifiers() & Qt::ShiftModifier);
        LengthEdit* next = edits_[(index + (back ? n - 1 : 1)) % n];
        next->setFocus(Qt::TabFocusReason);
        next->selectAll();
        return true;
    }
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit submitted();
        return true;
    case Qt::Key_Escape:
        emit cancelled();
        return true;
    default:
        return false;
    }
}

} // namespace cad::ui
