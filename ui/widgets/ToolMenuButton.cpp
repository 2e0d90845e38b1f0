// A tool button for several variants of one tool; the last variant used is its face.
#include "ui/widgets/ToolMenuButton.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>

namespace cad::ui {

namespace {
// The face is kept on the holder action, so a rebuilt row shows the same variant.
constexpr const char* kFaceProperty = "toolMenuFace";
} // namespace

ToolMenuButton::ToolMenuButton(QAction* holder, QWidget* parent)
    : QToolButton(parent), holder_(holder) {
    setObjectName(QStringLiteral("toolMenuButton"));
    setAutoRaise(true);
    setPopupMode(QToolButton::MenuButtonPopup);
    QMenu* variants = holder ? holder->menu<QMenu*>() : nullptr;
    if (!variants || variants->actions().isEmpty()) {
        if (holder) setDefaultAction(holder);
        return;
    }
    setMenu(variants);
    for (QAction* variant : variants->actions()) {
        if (variant->isSeparator()) continue;
        connect(variant, &QAction::triggered, this, [this, variant] { showVariant(variant); });
    }
    QAction* face = nullptr;
    const int index = holder->property(kFaceProperty).toInt();
    if (index >= 0 && index < variants->actions().size()) face = variants->actions().at(index);
    if (!face || face->isSeparator()) face = variants->actions().first();
    setDefaultAction(face);
}

void ToolMenuButton::showVariant(QAction* variant) {
    if (QMenu* variants = menu())
        holder_->setProperty(kFaceProperty, variants->actions().indexOf(variant));
    if (defaultAction() == variant) return;
    setDefaultAction(variant);
    // setDefaultAction keeps the variants' menu as the drop-down.
    setPopupMode(QToolButton::MenuButtonPopup);
}

void ToolMenuButton::paintEvent(QPaintEvent* event) {
    QToolButton::paintEvent(event);
    if (!menu()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF tip(width() - kMenuPartWidth / 2.0, height() / 2.0 + 2.0);
    QPainterPath caret;
    caret.moveTo(tip + QPointF(-3.0, -3.0));
    caret.lineTo(tip + QPointF(3.0, -3.0));
    caret.lineTo(tip);
    caret.closeSubpath();
    painter.fillPath(caret, isEnabled() ? QColor(0xa0, 0x97, 0x8c) : QColor(0x76, 0x6d, 0x62));
}

} // namespace cad::ui
