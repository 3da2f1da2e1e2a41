#include "terminal/ui/RunningTerminal.h"

#include <QAction>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QWheelEvent>

#include <vector>

namespace orvo {
namespace {

using test::echoing;
using test::RunningTerminal;
using test::waitFor;

QClipboard& clipboard() {
    return *QGuiApplication::clipboard();
}

void turnWheel(TerminalView& view, QPoint pixels, QPoint angle, Qt::ScrollPhase phase) {
    QWheelEvent event(QPointF(5, 5), view.mapToGlobal(QPointF(5, 5)), pixels, angle, Qt::NoButton,
                      Qt::NoModifier, phase, false);
    QCoreApplication::sendEvent(&view, &event);
}

/// A gesture's movement in dip.
void scroll(TerminalView& view, int delta) {
    turnWheel(view, {0, delta}, {0, delta * 8}, Qt::ScrollUpdate);
}

TEST(TerminalInput, KeysReachTheProgram) {
    RunningTerminal terminal;
    ASSERT_TRUE(terminal.start());
    struct Press {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        const char* seen;
    };
    const std::vector<Press> presses = {
        {Qt::Key_X, Qt::NoModifier, ">x"},
        {Qt::Key_Up, Qt::NoModifier, "^[[A"},
        {Qt::Key_Up, Qt::KeypadModifier, "^[[A^[[A"},
        {Qt::Key_B, Qt::AltModifier, "^[b"},
        {Qt::Key_C, Qt::ControlModifier, "^C"},
        {Qt::Key_Space, Qt::ControlModifier, "^@"},
        // The program passes a tab on as it is, which the next key shows.
        {Qt::Key_Tab, Qt::NoModifier, "^@"},
        {Qt::Key_Backtab, Qt::ShiftModifier, "^@  ^[[Z"},
        {Qt::Key_F5, Qt::NoModifier, "^[[15~"},
        {Qt::Key_Return, Qt::ShiftModifier, "^[^M"},
        {Qt::Key_Enter, Qt::KeypadModifier, "^[^M^M"},
        {Qt::Key_Clear, Qt::KeypadModifier, "^[[E"},
        {Qt::Key_Escape, Qt::NoModifier, "^[[E^["},
    };
    for (const Press& press : presses) {
        QTest::keyClick(&terminal.view, press.key, press.modifiers);
        EXPECT_TRUE(terminal.shows(press.seen));
    }
    EXPECT_TRUE(terminal.view.hasFocus());
}

TEST(TerminalInput, CursorKeysFollowTheProgramsMode) {
    RunningTerminal terminal(echoing("\\033[?1h"));
    ASSERT_TRUE(terminal.start());
    QTest::keyClick(&terminal.view, Qt::Key_Up);
    EXPECT_TRUE(terminal.shows("^[OA"));
}

TEST(TerminalInput, ControlBelongsToTheProgramAndControlShiftToTheMenu) {
    Theme theme(nullptr);
    RunningTerminal terminal;
    QMainWindow window;
    int opened = 0, redone = 0;
    QMenu* menu = window.menuBar()->addMenu(QStringLiteral("File"));
    menu->addAction(QStringLiteral("New Terminal"), QKeySequence(Qt::CTRL | Qt::Key_N), &window,
                    [&] { ++opened; });
    menu->addAction(QStringLiteral("Redo"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N), &window,
                    [&] { ++redone; });
    terminal.view.setParent(&window);
    window.setCentralWidget(&terminal.view);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(terminal.start());
    ASSERT_TRUE(waitFor([&] { return terminal.view.hasFocus(); }));

    QTest::keyClick(&terminal.view, Qt::Key_N, Qt::ControlModifier);
    EXPECT_TRUE(terminal.shows("^N"));
    EXPECT_EQ(opened, 0);
    QTest::keyClick(&terminal.view, Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(redone, 0);

    // Elsewhere in the window the menu has its keys.
    auto* field = new QLineEdit(&window);
    field->show();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(opened, 2);
    window.takeCentralWidget()->setParent(nullptr);
}

TEST(TerminalInput, ControlTabLeavesTheTerminal) {
    QWidget window;
    RunningTerminal terminal;
    QLineEdit before(&window);
    terminal.view.setParent(&window);
    QLineEdit after(&window);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(terminal.start());
    ASSERT_TRUE(waitFor([&] { return terminal.view.hasFocus(); }));

    QTest::keyClick(&terminal.view, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_TRUE(after.hasFocus());
    terminal.view.setFocus();
    QTest::keyClick(&terminal.view, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(before.hasFocus());
    terminal.view.setParent(nullptr);
}

TEST(TerminalInput, APasteIsBracketedWhenTheProgramAsksForIt) {
    RunningTerminal plain;
    ASSERT_TRUE(plain.start());
    clipboard().setText(QStringLiteral("ls\x1b"));
    QTest::keyClick(&plain.view, Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(plain.shows(">ls^["));

    RunningTerminal bracketed(echoing("\\033[?2004h"));
    ASSERT_TRUE(bracketed.start());
    bracketed.view.paste();
    EXPECT_TRUE(bracketed.shows(">^[[200~ls^[[201~"));
}

TEST(TerminalInput, CopyTakesHistoryAndScreen) {
    RunningTerminal terminal;
    terminal.fillHistory(100);
    QTest::keyClick(&terminal.view, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(clipboard().text().startsWith(QStringLiteral("line 0\nline 1\n")));
    EXPECT_EQ(clipboard().text().toStdString(), terminal.session.screen().plainText());

    terminal.view.setSession(nullptr);
    terminal.view.copy();
    EXPECT_EQ(clipboard().text(), QString());
}

TEST(TerminalInput, ComposedTextArrivesWhole) {
    RunningTerminal terminal("stty raw -echo; printf 'ready>'; exec cat");
    ASSERT_TRUE(terminal.start());
    QInputMethodEvent composing(QStringLiteral("nihao"), {});
    QCoreApplication::sendEvent(&terminal.view, &composing);
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("你好"));
    QCoreApplication::sendEvent(&terminal.view, &composed);
    EXPECT_TRUE(terminal.shows("ready>你好"));
}

TEST(TerminalInput, TheWheelMovesALineForEveryThreeOfItsUnits) {
    RunningTerminal terminal;
    terminal.fillHistory(10);
    TerminalView& view = terminal.view;
    scroll(view, 2);
    EXPECT_EQ(view.scrollOffset(), 0);
    scroll(view, -1);
    scroll(view, 9);
    EXPECT_EQ(view.scrollOffset(), 3);
    scroll(view, -6);
    EXPECT_EQ(view.scrollOffset(), 1);
    scroll(view, 300);
    EXPECT_EQ(view.scrollOffset(), 10);
    scroll(view, -300);
    EXPECT_EQ(view.scrollOffset(), 0);
    // A notch of a plain wheel, whose pixels are the driver's own.
    turnWheel(view, {0, 120}, {0, 120}, Qt::NoScrollPhase);
    EXPECT_EQ(view.scrollOffset(), 3);
    // A fine wheel sends an eighth of a notch at a time.
    for (int i = 0; i < 8; ++i)
        turnWheel(view, {}, {0, 15}, Qt::NoScrollPhase);
    EXPECT_EQ(view.scrollOffset(), 6);
}

TEST(TerminalInput, ShiftAndAPageKeyMoveAPageThroughTheHistory) {
    RunningTerminal terminal;
    ASSERT_TRUE(terminal.start());
    terminal.fillHistory(100);
    TerminalView& view = terminal.view;
    const int page = terminal.session.screen().rows() - 1;
    QTest::keyClick(&view, Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_EQ(view.scrollOffset(), page);
    QTest::keyClick(&view, Qt::Key_PageUp, Qt::ShiftModifier | Qt::KeypadModifier);
    EXPECT_EQ(view.scrollOffset(), 2 * page);
    QTest::keyClick(&view, Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_EQ(view.scrollOffset(), page);
    for (int i = 0; i < 20; ++i)
        QTest::keyClick(&view, Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_EQ(view.scrollOffset(), terminal.session.screen().scrollbackCount());
    for (int i = 0; i < 40; ++i)
        QTest::keyClick(&view, Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_EQ(view.scrollOffset(), 0);
    // The program has had none of them, and has what the keys send without Shift.
    QTest::keyClick(&view, Qt::Key_PageUp);
    ASSERT_TRUE(terminal.shows("^[[5~"));
    EXPECT_EQ(terminal.session.screen().plainText().find("^[[5;2~"), std::string::npos);
}

TEST(TerminalInput, InTheAlternateScreenShiftAndAPageKeyGoToTheProgram) {
    RunningTerminal terminal(echoing("\\033[?1049h"));
    ASSERT_TRUE(terminal.start());
    QTest::keyClick(&terminal.view, Qt::Key_PageUp, Qt::ShiftModifier);
    QTest::keyClick(&terminal.view, Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_TRUE(terminal.shows("^[[5;2~^[[6;2~"));
    EXPECT_EQ(terminal.view.scrollOffset(), 0);
}

TEST(TerminalInput, TypingReturnsToTheLiveScreen) {
    RunningTerminal terminal;
    ASSERT_TRUE(terminal.start());
    terminal.fillHistory(50);
    terminal.view.setScrollOffset(20);
    QTest::keyPress(&terminal.view, Qt::Key_Shift);
    EXPECT_EQ(terminal.view.scrollOffset(), 20) << "a modifier alone is not typing";
    QTest::keyClick(&terminal.view, Qt::Key_X);
    EXPECT_EQ(terminal.view.scrollOffset(), 0);
}

TEST(TerminalInput, TheContextMenuCopiesAndPastes) {
    RunningTerminal terminal;
    ASSERT_TRUE(terminal.start());
    clipboard().setText(QStringLiteral("pasted"));
    QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 20}, terminal.view.mapToGlobal(QPoint(20, 20)));
    QCoreApplication::sendEvent(&terminal.view, &event);
    auto* menu = terminal.view.findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    const QList<QAction*> items = menu->actions();
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0]->text(), QStringLiteral("Copy terminal output"));
    EXPECT_EQ(items[1]->text(), QStringLiteral("Paste"));
    items[1]->trigger();
    EXPECT_TRUE(terminal.shows(">pasted"));
    items[0]->trigger();
    EXPECT_EQ(clipboard().text(), QStringLiteral("ready>pasted"));
    menu->close();
}

}  // namespace
}  // namespace orvo
