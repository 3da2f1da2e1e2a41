#pragma once

#include <QObject>

#include <chrono>

namespace orvo {

/// Says on standard error when one turn of the event loop kept the main thread longer than `limit`, counted
/// in the thread's own processor time, so that a busy machine alone is no stall. Part of development builds
/// only, in which every test that wants a silent standard error watches for stalls so.
class StallWatch final : public QObject {
    Q_OBJECT

public:
    /// From here on; what the program has done before, its start, does not count.
    explicit StallWatch(std::chrono::milliseconds limit, QObject* parent = nullptr);

private:
    void turn();

    std::chrono::nanoseconds m_limit;
    std::chrono::nanoseconds m_began;
};

}  // namespace orvo
