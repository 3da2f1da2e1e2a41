#include "platform/SerialQueue.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <map>
#include <mutex>
#include <semaphore>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace orvo {

/// What the thread works on. Shared by the queue and its thread, because the queue may be released by the
/// thread's own work.
class SerialQueue::Loop {
public:
    using Instant = std::chrono::steady_clock::time_point;

    explicit Loop(int wakeDescriptor) : m_wake(wakeDescriptor) {}
    ~Loop() { ::close(m_wake); }

    void post(Work work);
    void leave();
    void run();
    bool isCurrent() const { return m_thread == std::this_thread::get_id(); }

    // On the queue's thread.
    void addTimer(Instant due, Work work) { m_timers.emplace(due, std::move(work)); }
    void addSource(std::shared_ptr<Source> source) { m_sources.push_back(std::move(source)); }

private:
    bool runPosted();
    void runDueTimers();
    void waitAndDispatch();
    int timeout();
    void wakeUp() const;

    const int m_wake;
    std::atomic<std::thread::id> m_thread;

    std::mutex m_mutex;
    std::vector<Work> m_posted;
    bool m_leaving = false;

    std::multimap<Instant, Work> m_timers;
    std::vector<std::shared_ptr<Source>> m_sources;
};

void SerialQueue::Loop::wakeUp() const {
    const std::uint64_t one = 1;
    // The only failure is a full counter, and then the thread is awake anyway.
    [[maybe_unused]] const ssize_t written = ::write(m_wake, &one, sizeof one);
}

void SerialQueue::Loop::post(Work work) {
    bool first = false;
    {
        const std::lock_guard lock(m_mutex);
        first = m_posted.empty();
        m_posted.push_back(std::move(work));
    }
    if (first) wakeUp();
}

void SerialQueue::Loop::leave() {
    {
        const std::lock_guard lock(m_mutex);
        m_leaving = true;
    }
    wakeUp();
}

void SerialQueue::Loop::run() {
    m_thread = std::this_thread::get_id();
    while (runPosted()) {
        runDueTimers();
        waitAndDispatch();
    }
    m_timers.clear();
    m_sources.clear();
}

/// False when there is nothing left to do and nobody who could post.
bool SerialQueue::Loop::runPosted() {
    std::vector<Work> batch;
    {
        const std::lock_guard lock(m_mutex);
        if (m_posted.empty() && m_leaving) return false;
        batch.swap(m_posted);
    }
    for (Work& work : batch) {
        work();
        // What a piece of work held is released before the next one runs.
        work = nullptr;
    }
    return true;
}

void SerialQueue::Loop::runDueTimers() {
    while (!m_timers.empty() && m_timers.begin()->first <= std::chrono::steady_clock::now()) {
        const auto due = m_timers.extract(m_timers.begin());
        due.mapped()();
    }
}

/// Milliseconds until the next timer, rounded up; -1 without one.
int SerialQueue::Loop::timeout() {
    using namespace std::chrono;
    {
        // The wake-up for it may have been taken together with that for the last work.
        const std::lock_guard lock(m_mutex);
        if (m_leaving) return 0;
    }
    if (m_timers.empty()) return -1;
    const auto left = ceil<milliseconds>(m_timers.begin()->first - steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

void SerialQueue::Loop::waitAndDispatch() {
    std::erase_if(m_sources, [](const auto& source) {
        // The handler may hold the source's owner, which holds the source.
        if (source->m_cancelled) source->m_onReady = nullptr;
        return source->m_cancelled;
    });

    // A suspended source stays out of the set: a hang-up is reported whatever events are asked for.
    std::vector<pollfd> set{{m_wake, POLLIN, 0}};
    std::vector<std::shared_ptr<Source>> watched;
    for (const auto& source : m_sources) {
        if (!source->m_active) continue;
        set.push_back({source->m_descriptor, source->m_events, 0});
        watched.push_back(source);
    }

    if (::poll(set.data(), set.size(), timeout()) < 1) return;
    if (set.front().revents != 0) {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t size = ::read(m_wake, &count, sizeof count);
    }
    for (std::size_t i = 0; i < watched.size(); ++i) {
        Source& source = *watched[i];
        const bool ready = set[i + 1].revents != 0;
        if (ready && source.m_active && !source.m_cancelled) source.m_onReady();
    }
}

void SerialQueue::Source::cancel() {
    if (m_cancelled) return;
    m_cancelled = true;
    m_loop->post(std::exchange(m_onCancelled, nullptr));
}

SerialQueue::SerialQueue(std::shared_ptr<Loop> loop, std::thread thread)
    : m_loop(std::move(loop)), m_thread(std::move(thread)) {}

std::shared_ptr<SerialQueue> SerialQueue::create(const char* label) {
    const int wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wake < 0) return nullptr;
    auto loop = std::make_shared<Loop>(wake);

    // The thread starts with every signal blocked, so that they reach the application's own threads.
    sigset_t all;
    sigset_t previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);
    std::thread thread;
    int error = 0;
    try {
        thread = std::thread([loop, name = std::string(label).substr(0, 15)] {
            pthread_setname_np(pthread_self(), name.c_str());
            loop->run();
        });
    } catch (const std::system_error& refused) {
        error = refused.code().value();
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);

    if (!thread.joinable()) {
        errno = error;
        return nullptr;
    }
    return std::shared_ptr<SerialQueue>(new SerialQueue(std::move(loop), std::move(thread)));
}

SerialQueue::~SerialQueue() {
    m_loop->leave();
    if (isCurrent()) {
        m_thread.detach();
    } else {
        m_thread.join();
    }
}

void SerialQueue::async(Work work) {
    m_loop->post(std::move(work));
}

void SerialQueue::sync(const Work& work) {
    if (isCurrent()) {
        work();
        return;
    }
    std::binary_semaphore done(0);
    m_loop->post([&work, &done] {
        work();
        done.release();
    });
    done.acquire();
}

void SerialQueue::after(std::chrono::milliseconds delay, Work work) {
    const auto due = std::chrono::steady_clock::now() + delay;
    m_loop->post([loop = m_loop.get(), due, work = std::move(work)]() mutable {
        loop->addTimer(due, std::move(work));
    });
}

bool SerialQueue::isCurrent() const {
    return m_loop->isCurrent();
}

std::shared_ptr<SerialQueue::Source> SerialQueue::watch(int descriptor, Interest interest, Work onReady,
                                                        Work onCancelled) {
    auto source = std::make_shared<Source>();
    source->m_loop = m_loop.get();
    source->m_descriptor = descriptor;
    source->m_events = interest == Interest::Readable ? POLLIN : POLLOUT;
    source->m_onReady = std::move(onReady);
    source->m_onCancelled = std::move(onCancelled);
    m_loop->addSource(source);
    return source;
}

}  // namespace orvo
