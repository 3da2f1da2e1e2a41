#pragma once

#include "platform/EscapedPrograms.h"

#include <QObject>
#include <QSet>

#include <utility>

namespace orvo {

class Clock;

/// Makes this process the one that adopts what its sessions leave behind, instead of the system's first
/// process, and reaps the adopted when they have ended. One a process.
class AdoptedPrograms final : public QObject, public EscapedPrograms {
    Q_OBJECT

public:
    /// The clock outlives this object.
    explicit AdoptedPrograms(Clock& clock, QObject* parent = nullptr);

    QList<EscapedProgram> running() const override;
    void stop(const QList<EscapedProgram>& programs) override;

private:
    void reapLater();
    void reap();

    Clock& m_clock;
    /// Children that had ended when this was last looked at: process id and start.
    QSet<std::pair<qint64, quint64>> m_ended;
};

}  // namespace orvo
