#include "terminal/ChildProcess.h"

#include "terminal/core/launch.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace orvo {

namespace {

using namespace std::chrono_literals;

constexpr auto groupCheckInterval = 20ms;
/// How long killed processes get to leave; one that waits on a dead device may stay for ever.
constexpr auto leavingTime = 250ms;

/// Children that were told to end and are not reaped yet, also those whose session nobody holds any more: the
/// application must find them when it leaves. Never destroyed, because queues may outlive the end of `main`.
struct Terminating {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::shared_ptr<ChildProcess>> children;

    void add(std::shared_ptr<ChildProcess> child) {
        const std::lock_guard lock(mutex);
        children.push_back(std::move(child));
    }
    void remove(const std::shared_ptr<ChildProcess>& child) {
        const std::lock_guard lock(mutex);
        std::erase(children, child);
        changed.notify_all();
    }
};

Terminating& terminating() {
    static auto& children = *new Terminating;
    return children;
}

int openProcess(pid_t pid) {
    // glibc has a wrapper only from 2.36 on.
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
}

struct ProcessEntry {
    char state = 'X';
    pid_t group = -1;
    pid_t session = -1;
};

/// The entry of one process; one that is gone reads as dead.
ProcessEntry readProcessEntry(const char* id) {
    ProcessEntry entry;
    const std::string path = std::string("/proc/") + id + "/stat";
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return entry;
    char text[512] = {};
    const ssize_t size = ::read(file, text, sizeof text - 1);
    ::close(file);
    // The name in parentheses may hold anything, so the fields are counted from its end.
    const char* nameEnd = size > 0 ? std::strrchr(text, ')') : nullptr;
    int parent = 0;
    if (nameEnd != nullptr) {
        std::sscanf(nameEnd + 1, " %c %d %d %d", &entry.state, &parent, &entry.group, &entry.session);
    }
    return entry;
}

/// Whether a process of `session` that is neither dead nor a zombie belongs to one of the two groups.
bool livesInGroups(pid_t session, pid_t first, pid_t second) {
    DIR* processes = ::opendir("/proc");
    if (processes == nullptr) return false;
    bool found = false;
    while (const dirent* item = found ? nullptr : ::readdir(processes)) {
        if (item->d_name[0] < '1' || item->d_name[0] > '9') continue;
        const ProcessEntry entry = readProcessEntry(item->d_name);
        const bool alive = entry.state != 'Z' && entry.state != 'X';
        found = alive && entry.session == session && (entry.group == first || entry.group == second);
    }
    ::closedir(processes);
    return found;
}

}  // namespace

std::shared_ptr<ChildProcess> ChildProcess::watch(std::shared_ptr<SerialQueue> queue, pid_t pid,
                                                  std::function<void(int status)> onExit) {
    auto child = std::make_shared<ChildProcess>(Private(), std::move(queue), pid, std::move(onExit));
    child->m_queue->async([child] { child->startWatching(); });
    return child;
}

ChildProcess::ChildProcess(Private, std::shared_ptr<SerialQueue> queue, pid_t pid,
                           std::function<void(int status)> onExit)
    : m_queue(std::move(queue)), m_pid(pid), m_onExit(std::move(onExit)) {}

ChildProcess::~ChildProcess() = default;

/// The handler holds the child, so that it is reaped even when nobody else remembers it.
void ChildProcess::startWatching() {
    const int process = openProcess(m_pid);
    if (process < 0) {
        waitOnThread();
        return;
    }
    m_exitSource = m_queue->watch(
        process, SerialQueue::Interest::Readable, [self = shared_from_this()] { self->ended(); },
        [process] { ::close(process); });
    m_exitSource->resume();
}

/// For a system that gives no descriptor for a process, or has none left.
void ChildProcess::waitOnThread() {
    const auto wait = [self = shared_from_this()] {
        siginfo_t info;
        while (::waitid(P_PID, static_cast<id_t>(self->m_pid), &info, WEXITED | WNOWAIT) < 0 &&
               errno == EINTR) {
        }
        self->m_queue->async([self] { self->ended(); });
    };
    try {
        std::thread(wait).detach();
    } catch (const std::system_error&) {
        // Neither a descriptor nor a thread: look again later.
        m_queue->after(groupCheckInterval, [self = shared_from_this()] { self->startWatching(); });
    }
}

void ChildProcess::terminate(pid_t foregroundGroup) {
    if (m_reaped) return;
    if (foregroundGroup > 0 && foregroundGroup != m_pid) {
        m_foregroundGroup = foregroundGroup;
        ::kill(-foregroundGroup, SIGTERM);
    }
    signalGroup(SIGTERM);
    if (m_terminating) return;

    m_terminating = true;
    m_giveUp = std::chrono::steady_clock::now() + patience + leavingTime;
    terminating().add(shared_from_this());
    m_queue->after(patience, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->kill();
    });
}

void ChildProcess::kill() {
    if (m_reaped) return;
    // While the child's id is held, it is its session's id too and proves whose group this is.
    if (m_foregroundGroup > 0 && ::getsid(m_foregroundGroup) == m_pid) ::kill(-m_foregroundGroup, SIGKILL);
    signalGroup(SIGKILL);
}

/// A child that was forked just now leads no group yet, and is then signalled alone.
void ChildProcess::signalGroup(int signal) const {
    if (::kill(-m_pid, signal) != 0) ::kill(m_pid, signal);
}

void ChildProcess::ended() {
    if (m_exitSource) m_exitSource->cancel();
    reapWhenGroupIsGone();
}

bool ChildProcess::hasLivingGroup() const {
    return livesInGroups(m_pid, m_pid, m_foregroundGroup);
}

void ChildProcess::reapWhenGroupIsGone() {
    if (m_terminating && std::chrono::steady_clock::now() < m_giveUp && hasLivingGroup()) {
        m_queue->after(groupCheckInterval, [self = shared_from_this()] { self->reapWhenGroupIsGone(); });
        return;
    }
    const int status = pelk_wait(m_pid);
    m_reaped = true;
    if (m_terminating) terminating().remove(shared_from_this());
    std::exchange(m_onExit, nullptr)(status);
}

bool ChildProcess::waitForTerminated(std::chrono::milliseconds limit) {
    Terminating& all = terminating();
    std::unique_lock lock(all.mutex);
    const auto none = [&all] {
        return all.children.empty();
    };
    if (all.changed.wait_for(lock, limit, none)) return true;
    for (const auto& child : all.children)
        child->m_queue->async([child] { child->kill(); });
    return all.changed.wait_for(lock, leavingTime + groupCheckInterval, none);
}

}  // namespace orvo
