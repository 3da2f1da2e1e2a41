#pragma once

#include "platform/Clock.h"

#include <QPointer>

#include <vector>

namespace orvo {

/// A clock that stands still until it is advanced.
class FakeClock final : public Clock {
public:
    explicit FakeClock(QDateTime start = QDateTime(QDate(2026, 1, 1), QTime(9, 0), Qt::UTC));

    QDateTime now() const override { return m_now; }
    void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) override;

    /// Moves on by `duration` and runs what falls due, earliest first and at its own time; work of one moment
    /// runs in the order it was asked for. What that work asks for is run too when it falls due by the end.
    void advance(std::chrono::milliseconds duration);
    /// Sets the date, as a person or a time server does: what waits is due after as long as before.
    void set(const QDateTime& now);
    /// Work that waits and whose context still lives.
    int waiting() const;

private:
    struct Pending {
        QDateTime due;
        QPointer<QObject> context;
        std::function<void()> work;
    };

    QDateTime m_now;
    std::vector<Pending> m_pending;
};

}  // namespace orvo
