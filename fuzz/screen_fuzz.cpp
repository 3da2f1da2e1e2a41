// Feeds a screen the same bytes whole and in pieces, with resizes in between. The invariants must hold after
// each step, and both screens must end alike.
#include "terminal/core/TerminalScreen.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <tuple>

namespace {

using orvo::TerminalRow;
using orvo::TerminalScreen;

/// The first bytes of an input say how it is fed; the rest is fed.
class Plan {
public:
    explicit Plan(std::string_view& input) : m_input(input) {}
    unsigned next() {
        if (m_input.empty()) return 0;
        const auto byte = static_cast<unsigned char>(m_input.front());
        m_input.remove_prefix(1);
        return byte;
    }

private:
    std::string_view& m_input;
};

bool sameRow(const TerminalRow& left, const TerminalRow& right) {
    if (left.cells().size() != right.cells().size()) return false;
    for (int column = 0; column < left.width(); ++column) {
        orvo::TerminalCell a = left.cells()[static_cast<std::size_t>(column)];
        orvo::TerminalCell b = right.cells()[static_cast<std::size_t>(column)];
        a.content = b.content = 0;
        if (!(a == b) || left.text(column) != right.text(column)) return false;
    }
    return true;
}

bool sameScreen(const TerminalScreen& left, const TerminalScreen& right) {
    const auto state = [](const TerminalScreen& screen) {
        return std::tuple(screen.rows(), screen.columns(), screen.row(), screen.column(),
                          screen.pendingWrap(), screen.scrollTop(), screen.scrollBottom(),
                          screen.cursorVisible(), screen.bracketedPaste(), screen.applicationCursor(),
                          screen.alternateScreen(), screen.scrollbackCount(), screen.scrolledLines());
    };
    if (state(left) != state(right)) return false;
    for (int row = 0; row < left.rows(); ++row) {
        if (!sameRow(left.line(row), right.line(row))) return false;
    }
    for (int index = 0; index < left.scrollbackCount(); ++index) {
        if (!sameRow(left.scrollbackLine(index), right.scrollbackLine(index))) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    Plan plan(input);
    const int rows = 1 + static_cast<int>(plan.next() % 12);
    const int columns = 1 + static_cast<int>(plan.next() % 40);
    const std::size_t piece = 1 + plan.next() % 16;
    const std::size_t resizeAt = plan.next() * 4;
    const int newRows = static_cast<int>(plan.next() % 20);
    const int newColumns = static_cast<int>(plan.next() % 60);

    std::string replies;
    std::string repliesOfPieces;
    TerminalScreen whole(rows, columns);
    TerminalScreen pieces(rows, columns);
    whole.onResponse = [&replies](std::string_view reply) {
        replies += reply;
    };
    pieces.onResponse = [&repliesOfPieces](std::string_view reply) {
        repliesOfPieces += reply;
    };
    const auto feedBoth = [&](std::string_view bytes) {
        whole.feed(bytes);
        whole.assertInvariants();
        for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
            pieces.feed(bytes.substr(0, piece));
            pieces.assertInvariants();
        }
    };
    feedBoth(input.substr(0, resizeAt));
    if (resizeAt < input.size()) {
        whole.resize(newRows, newColumns);
        pieces.resize(newRows, newColumns);
        feedBoth(input.substr(resizeAt));
    }
    if (!sameScreen(whole, pieces) || replies != repliesOfPieces || whole.plainText() != pieces.plainText()) {
        std::fprintf(stderr, "the screen depends on how the input was split\n");
        std::abort();
    }
    return 0;
}
