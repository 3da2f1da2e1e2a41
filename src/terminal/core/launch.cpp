#include "terminal/core/launch.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <utility>
#include <vector>

namespace orvo {
namespace {

/// MAX_ARG_STRLEN of the kernel is 32 pages of 4 KiB, the terminating NUL included.
constexpr std::size_t longestArgument = 131'071;

constexpr std::string_view folderMessage = "Orvo AI: cannot open the selected working folder.\r\n";

class Descriptor {
public:
    explicit Descriptor(int value) : m_value(value) {}
    ~Descriptor() {
        if (m_value >= 0) close(m_value);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool valid() const { return m_value >= 0; }
    int value() const { return m_value; }
    int release() { return std::exchange(m_value, -1); }

private:
    int m_value;
};

winsize windowSize(std::uint16_t rows, std::uint16_t columns) {
    winsize size = {};
    size.ws_row = rows;
    size.ws_col = columns;
    return size;
}

/// The process's environment with the terminal's two variables replaced. Made before the fork, because
/// setenv allocates.
class ChildEnvironment {
public:
    ChildEnvironment() {
        for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
            const std::string_view text = *entry;
            if (!text.starts_with("TERM=") && !text.starts_with("COLORTERM=")) m_entries.push_back(*entry);
        }
        m_entries.push_back(m_term.data());
        m_entries.push_back(m_colorTerm.data());
        m_entries.push_back(nullptr);
    }
    char* const* data() { return m_entries.data(); }

private:
    std::string m_term = "TERM=xterm-256color";
    std::string m_colorTerm = "COLORTERM=truecolor";
    std::vector<char*> m_entries;
};

/// Keeps signal handlers of this process from running in the child before it has reset them.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before;
};

struct ChildPlan {
    const char* directory;
    std::array<char*, 5> arguments;
    char* const* environment;
    int slave;
};

/// Asks the kernel itself: the C library keeps signals 32 and 33 for its threads and refuses to change them,
/// yet one that was ignored where this process was started would be ignored in the child, too.
void restoreSignals() {
    // All zero is SIG_DFL without flags and mask, whatever the order of the kernel's fields.
    constexpr std::array<unsigned long, 8> defaultAction = {};
    constexpr std::size_t kernelMaskSize = 8;
    for (int signal = 1; signal < NSIG; ++signal) {
        syscall(SYS_rt_sigaction, signal, defaultAction.data(), nullptr, kernelMaskSize);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void closeAllBeyondStandard() {
    if (close_range(3, ~0U, 0) == 0) return;
    const long limit = sysconf(_SC_OPEN_MAX);
    for (int descriptor = 3; descriptor < limit; ++descriptor) {
        close(descriptor);
    }
}

/// Runs in the child between fork and exec: async-signal-safe calls only.
[[noreturn]] void becomeShell(const ChildPlan& plan) {
    setsid();
    ioctl(plan.slave, TIOCSCTTY, 0);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (plan.slave == standard) {
            fcntl(standard, F_SETFD, 0);
        } else {
            dup2(plan.slave, standard);
        }
    }
    closeAllBeyondStandard();
    restoreSignals();
    if (chdir(plan.directory) != 0) {
        [[maybe_unused]] const ssize_t written =
            write(STDERR_FILENO, folderMessage.data(), folderMessage.size());
        _exit(126);
    }
    execve("/bin/zsh", plan.arguments.data(), plan.environment);
    _exit(127);
}

/// The slave of a fresh pseudo-terminal, opened through its master so that no path is looked up.
int openSlave(int master) {
    if (grantpt(master) != 0 || unlockpt(master) != 0) return -1;
    return ioctl(master, TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC);
}

}  // namespace

bool fitsOneArgument(std::string_view text) {
    return text.size() <= longestArgument;
}

}  // namespace orvo

std::int32_t pelk_spawn(const char* command, const char* directory, std::uint16_t rows, std::uint16_t columns,
                        std::int32_t* master) {
    using namespace orvo;
    *master = -1;
    Descriptor masterSide(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    if (!masterSide.valid()) return -1;
    const Descriptor slave(openSlave(masterSide.value()));
    if (!slave.valid() || pelk_resize(masterSide.value(), rows, columns) != 0) return -1;

    std::string shell = "zsh";
    std::string login = "-l";
    std::string runCommand = "-c";
    std::string text = command;
    ChildEnvironment environment;
    const ChildPlan plan = {directory,
                            {shell.data(), login.data(), runCommand.data(), text.data(), nullptr},
                            environment.data(),
                            slave.value()};

    pid_t child = -1;
    {
        const SignalsBlocked blocked;
        child = fork();
        if (child == 0) becomeShell(plan);
    }
    if (child > 0) *master = masterSide.release();
    return child;
}

int pelk_resize(std::int32_t master, std::uint16_t rows, std::uint16_t columns) {
    const winsize size = orvo::windowSize(rows, columns);
    return ioctl(master, TIOCSWINSZ, &size);
}

int pelk_wait(std::int32_t processID) {
    int status = 0;
    while (waitpid(processID, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    const int signal = status & 0x7f;
    if (signal == 0x7f) return -1;
    return signal != 0 ? 0x80 | signal : (status >> 8) & 0xff;
}
