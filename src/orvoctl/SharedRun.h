#pragma once

#include "assistants/Provider.h"
#include "orvoctl/LiveStates.h"
#include "terminal/TerminalSession.h"

#include <QEventLoop>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace orvo::ctl {

/// One task on several assistants at once, each with its batch command in a session of its own, all in the
/// project folder itself. Nothing is ever typed into the sessions.
class SharedRun : public QObject {
    Q_OBJECT

public:
    enum class Outcome { Ended, TimedOut, Interrupted };

    SharedRun(const QString& task, const QList<Provider>& providers, const FilePath& project);

    /// Starts all and waits until all have ended. When `limit` (zero for none) has passed or `interrupt` was
    /// called, those that still run are stopped first. `recorded` is called with each session as it ends.
    Outcome run(std::chrono::milliseconds limit, const std::function<void(const TerminalSession&)>& recorded);
    void interrupt();

    const std::vector<std::shared_ptr<TerminalSession>>& sessions() const { return m_sessions; }

private:
    void showStates();
    void stop(Outcome why);
    bool anyRunning() const;

    LiveStates m_states;
    std::vector<std::shared_ptr<TerminalSession>> m_sessions;
    Outcome m_outcome = Outcome::Ended;
    QEventLoop m_loop;
};

/// The state of a session in the words of the team runs' cards.
QString stateOf(const TerminalSession& session);

}  // namespace orvo::ctl
