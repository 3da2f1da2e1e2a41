#pragma once

#include "terminal/core/EscapeParser.h"
#include "terminal/core/LineGrid.h"
#include "terminal/core/TerminalRow.h"
#include "terminal/core/Utf8Decoder.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orvo {

/// The model of one terminal: grid, cursor, scrollback, alternate screen and input modes, driven by the bytes
/// that a program writes. Plain C++; one thread at a time (the application uses the main thread).
class TerminalScreen {
public:
    explicit TerminalScreen(int rows = 24, int columns = 80);
    ~TerminalScreen();
    TerminalScreen(const TerminalScreen&) = delete;
    TerminalScreen& operator=(const TerminalScreen&) = delete;

    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    /// Cursor, 0-based.
    int row() const { return m_cursor.row; }
    int column() const { return m_cursor.column; }
    bool cursorVisible() const { return m_modes.cursorVisible; }
    bool bracketedPaste() const { return m_modes.bracketedPaste; }
    bool applicationCursor() const { return m_modes.applicationCursor; }
    bool alternateScreen() const { return m_savedMain.has_value(); }
    /// Scrolling region, 0-based, both included.
    int scrollTop() const { return m_scrollTop; }
    int scrollBottom() const { return m_scrollBottom; }
    /// The last character was written in the last column; the next one first moves to the next line.
    bool pendingWrap() const { return m_pendingWrap; }

    /// A line of the visible grid, 0 at the top.
    const TerminalRow& line(int row) const { return *m_grid.line(row); }
    /// At most 2,000 lines, 0 is the oldest.
    int scrollbackCount() const { return m_scrollback.size(); }
    const TerminalRow& scrollbackLine(int index) const { return *m_scrollback.line(index); }
    /// Lines that ever left the top into the scrollback; grows only. A view uses it to stay on the same text.
    std::uint64_t scrolledLines() const { return m_scrolledLines; }

    /// Raw output bytes; an incomplete UTF-8 sequence at the end waits for the next call.
    void feed(std::string_view bytes);
    /// Complete UTF-8 text that the application itself writes into the terminal.
    void feedText(std::string_view text);

    /// At least 3 rows and 10 columns; smaller requests are raised to these.
    void resize(int rows, int columns);
    /// Clears the visible screen and homes the cursor; scrollback and modes stay.
    void reset();

    /// Scrollback and screen as UTF-8 text: trailing white space cut from each line and from both ends.
    std::string plainText() const;

    /// Replies that must go back to the program (cursor position, device attributes). Called during `feed`.
    std::function<void(std::string_view)> onResponse;

    /// Checks the class's invariants; aborts when one is broken. For debug builds, tests and fuzzers.
    void assertInvariants() const;

private:
    friend class EscapeParser;

    struct Cursor {
        int row = 0;
        int column = 0;
    };
    struct Modes {
        bool cursorVisible = true;
        bool bracketedPaste = false;
        bool applicationCursor = false;
    };
    /// The main screen while a program uses the alternate one.
    struct SavedScreen {
        LineGrid grid;
        Cursor cursor;
    };
    enum class KeepHistory : bool { No, Yes };
    enum class ModeChange : bool { Reset, Set };

    // What the parser finds.
    void printAscii(std::string_view text);
    void print(char32_t scalar);
    void control(char character);
    void escape(char32_t scalar);
    void controlSequence(const ControlSequence& sequence);

    // Writing and scrolling.
    void wrap();
    void advance(int width);
    void joinPrevious(char32_t mark);
    void lineFeed();
    void scrollUp();
    void scrollDown(int top);
    void reverseLineFeed();
    void removeLine(int row);
    /// The line that the scrollback gave up for it, or null.
    TerminalRow* pushScrollback(TerminalRow* row);

    // Control sequences.
    void plainSequence(const ControlSequence& sequence);
    void markedSequence(const ControlSequence& sequence);
    void scrollSequence(char final, int count);
    /// The nearest place on the screen; clears `pendingWrap`.
    void moveTo(int row, int column);
    void eraseInDisplay(int extent);
    void eraseInLine(int extent);
    void eraseLines(int first, int end);
    void setRegion(const ControlSequence& sequence);
    void changeModes(const ControlSequence& sequence, ModeChange change);
    void report(const ControlSequence& sequence);
    void reportAttributes() const;
    void respond(std::string_view reply) const;
    void enterAlternate();
    void leaveAlternate();
    void fullReset();

    void useWholeRegion();
    TerminalRow* blankLine(int columns);
    void fillGrid(LineGrid& grid);
    void releaseGrid(LineGrid& grid);
    void reshape(LineGrid& grid, Cursor& cursor, KeepHistory history, int rows, int columns);
    void assertGrid() const;
    std::uint64_t nextStamp() { return ++m_stamp; }
    TerminalRow& cursorLine() { return *m_grid.line(m_cursor.row); }
    /// What erased and inserted cells become.
    TerminalCell blank() const { return {}; }

    int m_rows;
    int m_columns;
    std::uint64_t m_stamp = 0;
    std::uint64_t m_scrolledLines = 0;
    RowStore m_store;
    LineGrid m_grid;
    Scrollback m_scrollback;
    std::optional<SavedScreen> m_savedMain;

    Cursor m_cursor;
    Cursor m_savedCursor;
    int m_scrollTop = 0;
    int m_scrollBottom = 0;
    bool m_pendingWrap = false;
    Modes m_modes;
    // Colours and attributes of new characters; its content is not used.
    TerminalCell m_style;

    EscapeParser m_parser;
    Utf8Decoder m_decoder;
};

}  // namespace orvo
