// The look of Korvel Studio: Fusion style, a warm dark palette, the UI font and one
// application style sheet that styles widgets by object name through colour tokens.
#pragma once

#include <QPalette>
#include <QString>
#include <QStringList>

class QApplication;

namespace cad::ui::theme {

// Installs style, palette, font, style sheet and the rounded-menu filter. Calling it
// again re-applies the look without adding a second filter.
void applyTheme(QApplication& application);

// The application style sheet with every colour token replaced by its colour.
QString themeStyleSheet();

// The palette for every colour group, with dimmer text when disabled.
QPalette themePalette();

// "Segoe UI Variable Text" when installed, else "Segoe UI", else the system's UI font.
QString themeFontFamily(const QStringList& installedFamilies);

} // namespace cad::ui::theme
