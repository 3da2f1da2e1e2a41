#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orvo {

/// An opaque sRGB colour.
struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const Rgb&) const = default;
};

/// Reads six hexadecimal digits. Whatever is not a letter or digit is cut from both ends first, so a leading
/// "#" is allowed; a malformed text gives black.
Rgb colorFromHex(std::string_view hex);

/// Six upper-case digits, no "#".
std::string hexOf(Rgb color);

}  // namespace orvo
