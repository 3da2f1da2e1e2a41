#include "workspace/ReportingPreferences.h"

namespace orvo {
namespace {

/// The stored value if it is of one of the types that a key can have.
template <class... T>
std::optional<PreferenceValue> valueOfAny(const Preferences& preferences, const char* name,
                                          const std::variant<T...>*) {
    std::optional<PreferenceValue> found;
    const auto look = [&]<class Type>(PreferenceKey<Type> key) {
        if (auto value = preferences.value(key)) found = *std::move(value);
        return found.has_value();
    };
    (look(PreferenceKey<T>{name}) || ...);
    return found;
}

}  // namespace

std::optional<PreferenceValue> ReportingPreferences::read(const char* name) const {
    return valueOfAny(m_preferences, name, static_cast<PreferenceValue*>(nullptr));
}

Result<void> ReportingPreferences::write(const char* name, std::optional<PreferenceValue> value) {
    const auto store = [&]<class T>(const T& typed) {
        return m_preferences.setValue(PreferenceKey<T>{name}, typed);
    };
    Result<void> written =
        value ? std::visit(store, *value) : m_preferences.remove(PreferenceKey<QByteArray>{name});
    note(written);
    return written;
}

void ReportingPreferences::note(const Result<void>& written) {
    const bool wasFailing = std::exchange(m_failing, !written);
    if (!written && !wasFailing) m_report(written.error());
}

void ReportingPreferences::writeSoon(const char* name, PreferenceValue value, Stored stored) {
    const auto noted = [self = std::weak_ptr(m_self),
                        stored = std::move(stored)](const Result<void>& written) {
        if (const auto reporting = self.lock()) (*reporting)->note(written);
        if (stored) stored(written);
    };
    std::visit(
        [&]<class T>(const T& typed) { m_preferences.setValueSoon(PreferenceKey<T>{name}, typed, noted); },
        value);
}

void ReportingPreferences::keepAside(const char* name) {
    m_preferences.markDamaged(PreferenceKey<QByteArray>{name});
}

}  // namespace orvo
