// The feature form's rows, values, message line and keys. Rows sit in a two-column
// grid inside a capped scroll area; sections fold the rows below them.
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FeatureFormField.h"

#include "ui/widgets/Icons.h"
#include "ui/widgets/LengthEdit.h"
#include "ui/widgets/OverlayPanel.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace cad::ui {

namespace {

bool isReturn(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter; }

// A segmented row's buttons carry their value in this property.
constexpr const char* kSegmentValue = "segmentValue";

QString segmentedValue(const QWidget* row) {
    for (const auto* button : row->findChildren<QToolButton*>())
        if (button->isChecked()) return button->property(kSegmentValue).toString();
    return {};
}

} // namespace

FeatureForm::FeatureForm(const Document* document, QWidget* parent)
    : QFrame(parent), document_(document) {
    setObjectName(QStringLiteral("featureForm"));

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(12, 10, 12, 12);
    outer->setSpacing(8);

    auto* header = new QHBoxLayout;
    header->setSpacing(6);
    icon_ = new QLabel(this);
    icon_->setFixedSize(14, 14);
    title_ = new QLabel(this);
    title_->setObjectName(QStringLiteral("panelTitle"));
    header->addWidget(icon_);
    header->addWidget(title_, 1);
    outer->addLayout(header);

    scroll_ = new QScrollArea(this);
    scroll_->setObjectName(QStringLiteral("formScroll"));
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->viewport()->setAutoFillBackground(false);
    rows_ = new QWidget;
    grid_ = new QGridLayout(rows_);
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setHorizontalSpacing(10);
    grid_->setVerticalSpacing(8);
    grid_->setColumnStretch(1, 1);
    scroll_->setWidget(rows_);
    rows_->setAutoFillBackground(false); // the card's glass shows through
    outer->addWidget(scroll_);

    message_ = new QLabel(this);
    message_->setObjectName(QStringLiteral("panelMessage"));
    message_->setWordWrap(true);
    message_->hide();
    outer->addWidget(message_);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cancel_->setObjectName(QStringLiteral("secondaryButton"));
    primary_ = new QPushButton(QStringLiteral("OK"), this);
    primary_->setObjectName(QStringLiteral("primaryButton"));
    buttons->addWidget(cancel_);
    buttons->addWidget(primary_);
    outer->addLayout(buttons);
    connect(cancel_, &QPushButton::clicked, this, &FeatureForm::cancelRequested);
    connect(primary_, &QPushButton::clicked, this, &FeatureForm::requestAccept);
    updateRowsHeight();
}

FeatureForm::~FeatureForm() = default;

void FeatureForm::setTitle(const QString& iconName, const QString& title) {
    icon_->setPixmap(icon(iconName).pixmap(QSize(14, 14)));
    title_->setText(title);
}

QString FeatureForm::title() const { return title_->text(); }

FeatureForm::Field* FeatureForm::find(const QString& key) {
    for (auto& field : fields_)
        if (field->key == key) return field.get();
    return nullptr;
}

const FeatureForm::Field* FeatureForm::find(const QString& key) const {
    return const_cast<FeatureForm*>(this)->find(key);
}

FeatureForm::Field& FeatureForm::addRow(const QString& key, FieldKind kind, const QString& label,
                                        const QString& tooltip, QWidget* editor, QWidget* cell) {
    auto field = std::make_unique<Field>();
    field->key = key;
    field->kind = kind;
    field->label = label;
    field->editor = editor;
    field->cell = cell ? cell : editor;
    field->row = nextRow_++;
    for (auto it = fields_.rbegin(); it != fields_.rend(); ++it)
        if ((*it)->kind == FieldKind::Section) {
            field->section = (*it)->key;
            break;
        }
    editor->setToolTip(tooltip);
    // Sections, messages and rows without a label take the whole width.
    if (kind == FieldKind::Section || kind == FieldKind::Message ||
        (label.isEmpty() && kind != FieldKind::Flag)) {
        grid_->addWidget(field->cell, field->row, 0, 1, 2);
    } else {
        // A flag carries its own text; its label column stays empty.
        field->labelWidget = new QLabel(kind == FieldKind::Flag ? QString() : label, rows_);
        field->labelWidget->setObjectName(QStringLiteral("fieldLabel"));
        field->labelWidget->setToolTip(tooltip);
        grid_->addWidget(field->labelWidget, field->row, 0);
        grid_->addWidget(field->cell, field->row, 1,
                         kind == FieldKind::Flag ? Qt::AlignLeft : Qt::Alignment());
    }
    fields_.push_back(std::move(field));
    updateRowsHeight();
    return *fields_.back();
}

void FeatureForm::addSection(const QString& key, const QString& label) {
    auto* button = new QPushButton(label, rows_);
    button->setObjectName(QStringLiteral("formSection"));
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    addRow(key, FieldKind::Section, label, {}, button);
    connect(button, &QPushButton::clicked, this, [this, key] {
        Field* section = find(key);
        section->folded = !section->folded;
        applyVisibility();
    });
}

LengthEdit* FeatureForm::addLength(const QString& key, const QString& label, const QString& tooltip,
                                   const QString& value) {
    auto* edit = new LengthEdit(rows_, LengthEdit::Kind::Length);
    edit->setText(value);
    addRow(key, FieldKind::Length, label, tooltip, edit);
    connect(edit, &QLineEdit::textChanged, this, [this, key] { valueChanged(key); });
    connect(edit, &LengthEdit::accepted, this, &FeatureForm::requestAccept);
    return edit;
}

LengthEdit* FeatureForm::addNumber(const QString& key, const QString& label, const QString& tooltip,
                                   const QString& value) {
    LengthEdit* edit = addLength(key, label, tooltip, value);
    edit->setKind(LengthEdit::Kind::Number);
    find(key)->kind = FieldKind::Number;
    return edit;
}

QSpinBox* FeatureForm::addInteger(const QString& key, const QString& label, const QString& tooltip,
                                  int value, int minimum, int maximum) {
    auto* spin = new QSpinBox(rows_);
    spin->setRange(minimum, maximum);
    spin->setValue(value);
    addRow(key, FieldKind::Integer, label, tooltip, spin);
    connect(spin, &QSpinBox::valueChanged, this, [this, key] { valueChanged(key); });
    return spin;
}

QComboBox* FeatureForm::addChoice(const QString& key, const QString& label, const QString& tooltip,
                                  const std::vector<FieldChoice>& choices, const QString& value) {
    auto* combo = new QComboBox(rows_);
    combo->setMinimumContentsLength(16);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    for (const FieldChoice& choice : choices) {
        combo->addItem(choice.text, choice.value);
        combo->setItemData(combo->count() - 1, choice.tooltip, Qt::ToolTipRole);
    }
    combo->setCurrentIndex(std::max(0, combo->findData(value)));
    addRow(key, FieldKind::Choice, label, tooltip, combo);
    connect(combo, &QComboBox::currentIndexChanged, this, [this, key] { valueChanged(key); });
    return combo;
}

QFrame* FeatureForm::addSegmented(const QString& key, const QString& label, const QString& tooltip,
                                  const std::vector<FieldChoice>& choices, const QString& value) {
    auto* row = new QFrame(rows_);
    row->setObjectName(QStringLiteral("segmented"));
    row->setProperty("segmented", true);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(2, 2, 2, 2);
    line->setSpacing(2);
    auto* group = new QButtonGroup(row);
    group->setExclusive(true);
    for (const FieldChoice& choice : choices) {
        auto* button = new QToolButton(row);
        button->setText(choice.text);
        button->setToolTip(choice.tooltip);
        button->setCheckable(true);
        button->setAutoRaise(true);
        button->setProperty(kSegmentValue, choice.value);
        button->setChecked(choice.value == value);
        group->addButton(button);
        line->addWidget(button);
    }
    if (!group->checkedButton() && !group->buttons().isEmpty())
        group->buttons().front()->setChecked(true);
    line->addStretch(1);
    addRow(key, FieldKind::Choice, label, tooltip, row);
    connect(group, &QButtonGroup::buttonToggled, this, [this, key](QAbstractButton*, bool on) {
        if (on) valueChanged(key);
    });
    return row;
}

QLineEdit* FeatureForm::addText(const QString& key, const QString& label, const QString& tooltip,
                                const QString& value) {
    auto* edit = new QLineEdit(value, rows_);
    addRow(key, FieldKind::Text, label, tooltip, edit);
    connect(edit, &QLineEdit::textChanged, this, [this, key] { valueChanged(key); });
    return edit;
}

QToolButton* FeatureForm::addFlag(const QString& key, const QString& label, const QString& tooltip,
                                  bool value) {
    auto* button = new QToolButton(rows_);
    button->setObjectName(QStringLiteral("flagField"));
    button->setText(label);
    button->setCheckable(true);
    button->setChecked(value);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    addRow(key, FieldKind::Flag, label, tooltip, button);
    connect(button, &QToolButton::toggled, this, [this, key] { valueChanged(key); });
    return button;
}

QLabel* FeatureForm::addMessage(const QString& key, const QString& text) {
    auto* label = new QLabel(text, rows_);
    label->setObjectName(QStringLiteral("fieldLabel"));
    label->setWordWrap(true);
    addRow(key, FieldKind::Message, key, {}, label);
    return label;
}

void FeatureForm::showWhen(const QString& key, const QString& other, const QStringList& values) {
    Field* field = find(key);
    if (!field) return;
    field->when.emplace_back(other, values);
    applyVisibility();
}

bool FeatureForm::has(const QString& key) const { return find(key) != nullptr; }

FieldKind FeatureForm::kind(const QString& key) const {
    const Field* field = find(key);
    return field ? field->kind : FieldKind::Message;
}

bool FeatureForm::isShown(const QString& key) const {
    const Field* field = find(key);
    return field && field->shown;
}

QWidget* FeatureForm::editor(const QString& key) const {
    const Field* field = find(key);
    return field ? field->editor : nullptr;
}

QString FeatureForm::text(const QString& key) const {
    const Field* field = find(key);
    if (!field) return {};
    switch (field->kind) {
    case FieldKind::Length:
    case FieldKind::Number:
    case FieldKind::Text:
        return static_cast<QLineEdit*>(field->editor)->text().trimmed();
    case FieldKind::Integer:
        return QString::number(static_cast<QSpinBox*>(field->editor)->value());
    case FieldKind::Choice:
        if (auto* combo = qobject_cast<QComboBox*>(field->editor))
            return combo->currentData().toString();
        return segmentedValue(field->editor);
    case FieldKind::Flag:
        return static_cast<QToolButton*>(field->editor)->isChecked() ? QStringLiteral("true")
                                                                     : QStringLiteral("false");
    case FieldKind::Pick: {
        QStringList items;
        for (const std::string& reference : field->references)
            items << QString::fromStdString(reference);
        return items.join(QLatin1Char(';'));
    }
    case FieldKind::Section:
    case FieldKind::Message:
        break;
    }
    return {};
}

Result<double> FeatureForm::length(const QString& key) const {
    const Field* field = find(key);
    if (!field || (field->kind != FieldKind::Length && field->kind != FieldKind::Number))
        return fail("The form has no value named '" + key.toStdString() + "'.");
    Result<double> value = static_cast<LengthEdit*>(field->editor)->value();
    if (!value) return value.withPrefix(field->label.toStdString() + ": ");
    return value;
}

Result<double> FeatureForm::number(const QString& key) const { return length(key); }

int FeatureForm::integer(const QString& key) const {
    const Field* field = find(key);
    return field && field->kind == FieldKind::Integer
               ? static_cast<QSpinBox*>(field->editor)->value()
               : 0;
}

bool FeatureForm::flag(const QString& key) const { return text(key) == QStringLiteral("true"); }

const std::vector<std::string>& FeatureForm::references(const QString& key) const {
    static const std::vector<std::string> none;
    const Field* field = find(key);
    return field ? field->references : none;
}

void FeatureForm::setText(const QString& key, const QString& value) {
    Field* field = find(key);
    if (!field) return;
    switch (field->kind) {
    case FieldKind::Length:
    case FieldKind::Number:
    case FieldKind::Text:
        static_cast<QLineEdit*>(field->editor)->setText(value);
        break;
    case FieldKind::Integer:
        static_cast<QSpinBox*>(field->editor)->setValue(value.toInt());
        break;
    case FieldKind::Choice: {
        if (auto* combo = qobject_cast<QComboBox*>(field->editor)) {
            if (const int index = combo->findData(value); index >= 0) combo->setCurrentIndex(index);
            break;
        }
        for (auto* button : field->editor->findChildren<QToolButton*>())
            if (button->property(kSegmentValue).toString() == value) button->setChecked(true);
        break;
    }
    case FieldKind::Flag:
        setFlag(key, value == QStringLiteral("true"));
        break;
    case FieldKind::Pick: {
        std::vector<std::string> references;
        for (const QString& item : value.split(QLatin1Char(';'), Qt::SkipEmptyParts))
            references.push_back(item.trimmed().toStdString());
        setReferences(key, std::move(references));
        break;
    }
    case FieldKind::Message:
        static_cast<QLabel*>(field->editor)->setText(value);
        break;
    case FieldKind::Section:
        break;
    }
}

void FeatureForm::setFlag(const QString& key, bool value) {
    Field* field = find(key);
    if (field && field->kind == FieldKind::Flag)
        static_cast<QToolButton*>(field->editor)->setChecked(value);
}

void FeatureForm::setReadOnly(const QString& key, bool readOnly) {
    Field* field = find(key);
    if (!field) return;
    field->readOnly = readOnly;
    if (auto* edit = qobject_cast<QLineEdit*>(field->editor))
        edit->setReadOnly(readOnly);
    else if (field->editor)
        field->editor->setEnabled(!readOnly);
    if (field->kind == FieldKind::Pick) {
        if (readOnly && activePick_ == key) activatePick({});
        updatePickText(*field);
    }
}

void FeatureForm::revalidate() {
    for (auto& field : fields_)
        if (field->kind == FieldKind::Length || field->kind == FieldKind::Number)
            static_cast<LengthEdit*>(field->editor)->revalidate();
}

void FeatureForm::valueChanged(const QString& key) {
    applyVisibility();
    emit changed(key);
}

void FeatureForm::applyVisibility() {
    bool changedAny = false;
    for (auto& field : fields_) {
        bool shown = true;
        if (const Field* section = find(field->section); section && section->folded) shown = false;
        for (const auto& [other, values] : field->when)
            if (!values.contains(text(other))) shown = false;
        if (shown == field->shown) continue;
        field->shown = shown;
        changedAny = true;
        if (field->labelWidget) field->labelWidget->setVisible(shown);
        if (field->cell) field->cell->setVisible(shown);
        if (!shown && activePick_ == field->key) activatePick({});
    }
    if (changedAny) updateRowsHeight();
}

void FeatureForm::showMessage(const QString& text, bool error) {
    if (message_->text() == text && message_->property("error").toBool() == error) return;
    message_->setText(text);
    message_->setVisible(!text.isEmpty());
    message_->setProperty("error", error && !text.isEmpty());
    message_->style()->unpolish(message_);
    message_->style()->polish(message_);
    updateRowsHeight();
}

QString FeatureForm::message() const { return message_->text(); }

bool FeatureForm::messageIsError() const { return message_->property("error").toBool(); }

void FeatureForm::setPrimaryText(const QString& text) { primary_->setText(text); }

void FeatureForm::setAcceptEnabled(bool enabled) { primary_->setEnabled(enabled); }

bool FeatureForm::acceptEnabled() const { return primary_->isEnabled(); }

void FeatureForm::setMaximumRowsHeight(int height) {
    maxRowsHeight_ = std::max(60, height);
    updateRowsHeight();
}

void FeatureForm::updateRowsHeight() {
    grid_->invalidate();
    const int wanted = grid_->sizeHint().height();
    scroll_->setFixedHeight(std::min(wanted, maxRowsHeight_));
    // The card follows its content; its width is the owner's choice.
    if (layout()) {
        layout()->invalidate();
        const int height =
            hasHeightForWidth() && width() > 0 ? heightForWidth(width()) : sizeHint().height();
        resize(width(), height);
    }
}

bool FeatureForm::focusFirstValue() {
    for (auto& field : fields_)
        if ((field->kind == FieldKind::Length || field->kind == FieldKind::Number) &&
            field->shown && !field->readOnly) {
            auto* edit = static_cast<QLineEdit*>(field->editor);
            edit->setFocus(Qt::OtherFocusReason);
            edit->selectAll();
            return true;
        }
    return false;
}

void FeatureForm::requestAccept() {
    if (primary_->isEnabled()) emit acceptRequested();
}

bool FeatureForm::event(QEvent* event) {
    // Esc and Enter belong to the form while the focus is in it, not to the window's shortcuts.
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape || isReturn(key)) {
            event->accept();
            return true;
        }
    }
    return QFrame::event(event);
}

void FeatureForm::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        emit cancelRequested();
        return;
    }
    if (isReturn(event->key())) {
        requestAccept();
        return;
    }
    QFrame::keyPressEvent(event);
}

void FeatureForm::paintEvent(QPaintEvent* /*event*/) {
    // The card sits on the OpenGL picture, so it paints its own glass.
    paintGlassCard(*this);
}

} // namespace cad::ui
