#include "platform/Clock.h"

#include <QTimer>

namespace orvo {

QDateTime SystemClock::now() const {
    return QDateTime::currentDateTimeUtc();
}

void SystemClock::after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) {
    QTimer::singleShot(delay, context, std::move(work));
}

}  // namespace orvo
