#pragma once

#include "team_runs/TeamRunHost.h"
#include "workspace/RunActivity.h"

#include <QStringList>

#include <vector>

namespace orvo {
class TeamRuns;
}

namespace orvo::ctl {

class StoredState;

/// The program around the team-run engine when there is no window: sessions nobody types into, and notices
/// that are kept until somebody asks.
class CommandLineHost final : public TeamRunHost {
public:
    /// `state` outlives the host.
    explicit CommandLineHost(StoredState& state);
    ~CommandLineHost() override;

    /// Told of every session that ends; outlives the sessions or is taken away (null).
    void setEngine(TeamRuns* engine) { m_engine = engine; }

    std::shared_ptr<TerminalSession> startSession(const QString& provider, const QString& title,
                                                  const QString& command, const FilePath& directory,
                                                  std::function<void(TerminalSession&)> beforeStart) override;
    std::shared_ptr<TerminalSession> session(const QUuid& id) const override;
    Provider provider(const QString& id) const override;
    bool isReady(const Provider& provider) const override;
    /// There is no editor whose text could be lost.
    bool confirmDiscard() override { return true; }
    std::optional<QString> historyOutput(const FilePath& directory) const override;
    /// There is no composer.
    void clearPromptIfStill(const QString&) override {}
    void notify(const QString& message) override { m_notices.append(message); }

    /// In the order in which they were started.
    const std::vector<std::shared_ptr<TerminalSession>>& sessions() const { return m_sessions; }
    /// The latest notice; empty when there was none.
    QString lastNotice() const { return m_notices.value(m_notices.size() - 1); }

private:
    StoredState& m_state;
    TeamRuns* m_engine = nullptr;
    RunActivity m_activity;
    std::vector<std::shared_ptr<TerminalSession>> m_sessions;
    QStringList m_notices;
};

}  // namespace orvo::ctl
