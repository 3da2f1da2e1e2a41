// What escape and control sequences do to the screen.
#include "terminal/core/TerminalScreen.h"
#include "terminal/core/TextStyle.h"

#include <algorithm>

namespace orvo {

void TerminalScreen::escape(char32_t scalar) {
    switch (scalar) {
        case U'7':
            saveCursor();
            break;
        case U'8':
            restoreCursor();
            break;
        case U'=':
            m_modes.applicationKeypad = true;
            break;
        case U'>':
            m_modes.applicationKeypad = false;
            break;
        case U'D':
            m_pendingWrap = false;
            lineFeed();
            break;
        case U'E':
            m_cursor.column = 0;
            m_pendingWrap = false;
            lineFeed();
            break;
        case U'H':
            m_tabStops.set(m_cursor.column);
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

void TerminalScreen::intermediateEscape(std::string_view intermediates, char final) {
    const char first = intermediates.front();
    if (first == '(' || first == ')') designate(first, intermediates.size() == 1 ? final : 'B');
    if (intermediates == "#" && final == '8') fillWithLetters();
}

void TerminalScreen::controlSequence(const ControlSequence& sequence) {
    if (sequence.plain()) {
        // By far the most frequent one.
        if (sequence.final == 'm') return setGraphicRendition(sequence);
        plainSequence(sequence);
    } else if (sequence.intermediates.empty()) {
        markedSequence(sequence);
    } else {
        intermediateSequence(sequence);
    }
}

/// Sequences with a marker act only where they are named.
void TerminalScreen::markedSequence(const ControlSequence& sequence) {
    if (sequence.final == 'c') reportAttributes();
    if (sequence.marker == '?') privateSequence(sequence);
    if (sequence.marker == '>' && sequence.final == 'q' && sequence.parameter(0) == 0)
        respond("\x1BP>|Orvo AI(" ORVO_VERSION ")\x1B\\");
}

void TerminalScreen::privateSequence(const ControlSequence& sequence) {
    switch (sequence.final) {
        case 'h':
            changeModes(sequence, ModeChange::Set);
            break;
        case 'l':
            changeModes(sequence, ModeChange::Reset);
            break;
        case 'n':
            reportPrivate(sequence.parameter(0));
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

void TerminalScreen::intermediateSequence(const ControlSequence& sequence) {
    const auto is = [&sequence](char marker, std::string_view intermediates, char final) {
        return sequence.marker == marker && sequence.intermediates == intermediates &&
               sequence.final == final;
    };
    if (is(0, "!", 'p')) softReset();
    if (is(0, " ", 'q')) setCursorShape(sequence.parameter(0));
    if (is('?', "$", 'p')) reportMode(sequence.parameter(0));
}

void TerminalScreen::plainSequence(const ControlSequence& sequence) {
    const int count = sequence.count();
    const auto [row, column] = m_cursor;
    switch (sequence.final) {
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
            address(count - 1, column);
            break;
        case 'H':
        case 'f':
            address(count - 1, std::max(sequence.parameter(1), 1) - 1);
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
            report(sequence.parameter(0));
            break;
        case 'b':
            repeatLast(count);
            break;
        case 'g':
        case 'I':
        case 'Z':
            tabSequence(sequence);
            break;
        case 'h':
        case 'l':
            changeModes(sequence, sequence.final == 'h' ? ModeChange::Set : ModeChange::Reset);
            break;
        case 't':
            if (sequence.parameter(0) == 18) reportSize();
            break;
        case 'c':
            reportAttributes();
            break;
        default:
            scrollSequence(sequence.final, count);
    }
}

void TerminalScreen::setGraphicRendition(const ControlSequence& sequence) {
    const CellColor underline = m_style.underlineColor;
    applyGraphicRendition(m_style, sequence);
    if (m_style.underlineColor != underline) updateExtra();
}

void TerminalScreen::moveTo(int row, int column) {
    const bool inRegion = m_modes.origin;
    m_cursor.row = std::clamp(row, inRegion ? m_scrollTop : 0, inRegion ? m_scrollBottom : m_rows - 1);
    m_cursor.column = std::clamp(column, 0, m_columns - 1);
    m_pendingWrap = false;
}

void TerminalScreen::address(int row, int column) {
    // A parameter is small enough for the sum.
    moveTo(m_modes.origin ? row + m_scrollTop : row, column);
}

void TerminalScreen::home() {
    address(0, 0);
}

void TerminalScreen::saveCursor() {
    m_savedCursor = m_cursor;
    m_savedLook = {m_style, m_charsets, m_modes.origin};
}

void TerminalScreen::restoreCursor() {
    m_style = m_savedLook.style;
    m_charsets = m_savedLook.charsets;
    m_modes.origin = m_savedLook.origin;
    modesChanged();
    updateExtra();
    moveTo(m_savedCursor.row, m_savedCursor.column);
}

void TerminalScreen::designate(char set, char final) {
    m_charsets.designated[set == '(' ? 0 : 1] = final == '0' ? Charset::LineDrawing : Charset::Ascii;
    modesChanged();
}

void TerminalScreen::selectCharset(std::size_t index) {
    m_charsets.selected = index;
    modesChanged();
}

void TerminalScreen::fillWithLetters() {
    TerminalCell letter;
    letter.content = U'E';
    for (TerminalRow* const row : m_grid.handles()) {
        row->clear(m_columns, nextStamp());
        row->erase(0, m_columns, letter, nextStamp());
    }
    useWholeRegion();
    m_cursor = {};
    m_pendingWrap = false;
}

void TerminalScreen::setCursorShape(int parameter) {
    if (parameter <= 2) m_cursorShape = CursorShape::Block;
    if (parameter == 3 || parameter == 4) m_cursorShape = CursorShape::Underline;
    if (parameter == 5 || parameter == 6) m_cursorShape = CursorShape::Bar;
}

void TerminalScreen::tabSequence(const ControlSequence& sequence) {
    const int times = std::min(sequence.count(), m_columns);
    switch (sequence.final) {
        case 'g':
            if (sequence.parameter(0) == 0) m_tabStops.clear(m_cursor.column);
            if (sequence.parameter(0) == 3) m_tabStops.clearAll();
            break;
        case 'I':
            for (int count = 0; count < times; ++count) {
                m_cursor.column = m_tabStops.after(m_cursor.column);
            }
            break;
        default:
            for (int count = 0; count < times; ++count) {
                m_cursor.column = m_tabStops.before(m_cursor.column);
            }
            m_pendingWrap = false;
    }
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
    home();
}

void TerminalScreen::useWholeRegion() {
    m_scrollTop = 0;
    m_scrollBottom = m_rows - 1;
}

void TerminalScreen::changeModes(const ControlSequence& sequence, ModeChange change) {
    for (const int mode : sequence.parameters) {
        if (sequence.marker == '?') {
            changePrivateMode(mode, change);
        } else if (mode == 4) {
            m_modes.insert = change == ModeChange::Set;
        }
    }
    modesChanged();
}

void TerminalScreen::changePrivateMode(int mode, ModeChange change) {
    const bool set = change == ModeChange::Set;
    if (bool* const value = m_modes.privateMode(mode)) *value = set;
    switch (mode) {
        case 6:
            home();
            break;
        case 47:
        case 1047:
        case 1049:
            set ? enterAlternate() : leaveAlternate();
            break;
        case 1048:
            set ? saveCursor() : restoreCursor();
            break;
        default:
            break;
    }
}

void TerminalScreen::modesChanged() {
    m_textInModes = !m_modes.autowrap || m_modes.insert || m_charsets.current() == Charset::LineDrawing;
}

void TerminalScreen::softReset() {
    m_modes = {};
    m_style = {};
    m_charsets = {};
    m_savedCursor = {};
    m_savedLook = {};
    useWholeRegion();
    modesChanged();
    updateExtra();
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
    softReset();
    reset();
    if (m_savedMain) {
        releaseGrid(m_savedMain->grid);
        m_savedMain.reset();
    }
    m_cursorShape = CursorShape::Block;
    m_tabStops = TabStops(m_columns);
    m_lastPrinted = 0;
}

}  // namespace orvo
