#pragma once

#include "platform/SleepInhibitor.h"

namespace orvo {

/// The sleep inhibitor of the module "orvo_sleep", which brings the message bus with the first assertion.
class LoadedSleepInhibitor final : public SleepInhibitor {
public:
    /// Null as well when the module cannot be loaded.
    std::unique_ptr<Assertion> hold(const QString& reason) override;

private:
    std::unique_ptr<SleepInhibitor> m_inhibitor;
};

/// The module's one function. The caller owns the result.
using SleepInhibitorFunction = SleepInhibitor* (*)();
inline constexpr auto sleepInhibitorSymbol = "orvoMakeSleepInhibitor";

}  // namespace orvo
