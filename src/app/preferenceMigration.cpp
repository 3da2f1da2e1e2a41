#include "app/preferenceMigration.h"

#include "platform/linux/FilePreferences.h"

namespace orvo {
namespace {

/// False when the value could not be stored.
template <class T>
bool takeOver(PreferenceKey<T> key, const Preferences& former, Preferences& current) {
    if (current.value(key)) return true;
    const std::optional<T> value = former.value(key);
    return !value || current.setValue(key, *value);
}

}  // namespace

void migratePreferences(Preferences& current, const FilePath& formerFolder) {
    if (current.value(preference::migratedFromPelk).value_or(false)) return;
    const FilePreferences former(formerFolder, FilePreferences::Access::ReadOnly);
    const auto takeAll = [&](const auto&... keys) {
        return (takeOver(keys, former, current) & ...);
    };
    const bool all = takeAll(preference::background, preference::accent, preference::terminalFont,
                             preference::preset, preference::pelkAccentApplied, preference::providers,
                             preference::recentFolders, preference::workspace, preference::history);
    if (all) (void)current.setValue(preference::migratedFromPelk, true);
}

}  // namespace orvo
