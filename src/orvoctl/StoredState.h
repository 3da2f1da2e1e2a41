#pragma once

#include "assistants/Assistants.h"
#include "history/HistoryInbox.h"
#include "history/HistoryStore.h"
#include "platform/linux/FilePreferences.h"
#include "platform/linux/LoadedSleepInhibitor.h"

namespace orvo::ctl {

/// What the window has stored, read only: preferences, connectors and history. Sessions that finish here go
/// into the history's inbox, from which the window takes them.
class StoredState {
public:
    StoredState();

    Assistants& assistants() { return m_assistants; }
    const Assistants& assistants() const { return m_assistants; }
    HistoryStore& history() { return m_history; }
    const HistoryStore& history() const { return m_history; }
    SleepInhibitor& sleepInhibitor() { return m_sleepInhibitor; }
    /// Whether the machine shall stay awake while assistants work.
    bool keepAwake() const;

private:
    FilePreferences m_preferences;
    HistoryInbox m_inbox;
    LoadedSleepInhibitor m_sleepInhibitor;
    Assistants m_assistants;
    HistoryStore m_history;
};

}  // namespace orvo::ctl
