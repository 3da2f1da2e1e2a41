#include "terminal/core/TerminalScreen.h"

#include "terminal/core/CharacterProperties.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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

// The length of a block in bytes and cells. Whole blocks are written for a run whose length nothing
// foretells, where whatever comes into the cells behind it is never seen.
constexpr int block = 16;

/// Scalars with one of these may become part of the character before them.
constexpr std::uint8_t joiningProperties =
    NonspacingMark | Emoji | EmojiModifier | RegionalIndicator | Joiner | Tag;

constexpr char32_t emojiPresentation = 0xFE0F;

/// The second cell of a wide character.
TerminalCell continuationOf(const TerminalCell& style) {
    TerminalCell second = style;
    second.content = 0;
    second.attributes |= TerminalCell::Continuation;
    return second;
}

#ifdef __SSE2__
/// Writes four cells of four bytes. `foreground` is there four times, what follows it in a cell twice.
void writeFour(TerminalCell* cells, const char* bytes, __m128i foreground, __m128i rest) {
    std::uint32_t four = 0;
    std::memcpy(&four, bytes, sizeof four);
    const __m128i none = _mm_setzero_si128();
    const __m128i wide = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(four)), none);
    const __m128i scalars = _mm_unpacklo_epi16(wide, none);
    const __m128i first = _mm_unpacklo_epi32(scalars, foreground);
    const __m128i second = _mm_unpackhi_epi32(scalars, foreground);
    auto* const places = reinterpret_cast<__m128i*>(cells);
    _mm_storeu_si128(places, _mm_unpacklo_epi64(first, rest));
    _mm_storeu_si128(places + 1, _mm_unpackhi_epi64(first, rest));
    _mm_storeu_si128(places + 2, _mm_unpacklo_epi64(second, rest));
    _mm_storeu_si128(places + 3, _mm_unpackhi_epi64(second, rest));
}
#endif

/// Writes one cell a byte.
void writeAscii(TerminalCell* cells, std::string_view text, const TerminalCell& style) {
    CellVector cell = vectorOf(style);
#ifdef __SSE2__
    if (text.size() >= 4) {
        const __m128i look = std::bit_cast<__m128i>(cell);
        const __m128i foreground = _mm_shuffle_epi32(look, _MM_SHUFFLE(1, 1, 1, 1));
        const __m128i rest = _mm_unpackhi_epi64(look, look);
        const std::size_t last = text.size() - 4;
        for (std::size_t index = 0; index < last; index += 4) {
            writeFour(cells + index, text.data() + index, foreground, rest);
        }
        // Some of them once more, unless their number is one of fours.
        return writeFour(cells + last, text.data() + last, foreground, rest);
    }
#endif
    for (const char byte : text) {
        cell[0] = static_cast<unsigned char>(byte);
        store(cells++, cell);
    }
}

/// The printable ASCII that stands at `position`, at most one block.
int shortRunAt(const char* position, const char* end) {
    if (end - position >= block) return printableAmong16(position);
    return static_cast<int>(printableRun(position, end));
}

/// Writes one cell for each of `count` bytes, in whole blocks: so many bytes there are to read, and so many
/// cells to write.
void writeBlocks(TerminalCell* cells, const char* bytes, int count, const TerminalCell& style) {
#ifdef __SSE2__
    const auto look = std::bit_cast<__m128i>(vectorOf(style));
    const __m128i foreground = _mm_shuffle_epi32(look, _MM_SHUFFLE(1, 1, 1, 1));
    const __m128i rest = _mm_unpackhi_epi64(look, look);
    for (; count > 0; count -= block, cells += block, bytes += block) {
        writeFour(cells, bytes, foreground, rest);
        writeFour(cells + 4, bytes + 4, foreground, rest);
        if (count <= block / 2) return;
        writeFour(cells + 8, bytes + 8, foreground, rest);
        writeFour(cells + 12, bytes + 12, foreground, rest);
    }
#else
    writeAscii(cells, {bytes, static_cast<std::size_t>(count)}, style);
#endif
}

/// How much whole blocks for `count` bytes take.
constexpr int blocksFor(int count) {
    return (count + block - 1) / block * block;
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

void TerminalScreen::printAscii(std::string_view text, const char* end) {
    m_lastPrinted = static_cast<unsigned char>(text.back());
    if (m_textInModes) return printAsciiInModes(text);
    while (!text.empty()) {
        if (m_pendingWrap) wrap();
        const auto count = std::min(static_cast<int>(text.size()), m_columns - m_cursor.column);
        const auto length = static_cast<std::size_t>(count);
        const int taken = blocksFor(count);
        const char* const bytes = text.data();
        TerminalRow& line = cursorLine();
        if (count > 1 && m_cursor.column + taken <= m_columns && end - bytes >= taken &&
            line.writtenUpTo() <= m_cursor.column + count) {
            writeBlocks(line.overwriteFrom(m_cursor.column), bytes, count, m_style.cell);
            line.written(m_cursor.column + count, nextStamp());
        } else {
            writeAscii(line.overwrite(m_cursor.column, count, nextStamp()), text.substr(0, length),
                       m_style.cell);
        }
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

/// Joins a mark to the character that ends before `column`, up to which its line has just been written.
void TerminalScreen::joinWritten(int column, char32_t mark) {
    TerminalRow& line = cursorLine();
    line.written(column, nextStamp());
    const int last = column - 1;
    line.join(last > 0 && line.continuation(last) ? last - 1 : last, mark, m_stamp);
}

/// Writes scalars that only take cells, and marks on them, up to the end of a line. What needs more than that
/// is left: clusters, malformed bytes, long runs of ASCII, for which there is a faster way.
///
/// In text of many scripts nothing foretells how many letters stand before the next scalar beyond ASCII, so
/// they are taken as one run, whatever its length, also none.
const char* TerminalScreen::printText(const char* position, const char* end) {
    if (m_textInModes || m_columns < 2) return position;
    // A scalar between two sequences is no run.
    const int firstLength = Utf8Decoder::lengthFor(*position);
    if (end - position <= firstLength || position[firstLength] == '\x1B') return position;
    const char* const start = position;
    CellVector cell = vectorOf(m_style.cell);
    const CellVector second = vectorOf(continuationOf(m_style.cell));
    TerminalCell* cells = nullptr;
    int column = m_cursor.column;
    // Blocks of cells may be written up to here, because nobody sees what they leave behind the text.
    int blocksEnd = 0;
    while (position < end) {
        if (Utf8Decoder::isAscii(*position)) {
            const int run = shortRunAt(position, end);
            if (run == block || column + run > m_columns) break;
            if (column + block <= blocksEnd && end - position >= block) {
                writeBlocks(cells + column, position, run, m_style.cell);
            } else {
                writeAscii(cells + column, {position, static_cast<std::size_t>(run)}, m_style.cell);
            }
            if (run == 0) break;
            cell[0] = static_cast<unsigned char>(position[run - 1]);
            column += run;
            position += run;
            if (position == end || Utf8Decoder::isAscii(*position)) break;
        }
        const int length = Utf8Decoder::lengthFor(*position);
        if (end - position < length) break;
        const char32_t scalar = Utf8Decoder::wellFormed(position, length);
        if (scalar == 0) break;
        const std::uint8_t properties = characterProperties(scalar);
        const std::uint8_t joining = properties & joiningProperties;
        if (joining != 0) [[unlikely]] {
            if (joining == NonspacingMark && cells != nullptr && scalar != emojiPresentation) {
                joinWritten(column, scalar);
                position += length;
                continue;
            }
            // Behind a cell that was written here stands no cluster that ends with a joiner, the only
            // thing that an emoji joins.
            if (joining != Emoji || (position == start && clusterBefore())) break;
        }
        const int width = (properties & Wide) != 0 ? 2 : 1;
        if (column + width > m_columns || (cells == nullptr && m_pendingWrap)) {
            if (cells != nullptr) break;
            wrap();
            column = 0;
        }
        if (cells == nullptr) {
            TerminalRow& line = cursorLine();
            if (line.writtenUpTo() <= column) blocksEnd = m_columns;
            cells = line.overwriteFrom(column) - column;
        }
        cell[0] = scalar;
        store(cells + column, cell);
        if (width == 2) store(cells + column + 1, second);
        column += width;
        position += length;
    }
    if (cells != nullptr) {
        m_lastPrinted = cell[0];
        cursorLine().written(column, nextStamp());
        advance(column - m_cursor.column);
    }
    return position;
}

void TerminalScreen::print(char32_t scalar) {
    const std::uint8_t properties = characterProperties(scalar);
    const int width = (properties & Wide) != 0 ? 2 : 1;
    // An emoji joins nothing but a cluster that ends with a joiner, and most have none before them.
    const std::uint8_t joining = properties & joiningProperties;
    const bool alone = joining == Emoji && !clusterBefore();
    if (joining != 0 && !alone && joinPrevious(scalar, properties)) return;
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
        store(cells + 1, vectorOf(continuationOf(m_style.cell)));
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
    if (plain) {
        const std::string text(static_cast<std::size_t>(count), static_cast<char>(m_lastPrinted));
        return printAscii(text, text.data() + text.size());
    }
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
