#include "appearance/HexColor.h"

#include <array>
#include <charconv>
#include <system_error>

namespace orvo {
namespace {

constexpr bool isLetterOrDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z') || static_cast<unsigned char>(character) >= 0x80;
}

}  // namespace

Rgb colorFromHex(std::string_view hex) {
    while (!hex.empty() && !isLetterOrDigit(hex.front())) {
        hex.remove_prefix(1);
    }
    while (!hex.empty() && !isLetterOrDigit(hex.back())) {
        hex.remove_suffix(1);
    }
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
    if (error != std::errc() || end != hex.data() + hex.size()) return {};
    return {static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
            static_cast<std::uint8_t>(value)};
}

std::string hexOf(Rgb color) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t component : std::array{color.red, color.green, color.blue}) {
        text += digits[component >> 4];
        text += digits[component & 0x0F];
    }
    return text;
}

}  // namespace orvo
