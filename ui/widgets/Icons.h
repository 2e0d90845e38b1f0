// The application's line icons: small SVGs compiled into the program and drawn
// in the theme's text colour (and its disabled colour) at the sizes the window uses.
#pragma once

#include <QIcon>
#include <QString>
#include <QStringList>

namespace cad::ui {

// The icon of that name, or a null QIcon when the set has none by that name.
QIcon icon(const QString& name);

// Every name the icon set holds, sorted.
QStringList iconNames();

} // namespace cad::ui
