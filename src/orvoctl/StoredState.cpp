#include "orvoctl/StoredState.h"

#include "platform/AppFolders.h"

namespace orvo::ctl {

StoredState::StoredState()
    : m_preferences(AppFolders::fromProcess().configuration, FilePreferences::Access::ReadOnly),
      m_inbox(AppFolders::fromProcess().configuration.child("history.pending")),
      m_assistants(&m_preferences, ToolEnvironment::fromProcess()),
      m_history(&m_preferences) {
    m_history.attachInbox(m_inbox, HistoryStore::InboxRole::Append);
    m_assistants.refreshProviders();
}

bool StoredState::keepAwake() const {
    return m_preferences.value(preference::keepAwake).value_or(false);
}

}  // namespace orvo::ctl
