#include "platform/linux/LoadedSleepInhibitor.h"
#include "platform/linux/LogindSleepInhibitor.h"

extern "C" Q_DECL_EXPORT orvo::SleepInhibitor* orvoMakeSleepInhibitor() {
    return new orvo::LogindSleepInhibitor;
}
