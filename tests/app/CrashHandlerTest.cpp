// Real faults in real processes.

#include "app/CrashHandler.h"

#include "app/CrashReports.h"
#include "platform/fake/FakeDialogs.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <ostream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvo {
namespace {

using Step = int (*)(int);

/// Calls itself through a pointer, so that the compiler lets it.
int goDeeper(int depth);
volatile Step nextStep = goDeeper;
int goDeeper(int depth) {
    volatile char room[1024] = {};
    room[static_cast<std::size_t>(depth) % sizeof room] = 1;
    const Step next = nextStep;
    return next(depth + 1) + room[0];
}

void throwSomething() {
    throw std::runtime_error("what the person wrote");
}
void throwUncaught() noexcept {
    throwSomething();
}

class CrashHandlerTest : public testing::Test {
protected:
    /// Lets a process of its own do what ends it, and gives the signal that did.
    int signalOf(void (*fault)()) const {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit noCore = {};
            setrlimit(RLIMIT_CORE, &noCore);
            const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
            if (nothing >= 0) dup2(nothing, STDERR_FILENO);
            installCrashHandler(m_reports, "0.1.0");
            fault();
            _exit(0);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    QStringList names() const { return QDir(m_reports.display()).entryList(QDir::Files, QDir::Name); }
    QString onlyReport() const {
        if (names().size() != 1) return QStringLiteral("%1 reports").arg(names().size());
        QFile file(m_reports.child(names().first().toUtf8()).display());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    QTemporaryDir m_temporary;
    FilePath m_reports = FilePath::fromString(m_temporary.filePath(QStringLiteral("data/Crash reports")));
    FakeDialogs m_dialogs;
};

struct Ending {
    const char* name;
    void (*fault)();
    int signal;
    const char* line;
};

void PrintTo(const Ending& ending, std::ostream* out) {
    *out << ending.name;
}

class CrashHandlerFaults : public CrashHandlerTest, public testing::WithParamInterface<Ending> {};

TEST_P(CrashHandlerFaults, leaveAReportAndEndTheProcessAsBefore) {
    EXPECT_EQ(signalOf(GetParam().fault), GetParam().signal);
    const QString report = onlyReport();
    EXPECT_TRUE(report.startsWith(QStringLiteral("Orvo AI 0.1.0 ended unexpectedly.\n")))
        << qPrintable(report);
    EXPECT_TRUE(report.contains(QLatin1String(GetParam().line))) << qPrintable(report);
    EXPECT_FALSE(report.contains(QStringLiteral("what the person wrote")));
    const QString stack = report.section(QStringLiteral("\nStack:\n"), 1);
    EXPECT_GE(stack.count(QRegularExpression(QStringLiteral("\\[0x[0-9a-f]+\\]\n"))), 3)
        << qPrintable(report);
    const QString file = m_reports.child(names().value(0).toUtf8()).display();
    EXPECT_EQ(QFile::permissions(file) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, CrashHandlerFaults,
    testing::Values(
        Ending{"badAddress",
               [] {
                   void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                   *static_cast<volatile char*>(page) = 1;
               },
               SIGSEGV, "\nSignal: 11 (SIGSEGV)\n"},
        Ending{"stackOverflow", [] { goDeeper(0); }, SIGSEGV, "\nThread: main\n"},
        Ending{"otherThread", [] { std::thread([] { raise(SIGBUS); }).join(); }, SIGBUS, "\nThread: other\n"},
        Ending{"abort", [] { std::abort(); }, SIGABRT, "\nSignal: 6 (SIGABRT)\n"},
        Ending{"exception", [] { throwUncaught(); }, SIGABRT, "\nException: St13runtime_error\n"}),
    [](const auto& named) { return named.param.name; });

TEST_F(CrashHandlerTest, aReportThatCannotBeWrittenChangesNothingElse) {
    QFile inTheWay(m_temporary.filePath(QStringLiteral("data")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_EQ(signalOf([] { std::abort(); }), SIGABRT);
}

TEST_F(CrashHandlerTest, theNextStartSaysItOnce) {
    const CrashReports reports(m_reports);
    reports.tell(m_dialogs);
    EXPECT_TRUE(m_dialogs.alerts().isEmpty()) << "nothing has happened";

    ASSERT_EQ(signalOf([] { std::abort(); }), SIGABRT);
    ASSERT_EQ(signalOf([] { std::abort(); }), SIGABRT);
    m_dialogs.answer(QStringLiteral("OK"));
    reports.tell(m_dialogs);
    reports.tell(m_dialogs);
    ASSERT_EQ(m_dialogs.alerts().size(), 1);
    EXPECT_EQ(m_dialogs.alerts().first().message, QStringLiteral("Orvo AI ended unexpectedly."));
    const QStringList kept = names();
    ASSERT_EQ(kept.size(), 2);
    EXPECT_FALSE(kept.join(u' ').contains(QStringLiteral(".new")));
    EXPECT_TRUE(
        m_dialogs.alerts().first().informativeText.contains(m_reports.child(kept.last().toUtf8()).display()));
}

TEST_F(CrashHandlerTest, oldReportsMakeRoom) {
    ASSERT_TRUE(QDir().mkpath(m_reports.display()));
    for (int number = 0; number < CrashReports::maximumKept + 3; ++number) {
        QFile file(m_reports.child("crash-17000000" + QByteArray::number(10 + number) + "-1.txt").display());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QFile other(m_reports.child("a note of the person's").display());
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    CrashReports(m_reports).tell(m_dialogs);
    EXPECT_EQ(names().size(), CrashReports::maximumKept + 1);
    EXPECT_EQ(names().value(1), QStringLiteral("crash-1700000013-1.txt"));

    // One that was written when the clock was years behind is told of all the same.
    QFile late(m_reports.child("crash-946684800-1.new.txt").display());
    ASSERT_TRUE(late.open(QIODevice::WriteOnly));
    m_dialogs.answer(QStringLiteral("OK"));
    CrashReports(m_reports).tell(m_dialogs);
    EXPECT_EQ(m_dialogs.alerts().size(), 1);
    EXPECT_TRUE(names().contains(QStringLiteral("crash-946684800-1.txt")));
    EXPECT_EQ(names().size(), CrashReports::maximumKept + 1);
}

}  // namespace
}  // namespace orvo
