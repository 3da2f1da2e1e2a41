#pragma once

#include "terminal/core/TerminalRow.h"

#include <functional>
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

    int rows() const;
    int columns() const;
    /// Cursor, 0-based.
    int row() const;
    int column() const;
    bool cursorVisible() const;
    bool bracketedPaste() const;
    bool applicationCursor() const;
    bool alternateScreen() const;
    /// Scrolling region, 0-based, both included.
    int scrollTop() const;
    int scrollBottom() const;
    bool pendingWrap() const;

    /// A line of the visible grid, 0 at the top.
    const TerminalRow& line(int row) const;
    /// At most 2,000 lines, 0 is the oldest.
    int scrollbackCount() const;
    const TerminalRow& scrollbackLine(int index) const;
    /// Lines that ever left the top into the scrollback; grows only. A view uses it to stay on the same text.
    std::uint64_t scrolledLines() const;

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
    // The implementation decides.
};

}  // namespace orvo
