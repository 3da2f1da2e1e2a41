#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace orvo {

/// Characters that are painted, not taken from a font: box drawing and block elements (U+2500 to U+259F),
/// which only then reach the edges of their cells and join without gaps; braille (U+2800 to U+28FF), of which
/// programs make pictures, and fonts only tell single letters; the scan lines (U+23BA to U+23BD), which few
/// fonts have.
constexpr bool isBoxCharacter(char32_t character) {
    return (character >= 0x2500 && character <= 0x259F) || (character >= 0x2800 && character <= 0x28FF) ||
           (character >= 0x23BA && character <= 0x23BD);
}

/// `cell` in dip, with its edges on whole pixels of the device; `lineWidth` is that of a light line, in dip.
void paintBoxCharacter(QPainter& painter, char32_t character, const QRectF& cell, const QColor& color,
                       double lineWidth, double devicePixelRatio);

}  // namespace orvo
