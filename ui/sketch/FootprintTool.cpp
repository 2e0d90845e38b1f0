// Turning a click into the footprint's place, and Esc into giving up.
#include "ui/sketch/FootprintTool.h"

#include <QKeyEvent>

#include <cmath>

namespace cad::ui {

std::optional<Point2> FootprintTool::pointAt(QPointF pixel) const {
    std::optional<Point2> p = toSketch_ ? toSketch_(pixel) : std::nullopt;
    if (!p || !std::isfinite(p->x) || !std::isfinite(p->y)) return std::nullopt;
    const auto hundredths = [](double v) {
        const double r = std::round(v * 100.0) / 100.0;
        return r == 0 ? 0.0 : r; // no "-0"
    };
    return Point2{hundredths(p->x), hundredths(p->y)};
}

bool FootprintTool::mousePress(QPointF position, Qt::KeyboardModifiers) {
    const std::optional<Point2> at = pointAt(position);
    if (!at) return false; // off the plane: the view navigates as usual
    if (placed_) placed_(*at);
    return true;
}

bool FootprintTool::keyPress(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) return false;
    if (cancelled_) cancelled_();
    return true;
}

} // namespace cad::ui
