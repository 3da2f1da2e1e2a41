#include "platform/fake/FakeClock.h"

#include <algorithm>

namespace orvo {

FakeClock::FakeClock(QDateTime start) : m_now(std::move(start)) {}

void FakeClock::after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) {
    m_pending.push_back({m_now.addMSecs(delay.count()), context, std::move(work)});
}

void FakeClock::advance(std::chrono::milliseconds duration) {
    const QDateTime end = m_now.addMSecs(duration.count());
    while (true) {
        // min_element gives the first of equals, which keeps the order of asking.
        const auto next = std::ranges::min_element(m_pending, {}, &Pending::due);
        if (next == m_pending.end() || next->due > end) break;
        const Pending due = std::move(*next);
        m_pending.erase(next);
        m_now = std::max(m_now, due.due);
        if (due.context) due.work();
    }
    m_now = end;
}

void FakeClock::set(const QDateTime& now) {
    const qint64 jump = m_now.msecsTo(now);
    for (Pending& pending : m_pending)
        pending.due = pending.due.addMSecs(jump);
    m_now = now;
}

int FakeClock::waiting() const {
    return static_cast<int>(
        std::ranges::count_if(m_pending, [](const Pending& pending) { return !pending.context.isNull(); }));
}

}  // namespace orvo
