#include "platform/LocalTools.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

// glibc 2.36 declares these functions without C linkage.
extern "C" {
#include <sys/pidfd.h>
}

extern char** environ;

namespace orvo {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// Between the request to terminate and the kill.
constexpr auto grace = 200ms;
// A stop request is noticed within this time; everything else wakes the wait at once.
constexpr auto pollInterval = 50ms;

class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }
    void close() {
        if (m_number >= 0) ::close(m_number);
        m_number = -1;
    }

private:
    int m_number;
};

/// The bytes of an argument or environment list, and the pointers that the system wants.
class StringVector {
public:
    void add(QByteArray text) { m_texts.push_back(std::move(text)); }
    char** pointers() {
        m_pointers.clear();
        for (QByteArray& text : m_texts)
            m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
        return m_pointers.data();
    }

private:
    std::vector<QByteArray> m_texts;
    std::vector<char*> m_pointers;
};

QByteArray helperPath(const FilePath& home) {
    return "PATH=" + home.bytes() + "/.local/bin:" + home.bytes() +
           "/.kimi-code/bin:/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin";
}

StringVector helperEnvironment(const FilePath& home) {
    StringVector environment;
    for (char** entry = environ; *entry; ++entry) {
        if (!std::string_view(*entry).starts_with("PATH=")) environment.add(*entry);
    }
    environment.add(helperPath(home));
    return environment;
}

/// Starts the helper with both outputs on `output`; 0, or the error number.
int spawn(const ToolRequest& request, int output, pid_t& pid) {
    StringVector arguments;
    arguments.add(request.executable.bytes());
    for (const QString& argument : request.arguments)
        arguments.add(argument.toUtf8());
    StringVector environment = helperEnvironment(request.home);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    if (request.directory) {
        posix_spawn_file_actions_addchdir_np(&actions, request.directory->bytes().constData());
    }

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setpgroup(&attributes, 0);
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);

    const int error = posix_spawn(&pid, request.executable.bytes().constData(), &actions, &attributes,
                                  arguments.pointers(), environment.pointers());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

ToolResult didNotRun(const QString& why) {
    return {.code = -1, .output = why, .timedOut = false};
}

int decodedStatus(const siginfo_t& info) {
    return info.si_code == CLD_EXITED ? info.si_status : 128 + info.si_status;
}

/// One running helper. It is reaped only after its group has been signalled for the last time, so that a
/// process id is never signalled after it has been given to somebody else.
class Helper {
public:
    Helper(pid_t pid, int output) : m_pid(pid), m_process(pidfd_open(pid, 0)), m_output(output) {}

    /// Reads output until the helper has ended (true), or `deadline` has passed or `stop` was requested.
    bool waitUntil(Clock::time_point deadline, const std::stop_token& stop) {
        while (!ended()) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            if (left <= 0ms || stop.stop_requested()) return false;
            std::array<pollfd, 2> events = {
                {{m_outputOpen ? m_output : -1, POLLIN, 0}, {m_process.number(), POLLIN, 0}}};
            poll(events.data(), events.size(), static_cast<int>(std::min(left, pollInterval).count()));
            if (events[0].revents != 0) readOnce();
        }
        return true;
    }

    void signalGroup(int signal) { kill(-m_pid, signal); }

    /// Kills what is left of the group, reaps the helper and returns its exit status.
    int finish() {
        signalGroup(SIGKILL);
        siginfo_t info{};
        while (waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED) != 0) {
            if (errno != EINTR) return -1;
        }
        readRest();
        return decodedStatus(info);
    }

    QString output() const { return QString::fromUtf8(m_kept); }

private:
    bool ended() const {
        siginfo_t info{};
        while (waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
            if (errno != EINTR) return true;
        }
        return info.si_pid != 0;
    }

    /// True when there was something to read.
    bool readOnce() {
        const ssize_t count = read(m_output, m_scratch.data(), m_scratch.size());
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) return false;
        if (count <= 0) {
            m_outputOpen = false;
            return false;
        }
        m_kept.append(m_scratch.data(),
                      std::min<qsizetype>(count, LocalTools::maximumOutput - m_kept.size()));
        return true;
    }

    /// What the helper wrote last is still in the pipe. A process that escaped from the group may go on
    /// writing, so no more is read than the pipe can have held.
    void readRest() {
        const int capacity = std::max(fcntl(m_output, F_GETPIPE_SZ), 0);
        const int reads = capacity / static_cast<int>(m_scratch.size()) + 1;
        for (int i = 0; i < reads && m_outputOpen && readOnce(); ++i) {
        }
    }

    pid_t m_pid;
    Descriptor m_process;
    int m_output;
    bool m_outputOpen = true;
    QByteArray m_kept;
    std::array<char, 65'536> m_scratch;
};

}  // namespace

ToolResult LocalTools::run(const ToolRequest& request, const std::stop_token& stop) {
    if (stop.stop_requested()) return {.code = -1, .output = QString(), .timedOut = true};
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return didNotRun(QCoreApplication::translate("orvo::LocalTools", "Could not prepare status check."));
    }
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    fcntl(readEnd.number(), F_SETFL, O_NONBLOCK);

    pid_t pid = -1;
    const auto deadline = Clock::now() + request.timeout;
    if (const int error = spawn(request, writeEnd.number(), pid); error != 0) {
        return didNotRun(QString::fromLocal8Bit(std::strerror(error)));
    }
    writeEnd.close();

    Helper helper(pid, readEnd.number());
    const bool inTime = helper.waitUntil(deadline, stop);
    if (!inTime) {
        helper.signalGroup(SIGTERM);
        helper.waitUntil(Clock::now() + grace, {});
    }
    const int code = helper.finish();
    return {.code = code, .output = helper.output(), .timedOut = !inTime};
}

}  // namespace orvo
