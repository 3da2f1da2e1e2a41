#include "terminal/ui/RunningTerminal.h"

#include <QClipboard>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>
#include <QWheelEvent>

namespace orvo {
namespace {

using test::DrawnTerminal;
using test::echoing;
using test::RunningTerminal;
using test::waitFor;

/// A place within a cell, from its left edge on in widths of a cell.
QPoint placeIn(TerminalView& view, int row, int column, double part = 0.5) {
    const QRectF cell = view.geometryOfCells().cell(row, column);
    return {int(cell.x() + cell.width() * part), int(cell.center().y())};
}

void drag(TerminalView& view, QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mousePress(&view, Qt::LeftButton, modifiers, from);
    QMouseEvent move(QEvent::MouseMove, QPointF(to), view.mapToGlobal(QPointF(to)), Qt::NoButton,
                     Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(&view, &move);
    QTest::mouseRelease(&view, Qt::LeftButton, modifiers, to);
}

void turnWheel(TerminalView& view, int notches, QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWheelEvent event(QPointF(at), view.mapToGlobal(QPointF(at)), {}, {0, 120 * notches}, Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&view, &event);
}

std::string selectedText(RunningTerminal& terminal) {
    return terminal.view.selection().text(terminal.session.screen()).toStdString();
}

TEST(TerminalMouse, DraggingSelectsFromEdgeToEdge) {
    DrawnTerminal terminal("first line\r\nsecond line  \r\nthird");
    TerminalView& view = terminal.view;
    drag(view, placeIn(view, 0, 6, 0.2), placeIn(view, 0, 9, 0.8));
    EXPECT_EQ(selectedText(terminal), "line");
    drag(view, placeIn(view, 2, 2, 0.7), placeIn(view, 0, 6, 0.2));
    EXPECT_EQ(selectedText(terminal), "line\nsecond line\nthi") << "backwards, without blanks at the ends";
    drag(view, placeIn(view, 0, 1, 0.1), placeIn(view, 2, 3, 0.1), Qt::AltModifier);
    EXPECT_EQ(selectedText(terminal), "ir\nec\nhi") << "a rectangle";
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 1, 1));
    EXPECT_TRUE(view.selection().empty());
}

TEST(TerminalMouse, DoubleAndTripleClicksSelectWordAndLine) {
    DrawnTerminal terminal("open src/main.cpp:12 (see 世界) now");
    TerminalView& view = terminal.view;
    QTest::mouseDClick(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 0, 9));
    EXPECT_EQ(selectedText(terminal), "src/main.cpp:12");
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 0, 9));
    EXPECT_EQ(selectedText(terminal), "open src/main.cpp:12 (see 世界) now");
    QTest::mouseDClick(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 0, 26));
    EXPECT_EQ(selectedText(terminal), "世界");
    QTest::mouseDClick(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 0, 4));
    EXPECT_EQ(selectedText(terminal), "") << "a blank is no word";
}

TEST(TerminalMouse, AWrappedLineIsOneLine) {
    DrawnTerminal terminal("");
    const int columns = terminal.session.screen().columns();
    const std::string text(static_cast<std::size_t>(columns) + 10, 'x');
    terminal.session.screen().feed("a " + text + " b\r\nnext");
    TerminalView& view = terminal.view;
    QTest::mouseDClick(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 1, 3));
    EXPECT_EQ(selectedText(terminal), text);
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 1, 3));
    EXPECT_EQ(selectedText(terminal), "a " + text + " b");
    drag(view, placeIn(view, 0, 0, 0.1), placeIn(view, 2, 3, 0.9));
    EXPECT_EQ(selectedText(terminal), "a " + text + " b\nnext");
}

TEST(TerminalMouse, ASelectionStaysOnItsTextAndGoesWithIt) {
    DrawnTerminal terminal("keep\r\nlose");
    TerminalView& view = terminal.view;
    view.show();
    const auto feed = [&](const std::string& bytes) {
        terminal.session.screen().feed(bytes);
        Q_EMIT terminal.session.revisionChanged();
    };
    drag(view, placeIn(view, 0, 0, 0.1), placeIn(view, 0, 3, 0.9));
    std::string scrolling;
    for (int line = 0; line < 2 * terminal.session.screen().rows(); ++line)
        scrolling += "\r\n";
    feed(scrolling);
    ASSERT_TRUE(waitFor([&] { return view.isVisible(); }));
    EXPECT_EQ(selectedText(terminal), "keep");
    view.copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("keep"));

    feed("\x1b[Hchanging");
    drag(view, placeIn(view, 0, 0, 0.1), placeIn(view, 0, 3, 0.9));
    EXPECT_FALSE(view.selection().empty());
    feed("\x1b[H!");
    EXPECT_TRUE(waitFor([&] { return view.selection().empty(); }));
}

TEST(TerminalMouse, ASelectionIsPainted) {
    DrawnTerminal terminal("          ");
    TerminalView& view = terminal.view;
    const auto pixel = [&](int column) {
        return view.grab().toImage().pixel(placeIn(view, 0, column));
    };
    const QRgb plain = pixel(2);
    drag(view, placeIn(view, 0, 1, 0.1), placeIn(view, 0, 4, 0.1));
    EXPECT_NE(pixel(2), plain);
    EXPECT_NE(pixel(3), plain);
    EXPECT_EQ(pixel(4), plain);
    EXPECT_EQ(pixel(0), plain);
}

TEST(TerminalMouse, AProgramThatAsksGetsTheMouseUnlessShiftIsHeld) {
    RunningTerminal terminal(echoing("\\033[?1002h\\033[?1006h"));
    ASSERT_TRUE(terminal.start());
    TerminalView& view = terminal.view;
    drag(view, placeIn(view, 0, 0), placeIn(view, 1, 2));
    EXPECT_TRUE(terminal.shows(">^[[<0;1;1M^[[<32;3;2M^[[<0;3;2m"));
    EXPECT_TRUE(view.selection().empty());
    QTest::mouseMove(&view, placeIn(view, 2, 2));
    turnWheel(view, -1, placeIn(view, 0, 0));
    EXPECT_TRUE(terminal.shows("<0;3;2m^[[<65;1;1M")) << "a movement without a button is not told";
    drag(view, placeIn(view, 0, 0, 0.1), placeIn(view, 0, 4, 0.9), Qt::ShiftModifier);
    EXPECT_EQ(selectedText(terminal), "ready");
}

TEST(TerminalMouse, TheWheelBecomesCursorKeysInTheAlternateScreen) {
    RunningTerminal terminal(echoing("\\033[?1049h\\033[?1h"));
    ASSERT_TRUE(terminal.start());
    turnWheel(terminal.view, 1, {20, 20});
    EXPECT_TRUE(terminal.shows(">^[OA^[OA^[OA"));
    terminal.session.screen().feed("\x1b[?1007l");
    turnWheel(terminal.view, 1, {20, 20});
    terminal.session.screen().feed("\x1b[?1007h");
    turnWheel(terminal.view, -1, {20, 20});
    EXPECT_TRUE(terminal.shows(">^[OA^[OA^[OA^[OB^[OB^[OB"));
    EXPECT_EQ(terminal.view.scrollOffset(), 0);
}

TEST(TerminalMouse, FocusIsToldToThoseWhoAsked) {
    RunningTerminal terminal(echoing("\\033[?1004h"));
    ASSERT_TRUE(terminal.start());
    ASSERT_TRUE(waitFor([&] { return terminal.view.hasFocus(); }));
    terminal.view.clearFocus();
    EXPECT_TRUE(terminal.shows("^[[O"));
    terminal.view.setFocus();
    EXPECT_TRUE(terminal.shows("^[[O^[[I"));
}

TEST(TerminalMouse, ControlClickOpensALink) {
    DrawnTerminal terminal(
        "see (https://x.org/a?b=1), or \x1b]8;;http://y.org/\x1b\\this\x1b]8;;\x1b\\ or "
        "\x1b]8;;javascript:x\x1b\\that\x1b]8;;\x1b\\");
    TerminalView& view = terminal.view;
    QSignalSpy opened(&view, &TerminalView::linkOpened);
    const auto click = [&](int column, Qt::KeyboardModifiers modifiers) {
        const QPoint at = placeIn(view, 0, column);
        QMouseEvent move(QEvent::MouseMove, QPointF(at), view.mapToGlobal(QPointF(at)), Qt::NoButton,
                         Qt::NoButton, modifiers);
        QCoreApplication::sendEvent(&view, &move);
        QTest::mouseClick(&view, Qt::LeftButton, modifiers, at);
        return opened.isEmpty() ? QString() : opened.takeFirst().at(0).toUrl().toString();
    };
    EXPECT_EQ(click(8, Qt::ControlModifier), QStringLiteral("https://x.org/a?b=1"));
    EXPECT_EQ(click(23, Qt::ControlModifier), QStringLiteral("https://x.org/a?b=1"));
    EXPECT_EQ(click(24, Qt::ControlModifier), QString()) << "the closing bracket is the sentence's";
    EXPECT_EQ(click(8, Qt::NoModifier), QString());
    EXPECT_EQ(click(31, Qt::ControlModifier), QStringLiteral("http://y.org/"));
    EXPECT_EQ(click(38, Qt::ControlModifier), QString()) << "other schemes are not followed";

    // Control is often pressed when the pointer is on the link already.
    click(2, Qt::NoModifier);
    QTest::mouseClick(&view, Qt::LeftButton, Qt::ControlModifier, placeIn(view, 0, 8));
    EXPECT_EQ(opened.size(), 1);
}

TEST(TerminalMouse, ZoomChangesThisViewAlone) {
    RunningTerminal terminal;
    TerminalView& view = terminal.view;
    view.show();
    const int columns = terminal.session.screen().columns();
    QTest::keyClick(&view, Qt::Key_Plus, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(view.zoom(), 2);
    EXPECT_LT(terminal.session.screen().columns(), columns);
    QTest::keyClick(&view, Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(view.zoom(), 1);
    QTest::keyClick(&view, Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(terminal.session.screen().columns(), columns);
    view.setZoom(1000);
    EXPECT_LE(view.geometryOfCells().lineHeight, 60);
}

TEST(TerminalMouse, AllMatchesAreFoundAlsoAcrossWraps) {
    DrawnTerminal terminal("");
    TerminalScreen& screen = terminal.session.screen();
    const std::string filling(static_cast<std::size_t>(screen.columns()) - 2, '.');
    screen.feed("Needle needle\r\n" + filling + "needle\r\n");
    terminal.fillHistory(30);
    const std::vector<TextMatch> matches = findText(screen, QStringLiteral("NEEDLE"));
    ASSERT_EQ(matches.size(), 3u);
    EXPECT_EQ(matches[1].begin.line, 0);
    EXPECT_EQ(matches[1].begin.column, 7);
    EXPECT_EQ(matches[2].begin.column, screen.columns() - 2);
    EXPECT_EQ(matches[2].end.line, 2);
    EXPECT_EQ(matches[2].end.column, 4);
    EXPECT_TRUE(findText(screen, QString()).empty());

    terminal.view.showMatches(matches, 0);
    EXPECT_GT(terminal.view.scrollOffset(), 0) << "the match is brought into view";
}

TEST(TerminalMouse, DroppedFilesAreHandedOnAndTextIsPasted) {
    RunningTerminal terminal;
    ASSERT_TRUE(terminal.start());
    QSignalSpy dropped(&terminal.view, &TerminalView::filesDropped);
    const auto drop = [&](QMimeData& data) {
        QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&terminal.view, &enter);
        QDropEvent event(QPointF(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&terminal.view, &event);
    };
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a b")), QUrl(QStringLiteral("http://x.org/"))});
    drop(files);
    ASSERT_EQ(dropped.size(), 1);
    EXPECT_EQ(dropped[0][0].toStringList(), QStringList{QStringLiteral("/tmp/a b")});
    QMimeData text;
    text.setText(QStringLiteral("typed"));
    drop(text);
    EXPECT_TRUE(terminal.shows(">typed"));
}

}  // namespace
}  // namespace orvo
