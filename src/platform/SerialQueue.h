#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace orvo {

/// A thread that runs pieces of work one at a time, in the order they were posted, and watches descriptors
/// and timers in between. State that is touched only by such work needs no lock.
///
/// Releasing the last reference runs what has been posted, drops timers and sources without a further call,
/// and ends the thread. The reference may be released by a piece of work itself.
class SerialQueue {
public:
    using Work = std::function<void()>;
    enum class Interest { Readable, Writable };
    class Source;

    /// `label` names the thread (at most 15 bytes are kept). Null when the system has no thread or descriptor
    /// left; errno tells which.
    static std::shared_ptr<SerialQueue> create(const char* label);
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Posts `work`. Any thread.
    void async(Work work);
    /// Runs `work` on the queue, after all that was posted before, and returns when it is done. Any thread;
    /// on the queue itself it runs at once.
    void sync(const Work& work);
    /// Posts `work` once `delay` has passed. Any thread.
    void after(std::chrono::milliseconds delay, Work work);
    bool isCurrent() const;

    /// Watches a descriptor, which must stay open until `onCancelled` runs. `onReady` is called as long as
    /// the descriptor is ready (hung up and failed count as ready) and the source is active. On the queue
    /// only.
    std::shared_ptr<Source> watch(int descriptor, Interest interest, Work onReady, Work onCancelled);

private:
    class Loop;

    SerialQueue(std::shared_ptr<Loop> loop, std::thread thread);

    std::shared_ptr<Loop> m_loop;
    std::thread m_thread;
};

/// A watched descriptor; made suspended. On the queue only.
class SerialQueue::Source {
public:
    void resume() { m_active = true; }
    void suspend() { m_active = false; }
    bool active() const { return m_active; }
    /// Ends the watching: no `onReady` from here on, and `onCancelled` once, as a later piece of work, when
    /// nothing refers to the descriptor any more. Further calls do nothing.
    void cancel();

private:
    friend class Loop;
    friend class SerialQueue;

    Loop* m_loop = nullptr;
    int m_descriptor = -1;
    short m_events = 0;
    bool m_active = false;
    bool m_cancelled = false;
    Work m_onReady;
    Work m_onCancelled;
};

}  // namespace orvo
