// What escape and control sequences do to the screen.
#include "terminal/core/TerminalScreen.h"
#include "terminal/core/TextStyle.h"

#include <algorithm>

namespace orvo {

void TerminalScreen::escape(char32_t scalar) {
    switch (scalar) {
        case U'7':
            m_savedCursor = m_cursor;
            break;
        case U'8':
            moveTo(m_savedCursor.row, m_savedCursor.column);
            break;
        case U'D':
            m_pendingWrap = false;
            lineFeed();
            break;
        case U'E':
            wrap();
            break;
        case U'M':
            m_pendingWrap = false;
            reverseLineFeed();
            break;
        case U'c':
            fullReset();
            break;
        default:
            break;
    }
}

void TerminalScreen::controlSequence(const ControlSequence& sequence) {
    if (sequence.plain()) {
        plainSequence(sequence);
    } else if (sequence.intermediates.empty()) {
        markedSequence(sequence);
    }
}

/// Sequences with a marker act only where they are named.
void TerminalScreen::markedSequence(const ControlSequence& sequence) {
    if (sequence.final == 'c') reportAttributes();
    if (sequence.marker != '?') return;
    switch (sequence.final) {
        case 'h':
            changeModes(sequence, ModeChange::Set);
            break;
        case 'l':
            changeModes(sequence, ModeChange::Reset);
            break;
        case 'J':
            eraseInDisplay(sequence.parameter(0));
            break;
        case 'K':
            eraseInLine(sequence.parameter(0));
            break;
        default:
            break;
    }
}

void TerminalScreen::plainSequence(const ControlSequence& sequence) {
    const int count = sequence.count();
    const auto [row, column] = m_cursor;
    switch (sequence.final) {
        case 'm':
            applyGraphicRendition(m_style, sequence.parameters);
            break;
        case 'A':
            moveTo(row - count, column);
            break;
        case 'B':
        case 'e':
            moveTo(row + count, column);
            break;
        case 'C':
        case 'a':
            moveTo(row, column + count);
            break;
        case 'D':
            moveTo(row, column - count);
            break;
        case 'E':
            moveTo(row + count, 0);
            break;
        case 'F':
            moveTo(row - count, 0);
            break;
        case 'G':
        case '`':
            moveTo(row, count - 1);
            break;
        case 'd':
            moveTo(count - 1, column);
            break;
        case 'H':
        case 'f':
            moveTo(count - 1, std::max(sequence.parameter(1), 1) - 1);
            break;
        case 'u':
            moveTo(m_savedCursor.row, m_savedCursor.column);
            break;
        case 's':
            m_savedCursor = m_cursor;
            break;
        case 'J':
            eraseInDisplay(sequence.parameter(0));
            break;
        case 'K':
            eraseInLine(sequence.parameter(0));
            break;
        case 'X':
            cursorLine().erase(column, column + count, blank(), nextStamp());
            break;
        case 'P':
            cursorLine().removeCells(column, count, blank(), nextStamp());
            break;
        case '@':
            cursorLine().insertCells(column, count, blank(), nextStamp());
            break;
        case 'r':
            setRegion(sequence);
            break;
        case 'n':
            report(sequence);
            break;
        case 'c':
            reportAttributes();
            break;
        default:
            scrollSequence(sequence.final, count);
    }
}

void TerminalScreen::moveTo(int row, int column) {
    m_cursor.row = std::clamp(row, 0, m_rows - 1);
    m_cursor.column = std::clamp(column, 0, m_columns - 1);
    m_pendingWrap = false;
}

void TerminalScreen::scrollSequence(char final, int count) {
    const bool inRegion = m_cursor.row >= m_scrollTop && m_cursor.row <= m_scrollBottom;
    const int linesBelow = inRegion ? std::min(count, m_scrollBottom - m_cursor.row + 1) : 0;
    switch (final) {
        case 'L':
            for (int line = 0; line < linesBelow; ++line) {
                scrollDown(m_cursor.row);
            }
            break;
        case 'M':
            for (int line = 0; line < linesBelow; ++line) {
                removeLine(m_cursor.row);
            }
            break;
        case 'S':
            for (int line = 0; line < std::min(count, m_rows); ++line) {
                scrollUp();
            }
            break;
        case 'T':
            for (int line = 0; line < std::min(count, m_rows); ++line) {
                scrollDown(m_scrollTop);
            }
            break;
        default:
            break;
    }
}

void TerminalScreen::eraseLines(int first, int end) {
    for (int row = first; row < end; ++row) {
        m_grid.line(row)->erase(0, m_columns, blank(), nextStamp());
    }
}

void TerminalScreen::eraseInDisplay(int extent) {
    switch (extent) {
        case 0:
            eraseInLine(0);
            eraseLines(m_cursor.row + 1, m_rows);
            break;
        case 1:
            eraseLines(0, m_cursor.row);
            eraseInLine(1);
            break;
        case 2:
            eraseLines(0, m_rows);
            break;
        case 3:
            eraseLines(0, m_rows);
            m_scrollback.clear(m_store);
            break;
        default:
            break;
    }
}

void TerminalScreen::eraseInLine(int extent) {
    const int first = extent == 0 ? m_cursor.column : 0;
    const int end = extent == 1 ? m_cursor.column + 1 : m_columns;
    cursorLine().erase(first, end, blank(), nextStamp());
}

void TerminalScreen::setRegion(const ControlSequence& sequence) {
    const int top = sequence.count() - 1;
    const int lines = sequence.parameter(1) > 0 ? sequence.parameter(1) : m_rows;
    const int bottom = std::min(lines, m_rows) - 1;
    if (bottom <= top) return;
    m_scrollTop = top;
    m_scrollBottom = bottom;
    m_cursor = {};
    m_pendingWrap = false;
}

void TerminalScreen::useWholeRegion() {
    m_scrollTop = 0;
    m_scrollBottom = m_rows - 1;
}

void TerminalScreen::changeModes(const ControlSequence& sequence, ModeChange change) {
    const bool set = change == ModeChange::Set;
    for (const int mode : sequence.parameters) {
        switch (mode) {
            case 1:
                m_modes.applicationCursor = set;
                break;
            case 25:
                m_modes.cursorVisible = set;
                break;
            case 47:
            case 1047:
            case 1049:
                set ? enterAlternate() : leaveAlternate();
                break;
            case 2004:
                m_modes.bracketedPaste = set;
                break;
            default:
                break;
        }
    }
}

void TerminalScreen::enterAlternate() {
    if (m_savedMain) return;
    m_savedMain.emplace(std::move(m_grid), m_cursor);
    m_grid = LineGrid();
    fillGrid(m_grid);
    reset();
}

void TerminalScreen::leaveAlternate() {
    if (!m_savedMain) return;
    releaseGrid(m_grid);
    m_grid = std::move(m_savedMain->grid);
    const Cursor cursor = m_savedMain->cursor;
    m_savedMain.reset();
    useWholeRegion();
    moveTo(cursor.row, cursor.column);
}

void TerminalScreen::fullReset() {
    reset();
    if (m_savedMain) {
        releaseGrid(m_savedMain->grid);
        m_savedMain.reset();
    }
    m_savedCursor = {};
    m_modes = {};
}

void TerminalScreen::report(const ControlSequence& sequence) {
    if (sequence.parameter(0) == 5) respond("\x1B[0n");
    if (sequence.parameter(0) == 6) {
        respond("\x1B[" + std::to_string(m_cursor.row + 1) + ";" + std::to_string(m_cursor.column + 1) + "R");
    }
}

void TerminalScreen::reportAttributes() const {
    respond("\x1B[?1;2c");
}

void TerminalScreen::respond(std::string_view reply) const {
    if (onResponse) onResponse(reply);
}

}  // namespace orvo
