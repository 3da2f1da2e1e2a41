#pragma once

#include "platform/Preferences.h"

#include <QMap>

namespace orvo {

/// Preferences in memory. Can start with values of any type and can refuse to store.
class FakePreferences final : public Preferences {
public:
    /// The value under `name` whatever its type.
    std::optional<PreferenceValue> stored(const char* name) const { return read(name); }
    /// Puts a value there as an older or foreign program would have: any type, and not counted as a write.
    void preset(const char* name, PreferenceValue value) { m_values[QByteArray(name)] = std::move(value); }

    /// From now on every write fails with `error` and changes nothing; nothing: writes work again.
    void refuseWrites(std::optional<Error> error) { m_refusal = std::move(error); }
    /// Names written or removed so far, in order.
    const QList<QByteArray>& writes() const { return m_writes; }
    /// Values that were put aside as undecodable when they were overwritten.
    const QMap<QByteArray, PreferenceValue>& setAside() const { return m_setAside; }

protected:
    std::optional<PreferenceValue> read(const char* name) const override;
    Result<void> write(const char* name, std::optional<PreferenceValue> value) override;
    void keepAside(const char* name) override;

private:
    QMap<QByteArray, PreferenceValue> m_values;
    QMap<QByteArray, PreferenceValue> m_setAside;
    QList<QByteArray> m_damaged;
    QList<QByteArray> m_writes;
    std::optional<Error> m_refusal;
};

}  // namespace orvo
