#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace orvo::ctl {

/// Turns SIGINT, SIGTERM and SIGHUP into a signal of the event loop for as long as it lives, so that what was
/// started can be stopped in order.
class Interrupts : public QObject {
    Q_OBJECT

public:
    Interrupts();
    ~Interrupts() override;

Q_SIGNALS:
    void interrupted();

private:
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

}  // namespace orvo::ctl
