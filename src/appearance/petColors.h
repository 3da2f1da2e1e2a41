#pragma once

#include "appearance/HexColor.h"

namespace orvo {

/// The companion's own colours, which do not follow the theme: it stands on the desktop.
struct PetColors {
    /// The symbol in place of a picture that is not there.
    Rgb missing = colorFromHex("00D9FF");
};

}  // namespace orvo
