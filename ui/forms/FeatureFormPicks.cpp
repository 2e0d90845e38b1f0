// The feature form's pick rows: what they show, which one is active, and how
// clicks in the view add and drop references.
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FeatureFormField.h"

#include "ui/presentation/ReferencePicker.h"
#include "ui/widgets/Icons.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>

namespace cad::ui {

QPushButton* FeatureForm::addPick(const QString& key, const QString& label, const QString& tooltip,
                                  const PickRule& rule) {
    auto* cell = new QWidget(rows_);
    auto* line = new QHBoxLayout(cell);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(4);
    auto* button = new QPushButton(cell);
    button->setObjectName(QStringLiteral("pickField"));
    button->setCheckable(true);
    // A long reference must not widen the card: the text is elided to the room the
    // row has, and the whole of it is the tooltip.
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    button->setMinimumWidth(60);
    auto* clear = new QToolButton(cell);
    clear->setObjectName(QStringLiteral("pickClear"));
    clear->setIcon(icon(QStringLiteral("close")));
    clear->setToolTip(QStringLiteral("Clear"));
    clear->setAutoRaise(true);
    line->addWidget(button, 1);
    line->addWidget(clear);

    Field& field = addRow(key, FieldKind::Pick, label, tooltip, button, cell);
    field.clear = clear;
    field.rule = rule;
    updatePickText(field);

    // The button shows whether the row is active; a click switches it on or off.
    connect(button, &QPushButton::clicked, this, [this, key] {
        activatePick(activePick_ == key ? QString() : key);
        if (Field* f = find(key)) updatePickText(*f);
    });
    connect(clear, &QToolButton::clicked, this, [this, key] { setReferences(key, {}); });
    return button;
}

void FeatureForm::setReferences(const QString& key, std::vector<std::string> references) {
    Field* field = find(key);
    if (!field || field->kind != FieldKind::Pick || field->references == references) return;
    field->references = std::move(references);
    updatePickText(*field);
    valueChanged(key);
}

void FeatureForm::activatePick(const QString& key) {
    const Field* field = find(key);
    const QString next =
        field && field->kind == FieldKind::Pick && !field->readOnly ? key : QString();
    if (next == activePick_) return;
    const QString previous = activePick_;
    activePick_ = next;
    for (const QString& k : {previous, next})
        if (Field* f = find(k)) updatePickText(*f);
    emit activePickChanged(activePick_);
}

const PickRule* FeatureForm::pickRule(const QString& key) const {
    const Field* field = find(key);
    return field && field->kind == FieldKind::Pick ? &field->rule : nullptr;
}

bool FeatureForm::activateNextEmptyPick() {
    for (auto& field : fields_)
        if (field->kind == FieldKind::Pick && field->shown && !field->readOnly &&
            field->references.empty()) {
            activatePick(field->key);
            return true;
        }
    return false;
}

void FeatureForm::picked(const std::vector<std::string>& references,
                         const std::optional<std::array<double, 3>>& at) {
    Field* field = find(activePick_);
    if (!field) return;
    std::vector<std::string> taken;
    QString refusal;
    for (const std::string& reference : references) {
        Result<std::string> kept = at && field->rule.acceptAt ? field->rule.acceptAt(reference, *at)
                                   : field->rule.accept       ? field->rule.accept(reference)
                                                              : Result<std::string>(reference);
        if (!kept) {
            refusal = QString::fromStdString(kept.error());
            continue;
        }
        if (std::find(taken.begin(), taken.end(), *kept) == taken.end()) taken.push_back(*kept);
    }
    if (taken.empty()) {
        if (!refusal.isEmpty()) showMessage(refusal, true);
        return;
    }
    const QString key = field->key;
    std::vector<std::string> now = field->references;
    if (!field->rule.multiple) {
        now = {taken.front()};
    } else {
        const auto has = [&](const std::string& r) {
            return std::find(now.begin(), now.end(), r) != now.end();
        };
        if (std::all_of(taken.begin(), taken.end(), has)) {
            std::erase_if(now, [&](const std::string& r) {
                return std::find(taken.begin(), taken.end(), r) != taken.end();
            });
        } else {
            for (const std::string& r : taken)
                if (!has(r)) now.push_back(r);
        }
    }
    setReferences(key, std::move(now));
    if (!field->rule.multiple && !activateNextEmptyPick()) activatePick({});
}

QString FeatureForm::missingPrompt() const {
    for (const auto& field : fields_)
        if (field->kind == FieldKind::Pick && field->shown && field->rule.required &&
            !field->readOnly && field->references.empty())
            return field->rule.prompt.isEmpty()
                       ? QStringLiteral("Pick the %1.").arg(field->label.toLower())
                       : field->rule.prompt;
    return {};
}

void FeatureForm::refreshPickTexts() {
    for (auto& field : fields_)
        if (field->kind == FieldKind::Pick) updatePickText(*field);
}

void FeatureForm::updatePickText(Field& field) {
    auto* button = static_cast<QPushButton*>(field.editor);
    const bool active = activePick_ == field.key;
    const std::size_t count = field.references.size();
    QString text;
    if (count == 0)
        text = active ? QStringLiteral("Click in the view\u2026") : QStringLiteral("None");
    else if (count == 1 && field.rule.label)
        text = field.rule.label(field.references.front());
    else if (count == 1)
        text = document_ ? referenceLabel(*document_, field.references.front())
                         : QString::fromStdString(field.references.front());
    else
        text = QStringLiteral("%1 selected").arg(count);
    const int room = std::max(60, (button->width() > 60 ? button->width() : 190) - 20);
    const QString shown = button->fontMetrics().elidedText(text, Qt::ElideMiddle, room);
    button->setText(shown);
    button->setToolTip(shown == text ? QString() : text);
    button->setChecked(active);
    field.clear->setEnabled(count > 0 && !field.readOnly);
    field.clear->setVisible(!field.readOnly);
}

} // namespace cad::ui
