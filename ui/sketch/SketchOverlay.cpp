// The session's drawing layer: kept the size of its parent, transparent to the mouse
// and painted antialiased.
#include "ui/sketch/SketchOverlay.h"

#include <QEvent>
#include <QPainter>

namespace cad::ui {

SketchOverlay::SketchOverlay(QWidget* parent, std::function<void(QPainter&)> paint)
    : QWidget(parent), paint_(std::move(paint)) {
    setObjectName(QStringLiteral("sketchOverlay"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TranslucentBackground);
    setFocusPolicy(Qt::NoFocus);
    if (parent) {
        setGeometry(parent->rect());
        parent->installEventFilter(this);
    }
}

void SketchOverlay::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    if (paint_) paint_(painter);
}

bool SketchOverlay::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

} // namespace cad::ui
