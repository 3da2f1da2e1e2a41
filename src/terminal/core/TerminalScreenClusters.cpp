// Scalars that become one character with the one before them.
#include "terminal/core/CharacterProperties.h"
#include "terminal/core/TerminalScreen.h"

#include <string_view>

namespace orvo {
namespace {

constexpr char32_t zeroWidthJoiner = 0x200D;
constexpr char32_t emojiPresentation = 0xFE0F;

bool isEmoji(char32_t scalar) {
    return (characterProperties(scalar) & Emoji) != 0;
}

/// Characters that are text until a variation selector asks for the emoji.
bool hasEmojiPresentation(char32_t scalar) {
    return isEmoji(scalar) || scalar == U'#' || scalar == U'*' || (scalar >= U'0' && scalar <= U'9');
}

}  // namespace

/// True when the scalar is dealt with: joined, or dropped for want of something to join.
bool TerminalScreen::joinPrevious(char32_t scalar, std::uint8_t properties) {
    const bool always = (properties & (NonspacingMark | Joiner)) != 0;
    int column = m_pendingWrap ? m_cursor.column : m_cursor.column - 1;
    if (column < 0) return always;
    TerminalRow& line = cursorLine();
    if (column > 0 && line.continuation(column)) --column;
    if (!always && !joinsCell(line, column, scalar, properties)) return false;

    if (!line.join(column, scalar, nextStamp())) return true;
    const bool widens = scalar == emojiPresentation ? hasEmojiPresentation(line.scalars(column).front())
                                                    : (properties & (EmojiModifier | Emoji)) != 0;
    if (widens) widenPrevious(column);
    return true;
}

bool TerminalScreen::joinsCell(const TerminalRow& line, int column, char32_t scalar,
                               std::uint8_t properties) const {
    const std::u32string_view cell = line.scalars(column);
    if (cell.empty()) return false;
    if ((properties & RegionalIndicator) != 0)
        return cell.size() == 1 && (characterProperties(cell.front()) & RegionalIndicator) != 0;
    if (!isEmoji(cell.front())) return false;
    if ((properties & (EmojiModifier | Tag)) != 0) return true;
    return isEmoji(scalar) && cell.back() == zeroWidthJoiner;
}

/// Gives the narrow character left of the cursor its second cell, where there is one.
void TerminalScreen::widenPrevious(int column) {
    TerminalRow& line = cursorLine();
    if (m_pendingWrap || column != m_cursor.column - 1 || line.continuation(m_cursor.column)) return;
    if (m_modes.insert) line.insertCells(m_cursor.column, 1, blank(), nextStamp());
    TerminalCell second = line.cells()[static_cast<std::size_t>(column)];
    second.content = 0;
    second.attributes &= static_cast<std::uint16_t>(~TerminalCell::Cluster);
    second.attributes |= TerminalCell::Continuation;
    *line.overwrite(m_cursor.column, 1, nextStamp()) = second;
    advance(1);
}

}  // namespace orvo
