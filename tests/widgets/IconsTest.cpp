// The icon set: every name the window asks for draws, in the theme's colours.
#include "ui/widgets/Icons.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

namespace {

using cad::ui::icon;

const char* const kNames[] = {
    "undo",         "redo",      "box",           "trash",      "fit",        "menu",
    "face",         "edge",      "vertex",        "terminal",   "origin",     "home",
    "document",     "save",      "save-modified", "chevron-up", "close",      "collapse-left",
    "expand-right", "book",      "tutorial",      "caret-up",   "caret-down", "caret-left",
    "caret-right",  "roll-left", "roll-right",    "units",      "folder",     "layers",
};

struct Ink {
    int pixels = 0;   // pixels with any coverage
    QColor strongest; // the colour of the most opaque pixel
};

Ink inkOf(const QPixmap& pixmap) {
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    Ink ink;
    int best = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.alpha() == 0) continue;
            ++ink.pixels;
            if (colour.alpha() > best) {
                best = colour.alpha();
                ink.strongest = colour;
            }
        }
    return ink;
}

bool near(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) < 12 && std::abs(a.green() - b.green()) < 12 &&
           std::abs(a.blue() - b.blue()) < 12;
}

TEST(Icons, EveryNameDrawsInTextAndDisabledColours) {
    for (const char* name : kNames) {
        const QIcon made = icon(QString::fromLatin1(name));
        ASSERT_FALSE(made.isNull()) << name;
        for (int size : {16, 18, 24, 32}) {
            const QPixmap pixmap = made.pixmap(QSize(size, size));
            EXPECT_EQ(pixmap.size(), QSize(size, size)) << name;
            const Ink ink = inkOf(pixmap);
            // A line icon covers a fair share of its square but never fills it.
            EXPECT_GT(ink.pixels, size * size / 12) << name << " at " << size;
            EXPECT_LT(ink.pixels, size * size * 9 / 10) << name << " at " << size;
        }
        const Ink normal = inkOf(made.pixmap(QSize(18, 18)));
        const Ink disabled = inkOf(made.pixmap(QSize(18, 18), QIcon::Disabled));
        if (QByteArray(name) != "save-modified") {
            EXPECT_TRUE(near(normal.strongest, QColor(0xf1, 0xee, 0xe6))) << name;
            EXPECT_TRUE(near(disabled.strongest, QColor(0x76, 0x6d, 0x62))) << name;
        }
    }
}

TEST(Icons, ModifiedSaveCarriesTheAccentDot) {
    const QImage image = icon(QStringLiteral("save-modified")).pixmap(QSize(32, 32)).toImage();
    int accent = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).alpha() == 255 &&
                near(image.pixelColor(x, y), QColor(0xd0, 0x80, 0x45)))
                ++accent;
    EXPECT_GT(accent, 20);
}

TEST(Icons, DoubleDensityPixmapsAreSharp) {
    const QPixmap pixmap = icon(QStringLiteral("box")).pixmap(QSize(18, 18), 2.0);
    EXPECT_EQ(pixmap.size(), QSize(36, 36));
    EXPECT_DOUBLE_EQ(pixmap.devicePixelRatio(), 2.0);
}

TEST(Icons, UnknownNamesGiveNullIcons) {
    EXPECT_TRUE(icon(QStringLiteral("no-such-icon")).isNull());
    EXPECT_TRUE(icon(QString()).isNull());
    EXPECT_TRUE(icon(QStringLiteral("../icons/box")).isNull());
    for (const char* name : kNames)
        EXPECT_TRUE(cad::ui::iconNames().contains(QString::fromLatin1(name))) << name;
}

} // namespace
