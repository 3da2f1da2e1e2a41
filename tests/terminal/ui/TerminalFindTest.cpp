#include "appearance/controls/TextField.h"
#include "terminal/ui/ConsentBar.h"
#include "terminal/ui/FindBar.h"
#include "terminal/ui/RunningTerminal.h"
#include "terminal/ui/TerminalPane.h"

#include <QClipboard>
#include <QTest>

namespace orvo {
namespace {

using test::waitFor;

struct ShownPane {
    explicit ShownPane(const char* command)
        : session(QStringLiteral("shell"), QStringLiteral("Terminal session"), QString::fromUtf8(command),
                  FilePath("/")) {
        pane.resize(820, 400);
        pane.show();
        pane.activateWindow();
        pane.view().setFocus();
    }
    Theme theme{nullptr};
    TerminalSession session;
    TerminalPane pane{session, theme};
};

TEST(TerminalFind, TheBarMarksAllMatchesAndGoesThroughThem) {
    ShownPane shown("true");
    for (int line = 0; line < 60; ++line)
        shown.session.screen().feed(line % 20 == 0 ? "a needle here\r\n" : "hay\r\n");
    TerminalView& view = shown.pane.view();
    FindBar& bar = shown.pane.findBar();
    QTest::keyClick(&view, Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(bar.isVisible());
    auto* const field = bar.findChild<TextField*>();
    ASSERT_TRUE(waitFor([&] { return field->hasFocus(); }));
    QTest::keyClicks(field, QStringLiteral("NEEDLE"));
    EXPECT_EQ(bar.matchCount(), 3);
    EXPECT_EQ(bar.currentMatch(), 2) << "the newest first";
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(bar.currentMatch(), 0);
    EXPECT_GT(view.scrollOffset(), 0);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(bar.currentMatch(), 2) << "round again";
    QTest::keyClick(field, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(bar.currentMatch(), 0);

    shown.session.screen().feed("another needle\r\n");
    Q_EMIT shown.session.revisionChanged();
    EXPECT_TRUE(waitFor([&] { return bar.matchCount() == 4; }));
    EXPECT_EQ(bar.currentMatch(), 0) << "new output does not move what is looked at";

    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_FALSE(bar.isVisible());
    EXPECT_TRUE(view.hasFocus());
    EXPECT_EQ(bar.matchCount(), 0);
}

TEST(TerminalFind, TheClipboardIsWrittenOncePersonAllowsIt) {
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    ShownPane shown(
        "printf '\\033]52;c;aGVsbG8=\\007'; read line; printf '\\033]52;c;bW9yZQ==\\007'; read line");
    auto* const bar = shown.pane.findChild<ConsentBar*>();
    EXPECT_FALSE(bar->isVisible());
    shown.session.start();
    ASSERT_TRUE(waitFor([&] { return bar->isVisible(); }));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
    Q_EMIT bar->allowed();
    EXPECT_FALSE(bar->isVisible());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("hello"));
    shown.session.send(QStringLiteral("\r"));
    EXPECT_TRUE(waitFor([&] { return QGuiApplication::clipboard()->text() == QStringLiteral("more"); }));
    EXPECT_FALSE(bar->isVisible());
}

}  // namespace
}  // namespace orvo
