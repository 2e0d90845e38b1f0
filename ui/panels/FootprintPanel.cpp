// The footprint panel's list, buttons and the commands it runs.
#include "ui/panels/FootprintPanel.h"

#include "sketch/footprints/FootprintLibrary.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStyle>
#include <QVBoxLayout>

namespace cad::ui {

FootprintPanel::FootprintPanel(Runner run, QWidget* parent)
    : QWidget(parent), run_(std::move(run)) {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(6);

    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("footprintList"));
    list_->setMinimumHeight(140);
    list_->setWordWrap(true);
    outer->addWidget(list_);

    auto* angleRow = new QHBoxLayout;
    auto* angleLabel = new QLabel(QStringLiteral("Angle"), this);
    angle_ = new QSpinBox(this);
    angle_->setObjectName(QStringLiteral("footprintAngle"));
    angle_->setRange(-360, 360);
    angle_->setSingleStep(90);
    angle_->setSuffix(QStringLiteral("°"));
    angle_->setToolTip(QStringLiteral("Degrees counter-clockwise (rectangles: multiples of 90)."));
    angleLabel->setBuddy(angle_);
    angleRow->addWidget(angleLabel);
    angleRow->addWidget(angle_, 1);
    outer->addLayout(angleRow);

    auto* buttons = new QHBoxLayout;
    place_ = new QPushButton(QStringLiteral("Place at Origin"), this);
    place_->setObjectName(QStringLiteral("placeFootprint"));
    place_->setToolTip(QStringLiteral("Place the chosen footprint with its reference point on "
                                      "the sketch origin"));
    click_ = new QPushButton(QStringLiteral("Place by Click"), this);
    click_->setObjectName(QStringLiteral("placeFootprintByClick"));
    click_->setCheckable(true);
    click_->setToolTip(QStringLiteral("Click in the sketch where the reference point goes"));
    buttons->addWidget(place_);
    buttons->addWidget(click_);
    outer->addLayout(buttons);

    remove_ = new QPushButton(QStringLiteral("Remove from Library"), this);
    remove_->setObjectName(QStringLiteral("removeFootprint"));
    outer->addWidget(remove_);

    message_ = new QLabel(this);
    message_->setObjectName(QStringLiteral("panelMessage"));
    message_->setWordWrap(true);
    message_->hide();
    outer->addWidget(message_);

    connect(list_, &QListWidget::currentRowChanged, this, [this] { updateButtons(); });
    connect(list_, &QListWidget::itemDoubleClicked, this, [this] { placeAt({0, 0}); });
    connect(place_, &QPushButton::clicked, this, [this] { placeAt({0, 0}); });
    connect(click_, &QPushButton::toggled, this, &FootprintPanel::clickPlacementToggled);
    connect(remove_, &QPushButton::clicked, this, [this] { removeChosen(); });
    updateButtons();
}

void FootprintPanel::refresh() {
    const QString was = chosen();
    list_->clear();
    for (const StoredFootprint& stored : FootprintLibrary().list()) {
        const Footprint& f = stored.footprint;
        const QString name = QString::fromStdString(f.name);
        QString details = QString::fromStdString(footprintContents(f));
        if (!f.description.empty())
            details = QString::fromStdString(f.description) + QStringLiteral(" · ") + details;
        auto* item = new QListWidgetItem(name + QLatin1Char('\n') + details, list_);
        item->setData(kNameRole, name);
        item->setToolTip(QString::fromStdString(stored.path));
    }
    if (list_->count() == 0) {
        showMessage(QStringLiteral("The library is empty. Save a sketch with Save as Footprint."),
                    false);
    } else if (!choose(was)) {
        list_->setCurrentRow(0);
    }
    updateButtons();
}

QString FootprintPanel::chosen() const {
    const QListWidgetItem* item = list_->currentItem();
    return item ? item->data(kNameRole).toString() : QString();
}

bool FootprintPanel::choose(const QString& name) {
    for (int row = 0; row < list_->count(); ++row)
        if (!name.isEmpty() && list_->item(row)->data(kNameRole).toString() == name) {
            list_->setCurrentRow(row);
            return true;
        }
    return false;
}

bool FootprintPanel::placeAt(Point2 at) {
    const QString name = chosen();
    if (name.isEmpty()) {
        showMessage(QStringLiteral("Choose a footprint to place."), true);
        return false;
    }
    CommandRecord record("place_footprint");
    record.set("sketch", sketch_.c_str())
        .set("footprint", name.toStdString().c_str())
        .set("x", at.x)
        .set("y", at.y)
        .set("angle", static_cast<double>(angle_->value()));
    const CommandResult result = run_(record);
    showMessage(QString::fromStdString(result.message), !result.ok);
    if (result.ok) emit placed(QString::fromStdString(result.message));
    return result.ok;
}

bool FootprintPanel::removeChosen() {
    const QString name = chosen();
    if (name.isEmpty()) return false;
    Result<std::string> removed = FootprintLibrary().remove(name.toStdString());
    refresh();
    showMessage(QString::fromStdString(removed ? *removed : removed.error()), !removed);
    return removed.ok();
}

QString FootprintPanel::message() const { return message_->text(); }

bool FootprintPanel::messageIsError() const { return message_->property("error").toBool(); }

void FootprintPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
}

void FootprintPanel::showMessage(const QString& text, bool error) {
    message_->setText(text);
    message_->setVisible(!text.isEmpty());
    message_->setProperty("error", error && !text.isEmpty());
    message_->style()->unpolish(message_);
    message_->style()->polish(message_);
}

void FootprintPanel::updateButtons() {
    const bool any = list_->currentItem() != nullptr;
    place_->setEnabled(any);
    click_->setEnabled(any);
    remove_->setEnabled(any);
    if (!any && click_->isChecked()) click_->setChecked(false);
}

} // namespace cad::ui
