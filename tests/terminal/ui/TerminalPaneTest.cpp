#include "terminal/ui/TerminalPane.h"

#include "terminal/ui/RunningTerminal.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/StatusPill.h"
#include "appearance/controls/TextField.h"
#include "terminal/ui/ConsentBar.h"
#include "terminal/ui/FindBar.h"

#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace orvo {
namespace {

using test::waitFor;

struct Pane {
    explicit Pane(const char* command)
        : session(QStringLiteral("shell"), QStringLiteral("Terminal session"), QString::fromUtf8(command),
                  FilePath("/")),
          pane(session, theme) {
        pane.resize(820, 400);
        pane.show();
    }

    void takeFocus() {
        pane.activateWindow();
        pane.view().setFocus();
    }
    QAction* item(const QString& text) {
        for (QAction* action : pane.findChild<QMenu*>()->actions()) {
            if (action->text() == text && action->isVisible()) return action;
        }
        return nullptr;
    }
    QString state() { return pane.findChild<StatusPill*>()->title(); }

    Theme theme{nullptr};
    TerminalSession session;
    TerminalPane pane;
};

TEST(TerminalPane, ThePillTellsTheSessionsState) {
    Pane failing("exit 3");
    failing.session.start();
    EXPECT_EQ(failing.state(), QStringLiteral("Running"));
    EXPECT_TRUE(waitFor([&] { return failing.state() == QStringLiteral("Exit 3"); }));
}

TEST(TerminalPane, ItMayGoWhileItHasTheFocus) {
    Theme theme(nullptr);
    TerminalSession session(QStringLiteral("shell"), QString(), QStringLiteral("true"), FilePath("/"));
    auto pane = std::make_unique<TerminalPane>(session, theme);
    pane->show();
    pane->activateWindow();
    pane->setFocus();
    TerminalView& view = pane->view();
    ASSERT_TRUE(waitFor([&] { return view.hasFocus(); }));
    int told = 0;
    QObject::connect(&view, &TerminalView::focusChanged, &theme, [&] {
        ++told;
        EXPECT_NE(qobject_cast<TerminalPane*>(view.parent()), nullptr) << "told by half a pane";
    });
    pane.reset();
    EXPECT_EQ(told, 1);
}

TEST(TerminalPane, StopIsOfferedOnlyWhileTheSessionRuns) {
    Pane pane("sleep 60");
    EXPECT_EQ(pane.item(QStringLiteral("Stop session")), nullptr);
    pane.session.start();
    ASSERT_NE(pane.item(QStringLiteral("Stop session")), nullptr);
    pane.item(QStringLiteral("Stop session"))->trigger();
    EXPECT_TRUE(waitFor([&] { return !pane.session.running(); }));
    EXPECT_EQ(pane.item(QStringLiteral("Stop session")), nullptr);
}

TEST(TerminalPane, TheMenuAsksForExportAndCloseAndCopiesByItself) {
    Pane pane("true");
    QAccessibleInterface* button = QAccessible::queryAccessibleInterface(pane.pane.findChild<OrvoButton*>());
    EXPECT_EQ(button->text(QAccessible::Name), QStringLiteral("Session menu"));
    QSignalSpy exporting(&pane.pane, &TerminalPane::exportRequested);
    QSignalSpy closing(&pane.pane, &TerminalPane::closeRequested);
    pane.item(QStringLiteral("Export output"))->trigger();
    pane.item(QStringLiteral("Close pane"))->trigger();
    EXPECT_EQ(exporting.count(), 1);
    EXPECT_EQ(closing.count(), 1);
    pane.session.screen().feed("what was printed");
    pane.item(QStringLiteral("Copy output"))->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("what was printed"));
}

TEST(TerminalPane, FocusInTheTerminalActivatesThePane) {
    Pane pane("true");
    QSignalSpy activated(&pane.pane, &TerminalPane::activated);
    pane.pane.activateWindow();
    pane.pane.setFocus();
    ASSERT_TRUE(waitFor([&] { return pane.pane.view().hasFocus(); }));
    EXPECT_GE(activated.count(), 1);
}

TEST(TerminalPane, ThePaneSurvivesItsSession) {
    Theme theme(nullptr);
    auto session = std::make_unique<TerminalSession>(
        QStringLiteral("shell"), QStringLiteral("Terminal session"), QStringLiteral("true"), FilePath("/"));
    TerminalPane pane(*session, theme);
    pane.resize(400, 200);
    pane.show();
    session.reset();
    EXPECT_FALSE(pane.grab().isNull());
    EXPECT_EQ(pane.session(), nullptr);
}

TEST(TerminalFind, TheBarMarksAllMatchesAndGoesThroughThem) {
    Pane shown("true");
    shown.takeFocus();
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
    Pane shown("printf '\\033]52;c;aGVsbG8=\\007'; read line; printf '\\033]52;c;bW9yZQ==\\007'; read line");
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
