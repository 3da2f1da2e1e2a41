// Feeds a screen the same bytes whole and in pieces, with resizes and other things that happen to a terminal
// in between. The invariants must hold after each step, and both screens must end alike, whatever they were
// asked meanwhile.
//
// Input: rows, columns, two sizes of pieces, flags; then output of a program, in which 0xFF starts one of the
// operations of `operate`.
#include "fuzz/FuzzInput.h"
#include "terminal/core/TerminalScreen.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <tuple>

namespace {

using orvo::TerminalCell;
using orvo::TerminalRow;
using orvo::TerminalScreen;
using orvo::fuzz::FuzzInput;
using orvo::fuzz::require;

/// A screen and everything that it said.
struct Terminal {
    Terminal(int rows, int columns, bool backgroundColorErase) : screen(rows, columns) {
        screen.setBackgroundColorErase(backgroundColorErase);
        screen.onResponse = [this](std::string_view reply) {
            said.append(reply);
        };
        screen.onRequest = [this](const orvo::TerminalRequest& request) {
            said += static_cast<char>('a' + static_cast<int>(request.kind));
            said.append(request.text);
        };
    }

    TerminalScreen screen;
    std::string said;
};

bool sameRow(const TerminalScreen& leftScreen, const TerminalRow& left, const TerminalScreen& rightScreen,
             const TerminalRow& right) {
    if (left.width() != right.width() || left.wrapped() != right.wrapped()) return false;
    for (int column = 0; column < left.width(); ++column) {
        TerminalCell a = left.cells()[static_cast<std::size_t>(column)];
        TerminalCell b = right.cells()[static_cast<std::size_t>(column)];
        if (leftScreen.extraOf(a) != rightScreen.extraOf(b)) return false;
        a.content = b.content = 0;
        a.extra = b.extra = 0;
        if (!(a == b) || left.text(column) != right.text(column)) return false;
    }
    return true;
}

bool sameScreen(const TerminalScreen& left, const TerminalScreen& right) {
    const auto state = [](const TerminalScreen& screen) {
        const orvo::TerminalModes& modes = screen.modes();
        return std::tuple(screen.rows(), screen.columns(), screen.row(), screen.column(),
                          screen.pendingWrap(), screen.scrollTop(), screen.scrollBottom(),
                          screen.cursorVisible(), screen.bracketedPaste(), screen.applicationCursor(),
                          modes.applicationKeypad, modes.insert, modes.autowrap, screen.cursorShape(),
                          screen.alternateScreen(), screen.scrollbackCount(), screen.scrolledLines(),
                          screen.programTitle());
    };
    if (state(left) != state(right)) return false;
    for (int row = 0; row < left.rows(); ++row) {
        if (!sameRow(left, left.line(row), right, right.line(row))) return false;
    }
    for (int index = 0; index < left.scrollbackCount(); ++index) {
        if (!sameRow(left, left.scrollbackLine(index), right, right.scrollbackLine(index))) return false;
    }
    return left.plainText() == right.plainText();
}

/// Looking at all lines takes longer than feeding a few bytes.
constexpr std::size_t looksEvery = 8;

class Comparison {
public:
    explicit Comparison(FuzzInput input)
        : m_input(input),
          m_rows(m_input.between(1, 12)),
          m_columns(m_input.between(1, 40)),
          m_pieces{m_input.between(1, 16), m_input.between(1, 64)},
          m_flags(m_input.next()),
          m_whole(m_rows, m_columns, (m_flags & 1) != 0),
          m_cut(m_rows, m_columns, (m_flags & 1) != 0) {}

    void run() {
        while (!m_input.empty()) {
            feed(m_input.until('\xFF'));
            if (!m_input.empty()) operate();
        }
        require(m_whole.said == m_cut.said, "replies and requests depend on how the input was split");
        require(sameScreen(m_whole.screen, m_cut.screen), "the screen depends on how the input was split");
    }

private:
    void feed(std::string_view bytes) {
        m_whole.screen.feed(bytes);
        m_whole.screen.assertInvariants();
        while (!bytes.empty()) {
            const auto size = static_cast<std::size_t>(m_pieces[m_turn++ % m_pieces.size()]);
            m_cut.screen.feed(bytes.substr(0, size));
            bytes.remove_prefix(std::min(size, bytes.size()));
            if (m_turn % looksEvery != 0 && !bytes.empty()) continue;
            m_cut.screen.assertInvariants();
            // Neither looking at a screen nor tidying it changes it.
            if ((m_flags & 2) != 0) m_cut.screen.compact();
            if ((m_flags & 4) != 0) (void)m_cut.screen.plainText();
        }
    }

    void operate() {
        switch (m_input.next() % 5) {
            case 0: {
                const int rows = m_input.between(0, 30);
                const int columns = m_input.between(0, 80);
                both([=](TerminalScreen& screen) { screen.resize(rows, columns); });
                break;
            }
            case 1:
                both([](TerminalScreen& screen) { screen.reset(); });
                break;
            case 2: {
                const auto shade = static_cast<std::uint8_t>(m_input.next());
                both(
                    [=](TerminalScreen& screen) { screen.setColors({.background = {shade, shade, shade}}); });
                break;
            }
            case 3:
                both([](TerminalScreen& screen) { screen.feedText("\u4E16 text of our own\r\n"); });
                break;
            default:
                both([](TerminalScreen& screen) { screen.feed("\xFF"); });
        }
    }

    template <class Operation>
    void both(Operation operation) {
        operation(m_whole.screen);
        operation(m_cut.screen);
        m_whole.screen.assertInvariants();
        m_cut.screen.assertInvariants();
    }

    FuzzInput m_input;
    const int m_rows;
    const int m_columns;
    const std::array<int, 2> m_pieces;
    const unsigned m_flags;
    Terminal m_whole;
    Terminal m_cut;
    std::size_t m_turn = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Comparison(FuzzInput(data, size)).run();
    return 0;
}
