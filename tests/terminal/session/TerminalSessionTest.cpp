#include "terminal/TerminalSession.h"

#include "DescriptorLimit.h"
#include "TestSession.h"
#include "platform/TemporaryFolder.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace orvo {
namespace {

using namespace std::chrono_literals;
using test::DescriptorLimit;
using test::TestSession;
using test::waitFor;

constexpr char searchPath[] =
    "export PATH=\"$HOME/.local/bin:$HOME/.kimi-code/bin:$HOME/.cargo/bin:/opt/homebrew/bin:/usr/local/bin:"
    "$PATH\"; ";
/// The longest argument that the system takes.
constexpr qsizetype longestArgument = 131'071;

/// Whether a process of the group lives, or is dead and still waits for this process to reap it. Zombies that
/// have been handed on to the system's first process do not count.
bool groupIsAlive(pid_t group) {
    for (const QString& process :
         QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(process));
        if (!file.open(QIODevice::ReadOnly)) continue;
        const QByteArray stat = file.readAll();
        // What follows the name: state, parent, group.
        const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (fields.value(2).toInt() != group) continue;
        if (fields.value(0) != "Z" || fields.value(1).toInt() == ::getpid()) return true;
    }
    return false;
}

struct EndCase {
    const char* command;
    const char* folder;
    int exitCode;
    const char* text;
};

TEST(TerminalSession, ItEndsOnceWithTheChildsCodeAndItsLastOutputOnTheScreen) {
    for (const EndCase& end :
         {EndCase{"print -n said; exit 0", "/", 0, "said"},
          // It lets go of its terminal before it ends, as many programs do, and must not be hung up for it.
          {"print -n said; exec sh -c 'exec <&- >&- 2>&-; sleep 0.2; exit 5'", "/", 5, "said"},
          {"exec sh -c 'exec <&- >&- 2>&-; sleep 0.2; exec >/dev/tty; printf back'", "/", 0, "back"},
          {"exit 7", "/", 7, ""},
          {"kill -TERM $$", "/", 143, ""},
          {"kill -KILL $$", "/", 137, ""},
          {"/no/such/program", "/", 127, "no such file or directory"},
          {"print no", "/no/such/folder", 126, "Orvo AI: cannot open the selected working folder."},
          {"for i in {1..6000}; do print line; done; print -n the-end", "/", 0, "line\nthe-end"}}) {
        SCOPED_TRACE(end.command);
        TestSession test(QString::fromLatin1(end.command), FilePath(end.folder));
        EXPECT_EQ(test.session->pid(), -1);
        test.session->start();
        EXPECT_TRUE(test.session->running());
        EXPECT_GT(test.session->pid(), 0);
        EXPECT_EQ(test.session->exitCode(), std::nullopt);

        ASSERT_TRUE(test.ends());
        EXPECT_FALSE(test.session->running());
        EXPECT_EQ(test.session->exitCode(), end.exitCode);
        EXPECT_NE(test.textAtEnd.find(end.text), std::string::npos) << test.textAtEnd;
        EXPECT_EQ(test.session->revision(), test.revisions);

        const int revision = test.session->revision();
        test.session->start();
        test.session->send(QStringLiteral("dropped"));
        test.session->stop();
        EXPECT_FALSE(waitFor([&] { return test.session->running() || test.finished > 1; }, 20ms));
        EXPECT_EQ(test.session->revision(), revision);
        EXPECT_EQ(test.runnings, 2);
        EXPECT_EQ(test.exitCodes, 1);
    }
}

TEST(TerminalSession, ASecondStartStartsNoSecondProcess) {
    TestSession test(QStringLiteral("print -n started; sleep 1000"));
    test.session->start();
    const int pid = test.session->pid();
    test.session->start();
    EXPECT_EQ(test.session->pid(), pid);
    EXPECT_EQ(test.runnings, 1);
    ASSERT_TRUE(test.shows("started"));
    // One small piece of output is one batch, and one batch is one revision.
    EXPECT_EQ(test.session->revision(), 1);
}

TEST(TerminalSession, TheCommandRunsInItsFolderWithTheToolFoldersAheadOnThePath) {
    const test::TemporaryFolder parent;
    // A name that is no UTF-8.
    const FilePath folder = parent.path().child("caf\xe9");
    ASSERT_EQ(::mkdir(folder.bytes().constData(), 0700), 0);
    TestSession test(
        QStringLiteral("touch here; print -r -- ${PATH//:/$'\\n'} >path; print $TERM $COLORTERM"), folder);
    test.session->start();
    ASSERT_TRUE(test.ends());

    EXPECT_EQ(::access(folder.child("here").bytes().constData(), F_OK), 0);
    EXPECT_EQ(test.text(), "xterm-256color truecolor");
    const QByteArray home = qgetenv("HOME");
    EXPECT_TRUE(test::readFile(folder.child("path"))
                    .startsWith(home + "/.local/bin\n" + home + "/.kimi-code/bin\n" + home +
                                "/.cargo/bin\n/opt/homebrew/bin\n/usr/local/bin\n"));
}

TEST(TerminalSession, ACommandThatFitsNoArgumentIsRefusedOnItsOwnScreen) {
    const auto longCommand = [](qsizetype size) {
        const QByteArray end = "; exit 5";
        return QString::fromLatin1(": " + QByteArray(size - 2 - end.size(), 'x') + end);
    };
    const qsizetype longest = longestArgument - qsizetype{sizeof searchPath - 1};
    TestSession fits(longCommand(longest));
    fits.session->start();
    ASSERT_TRUE(fits.ends());
    EXPECT_EQ(fits.session->exitCode(), 5) << fits.text();

    TestSession tooLong(longCommand(longest + 1));
    // 65,540 two-byte letters: bytes count, not characters.
    TestSession tooManyBytes(QString(65'540, QChar(0xe9)));
    TestSession cutShort(QStringLiteral("print rm; : ") + QChar(0) + QStringLiteral(" keep"));
    for (TestSession* test : {&tooLong, &tooManyBytes, &cutShort}) {
        test->session->start();
        EXPECT_EQ(test->finished, 1);
        EXPECT_EQ(test->session->exitCode(), -1);
        EXPECT_EQ(test->session->pid(), -1);
        EXPECT_EQ(test->session->revision(), 1);
        EXPECT_EQ(test->runnings, 0);
        EXPECT_TRUE(test->text().starts_with("Could not start the terminal: ")) << test->text();
    }
    EXPECT_NE(tooLong.text().find("the command is 131,072 bytes long"), std::string::npos) << tooLong.text();
}

TEST(TerminalSession, AStartThatRunsOutOfDescriptorsFailsCleanlyAndMayBeTriedAgain) {
    int failures = 0;
    int successes = 0;
    for (int left = 0; left <= 8; ++left) {
        SCOPED_TRACE(left);
        TestSession test(QStringLiteral("exit 5"));
        {
            const DescriptorLimit limit(left);
            test.session->start();
            if (test.session->running()) {
                ++successes;
                EXPECT_TRUE(test.ends());
                EXPECT_EQ(test.session->exitCode(), 5);
                continue;
            }
        }
        ++failures;
        EXPECT_EQ(test.text(), "Could not start the terminal: Too many open files");
        EXPECT_EQ(test.session->exitCode(), -1);
        EXPECT_EQ(test.finished, 1);

        test.session->start();
        EXPECT_TRUE(test.session->running());
        EXPECT_EQ(test.session->exitCode(), std::nullopt);
        ASSERT_TRUE(waitFor([&] { return test.finished == 2; }));
        EXPECT_EQ(test.session->exitCode(), 5);
    }
    EXPECT_GE(failures, 3);
    EXPECT_GE(successes, 3);
}

TEST(TerminalSession, TypedTextArrivesByteForByteButNotBeforeTheStart) {
    TestSession test(QStringLiteral("read -r line; [[ $line == 'hello café' ]] && exit 9"));
    test.session->send(QStringLiteral("too early"));
    test.session->start();
    test.session->send(QStringLiteral("hello café\r"));
    ASSERT_TRUE(test.ends());
    EXPECT_EQ(test.session->exitCode(), 9) << test.text();
}

TEST(TerminalSession, TheChildGetsTheTerminalsAnswers) {
    TestSession test(
        QStringLiteral("stty raw -echo; print -n 'ab\\e[6n'; read -t 10 -r -d R reply; [[ $reply == "
                       "$'\\e[1;3' ]] && exit 9"));
    test.session->start();
    ASSERT_TRUE(test.ends());
    EXPECT_EQ(test.session->exitCode(), 9) << test.text();
}

TEST(TerminalSession, AChildThatAsksWithoutReadingLosesAnswersButNoKey) {
    // It reads once everything that it has asked is on the screen: what comes before that is not dropped.
    const QTemporaryDir folder;
    TestSession test(QStringLiteral("stty raw -echo; yes $'\\e[6n' | head -c 4000000; print -n asked; "
                                    "while [[ ! -e %1/go ]] { sleep 0.05 }; read -r -d k answers; "
                                    "keys=$(head -c 199999 | tr -d k | wc -c); "
                                    "print -n \"answers $#answers others $keys\"")
                         .arg(folder.path()));
    test.session->start();
    ASSERT_TRUE(test.shows("asked"));
    EXPECT_TRUE(QFile(folder.filePath(QStringLiteral("go"))).open(QIODevice::WriteOnly));
    test.session->send(QString(200'000, QLatin1Char('k')));
    ASSERT_TRUE(test.ends());
    int answers = 0;
    int others = -1;
    const std::string result = test.textAtEnd.substr(test.textAtEnd.rfind("answers"));
    ASSERT_EQ(std::sscanf(result.c_str(), "answers %d others %d", &answers, &others), 2) << test.textAtEnd;
    // All 800,000 would be 5 MB; what comes is what we keep, and what the kernel's buffers take.
    EXPECT_GT(answers, 6'000);
    EXPECT_LT(answers, 300'000);
    EXPECT_EQ(others, 0);
}

TEST(TerminalSession, TheEndWaitsForOutputThatIsStillToBeFed) {
    // As much as is held unread even when every read brings the least; the answers must not be echoed into
    // it.
    TestSession test(QStringLiteral("stty -echo; print -rn -- ${(pl:56000::\\e[6n:)}; print -n the-end"));
    test.session->start();
    const pid_t pid = test.session->pid();
    // The application is busy until the child is gone: its output and its end then wait together.
    QElapsedTimer timer;
    timer.start();
    while (::kill(pid, 0) == 0 && timer.elapsed() < 5'000)
        QThread::msleep(1);
    ASSERT_TRUE(test.ends());
    EXPECT_TRUE(test.textAtEnd.ends_with("the-end")) << test.textAtEnd.size();
}

TEST(TerminalSession, TheSizeReachesScreenAndChildAlsoInAStorm) {
    TestSession test(QStringLiteral("read -r line; stty size; sleep 1000"));
    test.session->resize(2, 4);
    EXPECT_EQ(test.session->screen().rows(), 3);
    EXPECT_EQ(test.session->screen().columns(), 10);
    test.session->start();
    for (int i = 0; i < 3'000; ++i)
        test.session->resize(20 + i % 21, 80 + i % 51);
    test.session->resize(41, 101);
    test.session->send(QStringLiteral("\r"));
    EXPECT_TRUE(test.shows("41 101")) << test.text();
    EXPECT_EQ(test.session->screen().rows(), 41);
    EXPECT_EQ(test.session->screen().columns(), 101);
}

TEST(TerminalSession, StopAsksFirstAndKillsAfterASecond) {
    TestSession polite(QStringLiteral("print -n ready; sleep 1000"));
    TestSession deaf(QStringLiteral("trap '' TERM HUP; print -n ready; while true; do sleep 1000; done"));
    polite.session->start();
    deaf.session->start();
    ASSERT_TRUE(polite.shows("ready"));
    ASSERT_TRUE(deaf.shows("ready"));

    QElapsedTimer timer;
    timer.start();
    polite.session->stop();
    deaf.session->stop();
    deaf.session->stop();
    ASSERT_TRUE(polite.ends());
    EXPECT_EQ(polite.session->exitCode(), 143);
    EXPECT_TRUE(deaf.session->running() || timer.elapsed() >= 1'000);
    ASSERT_TRUE(deaf.ends());
    EXPECT_EQ(deaf.session->exitCode(), 137);
    EXPECT_GE(timer.elapsed(), 1'000);
    EXPECT_LT(timer.elapsed(), 5'000);
}

TEST(TerminalSession, StopRightAfterTheStartIsNotLost) {
    for (int round = 0; round < 20; ++round) {
        TestSession test(QStringLiteral("sleep 1000"));
        test.session->start();
        test.session->stop();
        ASSERT_TRUE(test.ends());
        EXPECT_EQ(test.session->exitCode(), 143);
    }
}

TEST(TerminalSession, StopAlsoEndsWhatADeadShellLeavesInItsGroup) {
    TestSession test(QStringLiteral("sh -c 'trap \"\" TERM HUP; echo left-behind; sleep 1000' & wait"));
    test.session->start();
    ASSERT_TRUE(test.shows("left-behind"));
    const int pid = test.session->pid();
    test.session->stop();
    ASSERT_TRUE(test.ends());
    EXPECT_EQ(test.session->exitCode(), 143);
    EXPECT_TRUE(waitFor([&] { return !groupIsAlive(pid); }));
}

TEST(TerminalSession, ACommandEndsWithItsShellEvenIfAChildKeepsTheTerminalOpen) {
    // Until it has a session of its own, the end of the shell would be its end too.
    TestSession test(
        QStringLiteral("setsid sleep 1000 & print $!; until (( $(ps -o sid= -p $!) == $! )); do sleep 0.01; "
                       "done; print -n the-end; exit 4"));
    test.session->start();
    ASSERT_TRUE(test.ends());
    EXPECT_EQ(test.session->exitCode(), 4);
    EXPECT_NE(test.textAtEnd.find("the-end"), std::string::npos);
    // It has a session of its own, so nothing of ours may end it.
    const int left = std::stoi(test.textAtEnd);
    EXPECT_EQ(::kill(left, SIGKILL), 0);
}

TEST(TerminalSession, TheEndMayReleaseTheSession) {
    auto session = std::make_shared<TerminalSession>(QStringLiteral("shell"), QString(),
                                                     QStringLiteral("exit 3"), FilePath("/"));
    int code = 0;
    session->onFinish = [&](TerminalSession& ended) {
        code = ended.exitCode().value_or(0);
        session.reset();
    };
    session->start();
    EXPECT_TRUE(waitFor([&] { return session == nullptr; }));
    EXPECT_EQ(code, 3);

    session = std::make_shared<TerminalSession>(QStringLiteral("shell"), QString(), QString(QChar(0)),
                                                FilePath("/"));
    session->onFinish = [&](TerminalSession&) {
        session.reset();
    };
    TerminalSession& failing = *session;
    failing.start();
    EXPECT_EQ(session, nullptr);
}

TEST(TerminalSession, DestroyingARunningSessionEndsItsGroupDeafOrNot) {
    pid_t polite = 0;
    pid_t deaf = 0;
    {
        TestSession first(QStringLiteral("print -n ready; sleep 1000"));
        TestSession second(
            QStringLiteral("trap '' TERM HUP; print -n ready; while true; do sleep 1000; done"));
        first.session->start();
        second.session->start();
        ASSERT_TRUE(first.shows("ready"));
        ASSERT_TRUE(second.shows("ready"));
        polite = first.session->pid();
        deaf = second.session->pid();
    }
    EXPECT_TRUE(waitFor([&] { return !groupIsAlive(polite); }));
    EXPECT_TRUE(waitFor([&] { return !groupIsAlive(deaf); }));
}

TEST(TerminalSession, QuittingLeavesNothingOfFiftySessionsOfWhichTenAreDeaf) {
    std::vector<std::shared_ptr<TerminalSession>> sessions;
    for (int i = 0; i < 50; ++i) {
        const QString command = i % 5 == 0 ? QStringLiteral(
                                                 "trap '' TERM HUP; print -n ready; "
                                                 "while true; do sleep 1000; done")
                                           : QStringLiteral("print -n ready; sleep 1000; exit 0");
        sessions.push_back(
            std::make_shared<TerminalSession>(QStringLiteral("shell"), QString(), command, FilePath("/")));
        sessions.back()->start();
    }
    std::vector<pid_t> groups;
    for (const auto& session : sessions) {
        ASSERT_TRUE(waitFor([&] { return session->screen().plainText() == "ready"; }));
        groups.push_back(session->pid());
    }
    // Two that nobody holds any more, stopped just before: one of them is deaf.
    sessions.pop_back();
    sessions.erase(sessions.begin());

    QElapsedTimer timer;
    timer.start();
    // On a busy machine, those that were killed may need longer to leave than this waits for.
    EXPECT_TRUE(stopSessionsAndWait(sessions) || stopSessionsAndWait({}, 5s));
    RecordProperty("milliseconds", static_cast<int>(timer.elapsed()));
    EXPECT_LT(timer.elapsed(), 5 * 1'500);
    for (const pid_t group : groups)
        EXPECT_FALSE(groupIsAlive(group)) << group;

    timer.restart();
    EXPECT_TRUE(stopSessionsAndWait({}));
    EXPECT_LT(timer.elapsed(), 500) << "nothing to wait for";
}

}  // namespace
}  // namespace orvo
