#include "terminal/core/launch.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace orvo::test {
namespace {

using namespace std::chrono_literals;

/// A child on a pseudo-terminal, killed and reaped when the test leaves it running.
class Child {
public:
    explicit Child(const std::string& command, const char* directory = "/")
        : m_pid(pelk_spawn(command.c_str(), directory, 24, 80, &m_master)) {}
    ~Child() {
        if (m_pid > 0 && !m_reaped) {
            kill(-m_pid, SIGKILL);
            pelk_wait(m_pid);
        }
        if (m_master >= 0) close(m_master);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int pid() const { return m_pid; }
    int master() const { return m_master; }
    int wait() {
        m_reaped = true;
        return pelk_wait(m_pid);
    }

    /// What the child printed until `wanted` stood in it, or until it closed the terminal.
    std::string readUntil(std::string_view wanted) {
        const auto deadline = std::chrono::steady_clock::now() + 20s;
        while (m_output.find(wanted) == std::string::npos && std::chrono::steady_clock::now() < deadline) {
            pollfd request = {m_master, POLLIN, 0};
            poll(&request, 1, 100);
            std::array<char, 4096> buffer;
            const ssize_t count = read(m_master, buffer.data(), buffer.size());
            if (count > 0) m_output.append(buffer.data(), static_cast<std::size_t>(count));
            if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) break;
        }
        return m_output;
    }
    /// Everything it printed.
    std::string readAll() { return readUntil("\xFF"); }

private:
    std::int32_t m_master = -1;
    std::int32_t m_pid;
    bool m_reaped = false;
    std::string m_output;
};

class Launch : public testing::Test {
protected:
    Launch() {
        // A login shell reads the person's own files; here it finds none.
        setenv("HOME", m_home.c_str(), 1);
        setenv("ZDOTDIR", m_home.c_str(), 1);
    }

    const std::string m_home = std::filesystem::temp_directory_path() / "orvo-launch-test";
};

TEST_F(Launch, WaitTellsHowTheChildEnded) {
    const struct {
        const char* command;
        int status;
    } cases[] = {
        {"exit 0", 0}, {"exit 7", 7}, {"exit 255", 255}, {"kill -TERM $$", 143}, {"kill -KILL $$", 137},
    };
    for (const auto& [command, status] : cases) {
        Child child(command);
        ASSERT_GT(child.pid(), 0) << command;
        EXPECT_EQ(child.wait(), status) << command;
    }
    EXPECT_EQ(pelk_wait(getpid()), -1) << "what is no child cannot be waited for";
}

TEST_F(Launch, AMissingFolderIsToldOnTheTerminal) {
    Child child("echo unreachable", "/nowhere/at/all");
    EXPECT_EQ(child.readAll(), "Orvo AI: cannot open the selected working folder.\r\r\n");
    EXPECT_EQ(child.wait(), 126);
}

TEST_F(Launch, AShellThatCannotBeExecutedGives127) {
    const std::string longest = ": " + std::string(131'069, 'x');
    EXPECT_TRUE(fitsOneArgument(longest));
    EXPECT_EQ(Child(longest).wait(), 0);
    EXPECT_FALSE(fitsOneArgument(longest + "x"));
    EXPECT_EQ(Child(longest + "x").wait(), 127);
}

TEST_F(Launch, TheMasterIsNonBlockingAndStaysOutOfOtherChildren) {
    Child child("read answer; exit 3");
    EXPECT_NE(fcntl(child.master(), F_GETFD) & FD_CLOEXEC, 0);
    char byte = 0;
    EXPECT_EQ(read(child.master(), &byte, 1), -1);
    EXPECT_EQ(errno, EAGAIN);
    ASSERT_EQ(write(child.master(), "\n", 1), 1);
    EXPECT_EQ(child.wait(), 3);
}

TEST_F(Launch, TheChildLeadsASessionOnItsTerminal) {
    Child child("echo \"<$(pwd)>\"; tty; : </dev/tty && read answer", "/usr");
    EXPECT_NE(child.readUntil("/dev/pts/").find("</usr>"), std::string::npos);
    EXPECT_EQ(tcgetsid(child.master()), child.pid());
    EXPECT_EQ(getpgid(child.pid()), child.pid());
}

TEST_F(Launch, TheWindowSizeReachesTheChild) {
    Child child("stty size; read answer; stty size");
    child.readUntil("24 80");
    EXPECT_EQ(pelk_resize(child.master(), 50, 200), 0);
    ASSERT_EQ(write(child.master(), "\n", 1), 1);
    EXPECT_NE(child.readUntil("50 200").find("50 200"), std::string::npos);
    EXPECT_EQ(pelk_resize(-1, 50, 200), -1);
}

TEST_F(Launch, TheEnvironmentNamesTheTerminalOnceAndKeepsTheRest) {
    setenv("TERM", "dumb", 1);
    setenv("COLORTERM", "no", 1);
    setenv("ORVO_LAUNCH_TEST", "kept \xC3\xA9", 1);
    Child child("env | grep -aE 'TERM=|ORVO_LAUNCH' | sort");
    EXPECT_EQ(child.readAll(),
              "COLORTERM=truecolor\r\nORVO_LAUNCH_TEST=kept \xC3\xA9\r\nTERM=xterm-256color\r\n");
    EXPECT_STREQ(getenv("TERM"), "dumb") << "this process keeps its own environment";
    unsetenv("ORVO_LAUNCH_TEST");
}

TEST_F(Launch, TheChildHasTheThreeStandardDescriptorsOnly) {
    const int leaked = open("/dev/null", O_RDONLY);
    const int leakedHigh = fcntl(leaked, F_DUPFD, 200);
    Child other("read answer");
    Child child("exec ls -x -w 80 /proc/self/fd");
    EXPECT_EQ(child.readAll(), "0  1  2  3\r\n") << "3 is the folder that ls reads";
    close(leaked);
    close(leakedHigh);
}

TEST_F(Launch, TheChildHasDefaultSignalsAndAnEmptyMask) {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGINT, SIG_IGN);
    // Some starters of programs leave the two signals ignored that the C library keeps for itself.
    const std::array<unsigned long, 4> ignored = {1};  // SIG_IGN, as the kernel lays it out
    std::array<unsigned long, 4> libraryAction = {};
    syscall(SYS_rt_sigaction, 32, ignored.data(), libraryAction.data(), 8);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    Child child("exec grep -E '^Sig(Blk|Ign)' /proc/self/status");
    EXPECT_EQ(child.readAll(), "SigBlk:\t0000000000000000\r\nSigIgn:\t0000000000000000\r\n");
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, &before, &after);
    EXPECT_EQ(sigismember(&after, SIGUSR1), 1) << "this thread keeps its own mask";
    EXPECT_EQ(sigismember(&after, SIGUSR2), 0);
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
    syscall(SYS_rt_sigaction, 32, libraryAction.data(), nullptr, 8);
}

TEST_F(Launch, WithoutFreeDescriptorsItFailsWithTheReason) {
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);
    std::int32_t master = 5;
    const std::int32_t pid = pelk_spawn("exit 0", "/", 24, 80, &master);
    const int reason = errno;
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(pid, -1);
    EXPECT_EQ(reason, EMFILE);
    EXPECT_EQ(master, -1);
}

TEST_F(Launch, ManyChildrenLeaveNoDescriptorBehind) {
    const auto openDescriptors = [] {
        const std::filesystem::directory_iterator folder("/proc/self/fd");
        return std::distance(begin(folder), end(folder));
    };
    const auto before = openDescriptors();
    for (int count = 0; count < 50; ++count) {
        EXPECT_EQ(Child("exit 0").wait(), 0);
    }
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace orvo::test
