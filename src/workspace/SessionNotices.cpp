#include "workspace/SessionNotices.h"

#include "platform/Clock.h"
#include "platform/DesktopNotifications.h"
#include "platform/Preferences.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <algorithm>
#include <utility>

namespace orvo {
namespace {

using namespace std::chrono_literals;

/// Several sessions that begin to ask together are told of together.
constexpr auto gatheringTime = 400ms;

}  // namespace

std::vector<std::shared_ptr<TerminalSession>> sessionsAsking(const Workspace& workspace) {
    std::vector<std::shared_ptr<TerminalSession>> asking;
    std::ranges::copy_if(workspace.sessions(), std::back_inserter(asking),
                         [](const auto& session) { return session->mark() == Attention::Mark::WantsYou; });
    return asking;
}

QString askingText(const Workspace& workspace) {
    QStringList lines;
    for (const auto& session : sessionsAsking(workspace))
        lines.append(SessionNotices::tr("%1: %2").arg(session->title(), session->evidence()));
    return lines.join(u'\n');
}

SessionNotices::SessionNotices(Workspace& workspace, Clock& clock, const Preferences& preferences,
                               DesktopNotifications& notifications, ShowWindow showWindow, QObject* parent)
    : QObject(parent),
      m_workspace(workspace),
      m_clock(clock),
      m_preferences(preferences),
      m_notifications(notifications),
      m_showWindow(std::move(showWindow)) {
    m_notifications.onChosen = [this](const QByteArray& token) {
        showAsked(token);
    };
    observe(m_workspace, {&Workspace::sessionMarksChanged, &Workspace::sessionsChanged}, this,
            [this] { refresh(); });
}

SessionNotices::~SessionNotices() {
    m_notifications.onChosen = {};
    if (!m_told.isEmpty()) m_notifications.withdraw();
}

void SessionNotices::refresh() {
    QList<QUuid> asking;
    for (const auto& session : sessionsAsking(m_workspace))
        asking.append(session->id());
    const auto isGone = [&asking](const QUuid& id) {
        return !asking.contains(id);
    };
    m_asking.removeIf(isGone);
    // A session that has ended meanwhile is told of until somebody has looked at it.
    const bool told = !m_told.isEmpty();
    m_told.removeIf([&](const QUuid& id) {
        const auto session = m_workspace.session(id);
        return !session || (isGone(id) && session->mark() != Attention::Mark::DoneUnseen);
    });
    if (told && m_told.isEmpty()) m_notifications.withdraw();

    bool anyNew = false;
    for (const QUuid& id : asking) {
        if (m_asking.contains(id)) continue;
        m_asking.append(id);
        anyNew = true;
    }
    if (!anyNew || std::exchange(m_due, true)) return;
    m_clock.after(gatheringTime, this, [this] {
        m_due = false;
        tell();
    });
}

void SessionNotices::tell() {
    const bool anyNew =
        std::ranges::any_of(m_asking, [this](const QUuid& id) { return !m_told.contains(id); });
    if (!anyNew || !m_preferences.value(preference::notifications).value_or(true)) return;
    m_told = m_asking;
    const auto newest = m_workspace.session(m_told.last());
    const qsizetype count = m_told.size();
    QStringList lines;
    for (const auto& session : sessionsAsking(m_workspace)) {
        lines.append(count == 1 ? session->request()
                                : tr("%1: %2").arg(session->title(), session->request()));
    }
    m_notifications.show({.title = count == 1 ? tr("%1 wants you").arg(newest->title())
                                              : tr("%1 sessions want you").arg(count),
                          .body = lines.join(u'\n'),
                          .action = tr("Show")});
}

void SessionNotices::showAsked(const QByteArray& activationToken) {
    // The session that asked last of those that are still there.
    const auto found = std::find_if(m_told.crbegin(), m_told.crend(),
                                    [this](const QUuid& id) { return m_workspace.session(id) != nullptr; });
    if (found != m_told.crend()) {
        // A copy, because being in front takes the session off the list.
        const QUuid id = *found;
        m_workspace.setActiveSessionID(id);
        m_workspace.setDestination(Destination::Workspace);
    }
    m_showWindow(activationToken);
}

}  // namespace orvo
