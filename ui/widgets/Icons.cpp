// The icon set: SVGs from the program's resources, recoloured and rasterised once
// per size so that every button gets a crisp pixmap in the theme's colours.
#include "ui/widgets/Icons.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace cad::ui {

namespace {

const QString kFolder = QStringLiteral(":/korvel/icons/");
constexpr const char* kTextColour = "#f1eee6";
constexpr const char* kDisabledColour = "#766d62";
// 16, 18, 24 and 32 pixels, and the same sizes on a doubled-density screen.
constexpr int kSizes[] = {16, 18, 24, 32};

// The icons draw with currentColor so one file serves every state.
QPixmap render(const QByteArray& svg, const char* colour, int size) {
    QByteArray coloured = svg;
    coloured.replace("currentColor", colour);
    QSvgRenderer renderer(coloured);
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    if (!renderer.isValid()) return pixmap;
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(0, 0, size, size));
    return pixmap;
}

QIcon build(const QByteArray& svg) {
    QIcon result;
    for (int size : kSizes) {
        for (int scale : {1, 2}) {
            QPixmap normal = render(svg, kTextColour, size * scale);
            QPixmap disabled = render(svg, kDisabledColour, size * scale);
            normal.setDevicePixelRatio(scale);
            disabled.setDevicePixelRatio(scale);
            result.addPixmap(normal, QIcon::Normal);
            result.addPixmap(disabled, QIcon::Disabled);
        }
    }
    return result;
}

} // namespace

QIcon icon(const QString& name) {
    static QHash<QString, QIcon> cache;
    if (const auto found = cache.constFind(name); found != cache.constEnd()) return *found;
    if (name.isEmpty() || name.contains(QLatin1Char('/'))) return {};
    QFile file(kFolder + name + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QIcon made = build(file.readAll());
    cache.insert(name, made);
    return made;
}

QStringList iconNames() {
    QStringList names;
    for (const QString& file : QDir(kFolder).entryList({QStringLiteral("*.svg")}, QDir::Files))
        names << file.chopped(4);
    names.sort();
    return names;
}

} // namespace cad::ui
