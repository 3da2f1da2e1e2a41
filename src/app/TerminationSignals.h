#pragma once

#include <QObject>

namespace orvo {

/// Turns the system's requests to end (SIGTERM, SIGINT, SIGHUP) into a Qt signal on the main thread. One
/// instance a process; while it lives these signals do not end the process by themselves.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    int m_readEnd = -1;
    int m_writeEnd = -1;
};

}  // namespace orvo
