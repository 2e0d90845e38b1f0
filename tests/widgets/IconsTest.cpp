// The icon set: every name the window asks for draws, in the theme's colours.
#include "ui/widgets/Icons.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

namespace {

using cad::ui::icon;

struct Ink {
    int pixels = 0;   // pixels with any coverage
    int accent = 0;   // opaque pixels in the accent colour
    QColor strongest; // the colour of the most opaque pixel
};

bool near(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) < 12 && std::abs(a.green() - b.green()) < 12 &&
           std::abs(a.blue() - b.blue()) < 12;
}

Ink inkOf(const QPixmap& pixmap) {
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    Ink ink;
    int best = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.alpha() == 0) continue;
            ++ink.pixels;
            if (colour.alpha() == 255 && near(colour, QColor(0xd0, 0x80, 0x45))) ++ink.accent;
            if (colour.alpha() > best) {
                best = colour.alpha();
                ink.strongest = colour;
            }
        }
    return ink;
}

TEST(Icons, EveryNameDrawsInTextAndDisabledColours) {
    ASSERT_GT(cad::ui::iconNames().size(), 25);
    for (const QString& name : cad::ui::iconNames()) {
        const QIcon made = icon(name);
        ASSERT_FALSE(made.isNull()) << name.toStdString();
        for (int size : {16, 24, 32}) {
            const Ink ink = inkOf(made.pixmap(QSize(size, size)));
            // A line icon covers a fair share of its square but never fills it.
            EXPECT_GT(ink.pixels, size * size / 12) << name.toStdString() << " at " << size;
            EXPECT_LT(ink.pixels, size * size * 9 / 10) << name.toStdString() << " at " << size;
        }
        if (name == QStringLiteral("save-modified")) {
            EXPECT_GT(inkOf(made.pixmap(QSize(32, 32))).accent, 20) << "the unsaved dot";
            continue;
        }
        EXPECT_TRUE(near(inkOf(made.pixmap(QSize(18, 18))).strongest, QColor(0xf1, 0xee, 0xe6)))
            << name.toStdString();
        EXPECT_TRUE(near(inkOf(made.pixmap(QSize(18, 18), QIcon::Disabled)).strongest,
                         QColor(0x76, 0x6d, 0x62)))
            << name.toStdString();
    }
}

TEST(Icons, UnknownNamesGiveNullIcons) {
    EXPECT_TRUE(icon(QStringLiteral("no-such-icon")).isNull());
    EXPECT_TRUE(icon(QString()).isNull());
    EXPECT_TRUE(icon(QStringLiteral("../icons/box")).isNull());
    for (const char* used : {"body", "face", "edge", "vertex", "trash", "save-modified"})
        EXPECT_TRUE(cad::ui::iconNames().contains(QString::fromLatin1(used))) << used;
}

} // namespace
