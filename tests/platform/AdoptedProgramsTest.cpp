// Real processes that leave the session they were started in.

#include "platform/linux/AdoptedPrograms.h"

#include "platform/fake/FakeClock.h"
#include "platform/linux/processTable.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <fstream>

#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

namespace orvo {
namespace {

using namespace std::chrono_literals;

class AdoptedProgramsTest : public testing::Test {
protected:
    enum class SearchPath { OfATerminal, Ours };

    /// A shell in a session of its own that runs `script` and ends at once, as a closed terminal's does.
    void runAndEnd(const QByteArray& script, SearchPath searchPath = SearchPath::OfATerminal) const {
        const pid_t shell = fork();
        if (shell == 0) {
            setsid();
            if (searchPath == SearchPath::OfATerminal) qputenv("PATH", "/opt/tools/bin:" + qgetenv("PATH"));
            if (chdir(QFile::encodeName(m_folder.path()).constData()) == 0) {
                execl("/bin/sh", "sh", "-c", script.constData(), nullptr);
            }
            _exit(127);
        }
        int status = 0;
        ASSERT_EQ(waitpid(shell, &status, 0), shell);
        ASSERT_EQ(status, 0);
    }
    static std::optional<ProcessEntry> entryOf(qint64 pid) {
        const QList<ProcessEntry> table = processTable();
        const auto found = std::ranges::find(table, pid, &ProcessEntry::pid);
        return found == table.end() ? std::nullopt : std::optional(*found);
    }
    QStringList names() const {
        QStringList found;
        for (const EscapedProgram& program : m_programs.running())
            found.append(program.name);
        found.sort();
        return found;
    }
    bool touched(const char* name) const { return QFile::exists(m_folder.filePath(QLatin1String(name))); }

    QTemporaryDir m_folder;
    FakeClock m_clock;
    AdoptedPrograms m_programs{m_clock};
};

TEST_F(AdoptedProgramsTest, whatASessionLeftBehindIsFoundAndStoppedWithWhatItStarted) {
    EXPECT_TRUE(m_programs.running().isEmpty());
    // A daemon with a child, both deaf, and one that only left the terminal.
    runAndEnd(
        "setsid sh -c 'trap \"\" TERM HUP; touch deaf; sleep 300' >/dev/null 2>&1 &\n"
        "sleep 400 >/dev/null 2>&1 & touch started");
    ASSERT_TRUE(test::waitFor([this] { return touched("deaf") && touched("started"); }));
    ASSERT_TRUE(test::waitFor(
        [this] { return names() == (QStringList{QStringLiteral("sh"), QStringLiteral("sleep")}); }));

    const QList<EscapedProgram> all = m_programs.running();
    const auto deaf = std::ranges::find(all, QStringLiteral("sh"), &EscapedProgram::name);
    const qint64 session = entryOf(deaf->pid).value().session;
    m_programs.stop({*deaf});
    EXPECT_TRUE(test::waitFor([session] {
        return std::ranges::none_of(processTable(), [session](const ProcessEntry& entry) {
            return entry.session == session && entry.isAlive();
        });
    }));
    EXPECT_EQ(names(), QStringList{QStringLiteral("sleep")}) << "nobody said yes to that one";
    m_programs.stop(m_programs.running());
    EXPECT_TRUE(test::waitFor([this] { return m_programs.running().isEmpty(); }));
}

TEST_F(AdoptedProgramsTest, servicesThatThisProgramStartedAreItsOwnMatter) {
    runAndEnd("setsid sleep 300 >/dev/null 2>&1 &", SearchPath::Ours);
    runAndEnd("setsid env -i sleep 400 >/dev/null 2>&1 &");
    const auto adopted = [] {
        QList<qint64> pids;
        for (const ProcessEntry& entry : processTable()) {
            if (entry.parent == getpid() && entry.name == "sleep") pids.append(entry.pid);
        }
        return pids;
    };
    ASSERT_TRUE(test::waitFor([&] { return adopted().size() == 2; }));
    const QList<EscapedProgram> found = m_programs.running();
    ASSERT_EQ(found.size(), 1) << "the one without any environment";
    for (const qint64 pid : adopted()) {
        kill(static_cast<pid_t>(pid), SIGKILL);
        EXPECT_EQ(waitpid(static_cast<pid_t>(pid), nullptr, 0), pid);
    }
}

TEST_F(AdoptedProgramsTest, theAdoptedAreReapedAndTheStatusesOfOthersLeftToThem) {
    runAndEnd("(sleep 0.1) >/dev/null 2>&1 &");
    const pid_t own = fork();
    if (own == 0) _exit(7);
    const auto ended = [] {
        return std::ranges::count_if(processTable(), [](const ProcessEntry& entry) {
            return entry.parent == getpid() && entry.state == 'Z';
        });
    };
    ASSERT_TRUE(test::waitFor([&] { return ended() == 2; }));
    m_clock.advance(60s);
    EXPECT_EQ(ended(), 2) << "somebody may be about to wait for them";
    int status = 0;
    ASSERT_EQ(waitpid(own, &status, 0), own);
    EXPECT_EQ(WEXITSTATUS(status), 7);
    m_clock.advance(60s);
    EXPECT_EQ(ended(), 0);
}

TEST_F(AdoptedProgramsTest, aProcessIsReadWhateverItIsCalled) {
    const pid_t named = fork();
    if (named == 0) {
        std::ofstream("/proc/self/comm") << ") Z 1 (";
        pause();
        _exit(0);
    }
    EXPECT_TRUE(test::waitFor([named] { return entryOf(named) && entryOf(named)->name == ") Z 1 ("; }));
    const ProcessEntry entry = entryOf(named).value();
    EXPECT_EQ(entry.parent, getpid());
    EXPECT_EQ(entry.session, getsid(0));
    EXPECT_TRUE(entry.isAlive());
    EXPECT_GT(entry.started, 0u);
    kill(named, SIGKILL);
    waitpid(named, nullptr, 0);
    EXPECT_FALSE(entryOf(named));
}

}  // namespace
}  // namespace orvo
