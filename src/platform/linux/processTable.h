#pragma once

#include <QByteArray>
#include <QList>

namespace orvo {

/// One process as the kernel tells of it.
struct ProcessEntry {
    qint64 pid = 0;
    qint64 parent = 0;
    qint64 group = 0;
    qint64 session = 0;
    /// Clock ticks since the machine came up.
    quint64 started = 0;
    /// At most 15 bytes.
    QByteArray name;
    /// 'Z' waits to be reaped, 'X' is gone.
    char state = 'X';

    bool isAlive() const { return state != 'Z' && state != 'X'; }
};

/// Every process that this one may see, in no order.
QList<ProcessEntry> processTable();

}  // namespace orvo
