#include "app/StallWatch.h"

#include <QAbstractEventDispatcher>
#include <QLoggingCategory>

#include <ctime>

namespace orvo {
namespace {

using namespace std::chrono_literals;

Q_LOGGING_CATEGORY(stalls, "orvo.stalls")

std::chrono::nanoseconds timeOfThisThread() {
    timespec spent{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &spent);
    return std::chrono::seconds(spent.tv_sec) + std::chrono::nanoseconds(spent.tv_nsec);
}

}  // namespace

StallWatch::StallWatch(std::chrono::milliseconds limit, QObject* parent)
    : QObject(parent), m_limit(limit), m_began(timeOfThisThread()) {
    // Which of the two comes once a turn depends on the dispatcher. Waiting in between costs no processor
    // time.
    const auto* const dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, &StallWatch::turn);
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &StallWatch::turn);
}

void StallWatch::turn() {
    const std::chrono::nanoseconds now = timeOfThisThread();
    const std::chrono::nanoseconds spent = now - m_began;
    if (spent > m_limit)
        qCWarning(stalls, "main thread busy for %lld ms", static_cast<long long>(spent / 1ms));
    // Telling of it is not part of the next turn.
    m_began = timeOfThisThread();
}

}  // namespace orvo
