#pragma once

#include "appearance/ColorMath.h"

namespace orvo {

class Theme;

/// Every colour the interface is painted with, worked out of a theme's few once for each theme change.
/// Opaque where it can be; a blend where it lies on whatever is below it.
struct Roles {
    Rgb bg;
    Rgb surface;
    Rgb sidebar;
    Rgba border;
    Rgb muted;
    Rgb text;
    Rgb accent;

    /// Rows, outlined, plain and icon buttons under the pointer, and held down.
    Rgba hover;
    Rgba pressed;
    /// The chosen navigation entry, list row, tab.
    Rgba selected;
    Rgba segmentOn;
    Rgba menuHighlight;
    Rgba countBadge;
    /// The border of cards, buttons and fields under the pointer.
    Rgba borderStrong;
    /// Check boxes and switches that are off.
    Rgba controlOutline;
    Rgb cardHover;
    Rgb cardPressed;
    Rgb accentHover;
    Rgb accentPressed;
    /// Text and icons on a fill of accent, or of danger.
    Rgb onAccent;
    Rgb onDanger;
    Rgb danger;
    Rgba dangerBorder;
    Rgba dangerHover;
    Rgba dangerPressed;
    Rgb dangerFillHover;
    Rgb dangerFillPressed;
    /// The frame of the active session's pane while the focus is elsewhere.
    Rgb activePane;
    /// Captions on a selected row.
    Rgb mutedOnSelected;
    /// Fields, editors and previews inside a card; directly on a page a field is `surface`.
    Rgb well;
    /// Behind a sheet or an alert.
    Rgba dim;
    Rgba scrollThumb;
    Rgba scrollThumbHover;
    Rgba scrollThumbDrag;
    /// A tile without a colour of its own.
    Rgba tile;

    /// The fill of a tile with a glyph in `color`.
    static Rgba tileOf(Rgb color) { return {color, 0.14}; }
    /// The fill of a pill whose text is `color`; fainter for the muted one, which would not be readable on
    /// more.
    Rgba pillOf(Rgb color) const { return {color, color == muted ? 0.10 : 0.12}; }

    static Roles of(const Theme& theme);

    bool operator==(const Roles&) const = default;
};

}  // namespace orvo
