#include "terminal/ui/RunningTerminal.h"

#include <QElapsedTimer>
#include <QImage>
#include <QPaintEvent>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace orvo {
namespace {

using test::DrawnTerminal;
using test::echoing;
using test::RunningTerminal;
using test::waitFor;

constexpr QRgb background = 0xFF141413;
constexpr QRgb defaultText = 0xFFD0DEEB;
constexpr QRgb accent = 0xFF00D9FF;

QImage imageOf(TerminalView& view) {
    return view.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// The picture of one cell, without the pixels it may share with its neighbours.
QImage cellOf(TerminalView& view, const QImage& image, int row, int column) {
    return image.copy(view.geometryOfCells().cell(row, column).toRect());
}

QRgb mixed(QRgb over, QRgb under, double share) {
    const auto channel = [share](int a, int b) {
        return int(std::lround(a * share + b * (1 - share)));
    };
    return qRgb(channel(qRed(over), qRed(under)), channel(qGreen(over), qGreen(under)),
                channel(qBlue(over), qBlue(under)));
}

bool isNear(QRgb a, QRgb b) {
    return std::abs(qRed(a) - qRed(b)) <= 2 && std::abs(qGreen(a) - qGreen(b)) <= 2 &&
           std::abs(qBlue(a) - qBlue(b)) <= 2;
}

/// Remembers what was repainted.
class PaintWatcher : public QObject {
public:
    explicit PaintWatcher(QWidget& widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            painted += static_cast<QPaintEvent*>(event)->region();
            ++paints;
        }
        return false;
    }
    QRegion painted;
    int paints = 0;
};

TEST(TerminalPainting, TheSessionGetsTheSizeThatFits) {
    RunningTerminal terminal;
    imageOf(terminal.view);
    const CellGeometry& cells = terminal.view.geometryOfCells();
    EXPECT_EQ(cells.lineHeight, 18);
    EXPECT_EQ(terminal.session.screen().rows(), 21);
    EXPECT_EQ(terminal.session.screen().columns(), int(800 / cells.cellWidth));

    terminal.view.resize(60, 30);
    imageOf(terminal.view);
    EXPECT_EQ(terminal.session.screen().rows(), 3);
    EXPECT_EQ(terminal.session.screen().columns(), 10);

    terminal.view.resize(820, 400);
    terminal.theme.setFontSize(15);
    imageOf(terminal.view);
    EXPECT_EQ(terminal.view.geometryOfCells().lineHeight, 23);
    EXPECT_EQ(terminal.session.screen().rows(), (400 - 16) / 23);
}

TEST(TerminalPainting, CellsFillTheirRectangleWithTheirColours) {
    // Row 0: inverse without colours, then a red and a green background, then inverse of a background.
    DrawnTerminal terminal("\x1b[7m  \x1b[0m\x1b[48;2;200;0;0m  \x1b[48;2;0;200;0m  \x1b[7m  ");
    const QImage image = imageOf(terminal.view);
    const auto at = [&](int column) {
        return image.pixel(terminal.view.geometryOfCells().cell(0, column).center().toPoint());
    };
    EXPECT_EQ(at(0), defaultText);
    EXPECT_EQ(at(2), qRgb(200, 0, 0));
    EXPECT_EQ(at(4), qRgb(0, 200, 0));
    EXPECT_EQ(at(6), defaultText);
    EXPECT_EQ(at(8), background);

    // No column of pixels between cells shows anything but one of their colours.
    const int y = CellGeometry::marginY + 9;
    const int end = int(terminal.view.geometryOfCells().columnX(8));
    for (int x = CellGeometry::marginX; x < end; ++x) {
        const QRgb pixel = image.pixel(x, y);
        EXPECT_TRUE(pixel == defaultText || pixel == qRgb(200, 0, 0) || pixel == qRgb(0, 200, 0))
            << "at " << x;
    }
}

TEST(TerminalPainting, InverseTextIsDrawnInTheBackgroundColour) {
    // A full block shows the text colour all over its cell.
    DrawnTerminal terminal("\x1b[7m█\x1b[0m█\x1b[48;2;9;9;9;7m█");
    const QImage image = imageOf(terminal.view);
    const auto at = [&](int column) {
        return image.pixel(terminal.view.geometryOfCells().cell(0, column).center().toPoint());
    };
    EXPECT_EQ(at(0), background);
    EXPECT_EQ(at(1), defaultText);
    EXPECT_EQ(at(2), qRgb(9, 9, 9));
}

TEST(TerminalPainting, LigaturesNeverForm) {
    DrawnTerminal terminal("=>\r\n= \r\n >\r\n!=\r\n! \r\n =");
    const QImage image = imageOf(terminal.view);
    for (const int row : {0, 3}) {
        EXPECT_EQ(cellOf(terminal.view, image, row, 0).convertToFormat(QImage::Format_Mono),
                  cellOf(terminal.view, image, row + 1, 0).convertToFormat(QImage::Format_Mono));
        EXPECT_EQ(cellOf(terminal.view, image, row, 1).convertToFormat(QImage::Format_Mono),
                  cellOf(terminal.view, image, row + 2, 1).convertToFormat(QImage::Format_Mono));
    }
}

TEST(TerminalPainting, BoxLinesJoinWithoutGaps) {
    DrawnTerminal terminal("┌────────────┐\r\n│            │\r\n╞════════════╡\r\n╰────────────╯");
    const QImage image = imageOf(terminal.view);
    const CellGeometry& cells = terminal.view.geometryOfCells();
    const auto runs = [&](QPoint from, QPoint step, int length) {
        for (int i = 0; i < length; ++i) {
            if (image.pixel(from + i * step) != defaultText) return i;
        }
        return length;
    };
    const QPoint corner = cells.cell(0, 0).center().toPoint();
    // The lines lie within a pixel of the cells' middle.
    int across = 0, down = 0;
    for (int shift = -1; shift <= 1; ++shift) {
        across = std::max(across, runs(corner + QPoint(2, shift), {1, 0}, int(12 * cells.cellWidth)));
        down = std::max(down, runs(corner + QPoint(shift, 2), {0, 1}, 2 * cells.lineHeight));
    }
    EXPECT_EQ(across, int(12 * cells.cellWidth));
    EXPECT_EQ(down, 2 * cells.lineHeight);
}

TEST(TerminalPainting, ScanLinesAreAtTheirHeights) {
    DrawnTerminal terminal("\x1B(0opqrs");
    const QImage image = imageOf(terminal.view);
    const CellGeometry& cells = terminal.view.geometryOfCells();
    std::vector<int> heights;
    for (int column = 0; column < 5; ++column) {
        const QRect cell = cells.around(0, column);
        int top = cell.top();
        while (top <= cell.bottom() && image.pixel(cell.center().x(), top) != defaultText)
            ++top;
        heights.push_back(top - cells.lineY(0));
    }
    const int last = cells.lineHeight - 1;
    EXPECT_EQ(heights.front(), 0);
    EXPECT_EQ(heights.back(), last);
    for (int column = 1; column < 4; ++column)
        EXPECT_NEAR(heights[static_cast<std::size_t>(column)], last * column / 4.0, 1) << column;
}

TEST(TerminalPainting, BrailleDotsAreAtTheirPlaces) {
    // One dot each, from bit 0 to bit 7, with a blank between them.
    DrawnTerminal terminal("⠁ ⠂ ⠄ ⠈ ⠐ ⠠ ⡀ ⢀");
    const QImage image = imageOf(terminal.view);
    constexpr std::pair<int, int> places[] = {{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}, {1, 2}, {0, 3}, {1, 3}};
    for (int dot = 0; dot < 8; ++dot) {
        const QImage cell = cellOf(terminal.view, image, 0, 2 * dot);
        QRect ink;
        for (int y = 0; y < cell.height(); ++y) {
            for (int x = 0; x < cell.width(); ++x) {
                if (cell.pixel(x, y) != background) ink |= QRect(x, y, 1, 1);
            }
        }
        const auto [column, row] = places[dot];
        EXPECT_FALSE(ink.isEmpty()) << dot;
        EXPECT_NEAR(QRectF(ink).center().x(), cell.width() * (2 * column + 1) / 4.0, 1.5) << dot;
        EXPECT_NEAR(QRectF(ink).center().y(), cell.height() * (2 * row + 1) / 8.0, 1.5) << dot;
    }
}

TEST(TerminalPainting, WideCharactersStayInTheirTwoCells) {
    DrawnTerminal terminal(" 世😀 ");
    const QImage image = imageOf(terminal.view);
    const CellGeometry& cells = terminal.view.geometryOfCells();
    bool coloured = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (pixel == background) continue;
            EXPECT_TRUE(cells.around(0, 1, 4).contains(x, y)) << x << ", " << y;
            coloured |= std::abs(qRed(pixel) - qBlue(pixel)) > 100;
        }
    }
    EXPECT_TRUE(coloured) << "emoji have colours of their own";
}

TEST(TerminalPainting, UnderlinesHaveTheirStyleAndColour) {
    RunningTerminal terminal;
    imageOf(terminal.view);
    // How many pixels of a cell are as good as red, and in how many rows they lie.
    const auto drawn = [&](const char* style) {
        terminal.session.screen().feed(std::string("\x1b[H\x1b[2J\x1b[58;2;200;0;0;") + style + "m   \x1b[m");
        const QImage cell = cellOf(terminal.view, imageOf(terminal.view), 0, 1);
        int pixels = 0, rows = 0;
        for (int y = 0; y < cell.height(); ++y) {
            int inRow = 0;
            for (int x = 0; x < cell.width(); ++x)
                inRow += qRed(cell.pixel(x, y)) > 80 && qGreen(cell.pixel(x, y)) < 30 ? 1 : 0;
            pixels += inRow;
            rows += inRow > 0 ? 1 : 0;
        }
        return std::pair(pixels, rows);
    };
    const auto single = drawn("4");
    EXPECT_EQ(single.second, 1);
    EXPECT_EQ(drawn("21").second, 2);
    EXPECT_EQ(drawn("4:2"), drawn("21"));
    EXPECT_GE(drawn("4:3").second, 3) << "a wave goes up and down";
    EXPECT_LT(drawn("4:4").first, single.first) << "dots leave gaps";
    EXPECT_LT(drawn("4:5").first, single.first) << "dashes leave gaps";
    EXPECT_NE(drawn("4:4"), drawn("4:5"));
    EXPECT_EQ(drawn("4:0").first, 0);
}

TEST(TerminalPainting, TheCursorHasTheShapeAskedFor) {
    RunningTerminal terminal(echoing("\\r\\n"));
    ASSERT_TRUE(terminal.start());
    ASSERT_TRUE(waitFor([&] { return terminal.view.hasFocus(); }));
    imageOf(terminal.view);
    const auto corners = [&](const char* shape) {
        terminal.session.screen().feed(shape);
        const QImage image = imageOf(terminal.view);
        const QRect cell = terminal.view.cursorRect().adjusted(1, 1, -2, -1);
        std::string seen;
        for (const QPoint& corner : {cell.topLeft(), cell.topRight(), cell.bottomLeft(), cell.bottomRight()})
            seen += image.pixel(corner) == background ? '.' : '#';
        return seen;
    };
    EXPECT_EQ(corners("\x1b[2 q"), "####");
    EXPECT_EQ(corners("\x1b[4 q"), "..##");
    EXPECT_EQ(corners("\x1b[6 q"), "#.#.");
}

TEST(TerminalPainting, APictureThatIsBeingDrawnIsShownWhenItIsWhole) {
    RunningTerminal terminal(echoing());
    ASSERT_TRUE(terminal.start());
    PaintWatcher watcher(terminal.view);
    const auto feed = [&](const char* bytes) {
        terminal.session.screen().feed(bytes);
        Q_EMIT terminal.session.revisionChanged();
    };
    const QRect line = terminal.view.geometryOfCells().line(5, terminal.view.width());
    const QRect other = terminal.view.geometryOfCells().line(8, terminal.view.width());
    feed("\x1b[9;1Hsettled");
    ASSERT_TRUE(waitFor([&] { return watcher.painted.intersects(other); }));
    QElapsedTimer clock;
    clock.start();
    feed("\x1b[?2026h\x1b[6;1Hhalf");
    watcher.painted = {};
    ASSERT_TRUE(waitFor([&] { return watcher.painted.intersects(line); }));
    EXPECT_GE(clock.elapsed(), 140) << "as long as it may be held";

    // Its end is shown at once. A busy machine may keep the frame waiting now and then, but not every time.
    qint64 soonest = clock.elapsed();
    for (int attempt = 0; attempt < 20 && soonest >= 140; ++attempt) {
        feed("\x1b[?2026l");
        feed("\x1b[?2026h\x1b[6;1Hpart");
        watcher.painted = {};
        clock.start();
        feed("whole\x1b[?2026l");
        ASSERT_TRUE(waitFor([&] { return watcher.painted.intersects(line); }));
        soonest = std::min(soonest, clock.elapsed());
    }
    EXPECT_LT(soonest, 140);
}

TEST(TerminalPainting, TheCursorIsOnlyOnALiveScreenThatShowsIt) {
    RunningTerminal terminal(echoing("\\r\\n"));
    // The corner of a cell, where no letter reaches.
    const auto cursorPixel = [&] {
        return imageOf(terminal.view).pixel(terminal.view.cursorRect().topLeft() + QPoint(1, 1));
    };
    EXPECT_EQ(cursorPixel(), background) << "not started";
    ASSERT_TRUE(terminal.start());
    ASSERT_TRUE(waitFor([&] { return terminal.view.hasFocus(); }));
    EXPECT_TRUE(isNear(cursorPixel(), mixed(accent, background, 0.6)));
    terminal.view.clearFocus();
    EXPECT_TRUE(isNear(cursorPixel(), mixed(accent, background, 0.22)));

    terminal.session.screen().feed("\x1b[?25l");
    EXPECT_EQ(cursorPixel(), background) << "hidden by the program";
    terminal.session.screen().feed("\x1b[?25h");
    terminal.fillHistory(5);
    terminal.view.setScrollOffset(1);
    EXPECT_EQ(cursorPixel(), background) << "scrolled back";
    terminal.view.setScrollOffset(0);
    EXPECT_NE(cursorPixel(), background);
    terminal.session.stop();
    ASSERT_TRUE(waitFor([&] { return !terminal.session.running(); }));
    EXPECT_EQ(cursorPixel(), background) << "ended";
}

TEST(TerminalPainting, ScrolledBackTheViewShowsHistoryAndItsLabel) {
    DrawnTerminal terminal("\x1b[48;2;200;0;0m          \x1b[0m");
    terminal.fillHistory(30);
    const auto topPixel = [&] {
        return imageOf(terminal.view).pixel(30, CellGeometry::marginY + 9);
    };
    EXPECT_NE(topPixel(), qRgb(200, 0, 0));
    terminal.view.setScrollOffset(1000);
    EXPECT_EQ(terminal.view.scrollOffset(), 30);
    EXPECT_EQ(topPixel(), qRgb(200, 0, 0))
        << "the oldest line is on top when the offset is the history's length";

    const auto labelInk = [&] {
        const QImage image = imageOf(terminal.view);
        int ink = 0;
        for (int y = 380; y < 396; ++y) {
            for (int x = 12; x < 140; ++x)
                ink += qBlue(image.pixel(x, y)) - qRed(image.pixel(x, y)) > 100 ? 1 : 0;
        }
        return ink;
    };
    EXPECT_GT(labelInk(), 20);
    terminal.view.setScrollOffset(0);
    EXPECT_EQ(labelInk(), 0);
}

TEST(TerminalPainting, ScrolledBackTheViewStaysOnItsTextWhileOutputArrives) {
    RunningTerminal terminal(
        "stty raw -echo; for i in $(seq 60); do printf \"$i\\r\\n\"; done; printf 'ready>'; cat");
    ASSERT_TRUE(terminal.start());
    terminal.view.setScrollOffset(10);
    const int history = terminal.session.screen().scrollbackCount();
    terminal.session.send(QStringLiteral("a\r\nb\r\nc\r\ndone"));
    ASSERT_TRUE(terminal.shows("done"));
    const int arrived = terminal.session.screen().scrollbackCount() - history;
    EXPECT_EQ(arrived, 3);
    EXPECT_TRUE(waitFor([&] { return terminal.view.scrollOffset() == 10 + arrived; }));
}

TEST(TerminalPainting, OnlyLinesThatChangedAreRepainted) {
    RunningTerminal terminal("stty raw -echo; printf '\\033[5;1Hready>'; exec cat");
    ASSERT_TRUE(terminal.start());
    const auto lineRect = [&](int row) {
        return terminal.view.geometryOfCells().line(row, terminal.view.width());
    };
    PaintWatcher watcher(terminal.view);
    // Everything that starting has asked for is painted before a character of our own is.
    terminal.session.send(QStringLiteral("."));
    ASSERT_TRUE(waitFor([&] { return watcher.painted.intersects(lineRect(4)); }));
    QCoreApplication::processEvents();

    watcher.painted = {};
    terminal.session.send(QStringLiteral("x"));
    ASSERT_TRUE(waitFor([&] { return !watcher.painted.isEmpty(); }));
    EXPECT_TRUE(lineRect(4).contains(watcher.painted.boundingRect()));

    watcher.painted = {};
    terminal.session.send(QStringLiteral("\x1b[9;1Hy"));
    ASSERT_TRUE(waitFor([&] { return watcher.painted.intersects(lineRect(8)); }));
    EXPECT_TRUE((watcher.painted - lineRect(4) - lineRect(8)).isEmpty());
}

TEST(TerminalPainting, ACursorThatMovesBetweenFramesLeavesNoTrace) {
    RunningTerminal terminal;
    ASSERT_TRUE(terminal.start());
    PaintWatcher watcher(terminal.view);
    TerminalScreen& screen = terminal.session.screen();
    const CellGeometry& cells = terminal.view.geometryOfCells();
    // Painted at its second place for another reason than its own move, and gone on before the next frame.
    screen.feed("\x1b[7;7H");
    terminal.view.repaint();
    screen.feed("\x1b[9;9H");
    watcher.painted = {};
    terminal.session.send(QStringLiteral("x"));
    ASSERT_TRUE(waitFor([&] { return watcher.painted.intersects(cells.around(8, 9)); }));
    EXPECT_TRUE(watcher.painted.contains(cells.around(6, 6)));
}

TEST(TerminalPainting, OutputThatChangesNothingIsNotPainted) {
    RunningTerminal terminal("stty raw -echo; printf 'ready>'; exec cat");
    ASSERT_TRUE(terminal.start());
    PaintWatcher watcher(terminal.view);
    const auto outputNothing = [&] {
        const int revision = terminal.session.revision();
        terminal.session.send(QStringLiteral("\x1b[0m"));
        ASSERT_TRUE(waitFor([&] { return terminal.session.revision() > revision; }));
        // The frame that follows would be the one to paint.
        QElapsedTimer frame;
        frame.start();
        ASSERT_TRUE(waitFor([&] { return frame.hasExpired(40); }));
    };
    // What starting has left to paint comes with the first, on a busy machine with some more.
    int quiet = 0;
    for (int round = 0; round < 50 && quiet < 4; ++round) {
        watcher.paints = 0;
        outputNothing();
        quiet = watcher.paints == 0 ? quiet + 1 : 0;
    }
    EXPECT_EQ(quiet, 4);
}

TEST(TerminalPainting, AFloodIsPaintedOnceAFrame) {
    RunningTerminal terminal(
        "stty raw -echo; printf 'ready>'; read -k; until read -t 0 -k; do for i in {1..500}; do echo $i; "
        "done; "
        "done; printf 'done'; cat");
    ASSERT_TRUE(terminal.start());
    PaintWatcher watcher(terminal.view);
    const int revision = terminal.session.revision();
    QElapsedTimer time;
    time.start();
    terminal.session.send(QStringLiteral("g"));
    // On a busy machine, much of it comes in few batches.
    ASSERT_TRUE(waitFor([&] { return terminal.session.revision() - revision > 100; }));
    terminal.session.send(QStringLiteral("."));
    ASSERT_TRUE(terminal.shows("done"));
    EXPECT_GT(watcher.paints, 0);
    EXPECT_LE(watcher.paints, time.elapsed() / 16 + 2);
}

}  // namespace
}  // namespace orvo
