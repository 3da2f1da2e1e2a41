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
            m_cursor = m_savedCursor;
            clamp();
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
    if (!sequence.intermediates.empty()) return;
    const bool isPrivate = sequence.marker == '?';
    switch (sequence.final) {
        case 'c':
            respond("\x1B[?1;2c");
            break;
        case 'h':
            if (isPrivate) changeModes(sequence, ModeChange::Set);
            break;
        case 'l':
            if (isPrivate) changeModes(sequence, ModeChange::Reset);
            break;
        case 'J':
            if (isPrivate || sequence.plain()) eraseInDisplay(sequence.parameter(0));
            break;
        case 'K':
            if (isPrivate || sequence.plain()) eraseInLine(sequence.parameter(0));
            break;
        case 'm':
            if (sequence.plain()) applyGraphicRendition(m_style, sequence.parameters);
            break;
        default:
            if (!sequence.plain()) break;
            if (moveCursor(sequence)) {
                clamp();
            } else {
                edit(sequence);
            }
    }
}

/// False when the sequence is no cursor movement.
bool TerminalScreen::moveCursor(const ControlSequence& sequence) {
    const int count = sequence.count();
    switch (sequence.final) {
        case 'A':
            m_cursor.row -= count;
            return true;
        case 'B':
        case 'e':
            m_cursor.row += count;
            return true;
        case 'C':
        case 'a':
            m_cursor.column += count;
            return true;
        case 'D':
            m_cursor.column -= count;
            return true;
        case 'E':
            m_cursor = {m_cursor.row + count, 0};
            return true;
        case 'F':
            m_cursor = {m_cursor.row - count, 0};
            return true;
        case 'G':
        case '`':
            m_cursor.column = count - 1;
            return true;
        case 'd':
            m_cursor.row = count - 1;
            return true;
        case 'H':
        case 'f':
            m_cursor = {count - 1, std::max(sequence.parameter(1), 1) - 1};
            return true;
        case 'u':
            m_cursor = m_savedCursor;
            return true;
        default:
            return false;
    }
}

void TerminalScreen::edit(const ControlSequence& sequence) {
    const int count = sequence.count();
    const bool inRegion = m_cursor.row >= m_scrollTop && m_cursor.row <= m_scrollBottom;
    const int linesBelow = inRegion ? std::min(count, m_scrollBottom - m_cursor.row + 1) : 0;
    switch (sequence.final) {
        case 'X':
            cursorLine().erase(m_cursor.column, m_cursor.column + count, blank(), nextStamp());
            break;
        case 'P':
            cursorLine().removeCells(m_cursor.column, count, blank(), nextStamp());
            break;
        case '@':
            cursorLine().insertCells(m_cursor.column, count, blank(), nextStamp());
            break;
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
        case 's':
            m_savedCursor = m_cursor;
            break;
        case 'r':
            setRegion(sequence);
            break;
        case 'n':
            report(sequence);
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
    m_cursor = m_savedMain->cursor;
    m_savedMain.reset();
    useWholeRegion();
    clamp();
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

void TerminalScreen::respond(std::string_view reply) const {
    if (onResponse) onResponse(reply);
}

}  // namespace orvo
