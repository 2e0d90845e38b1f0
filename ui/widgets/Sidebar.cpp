// The sidebar: workspaces on top, links and the version at the bottom, and a toggle
// between labelled buttons and a narrow column of icons.
#include "ui/widgets/Sidebar.h"

#include "ui/widgets/Icons.h"

#include <QAction>
#include <QButtonGroup>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>

namespace cad::ui {

namespace {
const QString kExpandedKey = QStringLiteral("ui/sidebarExpanded");
constexpr const char* kLabelProperty = "sidebarLabel";
constexpr int kButtonHeight = 34;
constexpr int kMargin = 6;

QString plainLabel(const QString& text) {
    QString label = text;
    label.remove(QLatin1Char('&'));
    return label;
}
} // namespace

Sidebar::Sidebar(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("sidebar"));
    setAttribute(Qt::WA_StyledBackground);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, 8, kMargin, 8);
    column->setSpacing(4);
    workspaces_ = new QVBoxLayout;
    workspaces_->setSpacing(2);
    links_ = new QVBoxLayout;
    links_->setSpacing(2);
    column->addLayout(workspaces_);
    column->addStretch(1);
    column->addLayout(links_);

    workspaceGroup_ = new QButtonGroup(this);
    workspaceGroup_->setExclusive(true);

    toggle_ = makeButton(QStringLiteral("sidebarToggle"), QIcon(), QString());
    column->addWidget(toggle_);
    connect(toggle_, &QPushButton::clicked, this, [this] { setExpanded(!expanded_); });

    expanded_ = QSettings().value(kExpandedKey, true).toBool();
    applyExpanded();
}

QPushButton* Sidebar::makeButton(const QString& objectName, const QIcon& buttonIcon,
                                 const QString& label) {
    auto* button = new QPushButton(buttonIcon, label, this);
    button->setObjectName(objectName);
    button->setProperty("sidebar", true);
    button->setProperty(kLabelProperty, label);
    button->setIconSize(QSize(18, 18));
    button->setFixedHeight(kButtonHeight);
    button->setFocusPolicy(Qt::NoFocus);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

QPushButton* Sidebar::addWorkspaceButton(QAction* action, const QString& objectName) {
    const QString label = plainLabel(action->text());
    QPushButton* button = makeButton(objectName, action->icon(), label);
    button->setCheckable(true);
    button->setToolTip(action->toolTip().isEmpty() ? label : action->toolTip());
    workspaceGroup_->addButton(button);
    workspaces_->addWidget(button);
    labelled_ << button;
    if (workspaceGroup_->buttons().size() == 1 || action->isChecked()) button->setChecked(true);

    connect(button, &QPushButton::clicked, action, [action] {
        // A checkable action that is already on stays on; anything else is triggered.
        if (!action->isCheckable() || !action->isChecked()) action->trigger();
    });
    connect(action, &QAction::triggered, button, [button] { button->setChecked(true); });
    connect(action, &QAction::toggled, button, [button](bool on) {
        if (on) button->setChecked(true);
    });
    connect(action, &QAction::changed, button, [button, action] {
        button->setEnabled(action->isEnabled());
        button->setVisible(action->isVisible());
    });
    applyExpanded();
    return button;
}

QPushButton* Sidebar::addLinkButton(const QString& objectName, const QString& iconName,
                                    const QString& label, std::function<void()> onClick) {
    QPushButton* button = makeButton(objectName, icon(iconName), label);
    button->setToolTip(label);
    links_->addWidget(button);
    labelled_ << button;
    connect(button, &QPushButton::clicked, this, [onClick] {
        if (onClick) onClick();
    });
    applyExpanded();
    return button;
}

QPushButton* Sidebar::setVersionButton(const QString& text, std::function<void()> onClick) {
    if (!version_) {
        version_ = new QPushButton(this);
        version_->setObjectName(QStringLiteral("versionButton"));
        version_->setToolTip(QStringLiteral("Check for Updates"));
        version_->setFocusPolicy(Qt::NoFocus);
        version_->setCursor(Qt::PointingHandCursor);
        version_->setStyleSheet(QStringLiteral(
            "QPushButton { color: #857c71; background: transparent; border: none; font-size: "
            "7pt; padding: 2px 0; }QPushButton:hover { color: #f1eee6; }"));
        layout()->addWidget(version_);
    }
    version_->setText(text);
    disconnect(version_, &QPushButton::clicked, nullptr, nullptr);
    connect(version_, &QPushButton::clicked, this, [onClick] {
        if (onClick) onClick();
    });
    return version_;
}

void Sidebar::setExpanded(bool expanded) {
    if (expanded == expanded_) return;
    expanded_ = expanded;
    QSettings().setValue(kExpandedKey, expanded_);
    applyExpanded();
    emit expandedChanged(expanded_);
}

void Sidebar::applyExpanded() {
    setFixedWidth(expanded_ ? kExpandedWidth : kCollapsedWidth);
    for (QPushButton* button : std::as_const(labelled_))
        button->setText(expanded_ ? button->property(kLabelProperty).toString() : QString());
    toggle_->setIcon(
        icon(expanded_ ? QStringLiteral("collapse-left") : QStringLiteral("expand-right")));
    toggle_->setText(expanded_ ? QStringLiteral("Collapse") : QString());
    toggle_->setToolTip(expanded_ ? QStringLiteral("Collapse Sidebar")
                                  : QStringLiteral("Expand Sidebar"));
}

} // namespace cad::ui
