#include "terminal/core/TerminalScreen.h"

#include "terminal/core/CharacterProperties.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace orvo {
namespace {

/// Writes one cell a byte. Cells are put together as vectors, because a store of 16 bytes is four times as
/// fast as one a member.
void writeAscii(TerminalCell* cells, std::string_view text, TerminalCell style) {
    using Vector = std::uint32_t __attribute__((vector_size(sizeof(TerminalCell))));
    static_assert(offsetof(TerminalCell, content) == 0);
    Vector cell;
    std::memcpy(&cell, &style, sizeof cell);
    for (const char byte : text) {
        cell[0] = static_cast<unsigned char>(byte);
        void* const target = cells++;
        std::memcpy(target, &cell, sizeof cell);
    }
}

}  // namespace

TerminalScreen::TerminalScreen(int rows, int columns)
    : m_rows(std::max(rows, 1)), m_columns(std::max(columns, 1)), m_scrollBottom(m_rows - 1) {
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
    while (!text.empty()) {
        if (m_pendingWrap) wrap();
        const auto count = std::min(static_cast<int>(text.size()), m_columns - m_cursor.column);
        const auto length = static_cast<std::size_t>(count);
        writeAscii(cursorLine().overwrite(m_cursor.column, count, nextStamp()), text.substr(0, length),
                   m_style);
        advance(count);
        text.remove_prefix(length);
    }
}

void TerminalScreen::print(char32_t scalar) {
    const std::uint8_t properties = characterProperties(scalar);
    if ((properties & NonspacingMark) != 0) {
        joinPrevious(scalar);
        return;
    }
    const int width = (properties & Wide) != 0 ? 2 : 1;
    if (m_pendingWrap || (width == 2 && m_cursor.column == m_columns - 1)) wrap();
    const int fitting = std::min(width, m_columns - m_cursor.column);
    TerminalCell* const cells = cursorLine().overwrite(m_cursor.column, fitting, nextStamp());
    cells[0] = m_style;
    cells[0].content = scalar;
    if (fitting == 2) {
        cells[1] = m_style;
        cells[1].content = 0;
        cells[1].attributes |= TerminalCell::Continuation;
    }
    advance(width);
}

void TerminalScreen::joinPrevious(char32_t mark) {
    int column = m_pendingWrap ? m_cursor.column : m_cursor.column - 1;
    if (column < 0) return;
    TerminalRow& line = cursorLine();
    if (column > 0 && line.continuation(column)) --column;
    line.join(column, mark, nextStamp());
}

void TerminalScreen::wrap() {
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

void TerminalScreen::scrollUp() {
    if (alternateScreen() || m_scrollTop != 0) {
        removeLine(m_scrollTop);
        return;
    }
    m_grid.rotateUp(0, m_scrollBottom);
    TerminalRow*& line = m_grid.line(m_scrollBottom);
    line = pushScrollback(line);
    if (line == nullptr) line = m_store.take();
    line->clear(m_columns, nextStamp());
}

TerminalRow* TerminalScreen::pushScrollback(TerminalRow* row) {
    row->cutTrailingBlanks();
    ++m_scrolledLines;
    return m_scrollback.push(row);
}

void TerminalScreen::scrollDown(int top) {
    m_grid.rotateDown(top, m_scrollBottom);
    m_grid.line(top)->clear(m_columns, nextStamp());
}

void TerminalScreen::removeLine(int row) {
    m_grid.rotateUp(row, m_scrollBottom);
    m_grid.line(m_scrollBottom)->clear(m_columns, nextStamp());
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
        case '\b':
            m_cursor.column = std::max(m_cursor.column - 1, 0);
            m_pendingWrap = false;
            break;
        case '\t':
            m_cursor.column = std::min((m_cursor.column / 8 + 1) * 8, m_columns - 1);
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
        default:
            break;
    }
}

}  // namespace orvo
