#include "appearance/HexColor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <system_error>

namespace orvo {
namespace {

struct ScalarRange {
    char32_t first;
    char32_t last;
};

#include "character_letters.inc"

constexpr bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Whether the one character that `bytes` are in UTF-8 is a letter or digit in the sense of Unicode.
bool isLetterOrDigit(std::string_view bytes) {
    const char32_t lead = static_cast<unsigned char>(bytes.front());
    char32_t scalar = lead < 0x80   ? lead
                      : lead < 0xE0 ? lead & 0x1F
                      : lead < 0xF0 ? lead & 0x0F
                                    : lead & 0x07;
    for (const char byte : bytes.substr(1)) {
        scalar = (scalar << 6) | (static_cast<unsigned char>(byte) & 0x3F);
    }
    const auto range = std::ranges::lower_bound(lettersAndNumbers, scalar, {}, &ScalarRange::last);
    return range != std::end(lettersAndNumbers) && range->first <= scalar;
}

std::string_view firstCharacter(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && length < 4 && isContinuation(text[length])) {
        ++length;
    }
    return text.substr(0, length);
}

std::string_view lastCharacter(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && length < 4 && isContinuation(text[text.size() - length])) {
        ++length;
    }
    return text.substr(text.size() - length);
}

}  // namespace

Rgb colorFromHex(std::string_view hex) {
    while (!hex.empty() && !isLetterOrDigit(firstCharacter(hex))) {
        hex.remove_prefix(firstCharacter(hex).size());
    }
    while (!hex.empty() && !isLetterOrDigit(lastCharacter(hex))) {
        hex.remove_suffix(lastCharacter(hex).size());
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
