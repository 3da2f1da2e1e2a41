#pragma once

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <functional>

namespace orvo {

/// Time as the models see it. Injected, so that tests advance it instead of waiting. Main thread only.
class Clock {
public:
    virtual ~Clock() = default;

    virtual QDateTime now() const = 0;

    /// Calls `work` on the main thread once `delay` has passed; dropped when `context` is gone by then.
    virtual void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) = 0;
};

/// The system's clock, with timers of the running event loop.
class SystemClock final : public Clock {
public:
    QDateTime now() const override;
    void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) override;
};

}  // namespace orvo
