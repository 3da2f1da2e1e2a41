#include "platform/LocalTools.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

namespace orvo {
namespace {

using namespace std::chrono_literals;

ToolRequest request(const QStringList& arguments, std::chrono::milliseconds timeout = 20s) {
    return {.executable = FilePath("/bin/sh"),
            .arguments = arguments,
            .directory = std::nullopt,
            .home = FilePath("/home/somebody"),
            .timeout = timeout};
}

ToolRequest shell(const char* script, std::chrono::milliseconds timeout = 20s) {
    return request({QStringLiteral("-c"), QString::fromUtf8(script)}, timeout);
}

ToolRequest fake(const char* name, std::chrono::milliseconds timeout = 20s) {
    return request({QStringLiteral(ORVO_TEST_DATA "/bin/") + QString::fromUtf8(name)}, timeout);
}

/// A child of init or of this process that has ended counts as gone.
bool processIsGone(pid_t pid) {
    QFile status(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) return true;
    const QByteArray line = status.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) == "Z";
}

bool becomesGone(pid_t pid) {
    for (int i = 0; i < 2000 && !processIsGone(pid); ++i)
        std::this_thread::sleep_for(5ms);
    return processIsGone(pid);
}

TEST(LocalTools, GivesStatusAndBothOutputsInOrder) {
    const ToolResult result = LocalTools::run(shell("echo one; echo two >&2; echo three; exit 7"));
    EXPECT_EQ(result,
              (ToolResult{.code = 7, .output = QStringLiteral("one\ntwo\nthree\n"), .timedOut = false}));
}

TEST(LocalTools, TheHelperSeesOurFoldersFirstAndAnEmptyInput) {
    const QTemporaryDir folder;
    ToolRequest asked = shell(
        "echo \"$PATH\"; pwd -P; cat; ls /proc/self/fd | wc -l; ps -o pgid= -p $$ | tr -d ' '; echo $$");
    asked.directory = FilePath::fromString(QDir(folder.path()).canonicalPath());
    const QStringList lines = LocalTools::run(asked).output.split(u'\n');
    ASSERT_GE(lines.size(), 5);
    EXPECT_EQ(lines[0],
              QStringLiteral("/home/somebody/.local/bin:/home/somebody/.kimi-code/bin:/opt/homebrew/bin:"
                             "/usr/local/bin:/usr/bin:/bin"));
    EXPECT_EQ(lines[1], QDir(folder.path()).canonicalPath());
    EXPECT_EQ(lines[2], QStringLiteral("4"));  // the three standard descriptors, and the listing's own
    EXPECT_EQ(lines[3], lines[4]);             // a process group of its own
}

TEST(LocalTools, AHelperThatCannotStartSaysWhy) {
    ToolRequest missing = shell("exit 0");
    missing.executable = FilePath("/no/such/tool");
    ToolRequest nowhere = shell("exit 0");
    nowhere.directory = FilePath("/no/such/folder");
    for (const ToolRequest& asked : {missing, nowhere}) {
        EXPECT_EQ(LocalTools::run(asked),
                  (ToolResult{
                      .code = -1, .output = QStringLiteral("No such file or directory"), .timedOut = false}));
    }
}

TEST(LocalTools, InvalidUTF8IsReplaced) {
    EXPECT_EQ(LocalTools::run(shell("printf 'a\\377b'")).output, QStringLiteral("a\uFFFDb"));
}

TEST(LocalTools, ASignalledHelperHasItsSignalAsStatus) {
    EXPECT_EQ(LocalTools::run(shell("kill -KILL $$")).code, 137);
}

TEST(LocalTools, AFloodIsReadToItsLimitAndDropped) {
    ToolRequest asked = fake("spam");
    asked.arguments.append(QStringLiteral("50000000"));
    const ToolResult result = LocalTools::run(asked);
    EXPECT_EQ(result.code, 0);
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.output.size(), LocalTools::maximumOutput);
    EXPECT_TRUE(result.output.startsWith(QStringLiteral("0123456789ab")));
}

TEST(LocalTools, AnEndlessFloodEndsWithItsTime) {
    QElapsedTimer timer;
    timer.start();
    const ToolResult result = LocalTools::run(shell("yes", 300ms));
    EXPECT_LT(timer.elapsed(), 5 * (300 + 500));
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.code, 143);
    EXPECT_LE(result.output.size(), LocalTools::maximumOutput);
}

TEST(LocalTools, AHelperDeafToTerminationIsKilledWithItsGroup) {
    QElapsedTimer timer;
    timer.start();
    const ToolResult result = LocalTools::run(
        shell("trap '' TERM; (trap '' TERM; sleep 1000) & echo $!; while :; do sleep 0.1; done", 300ms));
    EXPECT_LT(timer.elapsed(), 5 * (300 + 500));
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.code, 137);
    const pid_t grandchild = result.output.trimmed().toInt();
    ASSERT_GT(grandchild, 1);
    EXPECT_TRUE(becomesGone(grandchild));
}

TEST(LocalTools, AGrandchildThatHoldsTheOutputNeitherDelaysNorSurvives) {
    QElapsedTimer timer;
    timer.start();
    const ToolResult result = LocalTools::run(fake("leave-child"));
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(result.code, 0);
    const pid_t grandchild = result.output.trimmed().toInt();
    ASSERT_GT(grandchild, 1);
    EXPECT_TRUE(becomesGone(grandchild));
}

TEST(LocalTools, AClosedOutputDoesNotEndTheWait) {
    const ToolResult result = LocalTools::run(shell("exec >&- 2>&-; sleep 0.2; exit 5"));
    EXPECT_EQ(result.code, 5);
}

TEST(LocalTools, AStopRequestEndsTheHelper) {
    std::stop_source stop;
    std::jthread requester([&stop] {
        std::this_thread::sleep_for(100ms);
        stop.request_stop();
    });
    QElapsedTimer timer;
    timer.start();
    const ToolResult result = LocalTools::run(shell("sleep 1000", 60s), stop.get_token());
    EXPECT_LT(timer.elapsed(), 10'000);
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.code, 143);
    EXPECT_EQ(LocalTools::run(shell("exit 0"), stop.get_token()).code, -1);
}

TEST(LocalTools, ManyRunsLeaveNoDescriptorAndNoFile) {
    const auto descriptors = [] {
        return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
    };
    const QTemporaryDir temporary;
    qputenv("TMPDIR", temporary.path().toUtf8());
    const auto before = descriptors();
    for (int i = 0; i < 20; ++i) {
        ToolRequest asked = shell(i % 2 ? "echo x" : "sleep 1000", 20s);
        if (i % 2 == 0) asked.timeout = 5ms;
        if (i % 5 == 0) asked.executable = FilePath("/no/such/tool");
        (void)LocalTools::run(asked);
    }
    EXPECT_EQ(descriptors(), before);
    EXPECT_EQ(QDir(temporary.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    qunsetenv("TMPDIR");
}

}  // namespace
}  // namespace orvo
