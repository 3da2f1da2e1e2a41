#pragma once

#include "platform/SleepInhibitor.h"
#include "platform/linux/BusOnDemand.h"

namespace orvo {

/// Holds off idle sleep through logind. An assertion is an open descriptor, so the system takes it back by
/// itself when the process dies.
class LogindSleepInhibitor final : public SleepInhibitor {
public:
    explicit LogindSleepInhibitor(BusOnDemand bus = BusOnDemand(QDBusConnection::systemBus));

    /// Waits at most two seconds for the answer. Null without a bus, without logind, or when it refuses.
    std::unique_ptr<Assertion> hold(const QString& reason) override;

private:
    BusOnDemand m_bus;
};

}  // namespace orvo
