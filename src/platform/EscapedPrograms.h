#pragma once

#include <QList>
#include <QString>

namespace orvo {

/// A program that was started in a terminal, left it, and goes on by itself.
struct EscapedProgram {
    qint64 pid = 0;
    /// Tells it from a later process of the same id; in the system's own units.
    quint64 started = 0;
    /// What the system calls it, cut short.
    QString name;

    bool operator==(const EscapedProgram&) const = default;
};

/// Finds what is left of sessions that have ended. Main thread only.
class EscapedPrograms {
public:
    virtual ~EscapedPrograms() = default;

    /// Those that run now, when no session does: the shells of running sessions would be among them.
    virtual QList<EscapedProgram> running() const = 0;
    /// Asks these and what they have started to end, and kills after a second what is left. Blocks until
    /// then.
    virtual void stop(const QList<EscapedProgram>& programs) = 0;
};

}  // namespace orvo
