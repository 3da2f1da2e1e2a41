#pragma once

#include "appearance/HexColor.h"

namespace orvo {

/// A colour with opacity (0 to 1).
struct Rgba {
    Rgb rgb;
    double alpha = 1;

    bool operator==(const Rgba&) const = default;
};

/// `base` moved by `amount` (0 to 1) toward `other`, component by component in sRGB.
Rgb mix(Rgb base, Rgb other, double amount);

/// What is seen when `paint` lies on an opaque `base`.
Rgb over(Rgba paint, Rgb base);

/// The contrast of two opaque colours as WCAG 2 defines it, from 1 (none) to 21.
double contrastRatio(Rgb first, Rgb second);

/// Black or white, whichever is easier to read on `fill`.
Rgb readableOn(Rgb fill);

}  // namespace orvo
