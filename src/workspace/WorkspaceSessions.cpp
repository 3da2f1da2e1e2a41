// The terminal sessions: started, listed, brought to the front, closed, and finished by the one common step.

#include "workspace/Workspace.h"

#include "platform/observe.h"
#include "workspace/snapshotOf.h"

#include <QPointer>

#include <algorithm>

namespace orvo {
namespace {

using Sessions = std::vector<std::shared_ptr<TerminalSession>>;

std::shared_ptr<TerminalSession> find(const Sessions& sessions, const QUuid& id) {
    const auto found = std::ranges::find(sessions, id, [](const auto& session) { return session->id(); });
    return found == sessions.end() ? nullptr : *found;
}

bool removeSession(Sessions& sessions, const QUuid& id) {
    return std::erase_if(sessions, [&](const auto& session) { return session->id() == id; }) > 0;
}

}  // namespace

std::shared_ptr<TerminalSession> Workspace::session(const QUuid& id) const {
    return find(m_sessions, id);
}

std::shared_ptr<TerminalSession> Workspace::activeSession() const {
    return m_activeSessionID ? session(*m_activeSessionID) : nullptr;
}

std::shared_ptr<TerminalSession> Workspace::listedOrClosing(const QUuid& id) const {
    const auto listed = session(id);
    return listed ? listed : find(m_closingSessions, id);
}

void Workspace::setActiveSessionID(const QUuid& id) {
    if (session(id) && assign(m_activeSessionID, id)) Q_EMIT activeSessionIDChanged();
}

void Workspace::focusSession(const QUuid& id) {
    setActiveSessionID(id);
    setFocusMode(true);
    setDestination(Destination::Workspace);
}

std::shared_ptr<TerminalSession> Workspace::startSession(const QString& provider, const QString& title,
                                                         const QString& command, const FilePath& directory,
                                                         const SessionStep& beforeStart,
                                                         SessionStep onFinish) {
    const auto session = std::make_shared<TerminalSession>(provider, title, command, directory);
    session->onFinish = [workspace = QPointer(this),
                         onFinish = std::move(onFinish)](TerminalSession& finished) {
        if (!workspace) return;
        // The steps may let go of the last owner.
        const auto alive = workspace->listedOrClosing(finished.id());
        workspace->sessionFinished(finished);
        if (onFinish) onFinish(finished);
    };
    connect(session.get(), &TerminalSession::markChanged, this, &Workspace::sessionMarksChanged);
    m_sessions.push_back(session);
    m_activeSessionID = session->id();
    const bool pageIsNew = assign(m_destination, Destination::Workspace);
    Q_EMIT sessionsChanged();
    Q_EMIT activeSessionIDChanged();
    if (pageIsNew) Q_EMIT destinationChanged();

    if (beforeStart) beforeStart(*session);
    session->start();
    updateAwakeState();
    Q_EMIT sessionStatesChanged();
    return session;
}

void Workspace::sessionFinished(TerminalSession& session) {
    m_history.record(snapshotOf(session));
    m_files.refreshFiles();
    if (m_teamRuns) m_teamRuns->runSessionFinished(session);
    updateAwakeState();
    removeSession(m_closingSessions, session.id());
    Q_EMIT sessionStatesChanged();
}

void Workspace::closeSession(const std::shared_ptr<TerminalSession>& closed) {
    // A reference of our own, because the argument may be an element of the list that is changed here.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): that is what the copy is for.
    const std::shared_ptr<TerminalSession> session(closed);
    if (const QString reason = m_teamRuns ? m_teamRuns->reasonToKeep(*session) : QString();
        !reason.isEmpty()) {
        notify(reason);
        return;
    }
    if (session->running()) {
        const int answer = m_services.dialogs.alert(
            {.message = tr("Stop this session?"),
             .informativeText = tr("The assistant and processes launched in this terminal will stop."),
             .buttons = {tr("Stop session"), tr("Cancel")}});
        if (answer != 0) return;
        // It may have ended, or been closed, while the question stood.
        if (session->running() && !find(m_closingSessions, session->id())) {
            m_closingSessions.push_back(session);
            session->stop();
        }
    }
    if (!removeSession(m_sessions, session->id())) return;
    const bool wasActive = m_activeSessionID == session->id();
    if (wasActive) {
        m_activeSessionID = m_sessions.empty() ? std::nullopt : std::optional(m_sessions.back()->id());
    }
    Q_EMIT sessionsChanged();
    if (wasActive) Q_EMIT activeSessionIDChanged();
}

void Workspace::stopAll() {
    for (const auto& session : Sessions(m_sessions))
        session->stop();
}

bool Workspace::anySessionRunning() const {
    return std::ranges::any_of(m_sessions, [](const auto& session) { return session->running(); });
}

void Workspace::updateAwakeState() {
    m_activity.setActive(m_keepAwake && anySessionRunning());
}

}  // namespace orvo
