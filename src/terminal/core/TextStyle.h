#pragma once

#include "terminal/core/TerminalCell.h"

#include <span>

namespace orvo {

/// Applies the parameters of "CSI … m" to the style that new characters take.
void applyGraphicRendition(TerminalCell& style, std::span<const int> parameters);

/// A colour by its number: the 16 of the palette, the 6 × 6 × 6 cube, and above it greys that end in white.
CellColor indexedColor(int number);

}  // namespace orvo
