// The text panel's rows and the commands it makes. Enter in the words starts a new
// line; Ctrl+Enter adds or applies, Esc cancels.
#include "ui/sketch/TextPanel.h"

#include "core/units/Format.h"
#include "sketch/text/TextOptions.h"
#include "ui/widgets/LengthEdit.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>

#include <cmath>

namespace cad::ui {

namespace {

const char* const kAligns[][2] = {
    {"left", "Left"}, {"center", "Center"}, {"right", "Right"}, {"justify", "Justify"}};

QLabel* rowLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("fieldLabel"));
    return label;
}

QToolButton* toggle(const QString& text, const QString& tip, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setText(text);
    button->setToolTip(tip);
    button->setCheckable(true);
    return button;
}

} // namespace

std::map<std::string, QString> textPanelValues(const SketchEntity& entity, units::Length unit) {
    const auto* text = std::get_if<SketchText>(&entity.geometry);
    if (!text) return {};
    auto flag = [](bool on) { return on ? QStringLiteral("true") : QStringLiteral("false"); };
    // The height in the unit the text shows its size in: points, or a length unit.
    QString height;
    if (text->sizeUnit == "pt") {
        const double points = std::round(text->height * 72 / 25.4 * 1e6) / 1e6;
        height = QString::fromStdString(formatShortest(points)) + QStringLiteral("pt");
    } else {
        const units::Length shown = units::parseUnitName(text->sizeUnit).value_or(unit);
        height = QString::fromStdString(units::formatLength(text->height, shown));
    }
    return {{"text", QString::fromStdString(text->text)},
            {"font", QString::fromStdString(text->font)},
            {"height", height},
            {"align", QString::fromUtf8(text::alignWord(text->align).data(),
                                        static_cast<qsizetype>(text::alignWord(text->align).size()))},
            {"bold", flag(text->bold)},
            {"italic", flag(text->italic)},
            {"angle", QString::fromStdString(formatShortest(text->angle))}};
}

TextPanel::TextPanel(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("textPanel"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(10, 8, 10, 8);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(6);

    entry_ = new QPlainTextEdit(this);
    entry_->setObjectName(QStringLiteral("textEntry"));
    entry_->setPlaceholderText(QStringLiteral("Type the text"));
    entry_->setTabChangesFocus(true);
    entry_->setFixedHeight(64);
    entry_->installEventFilter(this);
    grid->addWidget(entry_, 0, 0, 1, 2);

    font_ = new QComboBox(this);
    font_->setObjectName(QStringLiteral("textFont"));
    font_->setEditable(true);
    font_->addItems(QFontDatabase::families());
    font_->setCurrentText(QStringLiteral("Arial"));
    font_->setToolTip(QStringLiteral("An installed font family"));
    grid->addWidget(rowLabel(QStringLiteral("Font"), this), 1, 0);
    grid->addWidget(font_, 1, 1);

    height_ = new QLineEdit(QStringLiteral("5 mm"), this);
    height_->setObjectName(QStringLiteral("textHeight"));
    height_->setToolTip(QStringLiteral("Cap height, or a size in points such as 12pt"));
    grid->addWidget(rowLabel(QStringLiteral("Height"), this), 2, 0);
    grid->addWidget(height_, 2, 1);

    auto* aligns = new QFrame(this);
    aligns->setProperty("segmented", true);
    auto* alignRow = new QHBoxLayout(aligns);
    alignRow->setContentsMargins(0, 0, 0, 0);
    alignRow->setSpacing(2);
    for (const auto& [value, text] : kAligns) {
        QToolButton* button = toggle(QString::fromLatin1(text), {}, aligns);
        button->setAutoExclusive(true);
        button->setProperty("alignValue", QString::fromLatin1(value));
        alignRow->addWidget(button);
        aligns_[QString::fromLatin1(value)] = button;
    }
    aligns_[QStringLiteral("left")]->setChecked(true);
    grid->addWidget(rowLabel(QStringLiteral("Align"), this), 3, 0);
    grid->addWidget(aligns, 3, 1);

    auto* style = new QFrame(this);
    style->setProperty("segmented", true);
    auto* styleRow = new QHBoxLayout(style);
    styleRow->setContentsMargins(0, 0, 0, 0);
    styleRow->setSpacing(2);
    bold_ = toggle(QStringLiteral("Bold"), QStringLiteral("Bold letters"), style);
    italic_ = toggle(QStringLiteral("Italic"), QStringLiteral("Slanted letters"), style);
    styleRow->addWidget(bold_);
    styleRow->addWidget(italic_);
    grid->addWidget(rowLabel(QStringLiteral("Style"), this), 4, 0);
    grid->addWidget(style, 4, 1);

    angle_ = new LengthEdit(this, LengthEdit::Kind::Number);
    angle_->setText(QStringLiteral("0"));
    angle_->setObjectName(QStringLiteral("textAngle"));
    angle_->setToolTip(QStringLiteral("Turn of the whole text, degrees"));
    grid->addWidget(rowLabel(QStringLiteral("Angle"), this), 5, 0);
    grid->addWidget(angle_, 5, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    primary_ = new QPushButton(QStringLiteral("Add"), this);
    primary_->setObjectName(QStringLiteral("primaryButton"));
    buttons->addWidget(cancel_);
    buttons->addWidget(primary_);
    grid->addLayout(buttons, 6, 0, 1, 2);

    connect(cancel_, &QPushButton::clicked, this, &TextPanel::cancelled);
    connect(primary_, &QPushButton::clicked, this, &TextPanel::requestAccept);
    connect(entry_, &QPlainTextEdit::textChanged, this, &TextPanel::updateButton);
    connect(font_, &QComboBox::currentTextChanged, this, &TextPanel::updateButton);
    for (QLineEdit* edit : std::initializer_list<QLineEdit*>{height_, angle_})
        connect(edit, &QLineEdit::textChanged, this, &TextPanel::updateButton);
    for (QToolButton* button : {bold_, italic_})
        connect(button, &QToolButton::toggled, this, &TextPanel::updateButton);
    for (const auto& [value, button] : aligns_)
        connect(button, &QToolButton::toggled, this, &TextPanel::updateButton);
    updateButton();
}

QToolButton* TextPanel::alignButton(const QString& align) const {
    const auto it = aligns_.find(align);
    return it == aligns_.end() ? nullptr : it->second;
}

void TextPanel::startNew(const std::string& sketch, Point2 at) {
    sketch_ = sketch;
    entity_.clear();
    opening_.clear();
    at_ = at;
    entry_->clear();
    primary_->setText(QStringLiteral("Add"));
    updateButton();
    entry_->setFocus(Qt::OtherFocusReason);
}

void TextPanel::startEdit(const std::string& sketch, const std::string& entity,
                          const std::map<std::string, QString>& values) {
    sketch_ = sketch;
    entity_.clear(); // the rows fill before the edit starts
    setValues(values);
    opening_ = this->values();
    entity_ = entity;
    primary_->setText(QStringLiteral("Apply"));
    updateButton();
    entry_->setFocus(Qt::OtherFocusReason);
    entry_->selectAll();
}

std::map<std::string, QString> TextPanel::values() const {
    QString align = QStringLiteral("left");
    for (const auto& [value, button] : aligns_)
        if (button->isChecked()) align = value;
    auto flag = [](const QToolButton* b) {
        return b->isChecked() ? QStringLiteral("true") : QStringLiteral("false");
    };
    return {{"text", entry_->toPlainText()},  {"font", font_->currentText().trimmed()},
            {"height", height_->text().trimmed()}, {"align", align},
            {"bold", flag(bold_)},             {"italic", flag(italic_)},
            {"angle", angle_->text().trimmed()}};
}

void TextPanel::setValues(const std::map<std::string, QString>& values) {
    auto value = [&](const char* key, const QString& fallback) {
        const auto it = values.find(key);
        return it == values.end() ? fallback : it->second;
    };
    entry_->setPlainText(value("text", {}));
    font_->setCurrentText(value("font", QStringLiteral("Arial")));
    height_->setText(value("height", QStringLiteral("5 mm")));
    if (QToolButton* align = alignButton(value("align", QStringLiteral("left"))))
        align->setChecked(true);
    bold_->setChecked(value("bold", {}) == QStringLiteral("true"));
    italic_->setChecked(value("italic", {}) == QStringLiteral("true"));
    angle_->setText(value("angle", QStringLiteral("0")));
}

Result<CommandRecord> TextPanel::record() const {
    std::map<std::string, QString> now = values();
    if (now["text"].trimmed().isEmpty()) return fail("The text is empty.");
    Result<double> angle = angle_->value();
    if (!angle) return Error(angle);

    CommandRecord record(isEditing() ? "edit_sketch_entity" : "add_text");
    record.set("sketch", sketch_);
    if (isEditing()) record.set("entity", entity_);
    // New text says what differs from the defaults; an edit, what differs from the text.
    const std::map<std::string, QString> defaults{
        {"align", QStringLiteral("left")}, {"bold", QStringLiteral("false")},
        {"italic", QStringLiteral("false")}};
    auto wanted = [&](const std::string& key) {
        if (isEditing()) {
            const auto was = opening_.find(key);
            return was == opening_.end() || was->second != now[key];
        }
        const auto fallback = defaults.find(key);
        return fallback == defaults.end() || fallback->second != now[key];
    };
    for (const char* key : {"text", "font", "height"})
        if (wanted(key)) record.set(key, now[key].toStdString());
    if (!isEditing()) record.set("x", at_.x).set("y", at_.y);
    if (wanted("height") && now["height"].endsWith(QStringLiteral("pt")))
        record.set("size_unit", "pt");
    if (wanted("angle") && (isEditing() || *angle != 0)) record.set("angle", *angle);
    if (wanted("align")) record.set("align", now["align"].toStdString());
    for (const char* key : {"bold", "italic"})
        if (wanted(key)) record.set(key, now[key] == QStringLiteral("true"));
    if (isEditing() && record.arguments.size() == 2) return fail("Nothing has changed.");
    return record;
}

void TextPanel::updateButton() {
    const Result<CommandRecord> made = record();
    primary_->setEnabled(made.ok());
    primary_->setToolTip(made ? QString() : QString::fromStdString(made.error()));
}

void TextPanel::requestAccept() {
    if (record()) emit accepted();
}

void TextPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        emit cancelled();
        return;
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        requestAccept();
        return;
    }
    QFrame::keyPressEvent(event);
}

bool TextPanel::eventFilter(QObject* watched, QEvent* event) {
    // In the words Enter starts a line; Ctrl+Enter adds, Esc cancels.
    if (watched == entry_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape) {
            emit cancelled();
            return true;
        }
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
            key->modifiers().testFlag(Qt::ControlModifier)) {
            requestAccept();
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace cad::ui
