#include "terminal/core/ScreenText.h"
#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

namespace orvo::test {
namespace {

constexpr std::string_view letters = "aaaaa\nbbbbb\nccccc\nddddd\neeeee";

/// The case's bytes on a grid of 5 × 10 that shows `letters`, with the cursor behind the last one.
void expectOnLetters(std::span<const ScreenCase> cases) {
    expectCases(cases, 5, 10, "aaaaa\r\nbbbbb\r\nccccc\r\nddddd\r\neeeee");
}

TEST(EscapeSequence, MovesTheCursorWithinTheScreen) {
    const ScreenCase cases[] = {
        {"H is 1-based", "\x1B[2;3H", letters, "1,2"},
        {"f is H", "\x1B[4;5f", letters, "3,4"},
        {"H without parameters goes home", "\x1B[H", letters, "0,0"},
        {"H without a column goes to the first", "\x1B[3H", letters, "2,0"},
        {"A and C move by one without a count", "\x1B[3;3H\x1B[A\x1B[C", letters, "1,3"},
        {"0 counts as 1", "\x1B[3;3H\x1B[0B\x1B[0D", letters, "3,1"},
        {"a and e are C and B", "\x1B[1;1H\x1B[3a\x1B[2e", letters, "2,3"},
        {"E and F go to the first column", "\x1B[3;4H\x1B[E\x1B[3F", letters, "0,0"},
        {"G and d are absolute", "\x1B[7G\x1B[2d", letters, "1,6"},
        {"the grave accent is G", "\x1B[4`", letters, "4,3"},
        {"moves stop at the margins", "\x1B[99A\x1B[99D", letters, "0,0"},
        {"64-bit numbers stop at the margins", "\x1B[9223372036854775807C\x1B[99999999999999999999B", letters,
         "4,9"},
        {"42 nines move to the first line", "\x1B[999999999999999999999999999999999999999999A", letters,
         "0,5"},
        {"the region does not limit moves", "\x1B[2;3r\x1B[99B", letters, "4,0"},
        {"s and u save the position", "\x1B[2;3H\x1B[s\x1B[H\x1B[u", letters, "1,2"},
        {"ESC 7 and u share it", "\x1B[2;3H\x1B\x37\x1B[H\x1B[u", letters, "1,2"},
        {"it is home before anything was saved", "\x1B\x38", letters, "0,0"},
        {"u clears a pending wrap", "\x1B[5;1H0123456789\x1B[s\x1B[uX",
         "aaaaa\nbbbbb\nccccc\nddddd\n012345678X", "4,9+"},
    };
    expectOnLetters(cases);
}

TEST(EscapeSequence, ErasesInsertsAndDeletes) {
    const ScreenCase onScreen[] = {
        {"J erases from the cursor on", "\x1B[3;3H\x1B[J", "aaaaa\nbbbbb\ncc", "2,2"},
        {"1 J erases through the cursor", "\x1B[3;3H\x1B[1J", "\n\n   cc\nddddd\neeeee", "2,2"},
        {"2 J erases all and leaves the cursor", "\x1B[3;3H\x1B[2J", "", "2,2"},
        {"4 J does nothing", "\x1B[4J", letters, "4,5"},
        {"?J is J", "\x1B[2;1H\x1B[?J", "aaaaa", "1,0"},
    };
    expectOnLetters(onScreen);

    const ScreenCase onLine[] = {
        {"K erases from the cursor on", "\x1B[3G\x1B[K", "01", "0,2"},
        {"1 K erases through the cursor", "\x1B[3G\x1B[1K", "   3456", "0,2"},
        {"any other K erases the line", "\x1B[3G\x1B[7K", "", "0,2"},
        {"?K is K", "\x1B[3G\x1B[?1K", "   3456", "0,2"},
        {"X erases n cells", "\x1B[2G\x1B[3X", "0   456", "0,1"},
        {"X stops at the margin", "\x1B[2G\x1B[99X", "0", "0,1"},
        {"P pulls the rest of the line", "\x1B[2G\x1B[2P", "03456", "0,1"},
        {"P with a great count clears the rest", "\x1B[2G\x1B[99P", "0", "0,1"},
        {"P beyond the text shows nothing", "\x1B[9G\x1B[P", "0123456", "0,8"},
        {"@ pushes the rest of the line", "\x1B[2G\x1B[2@", "0  123456", "0,1"},
        {"@ loses what passes the margin", "\x1B[2G\x1B[5@", "0     1234", "0,1"},
        {"@ with a great count clears the rest", "\x1B[2G\x1B[99@", "0", "0,1"},
        {"@ beyond the text shows nothing", "\x1B[9G\x1B[@x", "0123456 x", "0,9"},
        {"what was erased does not come back with @", "\x1B[4G\x1B[K\x1B[2G\x1B[@", "0 12", "0,1"},
        {"what was erased does not come back with P", "\x1B[4G\x1B[K\x1B[2G\x1B[P", "02", "0,1"},
        {"what was erased does not come back before text", "\x1B[2G\x1B[K\x1B[6Gx", "0    x", "0,6"},
        {"what was deleted does not come back before text", "\x1B[M\x1B[M\x1B[M\x1B[6Gx", "     x", "0,6"},
        {"erasing leaves a pending wrap", "789\x1B[KX", "012345678\nX", "1,1"},
    };
    expectCases(onLine, 3, 10, "0123456");
}

TEST(EscapeSequence, ScrollsTheRegionOnly) {
    const ScreenCase cases[] = {
        {"r homes the cursor", "\x1B[2;4r", letters, "0,0"},
        {"a region of one line is ignored", "\x1B[2;2r", letters, "4,5"},
        {"a region below the screen is ignored", "\x1B[9;20r", letters, "4,5"},
        {"a bottom of 0 is the last line", "\x1B[2;0r\x1B[5;1H\n", "aaaaa\nccccc\nddddd\neeeee", "4,0"},
        {"a line feed at its bottom scrolls it", "\x1B[2;4r\x1B[4;1H\nX", "aaaaa\nccccc\nddddd\nX\neeeee",
         "3,1"},
        {"a line feed below it does not scroll", "\x1B[2;4r\x1B[5;1H\n\nX",
         "aaaaa\nbbbbb\nccccc\nddddd\nXeeee", "4,1"},
        {"S scrolls up", "\x1B[2;4r\x1B[2S", "aaaaa\nddddd\n\n\neeeee", "0,0"},
        {"T scrolls down", "\x1B[2;4r\x1B[2T", "aaaaa\n\n\nbbbbb\neeeee", "0,0"},
        {"S with a great count clears it", "\x1B[2;4r\x1B[99S", "aaaaa\n\n\n\neeeee", "0,0"},
        {"L inserts lines", "\x1B[2;4r\x1B[3;2H\x1B[L", "aaaaa\nbbbbb\n\nccccc\neeeee", "2,1"},
        {"M deletes lines", "\x1B[2;4r\x1B[2;2H\x1B[2M", "aaaaa\nddddd\n\n\neeeee", "1,1"},
        {"L and M outside do nothing", "\x1B[2;4r\x1B[5;2H\x1B[L\x1B[M", letters, "4,1"},
        {"ESC M at the top scrolls down", "\x1B[2;4r\x1B[2;3H\x1BM", "aaaaa\n\nbbbbb\nccccc\neeeee", "1,2"},
        {"ESC M above the region moves", "\x1B[2;4r\x1B[1;3H\x1BM", letters, "0,2"},
        {"ESC D is a line feed", "\x1B[2;4r\x1B[4;3H\x1B\x44", "aaaaa\nccccc\nddddd\n\neeeee", "3,2"},
        {"ESC E goes to the first column too", "\x1B[2;3H\x1B\x45", letters, "2,0"},
        {"the alternate screen frees the region", "\x1B[2;4r\x1B[?47h\x1B[?47l\x1B[5;1H\n",
         "bbbbb\nccccc\nddddd\neeeee", "4,0"},
        {"the whole screen scrolls after a region did", "\n\n\x1B[2;4r\x1B[S\x1B[r\x1B[5;1H\nX",
         "eeeee\n\n\n\nX", "4,1"},
    };
    expectOnLetters(cases);
}

TEST(EscapeSequence, ClearsAPendingWrapWhereTheCursorMoves) {
    const auto pendingAfter = [](std::string_view bytes) {
        TerminalScreen screen(5, 10);
        screen.feed("0123456789");
        screen.feed(bytes);
        return screen.pendingWrap();
    };
    for (const std::string_view clearing :
         {"\r", "\b", "\n", "\x1B[A", "\x1B[G", "\x1B[H", "\x1B[u", "\x1B[1;3r", "\x1BM", "\x1B\x38",
          "\x1B\x44", "\x1B[?47h\x1B[?47l"}) {
        EXPECT_FALSE(pendingAfter(clearing)) << clearing.substr(1);
    }
    for (const std::string_view leaving :
         {"\t", "\x1B[J", "\x1B[1K", "\x1B[X", "\x1B[P", "\x1B[@", "\x1B[L", "\x1B[S", "\x1B[T", "\x1B[1m",
          "\x1B[s", "\x1B[6n", "\x1B[?25l", "\x1B\x37"}) {
        EXPECT_TRUE(pendingAfter(leaving)) << leaving.substr(1);
    }
}

TEST(EscapeSequence, WhatIsNotKnownIsConsumedWhole) {
    const ScreenCase cases[] = {
        {"a marker makes another sequence", "\x1B[>1u\x1B[?u\x1B[<u\x1B[=5u\x1B[?2C\x1B[>4;1m|", "|", "0,1"},
        {"an intermediate makes another sequence", "\x1B[2 q\x1B[3 C\x1B[!p\x1B[5$C\x1B[?25 h|", "|", "0,1"},
        {"a marker behind a digit is text", "\x1B[2?C|", "  |", "0,3"},
        {"markers at the end are cut", "\x1B[3>=C|", "   |", "0,4"},
        {"a malformed field is 0", "\x1B[2:3C|", " |", "0,2"},
        {"only ASCII digits are digits", "\x1B[3\u0663C|", " |", "0,2"},
        {"control characters belong to the sequence", "\x1B[3\n\rC|", " |", "0,2"},
        {"strings end with a bell", "\x1B]0;title\a|", "|", "0,1"},
        {"strings end with ESC backslash", "\x1BPq#1\x1B[31m\x1B\\|", "|", "0,1"},
        {"ESC ^ and ESC _ start strings", "\x1B^a\a\x1B_b\a|", "|", "0,1"},
        {"a designation takes one scalar", "\x1B(\u4E16|\x1B)0", "|", "0,1"},
        {"an unknown escape is ignored", "\x1B=\x1B>\x1B\n|", "|", "0,1"},
        {"unknown modes and finals are ignored", "\x1B[?9999h\x1B[20h\x1B[5z\x1B[~|", "|", "0,1"},
        {"ESC X starts a string", "\x1BXa\x1B[31m\x1B\\|", "|", "0,1"},
        {"intermediates belong to an escape", "\x1B F\x1B%G\x1B(%0\x1B#%8q|", "q|", "0,2"},
        {"what is no final ends an escape with intermediates", "\x1B#\n8\x1B#\u4E16|", "8|", "0,2"},
        {"ESC begins anew in an escape", "\x1B\x1B[2C\x1B(\x1B[C|", "   |", "0,4"},
        {"ESC begins anew in a sequence", "\x1B[5\x1B[2C|", "  |", "0,3"},
        {"CAN and SUB end an escape", "\x1B\x18[C\x1B(\x1AM|", "[CM|", "0,4"},
        {"CAN and SUB end a sequence",
         "\x1B[5\x18"
         "C\x1B[\x1A"
         "C|",
         "CC|", "0,3"},
        {"CAN and SUB end a string", "\x1B]2;a\x18x\x1BPq\x1Ay\x1B]2;a\x1B\x18z", "xyz", "0,3"},
        {"neither ESC ESC nor a bell after ESC ends one", "\x1B]2;a\x1B\x1B\\b\x1B\a\x1B[C\a|", "|", "0,1"},
    };
    expectCases(cases, 3, 10);
}

TEST(EscapeSequence, Of512ScalarsStillCountsAndALongerOneIsAbandoned) {
    const auto drawn = [](const std::string& filling) {
        TerminalScreen screen(3, 20);
        screen.feed("\x1B[" + filling + "Cx");
        return drawnRows(screen);
    };
    const std::string zeros(511, '0');
    EXPECT_EQ(drawn(zeros + "4"), "    x");
    EXPECT_EQ(drawn(zeros + "04"), "Cx");
    EXPECT_EQ(drawn("2" + std::string(511, ';')), "  x");
    std::string wide;
    for (int count = 0; count < 511; ++count) {
        wide += "\u4E16";
    }
    EXPECT_EQ(drawn(";" + wide), " x") << "scalars count, not bytes";
    EXPECT_EQ(drawn(";;" + wide), "Cx");
}

TEST(EscapeSequence, ModesAreSetByPrivateSequencesOnly) {
    TerminalScreen screen(3, 10);
    screen.feed("\x1B[2004h\x1B[1h\x1B[25l");
    EXPECT_FALSE(screen.bracketedPaste());
    EXPECT_FALSE(screen.applicationCursor());
    EXPECT_TRUE(screen.cursorVisible());
    screen.feed("\x1B[?1;2004h\x1B[?25l");
    EXPECT_TRUE(screen.bracketedPaste());
    EXPECT_TRUE(screen.applicationCursor());
    EXPECT_FALSE(screen.cursorVisible());
    screen.feed("\x1B[?1;2004l\x1B[?25h");
    EXPECT_FALSE(screen.bracketedPaste());
    EXPECT_FALSE(screen.applicationCursor());
    EXPECT_TRUE(screen.cursorVisible());
}

TEST(EscapeSequence, TheAlternateScreenComesAndGoes) {
    for (const std::string mode : {"47", "1047", "1049"}) {
        TerminalScreen screen(3, 10);
        screen.feed("hello\x1B[?" + mode + "hother\x1B[?1049h");
        EXPECT_TRUE(screen.alternateScreen());
        EXPECT_EQ(drawnRows(screen), "other") << "entering twice keeps the first saved screen";
        screen.feed("\x1B[?" + mode + "l");
        screen.assertInvariants();
        EXPECT_FALSE(screen.alternateScreen());
        EXPECT_EQ(drawnRows(screen), "hello");
        EXPECT_EQ(cursorOf(screen), "0,5");
        screen.feed("\x1B[?1049l");
        EXPECT_EQ(drawnRows(screen), "hello");
    }
}

TEST(EscapeSequence, TheFullResetDiscardsTheSavedScreenAndKeepsHistory) {
    TerminalScreen screen(3, 10);
    screen.feed(
        "1\r\n2\r\n3\r\n4\x1B[?1h\x1B[?25l\x1B[?2004h\x1B[2;2H\x1B\x37\x1B[?1049h\x1B\x63RESET\x1B[?1049l");
    screen.assertInvariants();
    EXPECT_FALSE(screen.applicationCursor());
    EXPECT_FALSE(screen.bracketedPaste());
    EXPECT_TRUE(screen.cursorVisible());
    EXPECT_EQ(screen.plainText(), "1\nRESET");
    screen.feed("\x1B\x38");
    EXPECT_EQ(cursorOf(screen), "0,0");
    screen.feed("\x1B[3J");
    EXPECT_EQ(screen.scrollbackCount(), 0);
}

TEST(EscapeSequence, GraphicRenditionStylesWhatFollows) {
    const struct {
        std::string_view parameters;
        std::string_view style;
    } cases[] = {
        {"1;7", "- - bold inverse"},
        {"1;7;22;27", "- -"},
        {"1;31;0", "- -"},
        {"1;31;", "- -"},
        {"31;42", "F4808A 83DFC0"},
        {"97;100", "FFFFFF 6B819A"},
        {"31;42;39;49", "- -"},
        {"38;5;196", "FF0000 -"},
        {"48;5;16;1", "- 000000 bold"},
        {"38;5;110", "87AFD7 -"},
        {"38;5;232;48;5;255", "080808 EEEEEE"},
        {"38;5;256", "F8F8F8 -"},
        {"38;5;257", "FFFFFF -"},
        {"38;5;9223372036854775807", "FFFFFF -"},
        {"38;2;1;2;3", "010203 -"},
        {"38;2;300;-5;128", "FF0080 -"},
        {"48;2;255;128;0;1", "- FF8000 bold"},
        {"38;5", "- -"},
        {"31;38;2;1;7", "- - bold inverse dim"},
        {"31;38;9;1", "- - bold strike"},
        {"5;6;25;51", "- -"},
        {"2;3;4;8;9;53", "- - dim italic underline1 conceal strike overline"},
        {"1;2;3;4;8;9;53;22;23;24;28;29;55", "- -"},
        {"2;3;4;8;9;53;0", "- -"},
        {"21", "- - underline2"},
        {"4:3", "- - underline3"},
        {"4:5;4:0", "- -"},
        {"4:1;4:6", "- - underline1"},
        {"4:2;4:3:1;4:<", "- - underline2"},
        {"7:1;1", "- - bold"},
        {"38:5:196;48:5:16", "FF0000 000000"},
        {"31;38:5:", "182538 -"},
        {"31;38:5", "F4808A -"},
        {"38:2:1:2:3;1", "010203 - bold"},
        {"38:2::1:2:3;48:2:9:4:5:6:0:0", "010203 040506"},
        {"31;38:2:1:2", "F4808A -"},
        {"38;5:3;7", "- - inverse"},
        {"38;2;1;2:9;3;1", "010003 - bold"},
        {"58;5;1;1", "- - bold"},
        {"58;2;1;2;3;7", "- - inverse"},
        {"58:2::1:2:3;3", "- - italic"},
    };
    for (const auto& [parameters, style] : cases) {
        TerminalScreen screen(3, 10);
        screen.feed("\x1B[" + std::string(parameters) + "mX\u4E16");
        EXPECT_EQ(describe(screen.line(0).cells()[0]), style) << parameters;
        EXPECT_EQ(describe(screen.line(0).cells()[2]), style) << parameters;
    }
}

TEST(EscapeSequence, ErasedCellsHaveNoStyle) {
    TerminalScreen screen(3, 10);
    screen.feed("\x1B[41mabcdef\x1B[1;2H\x1B[X\x1B[P\x1B[@\x1B[4G\x1B[K");
    EXPECT_EQ(describe(screen.line(0).cells()[0]), "- F4808A");
    EXPECT_EQ(describe(screen.line(0).cells()[2]), "- F4808A");
    for (const std::size_t column : {1u, 3u, 9u}) {
        EXPECT_EQ(screen.line(0).cells()[column], TerminalCell()) << column;
    }
}

TEST(EscapeSequence, RepliesTellTheStateAtTheirPlaceInTheStream) {
    TerminalScreen screen(5, 20);
    screen.feed("\x1B[6n");
    std::string replies;
    screen.onResponse = [&replies](std::string_view reply) {
        replies += std::string(reply.substr(1)) + " ";
    };
    screen.feed("\x1B[3;5H\x1B[6n\x1B[c\x1B[>c\x1B[=0c\x1B[5n\x1B[7n\x1B[?6n\x1B[?5nabc\x1B[6ndef");
    EXPECT_EQ(replies, "[3;5R [?1;2c [?1;2c [?1;2c [0n [?3;5R [3;8R ");
}

TEST(EscapeSequence, GreatParametersReachNoCellOutside) {
    TerminalScreen screen(5, 20);
    screen.feed("\x1B[2;2H\x1B[9223372036854775807C\x1B[9223372036854775807B\x1B[38;5;9223372036854775807mX");
    EXPECT_EQ(screen.line(4).text(19), "X");
    EXPECT_EQ(cursorOf(screen), "4,19+");
    for (const char final : std::string_view("ABCDEFGHJKLMPSTX@`abcdefghlmnrsu")) {
        screen.feed(std::string("\x1B[1000000;1000000") + final + "x\x1B[0;0" + final);
        screen.assertInvariants();
    }
}

}  // namespace
}  // namespace orvo::test
