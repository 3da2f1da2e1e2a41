#include "terminal/core/ScreenText.h"
#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

#include <string>

namespace orvo::test {
namespace {

/// The cells of the first row up to the cursor, with "|" between them; a second cell is empty.
std::string cellsOf(const TerminalScreen& screen) {
    std::string cells;
    for (int column = 0; column < screen.column(); ++column) {
        cells += screen.line(0).text(column) + "|";
    }
    return cells;
}

TEST(ScreenClusters, ScalarsThatMakeOneCharacterShareItsCells) {
    const struct {
        const char* rule;
        std::string_view bytes;
        std::string_view cells;
    } cases[] = {
        {"emoji presentation by default is wide", "✅⌚x", "✅||⌚||x|"},
        {"text presentation by default is narrow", "❤☺©x", "❤|☺|©|x|"},
        {"VS16 widens", "❤\uFE0Fx", "❤\uFE0F||x|"},
        {"VS15 does not", "❤\uFE0Ex", "❤\uFE0E|x|"},
        {"VS16 behind a wide character changes no width", "✅\uFE0Fx", "✅\uFE0F||x|"},
        {"VS16 behind a letter changes no width", "a\uFE0Fx", "a\uFE0F|x|"},
        {"keycaps", "1\uFE0F\u20E3#\uFE0F\u20E3x", "1\uFE0F\u20E3||#\uFE0F\u20E3||x|"},
        {"a family is one", "👨\u200D👩\u200D👧x", "👨\u200D👩\u200D👧||x|"},
        {"a narrow start is widened", "❤\uFE0F\u200D🔥x", "❤\uFE0F\u200D🔥||x|"},
        {"an emoji without a joiner is its own", "👨👩", "👨||👩||"},
        {"a letter behind a joiner is its own", "👨\u200Dx", "👨\u200D||x|"},
        {"an emoji behind a letter's joiner is its own", "a\u200D👩", "a\u200D|👩||"},
        {"skin tones join", "👍🏽x", "👍🏽||x|"},
        {"skin tones widen a hand", "☝🏽x", "☝🏽||x|"},
        {"a skin tone alone is wide", "a🏽x", "a|🏽||x|"},
        {"flags are pairs", "🇩🇪🇫🇷🇪x", "🇩🇪||🇫🇷||🇪||x|"},
        {"a flag of tags", "🏴\U000E0067\U000E007Fx", "🏴\U000E0067\U000E007F||x|"},
        {"a tag without an emoji has a cell", "a\U000E0067x", "a|\U000E0067|x|"},
        {"other enclosing and format characters have a cell", "a\u20DD\u200B", "a|\u20DD|\u200B|"},
        {"fullwidth signs and later planes are wide", "￦\U00020000\U0003FFFD",
         "￦||\U00020000||\U0003FFFD||"},
        {"an ambiguous character is narrow", "§…×x", "§|…|×|x|"},
        {"in the first column a joiner is dropped", "\u200D\u20E3\uFE0F👍", "👍||"},
        {"in the first column a skin tone is not", "🏽x", "🏽||x|"},
    };
    for (const auto& [rule, bytes, cells] : cases) {
        SCOPED_TRACE(rule);
        TerminalScreen screen(3, 20);
        screen.feed(bytes);
        screen.assertInvariants();
        EXPECT_EQ(cellsOf(screen), cells);
    }
}

TEST(ScreenClusters, WideningNeedsACellRightOfTheCharacter) {
    TerminalScreen screen(3, 10);
    screen.feed("123456789❤\uFE0Fx");
    screen.assertInvariants();
    EXPECT_EQ(drawnRows(screen), "123456789❤\uFE0F\nx");

    screen.feed("\x1B\x63❤ab\x1B[1;2H\x1B[4h\uFE0F");
    EXPECT_EQ(drawnRows(screen), "❤\uFE0Fab") << "insert mode shifts what follows";
    EXPECT_EQ(cursorOf(screen), "0,2");

    screen.feed("\x1B\x63\x1B[31;42m❤\x1B[m\uFE0F");
    EXPECT_EQ(screen.line(0).cells()[1].background, indexedColor(2)) << "the look is the first cell's";
    EXPECT_TRUE(screen.line(0).continuation(1));

    screen.feed("\x1B\x63世\x1B[1;2H\uFE0F");
    EXPECT_EQ(cursorOf(screen), "0,1") << "the left half of a wide character is not narrow";
}

TEST(ScreenClusters, ADroppedScalarChangesNothing) {
    TerminalScreen screen(3, 10);
    std::string full = "❤";
    while (full.size() < 3 + 31 * 2) {
        full += "\u0301";
    }
    screen.feed(full + "\uFE0F");
    EXPECT_EQ(screen.line(0).text(0), full);
    EXPECT_EQ(cursorOf(screen), "0,1");
}

}  // namespace
}  // namespace orvo::test
