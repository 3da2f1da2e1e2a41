#pragma once

#include "orvoctl/LiveStates.h"
#include "terminal/TerminalSession.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QObject>

#include <chrono>
#include <memory>
#include <vector>

namespace orvo::ctl {

/// Waits for sessions to end, and shows meanwhile how each of them stands.
class WatchedSessions : public QObject {
    Q_OBJECT

public:
    enum class Outcome { Ended, TimedOut, Interrupted };

    /// `names` are those of the assistants, in the order of the sessions.
    WatchedSessions(const QStringList& names, std::vector<std::shared_ptr<TerminalSession>> sessions);

    /// Waits until all have ended. When `limit` (zero for none) has passed or `interrupt` was called, those
    /// that still run are stopped first.
    Outcome wait(std::chrono::milliseconds limit);
    void interrupt();

    const std::vector<std::shared_ptr<TerminalSession>>& sessions() const { return m_sessions; }
    bool allSucceeded() const;

private:
    void showStates();
    void stop(Outcome why);
    bool anyRunning() const;

    LiveStates m_states;
    std::vector<std::shared_ptr<TerminalSession>> m_sessions;
    QElapsedTimer m_sinceStart;
    Outcome m_outcome = Outcome::Ended;
    QEventLoop m_loop;
};

/// The state of a session in the words of the team runs' cards.
QString stateOf(const TerminalSession& session);
/// The same for a copy of a recorded run, whose session is gone.
QString stateOf(std::optional<int> exitCode);
/// What the session says now: the last line that is not blank.
QString lastLineOf(const TerminalSession& session);

}  // namespace orvo::ctl
