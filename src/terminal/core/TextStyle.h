#pragma once

#include "terminal/core/ControlSequence.h"
#include "terminal/core/TerminalCell.h"

namespace orvo {

/// What new characters look like.
struct TextStyle {
    /// Its content is not used, and its `extra` is the screen's affair.
    TerminalCell cell;
    CellColor underlineColor;
};

/// Applies the parameters of "CSI … m".
void applyGraphicRendition(TextStyle& style, const ControlSequence& sequence);

/// A colour by its number: the 16 of the palette, the 6 × 6 × 6 cube, and above it greys that end in white.
CellColor indexedColor(int number);

}  // namespace orvo
