#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace orvo {

/// Box-drawing characters and block elements (U+2500 to U+259F) are painted, not taken from a font: only then
/// do they reach the edges of their cells and join without gaps. The scan lines (U+23BA to U+23BD) belong to
/// the same old character set, and few fonts have them.
constexpr bool isBoxCharacter(char32_t character) {
    return (character >= 0x2500 && character <= 0x259F) || (character >= 0x23BA && character <= 0x23BD);
}

/// `cell` in dip, with its edges on whole pixels of the device; `lineWidth` is that of a light line, in dip.
void paintBoxCharacter(QPainter& painter, char32_t character, const QRectF& cell, const QColor& color,
                       double lineWidth, double devicePixelRatio);

}  // namespace orvo
