#include "terminal/core/ScreenText.h"
#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace orvo::test {
namespace {

/// Everything a screen shows and reports, as text.
std::string snapshot(const TerminalScreen& screen) {
    std::string text =
        cursorOf(screen) + " region " + std::to_string(screen.scrollTop()) + "-" +
        std::to_string(screen.scrollBottom()) + (screen.alternateScreen() ? " alternate" : "") +
        (screen.cursorVisible() ? "" : " hidden") + (screen.bracketedPaste() ? " paste" : "") +
        (screen.applicationCursor() ? " application" : "") + "\n" + drawnScrollback(screen) + "---\n";
    for (int row = 0; row < screen.rows(); ++row) {
        for (int column = 0; column < screen.columns(); ++column) {
            const TerminalCell& cell = screen.line(row).cells()[static_cast<std::size_t>(column)];
            text += screen.line(row).text(column);
            if (!cell.foreground.isDefault()) text += hexOf(*cell.foreground.color());
            if (!cell.background.isDefault()) text += "/" + hexOf(*cell.background.color());
            text += std::string(cell.bold(), 'b') + std::string(cell.inverse(), 'i');
            if (cell.extra != 0) text += screen.extraOf(cell).link;
        }
        text += "\n";
    }
    return text;
}

/// Hostile output: pieces of real sequences, cut and mixed with text and malformed UTF-8.
class Output {
public:
    explicit Output(std::uint32_t seed) : m_engine(seed) {}

    std::size_t below(std::size_t limit) { return m_engine() % limit; }

    std::string piece() {
        switch (below(6)) {
            case 0:
                return std::string(1 + below(30), static_cast<char>('a' + below(26)));
            case 1:
                return sequence();
            case 2:
                return std::string(1 + below(3), static_cast<char>(below(256)));
            case 3:
                return sequence().substr(0, 1 + below(4));
            default:
                return std::string(tokens[below(tokens.size())]);
        }
    }

private:
    static constexpr std::array<std::string_view, 44> tokens = {
        "\r\n",
        "\n",
        "\b",
        "\t",
        "\u4E16\u754C",
        "e\u0301",
        "\U0001F600",
        "\u3000",
        "\x1B[?47h",
        "\x1B[?1049l",
        "\x1B[2;4r",
        "\x1B[r",
        "\x1B\x37",
        "\x1B\x38",
        "\x1BM",
        "\x1B\x44",
        "\x1B\x63",
        "\x1B]0;t\a",
        "\x1BPx\x1B\\",
        "\x1B(0",
        "\xE4\xB8",
        "\xF0\x9F",
        "\x1B[3?;5 !;m",
        "\x1B[6n",
        "\u2764",
        "\uFE0F",
        "\u200D",
        "\U0001F3FD",
        "\U0001F1E9",
        "\u20E3",
        "\x1B)0\x0E",
        "\x0F",
        "\x1B[4h",
        "\x1B[4l",
        "\x1B[?7l",
        "\x1B[?7h",
        "\x1B[?6h",
        "\x1B[?6l",
        "\x1BH",
        "\x1B[3g",
        "\x1B[!p",
        "\x1B#8",
        "\x1B]8;;http://x.org/\x1B\\",
        "\x1B[4:3;58:5:9m",
    };

    std::string sequence() {
        static constexpr std::string_view finals = "ABCDEFGHIJKLMPSTXZ@`abcdefghlmnrstu";
        static constexpr std::array<std::string_view, 6> markers = {"", "", "", "?", ">", "!"};
        std::string text = "\x1B[" + std::string(markers[below(markers.size())]);
        for (std::size_t count = below(4); count > 0; --count) {
            text += std::to_string(below(60)) + ";";
        }
        if (below(8) == 0) text += std::string(500 + below(20), '0');
        return text + std::to_string(below(30)) + finals[below(finals.size())];
    }

    std::mt19937 m_engine;
};

TEST(SplitInput, AnySplitOfTheInputGivesTheSameScreen) {
    for (std::uint32_t seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        Output output(seed);
        const int rows = 3 + static_cast<int>(output.below(8));
        const int columns = 10 + static_cast<int>(output.below(30));
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
        for (int part = 0; part < 4; ++part) {
            std::string bytes;
            for (int count = 0; count < 60; ++count) {
                bytes += output.piece();
            }
            whole.feed(bytes);
            for (std::size_t start = 0; start < bytes.size();) {
                const std::size_t length = 1 + output.below(seed % 2 == 0 ? 1 : 40);
                pieces.feed(std::string_view(bytes).substr(start, length));
                start += length;
            }
            whole.assertInvariants();
            pieces.assertInvariants();
            ASSERT_EQ(snapshot(whole), snapshot(pieces));
            ASSERT_EQ(replies, repliesOfPieces);
            const int newRows = 3 + static_cast<int>(output.below(9));
            const int newColumns = 10 + static_cast<int>(output.below(40));
            whole.resize(newRows, newColumns);
            pieces.resize(newRows, newColumns);
        }
    }
}

// Text is written in runs; where one begins and ends in a line must not show, nor what stood there before.
TEST(SplitInput, ARunOfTextIsWhatItsCharactersAre) {
    std::string marks;
    for (int count = 0; count < 40; ++count)
        marks += "\u0301";
    const std::vector<std::string> kinds = {
        "abcdefghij",
        "a\u00E9b",
        "\u4E16",
        "x\u4E16y",
        "\U0001F600",
        "e\u0301",
        "\u00E9\u0301x",
        "\u4E16\u0301\u0302",
        "\u00E9\u0301\u200D\U0001F469",
        "\u2764\uFE0Fa",
        "\U0001F468\u200D\U0001F469",
        "\u00E9" + marks,
        "a\xC3z",
    };
    constexpr int columns = 40;
    for (const std::string& kind : kinds) {
        for (int column = 1; column <= columns; ++column) {
            std::string text;
            for (int repeated = 0; repeated < 40; ++repeated) {
                text += kind;
                const std::string head =
                    (column % 2 == 0 ? "\x1B[44mABCDEFGHIJKLMNOPQRSTUVWXYZ\u4E16\u4E16\x1B[m"
                                     : std::string()) +
                    "\x1B[" + std::to_string(column) + "G";
                TerminalScreen run(5, columns);
                TerminalScreen characters(5, columns);
                run.feed(head + text);
                characters.feed(head);
                for (const char byte : text) {
                    characters.feed({&byte, 1});
                }
                ASSERT_EQ(snapshot(run), snapshot(characters)) << kind << " " << repeated << " at " << column;
            }
        }
    }
}

}  // namespace
}  // namespace orvo::test
