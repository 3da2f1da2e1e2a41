#pragma once

#include "platform/SleepInhibitor.h"

#include <memory>

namespace orvo {

/// Keeps the machine awake while tasks run. Released when destroyed.
class RunActivity {
public:
    explicit RunActivity(SleepInhibitor& inhibitor) : m_inhibitor(inhibitor) {}

    bool active() const { return m_assertion != nullptr; }
    /// Does nothing when already so; stays inactive when the system refuses.
    void setActive(bool on);

private:
    SleepInhibitor& m_inhibitor;
    std::unique_ptr<SleepInhibitor::Assertion> m_assertion;
};

}  // namespace orvo
