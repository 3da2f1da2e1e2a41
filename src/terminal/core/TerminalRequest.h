#pragma once

#include "appearance/HexColor.h"
#include "terminal/core/DefaultColors.h"

#include <cstdint>
#include <string_view>

namespace orvo {

/// What a program asks of the world outside of its screen. The text is valid during the call only.
struct TerminalRequest {
    enum class Kind : std::uint8_t {
        Bell,
        /// `text` is the message as plain UTF-8, without control characters.
        Notify,
        /// `text` is base64, as it came.
        SetClipboard
    };
    Kind kind = Kind::Bell;
    std::string_view text;
};

/// The colours that the person sees, for programs that ask.
struct TerminalColors {
    Rgb text = defaultTextColor;
    Rgb background;
    Rgb cursor = defaultTextColor;

    bool operator==(const TerminalColors&) const = default;
    /// By the weights that sRGB gives to its channels.
    bool dark() const {
        return 2126 * background.red + 7152 * background.green + 722 * background.blue < 10'000 * 128;
    }
};

}  // namespace orvo
