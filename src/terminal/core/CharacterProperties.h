#pragma once

#include <cstdint>

namespace orvo {

/// What the Unicode character database says about scalars, as far as a terminal asks. The tables are made
/// when building (scripts/generate_character_table.py).
enum CharacterProperty : std::uint8_t {
    /// General category Mn: joins the character before it.
    NonspacingMark = 1 << 0,
    /// Takes two cells.
    Wide = 1 << 1,
    /// The White_Space property.
    WhiteSpace = 1 << 2,
    /// The Emoji property, without ASCII, regional indicators and modifiers.
    Emoji = 1 << 3,
    /// A skin tone.
    EmojiModifier = 1 << 4,
    RegionalIndicator = 1 << 5,
    /// The zero width joiner and the enclosing keycap: join the character before them as marks do.
    Joiner = 1 << 6,
    /// The tag characters of flags of regions: join an emoji.
    Tag = 1 << 7,
};

namespace detail {
/// For each 256 scalars the number of their page in `pageProperties`.
extern const std::uint8_t characterPages[];
extern const std::uint8_t pageProperties[];
}  // namespace detail

/// The `CharacterProperty` bits of a scalar; none beyond U+10FFFF.
inline std::uint8_t characterProperties(char32_t scalar) {
    if (scalar > U'\U0010FFFF') return 0;
    return detail::pageProperties[detail::characterPages[scalar >> 8] * 256u + (scalar & 0xFF)];
}

}  // namespace orvo
