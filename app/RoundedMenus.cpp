// The rounded-menu filter: prepares each menu window once, when it is first polished.
#include "app/RoundedMenus.h"

#include <QEvent>
#include <QMenu>

namespace cad::ui::theme {

RoundedMenus::RoundedMenus(QObject* parent) : QObject(parent) {}

bool RoundedMenus::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Polish) {
        auto* menu = qobject_cast<QMenu*>(watched);
        if (menu && !menu->testAttribute(Qt::WA_TranslucentBackground)) {
            menu->setWindowFlags(menu->windowFlags() | Qt::FramelessWindowHint |
                                 Qt::NoDropShadowWindowHint);
            menu->setAttribute(Qt::WA_TranslucentBackground);
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace cad::ui::theme
