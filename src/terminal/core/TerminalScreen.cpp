#include "terminal/core/TerminalScreen.h"

#include "terminal/core/CharacterProperties.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace orvo {
namespace {

// Cells are put together as vectors, because a store of 16 bytes is four times as fast as one a member.
using CellVector = std::uint32_t __attribute__((vector_size(sizeof(TerminalCell))));
static_assert(offsetof(TerminalCell, content) == 0);

CellVector vectorOf(const TerminalCell& cell) {
    CellVector vector;
    std::memcpy(&vector, &cell, sizeof vector);
    return vector;
}

void store(TerminalCell* target, const CellVector& cell) {
    void* const place = target;
    std::memcpy(place, &cell, sizeof cell);
}

/// Writes one cell a byte.
void writeAscii(TerminalCell* cells, std::string_view text, const TerminalCell& style) {
    CellVector cell = vectorOf(style);
    for (const char byte : text) {
        cell[0] = static_cast<unsigned char>(byte);
        store(cells++, cell);
    }
}

}  // namespace

TerminalScreen::TerminalScreen(int rows, int columns)
    : m_rows(std::max(rows, 1)),
      m_columns(std::max(columns, 1)),
      m_scrollBottom(m_rows - 1),
      m_tabStops(m_columns) {
    fillGrid(m_grid);
}

TerminalScreen::~TerminalScreen() = default;

void TerminalScreen::feed(std::string_view bytes) {
    m_parser.feed(bytes, m_decoder, *this);
#ifndef NDEBUG
    assertGrid();
#endif
}

void TerminalScreen::feedText(std::string_view text) {
    Utf8Decoder decoder;
    m_parser.feed(text, decoder, *this);
    decoder.finish([this](char32_t scalar) { m_parser.step(scalar, *this); });
#ifndef NDEBUG
    assertGrid();
#endif
}

void TerminalScreen::printAscii(std::string_view text) {
    m_lastPrinted = static_cast<unsigned char>(text.back());
    if (m_textInModes) return printAsciiInModes(text);
    while (!text.empty()) {
        if (m_pendingWrap) wrap();
        const auto count = std::min(static_cast<int>(text.size()), m_columns - m_cursor.column);
        const auto length = static_cast<std::size_t>(count);
        writeAscii(cursorLine().overwrite(m_cursor.column, count, nextStamp()), text.substr(0, length),
                   m_style.cell);
        advance(count);
        text.remove_prefix(length);
    }
}

void TerminalScreen::printAsciiInModes(std::string_view text) {
    // U+0060 to U+007E of the DEC Special Graphics set.
    static constexpr std::u32string_view drawing = U"◆▒␉␌␍␊°±␤␋┘┐┌└┼⎺⎻─⎼⎽├┤┴┬│≤≥π≠£·";
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        const bool drawn = m_charsets.current() == Charset::LineDrawing && code >= 0x60;
        put(drawn ? drawing[code - 0x60u] : char32_t{code}, 1);
    }
}

void TerminalScreen::print(char32_t scalar) {
    constexpr std::uint8_t joining =
        NonspacingMark | Emoji | EmojiModifier | RegionalIndicator | Joiner | Tag;
    const std::uint8_t properties = characterProperties(scalar);
    const int width = (properties & Wide) != 0 ? 2 : 1;
    // An emoji joins nothing but a cluster that ends with a joiner, and most have none before them.
    const bool alone = (properties & joining) == Emoji && !clusterBefore();
    if ((properties & joining) != 0 && !alone && joinPrevious(scalar, properties)) return;
    put(scalar, width);
}

bool TerminalScreen::clusterBefore() const {
    const int column = m_pendingWrap ? m_cursor.column : m_cursor.column - 1;
    if (column < 0) return false;
    const TerminalRow& row = line(m_cursor.row);
    return row.isCluster(column > 0 && row.continuation(column) ? column - 1 : column);
}

inline void TerminalScreen::put(char32_t scalar, int width) {
    if (m_pendingWrap || (width == 2 && m_cursor.column == m_columns - 1)) makeRoom(width);
    const int fitting = std::min(width, m_columns - m_cursor.column);
    TerminalRow& line = cursorLine();
    if (m_modes.insert) line.insertCells(m_cursor.column, fitting, blank(), nextStamp());
    TerminalCell* const cells = line.overwrite(m_cursor.column, fitting, nextStamp());
    CellVector cell = vectorOf(m_style.cell);
    cell[0] = scalar;
    store(cells, cell);
    if (fitting == 2) {
        TerminalCell second = m_style.cell;
        second.content = 0;
        second.attributes |= TerminalCell::Continuation;
        store(cells + 1, vectorOf(second));
    }
    m_lastPrinted = scalar;
    advance(width);
}

/// For a character that does not fit behind the cursor.
void TerminalScreen::makeRoom(int width) {
    if (m_modes.autowrap) return wrap();
    m_pendingWrap = false;
    m_cursor.column = std::max(m_columns - width, 0);
}

void TerminalScreen::repeatLast(int count) {
    if (m_lastPrinted == 0) return;
    count = std::min(count, m_rows * m_columns);
    const bool plain = m_lastPrinted < 0x80 && !m_textInModes;
    if (plain)
        return printAscii(std::string(static_cast<std::size_t>(count), static_cast<char>(m_lastPrinted)));
    const int width = (characterProperties(m_lastPrinted) & Wide) != 0 ? 2 : 1;
    for (; count > 0; --count) {
        put(m_lastPrinted, width);
    }
}

void TerminalScreen::wrap() {
    cursorLine().setWrapped();
    m_cursor.column = 0;
    m_pendingWrap = false;
    lineFeed();
}

void TerminalScreen::advance(int width) {
    m_cursor.column += width;
    if (m_cursor.column < m_columns) return;
    m_cursor.column = m_columns - 1;
    m_pendingWrap = true;
}

void TerminalScreen::lineFeed() {
    if (m_cursor.row == m_scrollBottom) {
        scrollUp();
    } else {
        m_cursor.row = std::min(m_cursor.row + 1, m_rows - 1);
    }
}

void TerminalScreen::clearLine(TerminalRow& row) {
    row.clear(m_columns, nextStamp());
    if (m_backgroundColorErase && !m_style.cell.background.isDefault())
        row.erase(0, m_columns, blank(), nextStamp());
}

void TerminalScreen::scrollUp() {
    if (alternateScreen() || m_scrollTop != 0) {
        removeLine(m_scrollTop);
        return;
    }
    m_grid.rotateUp(0, m_scrollBottom);
    TerminalRow*& line = m_grid.line(m_scrollBottom);
    line = pushScrollback(line);
    if (line == nullptr) line = m_store.take();
    clearLine(*line);
}

TerminalRow* TerminalScreen::pushScrollback(TerminalRow* row) {
    row->cutTrailingBlanks();
    ++m_scrolledLines;
    return m_scrollback.push(row);
}

void TerminalScreen::scrollDown(int top) {
    m_grid.rotateDown(top, m_scrollBottom);
    clearLine(*m_grid.line(top));
}

void TerminalScreen::removeLine(int row) {
    m_grid.rotateUp(row, m_scrollBottom);
    clearLine(*m_grid.line(m_scrollBottom));
}

void TerminalScreen::reverseLineFeed() {
    if (m_cursor.row == m_scrollTop) {
        scrollDown(m_scrollTop);
    } else {
        m_cursor.row = std::max(m_cursor.row - 1, 0);
    }
}

void TerminalScreen::control(char character) {
    switch (character) {
        case '\a':
            request(TerminalRequest::Kind::Bell);
            break;
        case '\b':
            m_cursor.column = std::max(m_cursor.column - 1, 0);
            m_pendingWrap = false;
            break;
        case '\t':
            m_cursor.column = m_tabStops.after(m_cursor.column);
            break;
        case '\n':
        case '\v':
        case '\f':
            m_pendingWrap = false;
            lineFeed();
            break;
        case '\r':
            m_cursor.column = 0;
            m_pendingWrap = false;
            break;
        case '\x0E':
            selectCharset(1);
            break;
        case '\x0F':
            selectCharset(0);
            break;
        default:
            break;
    }
}

}  // namespace orvo
