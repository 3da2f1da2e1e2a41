#include "terminal/ui/RunningTerminal.h"
#include "terminal/ui/TerminalText.h"

#include <QAccessible>

#include <string>

namespace orvo {
namespace {

using test::RunningTerminal;

TEST(TerminalAccessible, AViewIsATerminalWithTheScreensText) {
    RunningTerminal terminal;
    terminal.session.screen().feed("\r\n  first\r\nsecond 世界 x");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&terminal.view);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Terminal);
    QAccessibleTextInterface* text = accessible->textInterface();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->text(0, text->characterCount()).toStdString(), "first\nsecond 世界 x");
    EXPECT_EQ(text->cursorPosition(), text->characterCount());
    EXPECT_EQ(text->text(6, 12), QStringLiteral("second"));

    const QPoint firstLetter =
        terminal.view.mapToGlobal(terminal.view.geometryOfCells().around(2, 0).center());
    EXPECT_EQ(text->offsetAtPoint(firstLetter), 6);
    EXPECT_TRUE(text->characterRect(6).contains(firstLetter));

    terminal.view.setSession(nullptr);
    EXPECT_EQ(text->characterCount(), 0);
    EXPECT_EQ(text->cursorPosition(), 0);
}

TEST(TerminalAccessible, TheTextIsThatOfTheScreenWithHistory) {
    RunningTerminal terminal;
    for (const char* output : {"", "\r\n\r\n  \r\n", "a\r\n\r\n b \r\n\r\n", "\x1b[5;7Hmiddle\x1b[1;1H"}) {
        terminal.session.screen().reset();
        terminal.session.screen().feed(output);
        const TerminalText text = TerminalText::of(terminal.session.screen());
        EXPECT_EQ(text.text.toStdString(), terminal.session.screen().plainText());
        EXPECT_LE(text.cursor, text.text.size());
    }
    terminal.fillHistory(40);
    const TerminalText text = TerminalText::of(terminal.session.screen());
    EXPECT_EQ(text.text.toStdString(), terminal.session.screen().plainText());
    EXPECT_EQ(text.cursor, text.text.size());
}

TEST(TerminalAccessible, AChangeIsToldWithoutWhatStayedTheSame) {
    const auto change = [](const char* before, const char* now) {
        const TextChange told = TextChange::between(QString::fromUtf8(before), QString::fromUtf8(now));
        return std::to_string(told.position) + " -" + told.removed.toStdString() + " +" +
               told.inserted.toStdString();
    };
    EXPECT_EQ(change("", "$ "), "0 - +$ ");
    EXPECT_EQ(change("$ l", "$ ls\na  b"), "3 - +s\na  b");
    EXPECT_EQ(change("one\ntwo\nthree", "two\nthree\nfour"), "0 -one\ntwo\nthree +two\nthree\nfour");
    EXPECT_EQ(change("time 10:15 ok", "time 10:16 ok"), "9 -5 +6");
    // What could belong to either end is counted once.
    EXPECT_EQ(change("aa", "aaa"), "2 - +a");
    EXPECT_EQ(change("aaa", "a"), "1 -aa +");
    EXPECT_EQ(change("same", "same"), "4 - +");
}

}  // namespace
}  // namespace orvo
