// Applying the look to the application: style, palette, font, style sheet, menus.
#include "app/Theme.h"

#include "app/RoundedMenus.h"

#include <QApplication>
#include <QColor>
#include <QFont>
#include <QFontDatabase>
#include <QPointer>

namespace cad::ui::theme {

QPalette themePalette() {
    QPalette palette;
    const struct {
        QPalette::ColorRole role;
        QColor colour;
    } roles[] = {
        {QPalette::Window, QColor("#141210")},
        {QPalette::WindowText, QColor("#f1eee6")},
        {QPalette::Base, QColor("#1e1b18")},
        {QPalette::AlternateBase, QColor("#27231f")},
        {QPalette::Button, QColor("#27231f")},
        {QPalette::ButtonText, QColor("#f1eee6")},
        {QPalette::Text, QColor("#f1eee6")},
        {QPalette::BrightText, QColor(Qt::white)},
        {QPalette::Highlight, QColor("#d08045")},
        {QPalette::HighlightedText, QColor("#24120a")},
        {QPalette::ToolTipBase, QColor("#27231f")},
        {QPalette::ToolTipText, QColor("#f1eee6")},
        {QPalette::PlaceholderText, QColor("#a0978c")},
        {QPalette::Mid, QColor("#3a342e")},
        {QPalette::Dark, QColor("#100e0d")},
    };
    for (const auto& entry : roles) palette.setColor(entry.role, entry.colour);
    const QColor disabled("#766d62");
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
        palette.setColor(QPalette::Disabled, role, disabled);
    return palette;
}

QString themeFontFamily(const QStringList& installedFamilies) {
    for (const char* family : {"Segoe UI Variable Text", "Segoe UI"})
        if (installedFamilies.contains(QLatin1String(family), Qt::CaseSensitive))
            return QString::fromLatin1(family);
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

void applyTheme(QApplication& application) {
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setPalette(themePalette());

    QFont font(themeFontFamily(QFontDatabase::families()));
    font.setPointSizeF(9.5);
    QApplication::setFont(font);

    application.setStyleSheet(themeStyleSheet());

    static QPointer<RoundedMenus> menus;
    if (!menus) {
        menus = new RoundedMenus(&application);
        application.installEventFilter(menus);
    }
}

} // namespace cad::ui::theme
