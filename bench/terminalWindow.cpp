// Prints what a terminal costs as a whole: memory of a session, draining a pseudo-terminal, drawing, the way
// from a key to its painted echo, rest, and a long file beside other terminals where those are installed.
// Needs a display; each figure stands beside the goal that it has.
#include "appearance/Theme.h"
#include "bench/Payloads.h"
#include "terminal/TerminalSession.h"
#include "terminal/core/launch.h"
#include "terminal/ui/TerminalView.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <QTimer>

#include <malloc.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvo::bench {
namespace {

constexpr int rows = 50;
constexpr int columns = 200;
constexpr int rounds = 3;
constexpr int paints = 60;
constexpr int keys = 60;
constexpr int longFileMegabytes = 50;
constexpr int longestWaitMilliseconds = 120'000;

double wallMilliseconds() {
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

double processorMilliseconds() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

struct Times {
    std::vector<double> values;

    double median() {
        if (values.empty()) return 0;
        std::ranges::sort(values);
        return values[values.size() / 2];
    }
    double worst() const { return values.empty() ? 0 : std::ranges::max(values); }
    void print(const char* name, const char* goal) {
        const double middle = median();
        std::printf("%-52s %9.2f ms, worst %7.2f   goal %s\n", name, middle, worst(), goal);
    }
};

/// Runs the event loop until `done`, at most for the longest wait.
bool loopUntil(const std::function<bool()>& done) {
    QElapsedTimer waited;
    waited.start();
    // So that the waiting itself ends.
    QTimer look;
    look.start(1'000);
    while (!done()) {
        if (waited.elapsed() > longestWaitMilliseconds) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void rest(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A view that notes when it was painted.
class MeasuredView : public TerminalView {
public:
    using TerminalView::TerminalView;

    std::vector<double> painted;
    /// Processor time of the main thread at the same moments.
    std::vector<double> spent;
    Times costs;

    void forget() {
        painted.clear();
        spent.clear();
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        const double start = processorMilliseconds();
        TerminalView::paintEvent(event);
        costs.values.push_back(processorMilliseconds() - start);
        painted.push_back(wallMilliseconds());
        spent.push_back(processorMilliseconds());
    }
};

/// A shown view of 50 × 200 cells on a session of its own.
struct Window {
    explicit Window(const QString& command)
        : session(QStringLiteral("shell"), QStringLiteral("Terminal"), command, FilePath("/")) {
        const CellGeometry& cells = view.geometryOfCells();
        view.setSession(&session);
        view.resize(static_cast<int>(cells.columnX(columns)) + CellGeometry::marginX + 1,
                    cells.lineY(rows) + CellGeometry::marginY);
        view.show();
        view.activateWindow();
        view.setFocus();
        loopUntil([this] { return !view.painted.empty() && view.hasFocus(); });
        rest(200);
        if (session.screen().rows() != rows || session.screen().columns() != columns)
            std::puts("the display is too small for 50 x 200 cells");
    }

    Theme theme{nullptr};
    TerminalSession session;
    MeasuredView view{theme};
};

std::string payload(std::string_view name) {
    for (Payload& each : payloads(rows, columns)) {
        if (each.name == name) return std::move(each.bytes);
    }
    return {};
}

// --- Memory

double mebibytesAllocated() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / (1 << 20);
}

void measureMemory(const char* name, const char* goal, const std::function<void(TerminalScreen&)>& fill) {
    const double before = mebibytesAllocated();
    TerminalSession session(QStringLiteral("shell"), QStringLiteral("Terminal"), QStringLiteral("true"),
                            FilePath("/"));
    session.resize(rows, columns);
    fill(session.screen());
    session.screen().compact();
    std::printf("%-52s %9.3f MiB                  goal %s\n", name, mebibytesAllocated() - before, goal);
}

void measureMemory() {
    measureMemory("a fresh session", "0.15", [](TerminalScreen&) {});
    measureMemory("a full one: 2,000 lines of 200, each cell coloured", "6.6", [](TerminalScreen& screen) {
        std::string line;
        for (int column = 0; column < columns; ++column)
            line += "\x1B[48;5;" + std::to_string(column) + "mx";
        for (int count = 0; count < 4'000; ++count)
            screen.feed(line + "\r\n");
    });
    const std::string log = payload("plain log");
    double text = 0;
    measureMemory("an ordinary log", "its text", [&log, &text](TerminalScreen& screen) {
        screen.feed(log);
        for (int line = 0; line < screen.scrollbackCount(); ++line)
            text += static_cast<double>(screen.scrollbackLine(line).width() * sizeof(TerminalCell));
    });
    std::printf("%-52s %9.2f MiB\n", "  of which the cells of its text", text / (1 << 20));
}

// --- Draining

/// What the child takes when its output is read and thrown away.
double secondsToDiscardOutputOf(const QString& command) {
    const double start = wallMilliseconds();
    std::int32_t master = -1;
    const std::int32_t child = pelk_spawn(command.toUtf8().constData(), "/", rows, columns, &master);
    if (child < 0) return 0;
    std::array<char, 65'536> buffer;
    for (;;) {
        const ssize_t size = read(master, buffer.data(), buffer.size());
        if (size > 0) continue;
        if (size == 0 || errno != EAGAIN) break;
        pollfd ready{master, POLLIN, 0};
        poll(&ready, 1, 1'000);
    }
    close(master);
    pelk_wait(child);
    return (wallMilliseconds() - start) / 1e3;
}

double secondsToRun(TerminalSession& session) {
    const double start = wallMilliseconds();
    session.start();
    loopUntil([&session] { return !session.running(); });
    return (wallMilliseconds() - start) / 1e3;
}

void measureDraining(const QString& file) {
    const QString command = QStringLiteral("cat '%1'").arg(file);
    double ours = 1e9;
    double discarding = 1e9;
    for (int round = 0; round < rounds; ++round) {
        discarding = std::min(discarding, secondsToDiscardOutputOf(command));
        TerminalSession session(QStringLiteral("shell"), QStringLiteral("Terminal"), command, FilePath("/"));
        session.resize(rows, columns);
        ours = std::min(ours, secondsToRun(session));
    }
    std::printf("%-52s %9.2f times a reader that discards (%.2f s, %.2f s)   goal 1.2\n",
                "draining 50 MB of a pseudo-terminal", ours / discarding, ours, discarding);
}

// --- Drawing

void measureFullPaint(Window& window, const char* name, std::string_view text) {
    window.session.screen().feed("\x1B[m\x1B[2J\x1B[H");
    window.session.screen().feed(text);
    Times whole;
    window.view.costs.values.clear();
    for (int count = 0; count < paints; ++count) {
        const double start = wallMilliseconds();
        window.view.repaint();
        whole.values.push_back(wallMilliseconds() - start);
    }
    window.view.costs.print((std::string(name) + ", processor time").c_str(), "8 ms");
    whole.print((std::string(name) + ", to the display").c_str(), "8 ms");
}

void measureRowPaint(Window& window) {
    TerminalScreen& screen = window.session.screen();
    screen.feed("\x1B[?25l");
    rest(100);
    window.view.costs.values.clear();
    for (int count = 0; count < paints; ++count) {
        const std::size_t before = window.view.painted.size();
        screen.feed("\x1B[" + std::to_string(count % rows + 1) + "H" +
                    std::string(static_cast<std::size_t>(columns - 1), static_cast<char>('a' + count % 26)));
        Q_EMIT window.session.revisionChanged();
        loopUntil([&] { return window.view.painted.size() > before; });
    }
    window.view.costs.print("a changed row, processor time", "0.5 ms");
    screen.feed("\x1B[?25h");
}

void measureDrawing() {
    Window window(QStringLiteral("true"));
    measureFullPaint(window, "all of 50 x 200, a log", payload("plain log"));
    measureFullPaint(window, "all of 50 x 200, every cell coloured", payload("dense cells"));
    measureRowPaint(window);
}

void measureEcho() {
    Window window(QStringLiteral("stty raw -echo; printf ready; exec cat"));
    window.session.start();
    loopUntil([&] { return window.session.screen().column() == 5; });
    Times times;
    for (int count = 0; count < keys; ++count) {
        rest(30);
        const int column = window.session.screen().column();
        const std::size_t before = window.view.painted.size();
        const double start = wallMilliseconds();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QCoreApplication::sendEvent(&window.view, &press);
        loopUntil([&] {
            return window.session.screen().column() != column && window.view.painted.size() > before;
        });
        times.values.push_back(window.view.painted.back() - start);
    }
    times.print("from a key to its painted echo", "16 ms");

    // Words to assistive technology and the mark of the session come some time after the last output.
    rest(2'500);
    const std::size_t paintsBefore = window.view.painted.size();
    int wakeups = 0;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &window.view,
                     [&wakeups] { ++wakeups; });
    rusage before = {};
    getrusage(RUSAGE_SELF, &before);
    constexpr int seconds = 5;
    rest(seconds * 1'000);
    rusage after = {};
    getrusage(RUSAGE_SELF, &after);
    std::printf(
        "in %d s of rest: %zu paints, %d wake-ups of the main thread, %ld of the whole process   goal 0 (the "
        "measuring takes 1 or 2)\n",
        seconds, window.view.painted.size() - paintsBefore, wakeups, after.ru_nvcsw - before.ru_nvcsw);
    window.session.stop();
    loopUntil([&] { return !window.session.running(); });
}

// --- A long file

struct Gaps {
    Times wall;
    Times processor;
};

double secondsInOurWindow(const QString& command, Gaps& gaps) {
    Window window(command);
    // Before the first output the shell starts, and nothing is to be painted.
    QObject::connect(
        &window.session, &TerminalSession::revisionChanged, &window.view, [&window] { window.view.forget(); },
        Qt::SingleShotConnection);
    const double seconds = secondsToRun(window.session);
    for (std::size_t index = 1; index < window.view.painted.size(); ++index) {
        gaps.wall.values.push_back(window.view.painted[index] - window.view.painted[index - 1]);
        gaps.processor.values.push_back(window.view.spent[index] - window.view.spent[index - 1]);
    }
    return seconds;
}

struct Rival {
    QString program;
    QStringList arguments;
};

double secondsInRival(const Rival& rival, const QString& command) {
    QProcess process;
    const double start = wallMilliseconds();
    process.start(rival.program,
                  rival.arguments + QStringList{QStringLiteral("sh"), QStringLiteral("-c"), command});
    if (!process.waitForFinished(longestWaitMilliseconds)) process.kill();
    return (wallMilliseconds() - start) / 1e3;
}

void measureLongFile(const QString& file) {
    const QString show = QStringLiteral("cat '%1'").arg(file);
    const QString nothing = QStringLiteral("true");
    std::vector<Rival> rivals;
    const auto add = [&rivals](const QString& program, const QStringList& arguments) {
        if (!QStandardPaths::findExecutable(program).isEmpty()) rivals.push_back({program, arguments});
    };
    add(QStringLiteral("xterm"), {QStringLiteral("-geometry"), QStringLiteral("200x50"),
                                  QStringLiteral("-sl"), QStringLiteral("2000"), QStringLiteral("-e")});
    add(QStringLiteral("alacritty"),
        {QStringLiteral("-o"), QStringLiteral("window.dimensions.columns=200"), QStringLiteral("-o"),
         QStringLiteral("window.dimensions.lines=50"), QStringLiteral("-o"),
         QStringLiteral("scrolling.history=2000"), QStringLiteral("-e")});
    qputenv("LIBGL_ALWAYS_SOFTWARE", "1");

    double ours = 1e9;
    std::vector<double> theirs(rivals.size(), 1e9);
    Gaps gaps;
    for (int round = 0; round < rounds; ++round) {
        Gaps none;
        ours = std::min(ours, secondsInOurWindow(show, gaps) - secondsInOurWindow(nothing, none));
        for (std::size_t index = 0; index < rivals.size(); ++index)
            theirs[index] = std::min(
                theirs[index], secondsInRival(rivals[index], show) - secondsInRival(rivals[index], nothing));
    }
    std::printf("%-52s %9.2f s\n", "50 MB in our window", ours);
    for (std::size_t index = 0; index < rivals.size(); ++index)
        std::printf("%-52s %9.2f s, %.1f times ours   goal %s\n", qPrintable(rivals[index].program),
                    theirs[index], theirs[index] / ours, index == 0 ? "10" : "3");
    gaps.wall.print("between two frames meanwhile", "50 ms at worst");
    gaps.processor.print("  of which the main thread worked", "-");
}

bool writeLongFile(QTemporaryFile& file) {
    if (!file.open()) return false;
    const QByteArray log = QByteArray::fromStdString(payload("plain log"));
    for (qint64 written = 0; written < longFileMegabytes * 1'000'000LL; written += log.size())
        file.write(log);
    return file.flush();
}

}  // namespace
}  // namespace orvo::bench

/// An argument names the part to measure.
int main(int argc, char** argv) {
    namespace bench = orvo::bench;
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const std::string_view only = argc > 1 ? argv[1] : "";
    const auto wanted = [only](std::string_view part) {
        return only.empty() || only == part;
    };
    QTemporaryFile file;
    if (!bench::writeLongFile(file)) {
        std::fputs("orvo_terminal_window_bench: no room for a file of 50 MB.\n", stderr);
        return EXIT_FAILURE;
    }
    if (wanted("memory")) bench::measureMemory();
    if (wanted("draining")) bench::measureDraining(file.fileName());
    if (wanted("drawing")) bench::measureDrawing();
    if (wanted("echo")) bench::measureEcho();
    if (wanted("file")) bench::measureLongFile(file.fileName());
    return EXIT_SUCCESS;
}
