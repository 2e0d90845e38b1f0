// Menus with rounded corners: a frameless, translucent menu window lets the style
// sheet's border radius show instead of a square window behind it.
#pragma once

#include <QObject>

namespace cad::ui::theme {

// An application event filter; on a menu's polish event it makes the menu window
// frameless, shadowless and translucent. It never consumes an event.
class RoundedMenus : public QObject {
public:
    explicit RoundedMenus(QObject* parent = nullptr);
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace cad::ui::theme
