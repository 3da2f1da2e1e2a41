#pragma once

#include "appearance/HexColor.h"

namespace orvo {

/// Text that has no colour of its own.
inline constexpr Rgb defaultTextColor{0xD0, 0xDE, 0xEB};

}  // namespace orvo
