// Texts the main window builds from its state: rich action tooltips, the window
// title and the file name a "Save As" ends up with.
#pragma once

#include <QString>

namespace cad::ui {

// "<b>label</b>", then the shortcut and the description in the muted colour when given.
QString actionTooltip(const QString& label, const QString& shortcutText = {},
                      const QString& description = {});

// The chosen name with ".kv3" appended unless its suffix already is kv3 in any case.
QString saveAsFileName(const QString& chosen);

// "Korvel Studio — Untitled", or the complete base name, with " •" while modified.
QString windowTitleText(const QString& documentPath, bool modified);

// The project name the window shows: "Untitled" or the file's complete base name.
QString documentDisplayName(const QString& documentPath);

} // namespace cad::ui
