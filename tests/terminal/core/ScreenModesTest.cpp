#include "terminal/core/ScreenText.h"
#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

#include <span>
#include <string>

namespace orvo::test {
namespace {

/// The case's bytes on an empty grid of 4 × 20.
void expectOnEmpty(std::span<const ScreenCase> cases) {
    expectCases(cases, 4, 20);
}

TEST(ScreenModes, LineDrawingReplacesTheLettersWhileItsSetIsInUse) {
    const ScreenCase cases[] = {
        {"ESC ( 0 draws", "\x1B(0lqk\x1B(Blqk", "┌─┐lqk", "0,6"},
        {"all of it", "\x1B(0_`abcdefghijklmno\x1B(B\r\n\x1B(0pqrstuvwxyz{|}~",
         "_◆▒␉␌␍␊°±␤␋┘┐┌└┼⎺\n⎻─⎼⎽├┤┴┬│≤≥π≠£·", "1,15"},
        {"SO and SI choose", "\x1B)0q\x0Eq\x0Fq", "q─q", "0,3"},
        {"G1 is ASCII at first", "q\x0Eq", "qq", "0,2"},
        {"other characters are left alone", "\x1B(0Aé q", "Aé ─", "0,4"},
        {"any other set is ASCII", "\x1B(0\x1B(Aq\x1B(0\x1B(%0q", "qq", "0,2"},
        {"the full reset goes back", "\x1B(0\x1B\x63q\x1B)0\x0E\x1B[!pq", "qq", "0,2"},
        {"ESC 8 brings it back", "\x1B(0\x1B\x37\x1B(B\x1B\x38q", "─", "0,1"},
        {"CSI u does not", "\x1B(0\x1B[s\x1B(B\x1B[uq", "q", "0,1"},
        {"it wraps like other text", "\x1B(0qqqqqqqqqqqqqqqqqqqqx", "────────────────────\n│", "1,1"},
    };
    expectOnEmpty(cases);
}

TEST(ScreenModes, RepeatsTheLastCharacter) {
    const ScreenCase cases[] = {
        {"b repeats", "ab\x1B[3b", "abbbb", "0,5"},
        {"nothing before the first character", "\x1B[3b|", "|", "0,1"},
        {"a wide character", "世\x1B[b", "世世", "0,4"},
        {"what line drawing made of it", "\x1B(0q\x1B(B\x1B[2b", "───", "0,3"},
        {"over the margin", "x\x1B[24b", "xxxxxxxxxxxxxxxxxxxx\nxxxxx", "1,5"},
        {"marks are not repeated", "e\u0301\x1B[2b", "e\u0301ee", "0,3"},
        {"a sequence does not forget it", "x\x1B[3;3H\x1B[b", "x\n\n  x", "2,3"},
        {"the soft reset does not forget it", "x\x1B[!p\x1B[b", "xx", "0,2"},
        {"the full reset does", "x\x1B\x63\x1B[b|", "|", "0,1"},
    };
    expectOnEmpty(cases);
    TerminalScreen screen(3, 10);
    screen.feed("x\r\n\x1B[1000000b");
    EXPECT_EQ(screen.scrolledLines(), 1u) << "at most as many as the screen has cells";
}

TEST(ScreenModes, TabStopsAreSetAndCleared) {
    const ScreenCase cases[] = {
        {"ESC H sets one", "\x1B[1;4H\x1BH\r\tx\ty", "   x    y", "0,9"},
        {"g clears it", "\x1B[1;9H\x1B[g\r\tx", "                x", "0,17"},
        {"3 g clears all", "\x1B[3g\tx", "                   x", "0,19+"},
        {"other numbers do nothing", "\x1B[1g\x1B[2g\tx", "        x", "0,9"},
        {"I goes n stops", "\x1B[2Ix", "                x", "0,17"},
        {"Z goes back", "\x1B[1;18H\x1B[Zx\x1B[3Zy", "y               x", "0,1"},
        {"Z clears a pending wrap", "01234567890123456789\x1B[Zx", "0123456789012345x789", "0,17"},
        {"the full reset brings them back", "\x1B[3g\x1B\x63\tx", "        x", "0,9"},
        {"the soft reset does not", "\x1B[3g\x1B[!p\tx", "                   x", "0,19+"},
    };
    expectOnEmpty(cases);

    TerminalScreen screen(3, 20);
    screen.feed("\x1B[1;19H\x1BH\x1B[3g\x1B[1;4H\x1BH");
    screen.resize(3, 12);
    screen.resize(3, 30);
    screen.feed("\r\tx\ty\tz");
    EXPECT_EQ(drawnRows(screen), "   x            y       z") << "new columns have the first stops";
}

TEST(ScreenModes, InsertModeShiftsTheRestOfTheLine) {
    const ScreenCase cases[] = {
        {"a letter shifts by one", "abc\r\x1B[4hx\x1B[4ly", "xybc", "0,2"},
        {"a wide character by two", "abc\r\x1B[4h世", "世abc", "0,2"},
        {"what passes the margin is lost", "01234567890123456789\r\x1B[4hx", "x0123456789012345678", "0,1"},
        {"after a wrap", "01234567890123456789\x1B[4hxy", "01234567890123456789\nxy", "1,2"},
        {"marks shift nothing", "abc\r\x1B[4he\u0301", "e\u0301abc", "0,1"},
        {"the private mode 4 is another", "abc\r\x1B[?4hx", "xbc", "0,1"},
    };
    expectOnEmpty(cases);
}

TEST(ScreenModes, WithoutAutowrapTheLastColumnIsOverwritten) {
    const ScreenCase cases[] = {
        {"by narrow characters", "\x1B[?7l0123456789012345678901x", "0123456789012345678x", "0,19+"},
        {"by wide ones, which take two", "\x1B[?7l01234567890123456789世", "012345678901234567世", "0,19+"},
        {"also in the last column alone", "\x1B[?7l\x1B[20G世", "                  世", "0,19+"},
        {"until it is on again", "\x1B[?7l01234567890123456789\x1B[?7hxy", "01234567890123456789\nxy", "1,2"},
    };
    expectOnEmpty(cases);
}

TEST(ScreenModes, OriginModeCountsFromTheRegion) {
    const ScreenCase cases[] = {
        {"setting it goes to the region's top", "\x1B[2;3r\x1B[4;5H\x1B[?6hx", "\nx", "1,1"},
        {"H and d count from there", "\x1B[2;3r\x1B[?6h\x1B[2;3Hx\x1B[dy", "\n   y\n  x", "1,4"},
        {"nothing leaves the region", "\x1B[2;3r\x1B[?6h\x1B[9;3H\x1B[9Bx\x1B[9Ay", "\n   y\n  x", "1,4"},
        {"u ends inside", "\x1B[4;3H\x1B[s\x1B[2;3r\x1B[?6h\x1B[ux", "\n\n  x", "2,3"},
        {"r goes to the region's top", "\x1B[?6h\x1B[2;3rx", "\nx", "1,1"},
        {"resetting it goes home", "\x1B[2;3r\x1B[?6h\x1B[?6lx", "x", "0,1"},
        {"ESC 8 brings it back before it clamps",
         "\x1B[2;3r\x1B[?6h\x1B[2;4H\x1B\x37\x1B[?6l\x1B\x38\x1B[9Bx", "\n\n   x", "2,4"},
        {"ESC 8 ends it when it was off", "\x1B\x37\x1B[2;3r\x1B[?6h\x1B\x38x", "x", "0,1"},
    };
    expectOnEmpty(cases);
}

TEST(ScreenModes, SavesAndRestoresTheLookWithTheCursor) {
    TerminalScreen screen(4, 20);
    for (const std::string_view pair : {"\x1B\x37|\x1B\x38", "\x1B[?1048h|\x1B[?1048l"}) {
        const std::size_t middle = pair.find('|');
        screen.feed("\x1B\x63\x1B[2;3H\x1B[1;31m");
        screen.feed(pair.substr(0, middle));
        screen.feed("\x1B[m\x1B[H");
        screen.feed(pair.substr(middle + 1));
        screen.feed("x");
        EXPECT_EQ(cursorOf(screen), "1,3");
        EXPECT_TRUE(screen.line(1).cells()[2].bold());
        EXPECT_EQ(screen.line(1).cells()[2].foreground, indexedColor(1));
    }
    screen.feed("\x1B[!p\x1B[1m\x1B\x38x");
    EXPECT_EQ(cursorOf(screen), "0,1") << "the soft reset forgets what was saved";
    EXPECT_FALSE(screen.line(0).cells()[0].bold());
}

TEST(ScreenModes, TheSoftResetKeepsTextCursorAndScreen) {
    TerminalScreen screen(4, 20);
    screen.feed(
        "1\r\n2\r\n3\r\n4\r\n5\x1B[?1049habc\x1B[2;3r\x1B[?1;6;7;25;2004;1002;1006;1004;2026;2031l"
        "\x1B[?1;6;2004;1002;1006;1004;2026;2031h\x1B[4h\x1B[3;4H\x1B[1m\x1B[99;0!p");
    screen.assertInvariants();
    EXPECT_TRUE(screen.alternateScreen());
    EXPECT_EQ(cursorOf(screen), "2,3");
    EXPECT_EQ(screen.scrollBottom(), 3);
    EXPECT_EQ(drawnRows(screen), "abc");
    EXPECT_EQ(screen.scrollbackCount(), 1);
    const TerminalModes& modes = screen.modes();
    EXPECT_FALSE(modes.applicationCursor || modes.origin || modes.bracketedPaste || modes.insert ||
                 modes.sgrMouse || modes.focusReports || modes.synchronizedOutput ||
                 modes.colorSchemeReports);
    EXPECT_TRUE(modes.cursorVisible && modes.autowrap && modes.alternateScroll);
    EXPECT_EQ(modes.mouseReporting(), MouseReporting::None);
    screen.feed("x");
    EXPECT_FALSE(screen.line(2).cells()[3].bold());
}

TEST(ScreenModes, TheHighestMouseModeThatIsOnRules) {
    TerminalScreen screen(3, 10);
    screen.feed("\x1B[?1003;1000h");
    EXPECT_EQ(screen.modes().mouseReporting(), MouseReporting::Motion);
    screen.feed("\x1B[?1003l");
    EXPECT_EQ(screen.modes().mouseReporting(), MouseReporting::Buttons);
    screen.feed("\x1B[?1002h");
    EXPECT_EQ(screen.modes().mouseReporting(), MouseReporting::Drags);
    screen.feed("\x1B\x63");
    EXPECT_EQ(screen.modes().mouseReporting(), MouseReporting::None);
}

TEST(ScreenModes, TheCursorTakesTheShapeAskedFor) {
    TerminalScreen screen(3, 10);
    const auto shape = [&screen](std::string_view parameters) {
        screen.feed("\x1B[" + std::string(parameters) + " q");
        return screen.cursorShape();
    };
    EXPECT_EQ(shape("3"), CursorShape::Underline);
    EXPECT_EQ(shape("6"), CursorShape::Bar);
    EXPECT_EQ(shape("7"), CursorShape::Bar) << "unknown";
    EXPECT_EQ(shape(""), CursorShape::Block);
    EXPECT_EQ(shape("4"), CursorShape::Underline);
    EXPECT_EQ(shape("2"), CursorShape::Block);
}

TEST(ScreenModes, DecAlignmentFillsTheScreen) {
    TerminalScreen screen(3, 10);
    screen.setBackgroundColorErase(true);
    screen.feed("\x1B[1;2r\x1B[3;3H\x1B[41m\x1B#8");
    screen.assertInvariants();
    EXPECT_EQ(drawnRows(screen), "EEEEEEEEEE\nEEEEEEEEEE\nEEEEEEEEEE");
    EXPECT_EQ(cursorOf(screen), "0,0");
    EXPECT_EQ(screen.scrollBottom(), 2);
    EXPECT_TRUE(screen.line(1).cells()[5].background.isDefault());
}

/// The columns of each row that have a background, as one mark each.
std::string backgrounds(const TerminalScreen& screen) {
    std::string drawing;
    for (int row = 0; row < screen.rows(); ++row) {
        for (const TerminalCell& cell : screen.line(row).cells()) {
            drawing += cell.background.isDefault() ? '.' : '#';
        }
        drawing += ' ';
    }
    return drawing;
}

TEST(ScreenModes, ErasedCellsTakeTheBackgroundWhenTheScreenIsToldTo) {
    const struct {
        const char* rule;
        std::string_view bytes;
        std::string_view drawing;
    } cases[] = {
        {"J", "\x1B[2;3H\x1B[41m\x1B[J", ".......... ..######## ########## "},
        {"K", "\x1B[1;3H\x1B[41m\x1B[1K", "###....... .......... .......... "},
        {"X", "\x1B[1;3H\x1B[41m\x1B[2X", "..##...... .......... .......... "},
        {"P", "\x1B[1;3H\x1B[41m\x1B[2P", "........## .......... .......... "},
        {"@", "\x1B[1;3H\x1B[41m\x1B[2@", "..##...... .......... .......... "},
        {"L", "\x1B[2;3H\x1B[41m\x1B[L", ".......... ########## .......... "},
        {"M", "\x1B[2;3H\x1B[41m\x1B[M", ".......... .......... ########## "},
        {"S", "\x1B[41m\x1B[S", ".......... .......... ########## "},
        {"T", "\x1B[41m\x1B[T", "########## .......... .......... "},
        {"a line feed", "\x1B[3;1H\x1B[41m\n", ".......... .......... ########## "},
        {"ESC M", "\x1B[1;1H\x1B[41m\x1BM", "########## .......... .......... "},
        {"only the background", "\x1B[1;3H\x1B[7;1;4;31m\x1B[K", ".......... .......... .......... "},
        {"the alternate screen is plain", "\x1B[41m\x1B[?1049h", ".......... .......... .......... "},
    };
    for (const auto& [rule, bytes, drawing] : cases) {
        SCOPED_TRACE(rule);
        TerminalScreen screen(3, 10);
        screen.setBackgroundColorErase(true);
        screen.feed("aaaaa\r\nbbbbb\r\nccccc");
        screen.feed(bytes);
        screen.assertInvariants();
        EXPECT_EQ(backgrounds(screen), drawing);
        for (int row = 0; row < 3; ++row) {
            for (const TerminalCell& cell : screen.line(row).cells())
                EXPECT_EQ(cell.attributes, 0);
        }
    }
    TerminalScreen screen(3, 10);
    screen.setBackgroundColorErase(true);
    screen.feed("\x1B[41m\x1B[2J");
    screen.resize(4, 12);
    EXPECT_EQ(backgrounds(screen), "##########.. ##########.. ##########.. ............ ");
}

TEST(ScreenModes, AWrappedLineIsMarkedUntilItsEndIsErased) {
    TerminalScreen screen(3, 10);
    screen.feed("0123456789a\r\nb");
    EXPECT_TRUE(screen.line(0).wrapped());
    EXPECT_FALSE(screen.line(1).wrapped());
    screen.feed("\r\n\n\n");
    EXPECT_TRUE(screen.scrollbackLine(0).wrapped()) << "also in the history";
    screen.feed("\x1B[H0123456789a\x1B[1;5H\x1B[K");
    EXPECT_FALSE(screen.line(0).wrapped());
    screen.feed(
        "\x1B[H0123456789a\x1B[1;10H\x1B"
        "E");
    EXPECT_TRUE(screen.line(0).wrapped()) << "a line break of the program marks nothing, and unmarks nothing";
}

}  // namespace
}  // namespace orvo::test
