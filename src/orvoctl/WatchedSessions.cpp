#include "orvoctl/WatchedSessions.h"

#include <QTimer>

#include <algorithm>

namespace orvo::ctl {

using namespace std::chrono_literals;

QString stateOf(const TerminalSession& session) {
    return session.running() ? QStringLiteral("Working…") : stateOf(session.exitCode());
}

QString stateOf(std::optional<int> exitCode) {
    if (!exitCode) return QStringLiteral("Interrupted");
    if (*exitCode == 0) return QStringLiteral("Finished");
    return QStringLiteral("Needs attention · exit %1").arg(*exitCode);
}

QString lastLineOf(const TerminalSession& session) {
    const QStringList lines =
        QString::fromStdString(session.screen().plainText()).split(u'\n', Qt::SkipEmptyParts);
    const auto last = std::find_if(lines.crbegin(), lines.crend(),
                                   [](const QString& line) { return !line.trimmed().isEmpty(); });
    return last == lines.crend() ? QString() : last->trimmed();
}

WatchedSessions::WatchedSessions(const QStringList& names,
                                 std::vector<std::shared_ptr<TerminalSession>> sessions)
    : m_states(names), m_sessions(std::move(sessions)) {
    m_sinceStart.start();
    for (const auto& session : m_sessions) {
        connect(session.get(), &TerminalSession::runningChanged, this, [this] {
            showStates();
            if (!anyRunning()) m_loop.quit();
        });
    }
}

WatchedSessions::Outcome WatchedSessions::wait(std::chrono::milliseconds limit) {
    showStates();
    QTimer clock;
    connect(&clock, &QTimer::timeout, this, &WatchedSessions::showStates);
    clock.start(1s);
    QTimer deadline;
    deadline.setSingleShot(true);
    connect(&deadline, &QTimer::timeout, this, [this] { stop(Outcome::TimedOut); });
    if (limit > 0ms) deadline.start(limit);
    if (anyRunning()) m_loop.exec();
    showStates();
    return m_outcome;
}

void WatchedSessions::interrupt() {
    stop(Outcome::Interrupted);
}

void WatchedSessions::stop(Outcome why) {
    if (m_outcome != Outcome::Ended || !anyRunning()) return;
    m_outcome = why;
    for (const auto& session : m_sessions)
        session->stop();
}

bool WatchedSessions::anyRunning() const {
    return std::ranges::any_of(m_sessions, [](const auto& session) { return session->running(); });
}

bool WatchedSessions::allSucceeded() const {
    return std::ranges::all_of(m_sessions, [](const auto& session) { return session->exitCode() == 0; });
}

void WatchedSessions::showStates() {
    for (std::size_t i = 0; i < m_sessions.size(); ++i) {
        const TerminalSession& session = *m_sessions[i];
        LiveStates::State state{stateOf(session), {}, {}};
        if (session.running()) {
            state.seconds = static_cast<int>(m_sinceStart.elapsed() / 1000);
            if (m_states.showsOutput()) state.output = lastLineOf(session);
        }
        m_states.show(static_cast<qsizetype>(i), state);
    }
}

}  // namespace orvo::ctl
