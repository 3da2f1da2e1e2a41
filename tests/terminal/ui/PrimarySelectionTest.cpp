// What is selected in a terminal is for the middle button of every other program, and the other way round.
// Runs in an X server, because nothing else has such a selection.
#include "support/QtTestMain.h"
#include "terminal/ui/RunningTerminal.h"

#include <QClipboard>
#include <QProcess>
#include <QTest>

namespace orvo {
namespace {

using test::RunningTerminal;
using test::waitFor;

/// Runs while our side of the exchange is served.
QByteArray xclip(const QStringList& arguments, const QByteArray& input = {}) {
    QProcess process;
    process.start(QStringLiteral("xclip"),
                  arguments + QStringList{QStringLiteral("-selection"), QStringLiteral("primary")});
    process.write(input);
    process.closeWriteChannel();
    if (!waitFor([&] { return process.state() == QProcess::NotRunning; })) return "(xclip does not end)";
    return process.readAllStandardOutput();
}

QPoint placeIn(TerminalView& view, int row, int column) {
    return view.geometryOfCells().cell(row, column).center().toPoint();
}

TEST(PrimarySelection, GoesBetweenProgramsWithoutTheClipboard) {
    RunningTerminal terminal;
    ASSERT_TRUE(terminal.start());
    TerminalView& view = terminal.view;
    ASSERT_TRUE(waitFor([&] { return view.isActiveWindow(); }));
    terminal.session.screen().feed("\x1B[3Hone line of words");
    QTest::mouseDClick(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 2, 5));
    QTest::mouseRelease(&view, Qt::LeftButton, Qt::NoModifier, placeIn(view, 2, 5));
    EXPECT_EQ(xclip({QStringLiteral("-o")}), "line");
    EXPECT_TRUE(QGuiApplication::clipboard()->text().isEmpty()) << "that is for Copy";

    xclip({QStringLiteral("-i")}, "from elsewhere");
    QTest::mouseClick(&view, Qt::MiddleButton, Qt::NoModifier, placeIn(view, 5, 5));
    EXPECT_TRUE(terminal.shows("from elsewhere"));
}

}  // namespace
}  // namespace orvo

int main(int argc, char** argv) {
    orvo::test::isolateEnvironment();
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    return orvo::test::runAllTests(argc, argv);
}
