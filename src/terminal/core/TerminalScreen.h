#pragma once

#include "terminal/core/CellExtras.h"
#include "terminal/core/EscapeParser.h"
#include "terminal/core/LineGrid.h"
#include "terminal/core/TabStops.h"
#include "terminal/core/TerminalModes.h"
#include "terminal/core/TerminalRequest.h"
#include "terminal/core/TerminalRow.h"
#include "terminal/core/TextStyle.h"
#include "terminal/core/Utf8Decoder.h"

#include <array>
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
    const TerminalModes& modes() const { return m_modes; }
    CursorShape cursorShape() const { return m_cursorShape; }
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
    /// The underline colour and the link of a cell.
    const CellExtra& extraOf(const TerminalCell& cell) const { return m_extras.at(cell.extra); }
    const CellExtras& extras() const { return m_extras; }
    /// What the program calls itself, as plain UTF-8 text without control characters; empty at first.
    const std::string& programTitle() const { return m_programTitle; }
    /// Lines that ever left the top into the scrollback; grows only. A view uses it to stay on the same text.
    std::uint64_t scrolledLines() const { return m_scrolledLines; }

    /// Raw output bytes; an incomplete UTF-8 sequence at the end waits for the next call.
    void feed(std::string_view bytes);
    /// Complete UTF-8 text that the application itself writes into the terminal.
    void feedText(std::string_view text);

    /// At least 3 rows and 10 columns; smaller requests are raised to these.
    void resize(int rows, int columns);
    /// Gives memory back that a flood has left behind. Worth it when the program has become quiet.
    void compact();
    /// Clears the visible screen and homes the cursor; scrollback and modes stay.
    void reset();

    /// Scrollback and screen as UTF-8 text: trailing white space cut from each line and from both ends.
    std::string plainText() const;

    /// Whether erased, inserted and scrolled-in cells take the background that new characters have. Programs
    /// that were told `TERM=xterm-256color` count on it.
    void setBackgroundColorErase(bool on) { m_backgroundColorErase = on; }
    bool backgroundColorErase() const { return m_backgroundColorErase; }
    /// What colour queries are answered with. Tells a program that asked for it when the background turned
    /// dark or light.
    void setColors(const TerminalColors& colors);

    /// Replies that must go back to the program (cursor position, device attributes). Called during `feed`
    /// and `setColors`.
    std::function<void(std::string_view)> onResponse;
    /// What the program asks of the world outside of its screen. Called during `feed`.
    std::function<void(const TerminalRequest&)> onRequest;

    /// Checks the class's invariants; aborts when one is broken. For debug builds, tests and fuzzers.
    void assertInvariants() const;

private:
    friend class EscapeParser;

    struct Cursor {
        int row = 0;
        int column = 0;
    };
    enum class Charset : std::uint8_t { Ascii, LineDrawing };
    /// G0 and G1, and which of them is in use.
    struct Charsets {
        std::array<Charset, 2> designated = {};
        std::size_t selected = 0;

        Charset current() const { return designated[selected]; }
    };
    /// What ESC 7 saves beside the position.
    struct SavedLook {
        TextStyle style;
        Charsets charsets;
        bool origin = false;
    };
    /// The main screen while a program uses the alternate one.
    struct SavedScreen {
        LineGrid grid;
        Cursor cursor;
    };
    enum class KeepHistory : bool { No, Yes };
    enum class ModeChange : bool { Reset, Set };

    // What the parser finds.
    void printAscii(std::string_view text, const char* end);
    const char* printText(const char* position, const char* end);
    void print(char32_t scalar);
    void control(char character);
    void escape(char32_t scalar);
    void intermediateEscape(std::string_view intermediates, char final);
    void controlSequence(const ControlSequence& sequence);
    void operatingSystemCommand(std::string_view text, std::string_view terminator);

    // Writing and scrolling.
    void printAsciiInModes(std::string_view text);
    void put(char32_t scalar, int width);
    void makeRoom(int width);
    void wrap();
    void advance(int width) {
        m_cursor.column += width;
        if (m_cursor.column < m_columns) return;
        m_cursor.column = m_columns - 1;
        m_pendingWrap = true;
    }
    bool clusterBefore() const;
    bool joinPrevious(char32_t scalar, std::uint8_t properties);
    bool joinsCell(const TerminalRow& line, int column, char32_t scalar, std::uint8_t properties) const;
    void widenPrevious(int column);
    void joinWritten(int column, char32_t mark);
    void repeatLast(int count);
    void lineFeed();
    void scrollUp();
    void scrollDown(int top);
    void reverseLineFeed();
    void removeLine(int row);
    void clearLine(TerminalRow& row);
    /// The line that the scrollback gave up for it, or null.
    TerminalRow* pushScrollback(TerminalRow* row);

    // Control sequences.
    void plainSequence(const ControlSequence& sequence);
    void markedSequence(const ControlSequence& sequence);
    void intermediateSequence(const ControlSequence& sequence);
    void privateSequence(const ControlSequence& sequence);
    void scrollSequence(char final, int count);
    void setGraphicRendition(const ControlSequence& sequence);
    void tabSequence(const ControlSequence& sequence);
    /// The nearest place on the screen, in origin mode in the region; clears `pendingWrap`.
    void moveTo(int row, int column);
    /// As `moveTo`, with the row counted from the region's top in origin mode.
    void address(int row, int column);
    void home();
    int addressedRow() const { return m_modes.origin ? m_cursor.row - m_scrollTop : m_cursor.row; }
    void saveCursor();
    void restoreCursor();
    void designate(char set, char final);
    void selectCharset(std::size_t index);
    void fillWithLetters();
    void eraseInDisplay(int extent);
    void eraseInLine(int extent);
    void eraseLines(int first, int end);
    void setRegion(const ControlSequence& sequence);
    void changeModes(const ControlSequence& sequence, ModeChange change);
    void changePrivateMode(int mode, ModeChange change);
    void modesChanged();
    void softReset();
    void setCursorShape(int parameter);

    // Replies and strings.
    void report(int kind);
    void reportPrivate(int kind);
    void reportMode(int mode);
    void reportSize() const;
    void reportAttributes() const;
    void reportColorScheme() const;
    void reportColors(std::size_t first, std::string_view fields, std::string_view terminator) const;
    void reportPalette(std::string_view fields, std::string_view terminator) const;
    void respond(std::string_view reply) const;
    void request(TerminalRequest::Kind kind, std::string_view text = {}) const;
    void setLink(std::string_view text);
    void notify(std::string_view text);
    /// Brings the style's `extra` in line with its underline colour and the link.
    void updateExtra();
    void forgetUnusedExtras();
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
    TerminalCell blank() const {
        TerminalCell cell;
        if (m_backgroundColorErase) cell.background = m_style.cell.background;
        return cell;
    }

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
    // Whether text needs more than to be written: line drawing, insert mode, no autowrap.
    bool m_textInModes = false;
    bool m_backgroundColorErase = false;
    TerminalModes m_modes;
    CursorShape m_cursorShape = CursorShape::Block;
    TextStyle m_style;
    Charsets m_charsets;
    SavedLook m_savedLook;
    TabStops m_tabStops;
    // What "b" repeats; 0 before the first character.
    char32_t m_lastPrinted = 0;

    CellExtras m_extras;
    // The link of new characters; its underline colour is not used.
    CellExtra m_link;
    std::uint64_t m_extrasFullAt = 0;
    std::string m_programTitle;
    TerminalColors m_colors;

    EscapeParser m_parser;
    Utf8Decoder m_decoder;
};

}  // namespace orvo
