#include "terminal/ui/GlyphCache.h"

#include <QGlyphRun>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

// Enough for two thousand pictures of two cells at 200 %.
constexpr qsizetype pictureBytes = qsizetype{8} << 20;

const QString emojiFamily = QStringLiteral("Noto Color Emoji");

QFont fontOfStyle(double fontSize, GlyphStyle style) {
    QFont font;
    font.setFamilies({QStringLiteral("JetBrains Mono"), QStringLiteral("DejaVu Sans Mono"),
                      QStringLiteral("Noto Sans Mono"), QStringLiteral("monospace")});
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(fontSize))));
    font.setBold(style == GlyphStyle::Bold || style == GlyphStyle::BoldItalic);
    font.setItalic(style == GlyphStyle::Italic || style == GlyphStyle::BoldItalic);
    // Hinting would round every advance to a whole pixel; the grid needs the true one.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

/// The exact advance of "M". Asked for at the size of the font's own units, because at small sizes the answer
/// is rounded, which a line of a hundred cells would show.
double advanceOfM(QRawFont font) {
    const double size = font.pixelSize();
    const double units = font.unitsPerEm() > 0 ? font.unitsPerEm() : 1000;
    font.setPixelSize(units);
    const QList<QPointF> advances =
        font.advancesForGlyphIndexes(font.glyphIndexesForString(QStringLiteral("M")));
    return advances.isEmpty() ? size * 0.6 : advances.first().x() / units * size;
}

/// Whether a cell's text is to be taken from the colour font although a text font has the character too.
bool isEmoji(const QString& text, bool wide) {
    if (text.contains(QChar(0xFE0F)) || text.contains(QChar(0x20E3))) return true;
    const uint first = text.toUcs4().value(0);
    // Wide characters of these blocks are those with emoji presentation, but for two angle brackets.
    return first >= 0x1F000
               ? first < 0x20000
               : wide && first >= 0x2300 && first <= 0x2BFF && first != 0x2329 && first != 0x232A;
}

}  // namespace

GlyphCache::GlyphCache(double fontSize) : m_fontSize(fontSize), m_pictures(pictureBytes) {
    for (std::size_t i = 0; i < m_fonts.size(); ++i) {
        m_fonts[i] = fontOfStyle(fontSize, static_cast<GlyphStyle>(i));
        m_rawFonts[i] = QRawFont::fromFont(m_fonts[i]);
        m_rawFonts[i].setPixelSize(fontSize);
    }
    const QRawFont& regular = rawFont(GlyphStyle::Regular);
    m_geometry.cellWidth = std::max(1.0, advanceOfM(regular));
    m_geometry.lineHeight = std::max(1, static_cast<int>(std::ceil(fontSize * 1.5)));
    m_baseline = (m_geometry.lineHeight - regular.ascent() - regular.descent()) / 2 + regular.ascent();
    m_lineThickness = std::max(1.0, regular.lineThickness());
    m_underlineOffset = regular.underlinePosition();
    m_strikeOffset = -regular.xHeight() / 2;
}

quint32 GlyphCache::glyph(char32_t character, GlyphStyle style) {
    // A scalar needs 21 bits, so the style fits above it.
    const quint32 key = (static_cast<quint32>(style) << 24) | static_cast<quint32>(character);
    if (const auto known = m_glyphs.constFind(key); known != m_glyphs.cend()) return *known;
    const QList<quint32> found = rawFont(style).glyphIndexesForString(QString::fromUcs4(&character, 1));
    const quint32 index = found.size() == 1 ? found.first() : 0;
    m_glyphs.insert(key, index);
    return index;
}

const QPixmap& GlyphCache::picture(const QString& text, GlyphStyle style, QRgb color, QSize size,
                                   double devicePixelRatio) {
    const PictureKey key{text, color, size, devicePixelRatio, style};
    if (const QPixmap* known = m_pictures.object(key)) return *known;
    // Never costlier than the cache allows, so that it stays in at least until the next call.
    const qsizetype cost = qsizetype{4} * size.width() * size.height() + 256;
    m_pictures.insert(key, new QPixmap(draw(key)), std::min(pictureBytes / 4, cost));
    return *m_pictures.object(key);
}

QPixmap GlyphCache::draw(const PictureKey& key) const {
    QPixmap picture(key.size);
    picture.setDevicePixelRatio(key.devicePixelRatio);
    picture.fill(Qt::transparent);

    const double width = key.size.width() / key.devicePixelRatio;
    const double height = key.size.height() / key.devicePixelRatio;
    const bool emoji = isEmoji(key.text, width > 1.5 * m_geometry.cellWidth);
    QFont font = m_fonts[static_cast<std::size_t>(key.style)];
    if (emoji) font.setFamilies(QStringList{emojiFamily} + font.families());

    QTextLayout layout(key.text, font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(1e6);
    layout.endLayout();
    const double natural = line.naturalTextWidth();
    if (natural <= 0) return picture;
    // Shrunk as a whole when too wide; emoji must fit in height too, since their font is taller than a line.
    double scale = std::min(1.0, width / natural);
    if (emoji) scale = std::min(scale, height / line.height());

    QPainter painter(&picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setPen(QColor::fromRgba(key.color));
    const double top = emoji ? (height - line.height() * scale) / 2 : m_baseline - line.ascent() * scale;
    painter.translate((width - natural * scale) / 2, top);
    painter.scale(scale, scale);
    layout.draw(&painter, QPointF(0, 0));
    return picture;
}

}  // namespace orvo
