// Where the main window appears: where it was left when that is still on a screen,
// else a default size centred on the screen under the mouse.
#pragma once

#include <QList>
#include <QRect>

#include <optional>

class QWidget;

namespace cad::app {

// A restored frame that is at least half visible on one screen's available area (the
// screen it overlaps most), clamped into that area; nullopt when it is not visible
// enough and the default placement should be used instead.
std::optional<QRect> clampRestoredFrame(const QRect& frame, const QList<QRect>& availableAreas);

// 90 % of the available area, at most 1440 x 900, centred on it.
QRect defaultWindowRect(const QRect& available);

// Places the window from "window/geometry" in the application settings, or by default.
void restoreWindowGeometry(QWidget& window);

} // namespace cad::app
