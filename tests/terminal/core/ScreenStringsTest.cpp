#include "terminal/core/ScreenText.h"
#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvo::test {
namespace {

/// A screen with what it answers and asks for, one line each.
struct TalkingScreen {
    TalkingScreen() {
        screen.onResponse = [this](std::string_view reply) {
            replies += reply;
        };
        screen.onRequest = [this](const TerminalRequest& request) {
            static constexpr const char* names[] = {"bell", "notify", "clipboard"};
            requests += names[static_cast<int>(request.kind)];
            requests += " " + std::string(request.text) + "\n";
        };
    }
    std::string repliesTo(std::string_view bytes) {
        replies.clear();
        screen.feed(bytes);
        for (std::size_t at = 0; (at = replies.find('\x1B', at)) != std::string::npos;) {
            replies.replace(at, 1, "^");
        }
        return replies;
    }
    std::string requestsOf(std::string_view bytes) {
        requests.clear();
        screen.feed(bytes);
        return requests;
    }

    TerminalScreen screen{5, 20};
    std::string replies;
    std::string requests;
};

TEST(ScreenReports, QueriesAreAnswered) {
    TalkingScreen terminal;
    const struct {
        const char* rule;
        std::string_view bytes;
        std::string_view reply;
    } cases[] = {
        {"the private position", "\x1B[2;3H\x1B[?6n", "^[?2;3R"},
        {"from the region's top in origin mode", "\x1B[2;4r\x1B[?6h\x1B[2;3H\x1B[6n\x1B[?6n\x1B[?6l\x1B[r",
         "^[2;3R^[?2;3R"},
        {"the size", "\x1B[18t\x1B[18;1t\x1B[14t", "^[8;5;20t^[8;5;20t"},
        {"who it is", "\x1B[>q\x1B[>0q\x1B[>1q",
         "^P>|Orvo AI(" ORVO_VERSION ")^\\^P>|Orvo AI(" ORVO_VERSION ")^\\"},
        {"no keyboard protocol", "\x1B[?u", ""},
        {"modes that are on", "\x1B[?7$p\x1B[?25;1$p\x1B[?1007$p", "^[?7;1$y^[?25;1$y^[?1007;1$y"},
        {"modes that are off", "\x1B[?1$p\x1B[?1002$p\x1B[?1049$p\x1B[?2026$p",
         "^[?1;2$y^[?1002;2$y^[?1049;2$y^[?2026;2$y"},
        {"modes that are not known", "\x1B[?5$p\x1B[?1005$p\x1B[?69$p\x1B[$p",
         "^[?5;0$y^[?1005;0$y^[?69;0$y"},
        {"the alternate modes are one", "\x1B[?47h\x1B[?1049$p\x1B[?1047$p\x1B[?47l\x1B[?47$p",
         "^[?1049;1$y^[?1047;1$y^[?47;2$y"},
        {"colours, with the terminator of the question", "\x1B]10;?\a\x1B]11;?\x1B\\",
         "^]10;rgb:0101/0202/0303\a^]11;rgb:0a0a/0b0b/0c0c^\\"},
        {"further fields are further colours", "\x1B]10;?;x;?\a",
         "^]10;rgb:0101/0202/0303\a^]12;rgb:f0f0/f1f1/f2f2\a"},
        {"the palette", "\x1B]4;1;?;300;?;2;red;16;?\a",
         "^]4;1;rgb:f4f4/8080/8a8a\a^]4;16;rgb:0000/0000/0000\a"},
        {"setting a colour", "\x1B]11;#ffffff\a\x1B]4;1;rgb:1/1/1\a\x1B]104\a", ""},
        {"a dark background", "\x1B[?996n", "^[?997;1n"},
        {"the clipboard is never told", "\x1B]52;c;?\a", ""},
        {"nor anything of the program's own", "\x1B]2;title\a\x1B[21t\x1BP$qm\x1B\\\x05", ""},
    };
    terminal.screen.setColors({{1, 2, 3}, {10, 11, 12}, {0xF0, 0xF1, 0xF2}});
    for (const auto& [rule, bytes, reply] : cases) {
        EXPECT_EQ(terminal.repliesTo(bytes), reply) << rule;
    }
}

TEST(ScreenReports, AColourSchemeThatTurnsIsToldToThoseWhoAsked) {
    TalkingScreen terminal;
    const TerminalColors light{{0, 0, 0}, {250, 250, 250}, {0, 0, 0}};
    terminal.screen.setColors(light);
    EXPECT_EQ(terminal.replies, "");
    EXPECT_EQ(terminal.repliesTo("\x1B[?2031h\x1B[?996n"), "^[?997;2n");
    terminal.replies.clear();
    terminal.screen.setColors({{255, 255, 255}, {20, 20, 30}, {0, 0, 0}});
    terminal.screen.setColors({{255, 255, 255}, {10, 10, 10}, {0, 0, 0}});
    EXPECT_EQ(terminal.replies, "\x1B[?997;1n");
}

TEST(ScreenStrings, TitlesAreCleanText) {
    TerminalScreen screen(3, 10);
    EXPECT_EQ(screen.programTitle(), "");
    screen.feed("\x1B]0;one; two\a");
    EXPECT_EQ(screen.programTitle(), "one; two");
    screen.feed(
        "\x1B]2;a\tb\xC2\x9B"
        "c\xE4\xB8\x1B\\");
    EXPECT_EQ(screen.programTitle(), "abc\uFFFD");
    screen.feed("\x1B]1;icon\a\x1B]2\a");
    EXPECT_EQ(screen.programTitle(), "");
    screen.feed("\x1B]2;世");
    screen.feed("界\x1B\\\x1B]2;cut\x18\x1B]2;" + std::string(EscapeParser::longestString, 'x') + "\a");
    EXPECT_EQ(screen.programTitle(), "世界") << "what is cancelled or too long is dropped";
    screen.feed("\x1B]2;" + std::string(3000, 'x') + "\a|");
    EXPECT_EQ(screen.programTitle(), std::string(512, 'x'));
    EXPECT_EQ(drawnRows(screen), "|");
}

TEST(ScreenStrings, ProgramsAskForAttention) {
    TalkingScreen terminal;
    EXPECT_EQ(terminal.requestsOf("a\ab"), "bell \n");
    EXPECT_EQ(terminal.requestsOf("\x1B]9;Done\nnow\a"), "notify Donenow\n");
    EXPECT_EQ(terminal.requestsOf("\x1B]99;i=1:d=0;Hello\x1B\\"), "notify Hello\n");
    EXPECT_EQ(terminal.requestsOf("\x1B]777;notify;Title;Body\a"), "notify Title Body\n");
    EXPECT_EQ(terminal.requestsOf("\x1B]777;precmd\a\x1B]133;A\a\x1B]2;t\a"), "");
    EXPECT_EQ(terminal.requestsOf("\x1B]9;4;1;50\a"), "") << "progress is no message";
    EXPECT_EQ(terminal.requestsOf("\x1B]52;c;aGk=\a"), "clipboard aGk=\n");
    EXPECT_EQ(terminal.requestsOf("\x1B]52;c;?\a\x1B]52\a"), "");
}

TEST(ScreenStrings, LinksBelongToTheCellsWrittenUnderThem) {
    TerminalScreen screen(3, 20);
    const auto linkAt = [&screen](std::size_t column) {
        const CellExtra& extra = screen.extraOf(screen.line(0).cells()[column]);
        return extra.link + (extra.linkName.empty() ? "" : " " + extra.linkName);
    };
    screen.feed("a\x1B]8;;http://x.org/1\x1B\\b\x1B[1mc\x1B[md\x1B]8;;\x1B\\e");
    EXPECT_EQ(linkAt(0) + linkAt(4), "");
    EXPECT_EQ(linkAt(1), "http://x.org/1");
    EXPECT_EQ(linkAt(3), "http://x.org/1") << "a style does not end a link";
    EXPECT_EQ(screen.line(0).cells()[1].extra, screen.line(0).cells()[3].extra);

    screen.feed("\r\x1B]8;a=1:id=n;http://x.org/2\aa\x1B[4;58;5;1mb\x1B[59mc\x1B]8;;bad address\ad");
    EXPECT_EQ(linkAt(0), "http://x.org/2 n");
    EXPECT_EQ(linkAt(1), "http://x.org/2 n");
    EXPECT_EQ(screen.extraOf(screen.line(0).cells()[1]).underlineColor, indexedColor(1));
    EXPECT_EQ(screen.line(0).cells()[0].extra, screen.line(0).cells()[2].extra);
    EXPECT_EQ(linkAt(3), "");
}

TEST(ScreenStrings, AFloodOfLinksIsBoundedAndKeepsThoseInUse) {
    TerminalScreen screen(3, 40);
    screen.feed("\x1B]8;;kept\akept\x1B]8;;\a\r\n");
    for (int number = 0; number < 3 * static_cast<int>(CellExtras::capacity); ++number) {
        // The line is written often enough for the next search to be due.
        screen.feed("\x1B]8;;x" + std::to_string(number) + "\a");
        for (int count = 0; count < 64; ++count) {
            screen.feed("\rnow");
        }
    }
    screen.assertInvariants();
    EXPECT_EQ(screen.extraOf(screen.line(0).cells()[0]).link, "kept");
    const std::string newest = screen.extraOf(screen.line(1).cells()[0]).link;
    EXPECT_EQ(newest, "x" + std::to_string(3 * CellExtras::capacity - 1));
    EXPECT_LE(screen.line(1).cells()[0].extra, CellExtras::capacity);
}

}  // namespace
}  // namespace orvo::test
