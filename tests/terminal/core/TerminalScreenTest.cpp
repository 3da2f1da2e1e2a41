#include "terminal/core/TerminalScreen.h"

#include "terminal/core/ScreenText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace orvo::test {
namespace {

TEST(TerminalScreen, WritesWrapsAndScrolls) {
    const ScreenCase cases[] = {
        {"a full line waits with the wrap", "01234567890123456789", "01234567890123456789", "0,19+"},
        {"the next character takes the next line", "01234567890123456789a", "01234567890123456789\na", "1,1"},
        {"a long run wraps as often as needed", "0123456789012345678901234567890123456789X",
         "01234567890123456789\n01234567890123456789\nX", "2,1"},
        {"a carriage return takes the wrap back", "01234567890123456789\rX", "X1234567890123456789", "0,1"},
        {"backspace takes the wrap back", "01234567890123456789\bX", "012345678901234567X9", "0,19"},
        {"backspace stops at the margin", "a\b\b\bX", "X", "0,1"},
        {"a line feed keeps the column", "ab\ncd", "ab\n  cd", "1,4"},
        {"vertical tab and form feed are line feeds", "a\vb\fc", "a\n b\n  c", "2,3"},
        {"tabs go to the next multiple of 8", "a\tb\tc", "a       b       c", "0,17"},
        {"a tab stops in the last column", "a\t\t\t\tb", "a                  b", "0,19+"},
        {"a tab leaves a pending wrap", "01234567890123456789\tX", "01234567890123456789\nX", "1,1"},
        {"bell, NUL and DEL do nothing", std::string_view("a\a\0b\x7F", 5), "ab", "0,2"},
        {"the top line leaves a full screen", "1\r\n2\r\n3\r\n4\r\n5\r\n6", "2\n3\n4\n5\n6", "4,1"},
    };
    expectCases(cases, 5, 20);
}

TEST(TerminalScreen, KeepsWideCharactersAndMarksTogether) {
    const ScreenCase cases[] = {
        {"a wide character takes two cells", "世x", "世x", "0,3"},
        {"it moves to the next line when one cell is left", "012345678世", "012345678\n世", "1,2"},
        {"it fills the last two cells", "01234567世", "01234567世", "0,9+"},
        {"overwriting one half leaves the other alone", "世\rx", "x", "0,1"},
        {"a mark joins the character before", "e\u0301x", "e\u0301x", "0,2"},
        {"a mark joins the wide character before", "世\u0301x", "世\u0301x", "0,3"},
        {"a mark joins the last column while a wrap is pending", "0123456789\u0301", "0123456789\u0301",
         "0,9+"},
        {"a mark joins a wide character in the last columns", "01234567世\u0301", "01234567世\u0301", "0,9+"},
        {"a mark in the first column is dropped", "\u0301a", "a", "0,1"},
        {"a mark of a wide block is still a mark", "か\u3099x", "か\u3099x", "0,3"},
        {"a mark joins a blank cell", "\x1B[3C\u0301x", "  \u0020\u0301x", "0,4"},
        {"C1 scalars and the byte order mark take a cell", "\u0085\uFEFFx", "\u0085\uFEFFx", "0,3"},
    };
    expectCases(cases, 3, 10);
}

TEST(TerminalScreen, WideCharactersAreThoseOfTheWideBlocks) {
    const struct {
        std::string_view text;
        int width;
    } cases[] = {
        {"\u10FF", 1}, {"\u1100", 2}, {"\u115F", 2}, {"\u1160", 1},     {"\u2E80", 2},     {"\uA4CF", 2},
        {"\uAC00", 2}, {"\uD7AF", 2}, {"\uF900", 2}, {"\uFE30", 2},     {"\uFE6F", 2},     {"\uFF00", 1},
        {"\uFF01", 2}, {"\uFF60", 2}, {"\uFF61", 1}, {"\U0001F300", 2}, {"\U0001FAFF", 2}, {"\U0001FB00", 1},
    };
    for (const auto& [text, width] : cases) {
        TerminalScreen screen(3, 10);
        screen.feed(text);
        EXPECT_EQ(screen.column(), width) << text;
        EXPECT_EQ(screen.line(0).cells()[1].continuation(), width == 2) << text;
        EXPECT_EQ(screen.line(0).text(1), width == 2 ? "" : " ") << text;
    }
}

TEST(TerminalScreen, AFloodOfMarksIsBounded) {
    TerminalScreen screen(3, 10);
    std::string flood = "e";
    for (int count = 0; count < 1000; ++count) {
        flood += "\u0301";
    }
    screen.feed(flood);
    EXPECT_EQ(screen.line(0).text(0).size(), 1 + 31 * 2u);
    for (int count = 0; count < 1000; ++count) {
        screen.feed("\re\u0301\u0302世\u0303");
        screen.assertInvariants();
    }
    EXPECT_EQ(screen.line(0).text(0), "e\u0301\u0302");
    EXPECT_EQ(screen.line(0).text(1), "世\u0303");
}

TEST(TerminalScreen, ScrollbackKeepsTheNewestTwoThousandLinesOfTheMainScreen) {
    TerminalScreen screen(5, 20);
    for (int line = 0; line < 2500; ++line) {
        screen.feed("line " + std::to_string(line) + "   \r\n");
    }
    screen.assertInvariants();
    EXPECT_EQ(screen.scrollbackCount(), 2000);
    EXPECT_EQ(screen.scrolledLines(), 2496u);
    EXPECT_EQ(screen.scrollbackLine(0).plainText(), "line 496");
    EXPECT_EQ(screen.scrollbackLine(1999).plainText(), "line 2495");
    EXPECT_EQ(drawnRows(screen), "line 2496\nline 2497\nline 2498\nline 2499");

    screen.feed("\x1B[?1049h");
    screen.feed("a\r\nb\r\nc\r\nd\r\ne\r\nf\r\ng");
    EXPECT_EQ(screen.scrolledLines(), 2496u);
    screen.feed("\x1B[?1049l\x1B[2;4r\x1B[4;1Hx\n\n\n\n");
    EXPECT_EQ(screen.scrolledLines(), 2496u) << "lines of a lower region are lost";
    screen.feed("\x1B[1;3r\x1B[3;1H\n");
    EXPECT_EQ(screen.scrolledLines(), 2497u) << "a region at the top keeps its lines";
    EXPECT_EQ(screen.scrollbackLine(1999).plainText(), "line 2496");
}

TEST(TerminalScreen, ScrollbackCutsTrailingBlankCellsButNotStyledOnes) {
    TerminalScreen screen(3, 10);
    screen.feed("ab  \r\n\x1B[41mcd  \x1B[0m  \r\n\r\n\r\n\r\n");
    screen.assertInvariants();
    EXPECT_EQ(screen.scrollbackLine(0).cells().size(), 2u);
    EXPECT_EQ(screen.scrollbackLine(1).cells().size(), 4u);
    EXPECT_EQ(screen.scrollbackLine(2).cells().size(), 0u);
}

TEST(TerminalScreen, ResizeKeepsTheCursorLineAndWhatIsAboveIt) {
    TerminalScreen screen(5, 20);
    screen.feed("one\r\ntwo\r\nthree\r\nfour\r\nfive");
    screen.resize(3, 20);
    screen.assertInvariants();
    EXPECT_EQ(screen.plainText(), "one\ntwo\nthree\nfour\nfive");
    EXPECT_EQ(drawnRows(screen), "three\nfour\nfive");
    EXPECT_EQ(cursorOf(screen), "2,4");

    screen.resize(8, 30);
    screen.assertInvariants();
    EXPECT_EQ(drawnRows(screen), "three\nfour\nfive");
    for (int row = 0; row < 8; ++row) {
        EXPECT_EQ(screen.line(row).cells().size(), 30u);
    }

    screen.feed("\x1B[2;1H");
    screen.resize(2, 5);
    EXPECT_EQ(screen.rows(), 3);
    EXPECT_EQ(screen.columns(), 10);
    EXPECT_EQ(drawnRows(screen), "three\nfour\nfive");
}

TEST(TerminalScreen, ResizeToTheSameSizeChangesNothing) {
    TerminalScreen screen(3, 10);
    screen.feed("\x1B[1;2r0123456789");
    const std::uint64_t stamp = screen.line(0).stamp();
    screen.resize(1, 4);
    EXPECT_TRUE(screen.pendingWrap());
    EXPECT_EQ(screen.scrollBottom(), 1);
    EXPECT_EQ(screen.line(0).stamp(), stamp);
    screen.resize(3, 11);
    EXPECT_FALSE(screen.pendingWrap());
    EXPECT_EQ(screen.scrollBottom(), 2);
}

TEST(TerminalScreen, ResizeOnTheAlternateScreenReshapesBothScreens) {
    TerminalScreen screen(5, 20);
    screen.feed("1\r\n2\r\n3\r\n4\r\nmain line that\x1B[?1049ha\r\nb\r\nc\r\nd\r\ne");
    screen.resize(3, 10);
    screen.assertInvariants();
    EXPECT_EQ(drawnRows(screen), "c\nd\ne");
    EXPECT_EQ(drawnScrollback(screen), "1\n2\n");
    screen.feed("\x1B[?1049l");
    screen.assertInvariants();
    EXPECT_EQ(drawnRows(screen), "3\n4\nmain line");
    EXPECT_EQ(cursorOf(screen), "2,9");
}

TEST(TerminalScreen, CuttingTheWidthLosesCellsOfTheGridButNotOfTheScrollback) {
    TerminalScreen screen(3, 20);
    screen.feed("0123456789abcdef\r\n\n\n\x1B[1;1H0123456789abcdef");
    screen.resize(3, 12);
    screen.resize(3, 20);
    EXPECT_EQ(screen.scrollbackLine(0).plainText(), "0123456789abcdef");
    EXPECT_EQ(drawnRows(screen), "0123456789ab");
}

TEST(TerminalScreen, PlainTextIsTrimmedByTheWhiteSpaceProperty) {
    EXPECT_EQ(TerminalScreen().plainText(), "");
    TerminalScreen screen(4, 20);
    screen.feed("\r\n  a \u2003\r\n\u3000b\u00A0\u3000\r\nc\u200B\u2028");
    EXPECT_EQ(screen.plainText(), "a\n\u3000b\nc\u200B");
}

TEST(TerminalScreen, ResetClearsTheGridAndLeavesHistoryAndModes) {
    TerminalScreen screen(3, 10);
    screen.feed("1\r\n2\r\n3\r\n4\x1B[?2004h\x1B[1;2r\x1B[7m0123456789");
    screen.reset();
    screen.assertInvariants();
    EXPECT_EQ(drawnRows(screen), "");
    EXPECT_EQ(drawnScrollback(screen), "1\n");
    EXPECT_EQ(cursorOf(screen), "0,0");
    EXPECT_EQ(screen.scrollBottom(), 2);
    EXPECT_TRUE(screen.bracketedPaste());
    screen.feed("x");
    EXPECT_FALSE(screen.line(0).cells()[0].inverse());
}

TEST(TerminalScreen, AStampChangesWithItsLineAndMovesWithIt) {
    TerminalScreen screen(3, 10);
    screen.feed("a\r\nb\r\nc");
    const auto stamps = [&screen] {
        return std::vector{screen.line(0).stamp(), screen.line(1).stamp(), screen.line(2).stamp()};
    };
    const auto before = stamps();
    EXPECT_EQ(std::set(before.begin(), before.end()).size(), 3u);

    screen.feed("\x1B[2;1H\x1B[1m\x1B[?25l");
    EXPECT_EQ(stamps(), before) << "moving the cursor changes no line";
    screen.feed("x");
    EXPECT_EQ(screen.line(0).stamp(), before[0]);
    EXPECT_NE(screen.line(1).stamp(), before[1]);
    EXPECT_EQ(screen.line(2).stamp(), before[2]);

    const auto written = stamps();
    screen.feed("\x1B[3;1H\n");
    EXPECT_EQ(screen.line(0).stamp(), written[1]);
    EXPECT_EQ(screen.line(1).stamp(), written[2]);
    EXPECT_EQ(screen.scrollbackLine(0).stamp(), written[0]);
    EXPECT_GT(screen.line(2).stamp(), *std::ranges::max_element(written));

    for (const std::string_view change :
         {"\x1B[K", "x\u0301", "\x1B[@", "\x1B[P", "\x1B[X", "\x1B[2J", "\033c"}) {
        screen.feed("\x1B[1;1Hxyz\x1B[1;1H");
        const std::uint64_t stamp = screen.line(0).stamp();
        screen.feed(change);
        EXPECT_NE(screen.line(0).stamp(), stamp) << change;
    }
}

}  // namespace
}  // namespace orvo::test
