#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <chrono>

namespace orvo::test {

/// Runs the event loop until `condition` holds or `limit` has passed; the answer is the condition's last
/// value. The limit is generous, because the machines that run the tests are slow at times.
template <class Condition>
[[nodiscard]] bool waitFor(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const QDeadlineTimer deadline(limit);
    while (!condition()) {
        if (deadline.hasExpired()) return condition();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(1);
    }
    return true;
}

}  // namespace orvo::test
