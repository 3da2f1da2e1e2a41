#pragma once

#include "terminal/ui/CellGeometry.h"

#include <QCache>
#include <QFont>
#include <QHash>
#include <QPixmap>
#include <QRawFont>
#include <QRgb>
#include <QString>

#include <array>

namespace orvo {

enum class GlyphStyle : quint8 { Regular, Bold, Italic, BoldItalic };

/// The glyphs of one terminal font, looked up once. A plain character is a glyph index of the main font,
/// without shaping, so that no ligature forms; whatever the main font lacks or that needs shaping (marks,
/// emoji, other scripts) is a picture fitted into its cells.
class GlyphCache {
public:
    /// `fontSize` in dip.
    explicit GlyphCache(double fontSize);

    const CellGeometry& geometry() const { return m_geometry; }
    /// From the top of a line, in dip.
    double baseline() const { return m_baseline; }
    double fontSize() const { return m_fontSize; }
    /// Thickness and position (below the baseline) of an underline, in dip.
    double lineThickness() const { return m_lineThickness; }
    double underlineOffset() const { return m_underlineOffset; }
    double strikeOffset() const { return m_strikeOffset; }

    const QRawFont& rawFont(GlyphStyle style) const { return m_rawFonts[static_cast<std::size_t>(style)]; }
    /// With its fallbacks, for text that is laid out.
    const QFont& font(GlyphStyle style) const { return m_fonts[static_cast<std::size_t>(style)]; }

    /// 0 when the main font does not have the character.
    quint32 glyph(char32_t character, GlyphStyle style);

    /// A cell's text drawn into `size` device pixels. The reference is good until the next call.
    const QPixmap& picture(const QString& text, GlyphStyle style, QRgb color, QSize size,
                           double devicePixelRatio);

private:
    struct PictureKey {
        QString text;
        QRgb color;
        QSize size;
        double devicePixelRatio;
        GlyphStyle style;

        bool operator==(const PictureKey&) const = default;
        friend size_t qHash(const PictureKey& key, size_t seed) {
            return qHashMulti(seed, key.text, key.color, key.size.width(), key.size.height(),
                              static_cast<int>(key.style));
        }
    };

    QPixmap draw(const PictureKey& key) const;

    double m_fontSize;
    std::array<QFont, 4> m_fonts;
    std::array<QRawFont, 4> m_rawFonts;
    CellGeometry m_geometry;
    double m_baseline = 0;
    double m_lineThickness = 1;
    double m_underlineOffset = 0;
    double m_strikeOffset = 0;
    QHash<quint32, quint32> m_glyphs;
    QCache<PictureKey, QPixmap> m_pictures;
};

}  // namespace orvo
