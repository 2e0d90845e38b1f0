// A titled card floating over the 3D view; it paints its own glass background
// because it sits on top of an OpenGL picture, not on a styled parent.
#include "ui/widgets/OverlayPanel.h"

#include "ui/widgets/Icons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>
#include <QVBoxLayout>

namespace cad::ui {

namespace {
const QColor kGlass(30, 27, 24, 235); // the theme's panel colour at 92 % opacity
const QColor kBorder(0x3a, 0x34, 0x2e);
constexpr qreal kRadius = 10.0;
} // namespace

OverlayPanel::OverlayPanel(const QString& iconName, const QString& title, QWidget* content,
                           QWidget* parent)
    : QFrame(parent), content_(content) {
    setObjectName(QStringLiteral("overlayPanel"));

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(10, 8, 10, 10);
    outer->setSpacing(6);

    header_ = new QHBoxLayout;
    header_->setContentsMargins(0, 0, 0, 0);
    header_->setSpacing(6);
    auto* iconLabel = new QLabel(this);
    iconLabel->setPixmap(icon(iconName).pixmap(QSize(14, 14)));
    iconLabel->setFixedSize(14, 14);
    title_ = new QLabel(title, this);
    title_->setObjectName(QStringLiteral("panelTitle"));
    collapse_ = new QToolButton(this);
    collapse_->setAutoRaise(true);
    collapse_->setIconSize(QSize(14, 14));
    connect(collapse_, &QToolButton::clicked, this, [this] { setCollapsed(!collapsed_); });
    header_->addWidget(iconLabel);
    header_->addWidget(title_, 1);
    header_->addWidget(collapse_);
    outer->addLayout(header_);

    if (content_) {
        content_->setParent(this);
        outer->addWidget(content_, 1);
    }
    setCollapsed(false);
}

void OverlayPanel::addHeaderButton(QToolButton* button) {
    button->setParent(this);
    button->setAutoRaise(true);
    header_->insertWidget(header_->indexOf(collapse_), button);
}

void OverlayPanel::setCollapsed(bool collapsed) {
    const bool changed = collapsed != collapsed_;
    collapsed_ = collapsed;
    if (content_) content_->setVisible(!collapsed);
    // Expanded the chevron points up to fold the card; folded it points down.
    collapse_->setIcon(
        icon(collapsed ? QStringLiteral("caret-down") : QStringLiteral("chevron-up")));
    collapse_->setToolTip(collapsed ? QStringLiteral("Expand") : QStringLiteral("Collapse"));
    if (changed) {
        adjustSize();
        emit collapsedChanged(collapsed);
    }
}

void paintGlassCard(QWidget& card) {
    QPainter painter(&card);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(card.rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
    painter.fillPath(path, kGlass);
    painter.setPen(QPen(kBorder, 1.0));
    painter.drawPath(path);
}

void OverlayPanel::paintEvent(QPaintEvent* /*event*/) { paintGlassCard(*this); }

} // namespace cad::ui
