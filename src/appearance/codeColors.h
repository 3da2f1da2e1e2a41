#pragma once

#include "appearance/HexColor.h"

namespace orvo {

/// The code editor's own colours. They do not follow the theme: each keeps a contrast of at least 5 on every
/// preset's background, the line numbers about 4.2.
struct CodeColors {
    Rgb text = colorFromHex("D0DEEB");
    Rgb keyword = colorFromHex("C0AAF9");
    Rgb number = colorFromHex("E3AF94");
    Rgb string = colorFromHex("83DFC0");
    Rgb comment = colorFromHex("6E869E");
    Rgb lineNumber = colorFromHex("617A93");
};

}  // namespace orvo
