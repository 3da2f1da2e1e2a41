#pragma once

#include "platform/SerialQueue.h"

#include <sys/types.h>
#include <chrono>
#include <functional>
#include <memory>

namespace orvo {

/// The process that leads a terminal's session and process group, from its launch until it has been reaped.
/// It reaps by itself, whoever has let go of it meanwhile, and keeps the child a zombie for as long as its id
/// may be signalled: an id that was reaped may belong to somebody else.
class ChildProcess : public std::enable_shared_from_this<ChildProcess> {
    struct Private {};

public:
    /// The time between the request to end and the kill of what is left of the group.
    static constexpr std::chrono::milliseconds patience{1'000};

    /// Watches a child of this process on `queue`; `onExit` gets its status there, once it has been reaped.
    static std::shared_ptr<ChildProcess> watch(std::shared_ptr<SerialQueue> queue, pid_t pid,
                                               std::function<void(int status)> onExit);
    ChildProcess(Private, std::shared_ptr<SerialQueue> queue, pid_t pid,
                 std::function<void(int status)> onExit);
    ~ChildProcess();

    pid_t pid() const { return m_pid; }

    /// Sends the terminate signal to the child's group, and to the terminal's foreground group when that is
    /// another one (-1 when unknown). What is left of them after `patience` is killed, and only then does a
    /// child whose group outlives it count as ended. Nothing happens once the child was reaped. Queue only.
    void terminate(pid_t foregroundGroup);

    /// Waits until all children that were told to end are reaped and their groups gone; kills what is left
    /// after `limit` and then waits a moment longer. False when something could not be killed even so.
    /// Any thread that serves no queue.
    static bool waitForTerminated(std::chrono::milliseconds limit);

private:
    using Instant = std::chrono::steady_clock::time_point;

    void startWatching();
    void waitOnThread();
    void ended();
    void kill();
    void signalGroup(int signal) const;
    void reapWhenGroupIsGone();
    bool hasLivingGroup() const;

    const std::shared_ptr<SerialQueue> m_queue;
    const pid_t m_pid;

    // On the queue only.
    std::function<void(int status)> m_onExit;
    std::shared_ptr<SerialQueue::Source> m_exitSource;
    pid_t m_foregroundGroup = -1;
    bool m_terminating = false;
    bool m_reaped = false;
    /// When waiting for the group ends even if something in it cannot be killed.
    Instant m_giveUp;
};

}  // namespace orvo
