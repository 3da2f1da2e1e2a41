#include "platform/fake/FakePreferences.h"

namespace orvo {

std::optional<PreferenceValue> FakePreferences::read(const char* name) const {
    const auto found = m_values.constFind(QByteArray(name));
    if (found == m_values.constEnd()) return std::nullopt;
    return *found;
}

Result<void> FakePreferences::write(const char* name, std::optional<PreferenceValue> value) {
    if (m_refusal) return tl::unexpected<Error>(*m_refusal);
    const QByteArray key(name);
    if (m_damaged.removeAll(key) > 0 && m_values.contains(key)) m_setAside[key] = m_values[key];
    m_writes.append(key);
    if (value) {
        m_values[key] = std::move(*value);
    } else {
        m_values.remove(key);
    }
    return {};
}

void FakePreferences::keepAside(const char* name) {
    m_damaged.append(QByteArray(name));
}

}  // namespace orvo
