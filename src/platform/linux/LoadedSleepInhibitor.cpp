#include "platform/linux/LoadedSleepInhibitor.h"

#include "platform/loadModule.h"

namespace orvo {

std::unique_ptr<SleepInhibitor::Assertion> LoadedSleepInhibitor::hold(const QString& reason) {
    if (!m_inhibitor) {
        const auto make =
            reinterpret_cast<SleepInhibitorFunction>(loadModule("orvo_sleep", sleepInhibitorSymbol));
        if (!make) return nullptr;
        m_inhibitor.reset(make());
    }
    return m_inhibitor->hold(reason);
}

}  // namespace orvo
