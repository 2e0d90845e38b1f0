// One titled group of a tool strip: pinned or recently used tools as buttons, every
// tool in the title's menu, and the choices remembered under "toolbar/<key>/".
#include "ui/widgets/ToolGroup.h"

#include "ui/widgets/ToolMenuButton.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QSettings>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace cad::ui {

namespace {
constexpr int kIconSize = 18;
constexpr int kButtonWidth = 32;
const QString kRecentMode = QStringLiteral("recent");
const QString kPinnedMode = QStringLiteral("pinned");
} // namespace

QString actionKey(const QString& label) {
    QString key = label;
    key.remove(QLatin1Char('&'));
    key.remove(QStringLiteral("..."));
    key.remove(QChar(0x2026)); // a typographic ellipsis is the same three dots
    return key.trimmed();
}

QString actionKey(const QAction* action) { return action ? actionKey(action->text()) : QString(); }

ToolGroup::ToolGroup(const QString& key, const QString& title, const QList<QAction*>& allActions,
                     const QStringList& defaultPinned, QWidget* parent)
    : QWidget(parent), key_(key), title_(title) {
    for (QAction* action : allActions)
        if (action && !actions_.contains(action)) actions_ << action;

    // The default pinned set names only tools that exist; a group whose defaults
    // all are missing pins everything rather than show an empty row.
    for (const QString& name : defaultPinned) {
        const QString cleaned = actionKey(name);
        if (actionFor(cleaned) && !defaultPinned_.contains(cleaned)) defaultPinned_ << cleaned;
    }
    if (defaultPinned_.isEmpty())
        for (QAction* action : actions_) defaultPinned_ << actionKey(action);

    const QSettings settings;
    const QString prefix = QStringLiteral("toolbar/") + key_ + QLatin1Char('/');
    recent_ = settings.value(prefix + QStringLiteral("mode")).toString() == kRecentMode;
    pinned_ = settings.contains(prefix + QStringLiteral("pinned"))
                  ? settings.value(prefix + QStringLiteral("pinned")).toStringList()
                  : defaultPinned_;
    pinned_.removeAll(QString());
    used_ = settings.value(prefix + QStringLiteral("used")).toStringList();
    used_.removeAll(QString());
    while (used_.size() > kRecentCount) used_.removeLast();

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    row_ = new QHBoxLayout;
    row_->setContentsMargins(0, 0, 0, 0);
    row_->setSpacing(0);
    column->addLayout(row_);

    titleButton_ = new QToolButton(this);
    titleButton_->setObjectName(QStringLiteral("panelLabel"));
    titleButton_->setText(title_ + QStringLiteral(" \u25BE"));
    titleButton_->setToolTip(QStringLiteral("All %1 tools").arg(title_.toLower()));
    titleButton_->setAutoRaise(true);
    titleButton_->setPopupMode(QToolButton::InstantPopup);
    menu_ = new QMenu(this);
    titleButton_->setMenu(menu_);
    column->addWidget(titleButton_, 0, Qt::AlignHCenter);
    fillMenu();

    for (QAction* action : actions_) {
        connect(action, &QAction::triggered, this, [this, action] { noteUsed(action); });
        // Using a variant of a shared button counts as using the button's tool.
        if (QMenu* variants = action->menu<QMenu*>())
            for (QAction* variant : variants->actions())
                if (!actions_.contains(variant))
                    connect(variant, &QAction::triggered, this,
                            [this, action] { noteUsed(action); });
    }
    rebuild();
}

QAction* ToolGroup::actionFor(const QString& key) const {
    for (QAction* action : actions_)
        if (actionKey(action) == key) return action;
    return nullptr;
}

QList<QAction*> ToolGroup::shownActions() const {
    QList<QAction*> shown;
    if (recent_) {
        for (const QString& key : used_)
            if (QAction* action = actionFor(key); action && !shown.contains(action))
                shown << action;
        // Until something has been used the recent row shows the pinned tools.
        if (!shown.isEmpty()) return shown;
    }
    for (QAction* action : actions_)
        if (pinned_.contains(actionKey(action))) shown << action;
    return shown;
}

void ToolGroup::setRecentMode(bool recent) {
    if (recent == recent_) return;
    recent_ = recent;
    save();
    scheduleRebuild();
}

void ToolGroup::setPinned(const QString& key, bool pinned) {
    const QString cleaned = actionKey(key);
    if (pinned == pinned_.contains(cleaned)) return;
    if (pinned)
        pinned_ << cleaned;
    else
        pinned_.removeAll(cleaned);
    save();
    scheduleRebuild();
}

void ToolGroup::noteUsed(QAction* action) {
    const QString key = actionKey(action);
    used_.removeAll(key);
    used_.prepend(key);
    while (used_.size() > kRecentCount) used_.removeLast();
    save();
    if (recent_) scheduleRebuild();
}

void ToolGroup::save() const {
    QSettings settings;
    const QString prefix = QStringLiteral("toolbar/") + key_ + QLatin1Char('/');
    settings.setValue(prefix + QStringLiteral("mode"), recent_ ? kRecentMode : kPinnedMode);
    settings.setValue(prefix + QStringLiteral("pinned"), pinned_);
    settings.setValue(prefix + QStringLiteral("used"), used_);
}

// A button may be rebuilt from inside its own click, so the work waits for the loop.
void ToolGroup::scheduleRebuild() {
    if (rebuildPending_) return;
    rebuildPending_ = true;
    QTimer::singleShot(0, this, [this] {
        if (rebuildPending_) rebuild();
    });
}

void ToolGroup::rebuild() {
    rebuildPending_ = false;
    for (QToolButton* button : std::as_const(buttons_)) {
        row_->removeWidget(button);
        button->hide();
        button->deleteLater();
    }
    buttons_.clear();
    for (QAction* action : shownActions()) {
        QToolButton* button =
            action->menu<QMenu*>() ? new ToolMenuButton(action, this) : new QToolButton(this);
        if (!qobject_cast<ToolMenuButton*>(button)) button->setDefaultAction(action);
        button->setAutoRaise(true);
        button->setIconSize(QSize(kIconSize, kIconSize));
        const bool shared = qobject_cast<ToolMenuButton*>(button) && button->menu();
        button->setFixedWidth(kButtonWidth + (shared ? ToolMenuButton::kMenuPartWidth : 0));
        row_->addWidget(button);
        buttons_ << button;
    }
    updateGeometry();
    if (QWidget* owner = parentWidget())
        QApplication::postEvent(owner, new QEvent(QEvent::LayoutRequest));
    emit rebuilt();
}

void ToolGroup::fillMenu() {
    for (QAction* action : actions_) menu_->addAction(action);
    menu_->addSeparator();

    QMenu* toolbar = menu_->addMenu(QStringLiteral("Toolbar"));
    auto* modes = new QActionGroup(toolbar);
    modes->setExclusive(true);
    QAction* showPinned = toolbar->addAction(QStringLiteral("Show Pinned Tools"));
    QAction* showRecent = toolbar->addAction(QStringLiteral("Show Last %1 Used").arg(kRecentCount));
    for (QAction* mode : {showPinned, showRecent}) {
        mode->setCheckable(true);
        modes->addAction(mode);
    }
    connect(showPinned, &QAction::triggered, this, [this] { setRecentMode(false); });
    connect(showRecent, &QAction::triggered, this, [this] { setRecentMode(true); });

    menu_->addSection(QStringLiteral("Pinned"));
    QList<QAction*> pins;
    for (QAction* action : actions_) {
        const QString key = actionKey(action);
        QAction* pin = menu_->addAction(action->icon(), key);
        pin->setCheckable(true);
        pin->setData(key);
        connect(pin, &QAction::toggled, this, [this, key](bool on) { setPinned(key, on); });
        pins << pin;
    }

    // The checks follow the group's state each time the menu opens.
    connect(menu_, &QMenu::aboutToShow, this, [this, showPinned, showRecent, pins] {
        showPinned->setChecked(!recent_);
        showRecent->setChecked(recent_);
        for (QAction* pin : pins) {
            const QSignalBlocker quiet(pin);
            pin->setChecked(pinned_.contains(pin->data().toString()));
        }
    });
}

} // namespace cad::ui
