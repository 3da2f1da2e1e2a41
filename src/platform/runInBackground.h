#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QPointer>
#include <QThreadPool>

#include <memory>
#include <utility>

namespace orvo {

/// Runs `work` on a background thread and hands its result to `deliver` on the main thread.
/// The result is dropped when `context` (a main-thread object) is gone by then. `work` captures values only:
/// it must not touch a model.
template <class Work, class Deliver>
void runInBackground(QObject* context, Work work, Deliver deliver) {
    QThreadPool::globalInstance()->start(
        [guard = QPointer<QObject>(context), work = std::move(work), deliver = std::move(deliver)]() mutable {
            auto result = std::make_shared<decltype(work())>(work());
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [guard, result, deliver = std::move(deliver)]() mutable {
                    if (guard) deliver(std::move(*result));
                },
                Qt::QueuedConnection);
        });
}

}  // namespace orvo
