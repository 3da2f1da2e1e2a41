#include "terminal/core/Utf8Decoder.h"

#include "terminal/core/CharacterProperties.h"

#include <algorithm>
#include <utility>

namespace orvo {
namespace {

bool isWhiteSpace(char32_t scalar) {
    return (characterProperties(scalar) & WhiteSpace) != 0;
}

/// The first scalar of well-formed, non-empty text, and its length in bytes.
std::pair<char32_t, std::size_t> firstScalar(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) return {lead, 1};
    char32_t scalar = lead < 0xE0 ? lead & 0x1Fu : lead < 0xF0 ? lead & 0x0Fu : lead & 0x07u;
    std::size_t length = 1;
    while (length < text.size() && Utf8Decoder::isContinuation(text[length])) {
        scalar = (scalar << 6) | (static_cast<unsigned char>(text[length++]) & 0x3Fu);
    }
    return {scalar, length};
}

}  // namespace

void appendUtf8(std::string& text, char32_t scalar) {
    const auto add = [&text](char32_t byte) {
        text.push_back(static_cast<char>(byte));
    };
    if (scalar < 0x80) {
        add(scalar);
    } else if (scalar < 0x800) {
        add(0xC0 | (scalar >> 6));
        add(0x80 | (scalar & 0x3F));
    } else if (scalar < 0x10000) {
        add(0xE0 | (scalar >> 12));
        add(0x80 | ((scalar >> 6) & 0x3F));
        add(0x80 | (scalar & 0x3F));
    } else {
        add(0xF0 | (scalar >> 18));
        add(0x80 | ((scalar >> 12) & 0x3F));
        add(0x80 | ((scalar >> 6) & 0x3F));
        add(0x80 | (scalar & 0x3F));
    }
}

std::string_view trimWhiteSpace(std::string_view text) {
    while (!text.empty()) {
        const auto [scalar, length] = firstScalar(text);
        if (!isWhiteSpace(scalar)) break;
        text.remove_prefix(length);
    }
    while (!text.empty()) {
        std::size_t start = text.size() - 1;
        while (start > 0 && Utf8Decoder::isContinuation(text[start])) {
            --start;
        }
        if (!isWhiteSpace(firstScalar(text.substr(start)).first)) break;
        text.remove_suffix(text.size() - start);
    }
    return text;
}

Utf8Decoder::Subpart Utf8Decoder::maximalSubpart(const char* bytes, int count) {
    const auto at = [bytes](int index) {
        return static_cast<unsigned char>(bytes[index]);
    };
    const unsigned char lead = at(0);
    if (lead < 0xC2 || lead > 0xF4) return {replacement, 1};
    // Beyond the lead only the second byte has a range of its own (table 3-7 of the Unicode Standard).
    const unsigned char lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    const int needed = lengthFor(bytes[0]);
    if (count < 2 || at(1) < lowest || at(1) > highest) return {replacement, 1};
    const int length = std::min(needed, count);
    const char32_t scalar = length == needed ? wellFormed(bytes, length) : 0;
    return {scalar != 0 ? scalar : replacement, length};
}

}  // namespace orvo
