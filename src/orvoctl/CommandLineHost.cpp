#include "orvoctl/CommandLineHost.h"

#include "orvoctl/StoredState.h"
#include "team_runs/TeamRuns.h"
#include "terminal/TerminalSession.h"
#include "workspace/snapshotOf.h"

#include <algorithm>

namespace orvo::ctl {

CommandLineHost::CommandLineHost(StoredState& state) : m_state(state), m_activity(state.sleepInhibitor()) {}

CommandLineHost::~CommandLineHost() {
    for (const auto& session : m_sessions)
        session->onFinish = nullptr;
}

std::shared_ptr<TerminalSession> CommandLineHost::startSession(
    const QString& provider, const QString& title, const QString& command, const FilePath& directory,
    std::function<void(TerminalSession&)> beforeStart) {
    const auto session = std::make_shared<TerminalSession>(provider, title, command, directory);
    session->onFinish = [this](TerminalSession& finished) {
        m_state.history().record(snapshotOf(finished));
        if (m_engine) m_engine->runSessionFinished(finished);
        if (std::ranges::none_of(m_sessions, [](const auto& other) { return other->running(); }))
            m_activity.setActive(false);
    };
    m_sessions.push_back(session);
    if (beforeStart) beforeStart(*session);
    if (m_state.keepAwake()) m_activity.setActive(true);
    session->start();
    return session;
}

std::shared_ptr<TerminalSession> CommandLineHost::session(const QUuid& id) const {
    const auto found = std::ranges::find(m_sessions, id, [](const auto& session) { return session->id(); });
    return found == m_sessions.end() ? nullptr : *found;
}

Provider CommandLineHost::provider(const QString& id) const {
    return m_state.assistants().provider(id);
}

bool CommandLineHost::isReady(const Provider& provider) const {
    return m_state.assistants().isReady(provider);
}

std::optional<QString> CommandLineHost::historyOutput(const FilePath& directory) const {
    const auto& entries = m_state.history().entries();
    const auto found = std::ranges::find(entries, directory, &HistoryEntry::directory);
    if (found == entries.end()) return std::nullopt;
    return found->output;
}

}  // namespace orvo::ctl
