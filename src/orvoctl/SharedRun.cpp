#include "orvoctl/SharedRun.h"

#include "platform/textEnds.h"

#include <algorithm>

namespace orvo::ctl {
namespace {

using namespace std::chrono_literals;

constexpr int titleCharacters = 52;

QStringList namesOf(const QList<Provider>& providers) {
    QStringList names;
    for (const Provider& provider : providers)
        names.append(provider.name);
    return names;
}

}  // namespace

QString stateOf(const TerminalSession& session) {
    if (session.running()) return QStringLiteral("Working…");
    if (!session.exitCode()) return QStringLiteral("Interrupted");
    if (*session.exitCode() == 0) return QStringLiteral("Finished");
    return QStringLiteral("Needs attention · exit %1").arg(*session.exitCode());
}

SharedRun::SharedRun(const QString& task, const QList<Provider>& providers, const FilePath& project)
    : m_states(namesOf(providers)) {
    for (const Provider& provider : providers) {
        m_sessions.push_back(std::make_shared<TerminalSession>(
            provider.id, firstCharacters(task, titleCharacters), provider.batchCommand(task), project));
    }
}

SharedRun::Outcome SharedRun::run(std::chrono::milliseconds limit,
                                  const std::function<void(const TerminalSession&)>& recorded) {
    for (const auto& session : m_sessions) {
        session->onFinish = [this, &recorded](TerminalSession& finished) {
            showStates();
            recorded(finished);
            if (!anyRunning()) m_loop.quit();
        };
    }
    for (const auto& session : m_sessions)
        session->start();
    showStates();

    QTimer clock;
    connect(&clock, &QTimer::timeout, this, &SharedRun::showStates);
    clock.start(1s);
    QTimer deadline;
    deadline.setSingleShot(true);
    connect(&deadline, &QTimer::timeout, this, [this] { stop(Outcome::TimedOut); });
    if (limit > 0ms) deadline.start(limit);
    if (anyRunning()) m_loop.exec();
    for (const auto& session : m_sessions)
        session->onFinish = nullptr;
    return m_outcome;
}

void SharedRun::interrupt() {
    stop(Outcome::Interrupted);
}

void SharedRun::stop(Outcome why) {
    if (m_outcome != Outcome::Ended || !anyRunning()) return;
    m_outcome = why;
    for (const auto& session : m_sessions)
        session->stop();
}

bool SharedRun::anyRunning() const {
    return std::ranges::any_of(m_sessions, [](const auto& session) { return session->running(); });
}

void SharedRun::showStates() {
    for (std::size_t i = 0; i < m_sessions.size(); ++i) {
        const TerminalSession& session = *m_sessions[i];
        const auto seconds = session.started().secsTo(QDateTime::currentDateTimeUtc());
        // The time a session took stays as it was when it ended.
        const int shown = session.running() ? static_cast<int>(std::max<qint64>(seconds, 0)) : -1;
        m_states.show(static_cast<qsizetype>(i), stateOf(session), shown);
    }
}

}  // namespace orvo::ctl
