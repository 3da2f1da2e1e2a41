#include "appearance/ControlFixture.h"
#include "appearance/Theme.h"
#include "appearance/controls/OrvoMark.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

namespace orvo {
namespace {

using Symbols = test::ControlFixture;

constexpr bool builtWithIcons = ORVO_ICONS;

QStringList tableNames() {
    QFile table(QStringLiteral(ORVO_SYMBOLS));
    EXPECT_TRUE(table.open(QIODevice::ReadOnly));
    QStringList names;
    for (const QByteArray& row : table.readAll().split('\n')) {
        if (!row.isEmpty() && !row.startsWith('#')) names << QString::fromUtf8(row.left(row.indexOf('\t')));
    }
    return names;
}

/// The number of pixels that are at least half covered.
int inked(const QPixmap& pixmap) {
    const QImage image = pixmap.toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y).alpha() > 127 ? 1 : 0;
    }
    return count;
}

TEST_F(Symbols, EveryRowOfTheTableHasADrawingOfItsOwn) {
    if (!builtWithIcons) GTEST_SKIP() << "built with ORVO_ICONS off";
    const QStringList names = tableNames();
    ASSERT_GT(names.size(), 60);
    const QImage unknown = symbolPixmap(QStringLiteral("no.such.symbol"), Qt::white, 32, 1).toImage();
    for (const QString& name : names) {
        const QPixmap pixmap = symbolPixmap(name, Qt::white, 32, 1);
        EXPECT_GT(inked(pixmap), 8) << name.toStdString();
        EXPECT_EQ(pixmap.toImage() == unknown, name == u"puzzlepiece.extension") << name.toStdString();
    }
}

TEST_F(Symbols, AreDrawnInTheColorAndScaleAskedFor) {
    if (!builtWithIcons) GTEST_SKIP() << "built with ORVO_ICONS off";
    const QPixmap red = symbolPixmap(QStringLiteral("stop"), QColor(200, 10, 20), 16, 2);
    EXPECT_EQ(red.size(), QSize(32, 32));
    EXPECT_EQ(red.devicePixelRatio(), 2);
    EXPECT_EQ(red.toImage().pixelColor(16, 16), QColor(200, 10, 20));
    const QPixmap blue = symbolPixmap(QStringLiteral("stop"), QColor(0, 0, 255), 16, 2);
    EXPECT_EQ(blue.toImage().pixelColor(16, 16), QColor(0, 0, 255));
    const QPixmap faint = symbolPixmap(QStringLiteral("stop"), QColor(0, 0, 255, 128), 16, 2);
    EXPECT_NEAR(faint.toImage().pixelColor(16, 16).alpha(), 128, 1);
}

TEST_F(Symbols, OneThatIsPreparedMeanwhileIsTheSameDrawing) {
    if (!builtWithIcons) GTEST_SKIP() << "built with ORVO_ICONS off";
    // Sizes that no other test asks for, so that each is drawn here, by either thread.
    for (int size = 41; size < 57; ++size) {
        prepareSymbol(QStringLiteral("folder"), size);
        const QImage prepared = symbolPixmap(QStringLiteral("folder"), Qt::white, size, 1).toImage();
        EXPECT_GT(inked(QPixmap::fromImage(prepared)), 2 * size);
        const QString unknown = QStringLiteral("no.such.symbol");
        EXPECT_NE(prepared, symbolPixmap(unknown, Qt::white, size, 1).toImage());
    }
}

TEST_F(Symbols, AConnectorsColourGivesWayOnlyWhereItWouldNotBeSeen) {
    for (const ThemePreset& preset : ThemePreset::all()) {
        theme.apply(preset);
        const Roles roles = Roles::of(theme);
        for (const Rgb hidden : {Rgb{0, 0, 0}, roles.surface})
            EXPECT_EQ(symbolColor(hidden, roles), roles.muted) << qPrintable(preset.id);
        for (const Rgb own : {Rgb{0xD9, 0x77, 0x57}, Rgb{0x5B, 0x8D, 0xEF}, Rgb{255, 255, 255}})
            EXPECT_EQ(symbolColor(own, roles), own) << qPrintable(preset.id);
    }
}

TEST_F(Symbols, LinesAreAsThickAtEverySize) {
    if (!builtWithIcons) GTEST_SKIP() << "built with ORVO_ICONS off";
    // The upright of the plus sign, measured across: the sum of what its pixels cover.
    for (const int size : {14, 16, 18, 20, 32}) {
        const QImage image = symbolPixmap(QStringLiteral("plus"), Qt::white, size, 4).toImage();
        double covered = 0;
        for (int x = 0; x < image.width(); ++x)
            covered += image.pixelColor(x, image.height() / 3).alphaF();
        EXPECT_NEAR(covered / 4, 1.5, 0.15) << size;
    }
}

TEST_F(Symbols, BordersAreOnePixelOfFullStrengthAtEveryWholeScale) {
    for (const int dpr : {1, 2, 3}) {
        QImage image(40 * dpr, 40 * dpr, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(dpr);
        image.fill(Qt::black);
        QPainter painter(&image);
        strokeRounded(painter, QRectF(4, 4, 32, 32), 8, Qt::white);
        painter.end();
        for (int offset = 0; offset < 6 * dpr; ++offset) {
            const int lightness = image.pixelColor(offset, 20 * dpr).red();
            const bool onLine = offset >= 4 * dpr && offset < 5 * dpr;
            EXPECT_EQ(lightness, onLine ? 255 : 0) << "scale " << dpr << ", pixel " << offset;
        }
    }
}

TEST_F(Symbols, TheApplicationIconIsDrawnFromTheBrandMark) {
    QSvgRenderer icon(QStringLiteral(ORVO_ICON));
    ASSERT_TRUE(icon.isValid());
    QImage drawn(256, 256, QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    icon.render(&painter);
    painter.end();
    EXPECT_EQ(drawn.pixelColor(0, 0).alpha(), 0) << "round corners";
    const auto at = [&](QPointF point) {
        return drawn.pixelColor((QPointF(20, 20) + point * 6.75).toPoint());
    };
    EXPECT_EQ(at(brand::dot()), QColor(0x00, 0xD9, 0xFF));
    EXPECT_EQ(at({16, 16 - 7.4}), QColor(0xEC, 0xEB, 0xE6));
    EXPECT_EQ(at({16, 16}), QColor(0x14, 0x14, 0x13));
    EXPECT_EQ(at(brand::orbit().pointAtPercent(0.5)), QColor(0x00, 0xD9, 0xFF));
}

}  // namespace
}  // namespace orvo
