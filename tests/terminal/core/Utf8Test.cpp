#include "terminal/core/ScreenText.h"
#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

namespace orvo::test {
namespace {

// "?" stands for U+FFFD in the expected drawings.
std::string withReplacements(std::string_view drawing) {
    std::string text;
    for (const char byte : drawing) {
        text += byte == '?' ? std::string("\uFFFD") : std::string(1, byte);
    }
    return text;
}

TEST(Utf8, MalformedBytesGiveOneReplacementForEachMaximalSubpart) {
    const struct {
        std::string_view bytes;
        std::string_view drawing;
    } cases[] = {
        {"\xE2\x82|", "?|"},
        {"\xED\xA0\x80|", "???|"},
        {"\xC0\x80|", "??|"},
        {"\xC1|", "?|"},
        {"\xF5|", "?|"},
        {"\xF5\x80\x80\x80|", "????|"},
        {"\xE0\x80\x80|", "???|"},
        {"\xE0\xA0|", "?|"},
        {"\xF0\x80\x80\x80|", "????|"},
        {"\xF0\x9F\x98|", "?|"},
        {"\xF4\x90\x80\x80|", "????|"},
        {"\xF4\x8F\xBF|", "?|"},
        {"\x80\xBF|", "??|"},
        {"\xC3\xA9\xA9|", "\u00E9?|"},
        {"\xC3\xC3\xA9|", "?\u00E9|"},
        {"\xFF\xFE|", "??|"},
        {"\xF1\x80\x80\xE1\x80\xC2|", "???|"},
        {"\xE2\x82\x1B[2C|", "?  |"},
    };
    for (const auto& [bytes, drawing] : cases) {
        TerminalScreen whole(3, 20);
        whole.feed(bytes);
        EXPECT_EQ(drawnRows(whole), withReplacements(drawing));

        TerminalScreen single(3, 20);
        for (const char& byte : bytes) {
            single.feed({&byte, 1});
        }
        EXPECT_EQ(drawnRows(single), withReplacements(drawing)) << "byte by byte";
    }
}

TEST(Utf8, AnIncompleteSequenceWaitsForAsManyBytesAsItsLeadAnnounces) {
    const struct {
        std::string_view first;
        std::string_view shownAfterFirst;
        std::string_view second;
        std::string_view shownAfterSecond;
    } cases[] = {
        {"a\xE4\xB8", "a", "\x96", "a\u4E16"},
        {"\xF0\x9F", "", "\x98\x80", "\U0001F600"},
        {"\xED\xA0", "", "A", "??A"},
        {"\xF5\x80\x80", "", "\x80", "????"},
        {"\xC0", "", "\x80", "??"},
        {"\u20AC\xE2", "\u20AC", "\x1B[1;1HX", "X?"},
        {"\xC3\xA9\x80", "\u00E9?", "", "\u00E9?"},
    };
    for (const auto& example : cases) {
        TerminalScreen screen(3, 20);
        screen.feed(example.first);
        EXPECT_EQ(drawnRows(screen), withReplacements(example.shownAfterFirst));
        screen.feed(example.second);
        EXPECT_EQ(drawnRows(screen), withReplacements(example.shownAfterSecond));
    }
}

TEST(Utf8, EveryScalarComesBackAsItWasWritten) {
    for (char32_t scalar = 0xA0; scalar <= 0x10FFFF; scalar += scalar < 0x3000 ? 1 : 251) {
        if (scalar >= 0xD800 && scalar <= 0xDFFF) continue;
        std::string text = "|";
        appendUtf8(text, scalar);
        TerminalScreen screen(3, 10);
        screen.feed(text);
        EXPECT_EQ(screen.line(0).text(0) + screen.line(0).text(1), screen.column() == 1 ? text + " " : text);
    }
}

TEST(Utf8, TextOfTheApplicationIsCompleteAndLeavesThePendingBytesAlone) {
    TerminalScreen screen(3, 20);
    screen.feed("\xE4\xB8");
    screen.feedText("note \xE4\xB8");
    EXPECT_EQ(drawnRows(screen), "note \uFFFD");
    screen.feed("\x96");
    EXPECT_EQ(drawnRows(screen), "note \uFFFD\u4E16");
}

}  // namespace
}  // namespace orvo::test
