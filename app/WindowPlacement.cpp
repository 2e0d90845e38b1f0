// Window placement: the rectangle arithmetic is pure so that it is tested without
// screens; restoreWindowGeometry only gathers the screens and applies the result.
#include "app/WindowPlacement.h"

#include "ui/DataPaths.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMargins>
#include <QScreen>
#include <QSettings>
#include <QWidget>

#include <algorithm>

namespace cad::app {

namespace {

qint64 area(const QRect& rect) {
    return rect.isEmpty() ? 0 : qint64(rect.width()) * qint64(rect.height());
}

// Moves [start, start + length) inside [low, high] when it pokes out.
int clampStart(int start, int length, int low, int high) {
    if (start < low) return low;
    if (start + length - 1 > high) return high + 1 - length;
    return start;
}

} // namespace

std::optional<QRect> clampRestoredFrame(const QRect& frame, const QList<QRect>& availableAreas) {
    // The screen the frame overlaps most; on a tie the first one found.
    const QRect* best = nullptr;
    qint64 bestArea = -1;
    for (const QRect& available : availableAreas) {
        const qint64 overlap = area(frame.intersected(available));
        if (overlap > bestArea) {
            best = &available;
            bestArea = overlap;
        }
    }
    if (!best || bestArea < area(frame) / 2) return std::nullopt;

    const int width = std::min(frame.width(), best->width());
    const int height = std::min(frame.height(), best->height());
    const int left = clampStart(frame.left(), width, best->left(), best->right());
    const int top = clampStart(frame.top(), height, best->top(), best->bottom());
    return QRect(left, top, width, height);
}

QRect defaultWindowRect(const QRect& available) {
    QRect rect(0, 0, std::min(available.width() * 90 / 100, 1440),
               std::min(available.height() * 90 / 100, 900));
    rect.moveCenter(available.center());
    return rect;
}

void restoreWindowGeometry(QWidget& window) {
    const QByteArray saved = cad::ui::appSettings()->value("window/geometry").toByteArray();
    if (!saved.isEmpty() && window.restoreGeometry(saved)) {
        if (window.isMaximized() || window.isFullScreen()) return;
        const QRect frame = window.frameGeometry();
        QList<QRect> areas;
        for (const QScreen* screen : QGuiApplication::screens())
            areas.append(screen->availableGeometry());
        if (const std::optional<QRect> clamped = clampRestoredFrame(frame, areas)) {
            if (*clamped == frame) return;
            const QRect client = window.geometry();
            const QMargins margins(client.left() - frame.left(), client.top() - frame.top(),
                                   frame.right() - client.right(),
                                   frame.bottom() - client.bottom());
            window.setGeometry(clamped->marginsRemoved(margins));
            return;
        }
    }

    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    window.setGeometry(defaultWindowRect(screen->availableGeometry()));
}

} // namespace cad::app
