#pragma once

#include "appearance/HexColor.h"

#include <cstdint>
#include <optional>
#include <type_traits>

namespace orvo {

/// A colour in four bytes; the zero value means "the view's default".
class CellColor {
public:
    constexpr CellColor() = default;
    constexpr explicit CellColor(Rgb color)
        : m_value(0x0100'0000u | (std::uint32_t{color.red} << 16) | (std::uint32_t{color.green} << 8) |
                  color.blue) {}

    constexpr bool isDefault() const { return m_value == 0; }
    constexpr std::optional<Rgb> color() const {
        if (isDefault()) return std::nullopt;
        return Rgb{static_cast<std::uint8_t>(m_value >> 16), static_cast<std::uint8_t>(m_value >> 8),
                   static_cast<std::uint8_t>(m_value)};
    }
    constexpr bool operator==(const CellColor&) const = default;

private:
    std::uint32_t m_value = 0;
};

/// One cell of the grid, 16 bytes, copied freely. Text beyond one scalar lies in its row's cluster table;
/// ask the row for it (`TerminalRow::text`).
struct TerminalCell {
    enum Attribute : std::uint16_t {
        Bold = 1 << 0,
        Inverse = 1 << 1,
        /// The second cell covered by a wide character; its text is empty.
        Continuation = 1 << 2,
        /// `content` is an index into the row's cluster table instead of a scalar.
        Cluster = 1 << 3,
        Dim = 1 << 4,
        Italic = 1 << 5,
        Strike = 1 << 6,
        Overline = 1 << 7,
        Conceal = 1 << 8,
        // Bits 9 to 11 hold the underline.
    };
    enum class Underline : std::uint8_t { None, Single, Double, Curly, Dotted, Dashed };

    std::uint32_t content = U' ';
    CellColor foreground;
    CellColor background;
    std::uint16_t attributes = 0;
    /// Number of what few cells have, in the screen's `CellExtras`; 0 for nothing.
    std::uint16_t extra = 0;

    constexpr bool bold() const { return (attributes & Bold) != 0; }
    constexpr bool inverse() const { return (attributes & Inverse) != 0; }
    constexpr bool continuation() const { return (attributes & Continuation) != 0; }
    constexpr Underline underline() const {
        return static_cast<Underline>((attributes & underlineMask) >> underlineShift);
    }
    constexpr void setUnderline(Underline style) {
        attributes = static_cast<std::uint16_t>((attributes & ~underlineMask) |
                                                (static_cast<unsigned>(style) << underlineShift));
    }
    constexpr bool operator==(const TerminalCell&) const = default;

    static constexpr unsigned underlineShift = 9;
    static constexpr unsigned underlineMask = 7u << underlineShift;
};

static_assert(sizeof(TerminalCell) == 16);
static_assert(std::is_trivially_copyable_v<TerminalCell>);

}  // namespace orvo
