#pragma once

#include "platform/FilePath.h"
#include "platform/Preferences.h"

#include <QJsonObject>
#include <QMap>
#include <QSet>

namespace orvo {

/// Preferences as files in one folder, in the form of docs/formats/preferences.md: "preferences.json" for the
/// small values, "KEY.data" for each data value. Small values are read once, at creation; data values when
/// asked for. Every change is on the disk when the call returns, and a crash at any moment loses at most the
/// change under way. A value that cannot be stored is kept in memory for this run.
class FilePreferences final : public Preferences {
public:
    enum class Access {
        ReadWrite,
        /// Nothing on the disk changes; every write is an error and has no effect.
        ReadOnly,
    };

    /// `folder` need not exist; the first write creates it.
    FilePreferences(FilePath folder, Access access);

protected:
    std::optional<PreferenceValue> read(const char* name) const override;
    Result<void> write(const char* name, std::optional<PreferenceValue> value) override;
    void keepAside(const char* name) override;

private:
    enum class OnDisk { Current, Outdated };

    FilePath smallFile() const;
    FilePath dataFile(const QByteArray& name) const;
    std::optional<QByteArray> readData(const QByteArray& name) const;
    Result<void> writeSmall(const QByteArray& name, const QJsonValue& value);
    Result<void> writeData(const QByteArray& name, const std::optional<QByteArray>& data);
    Result<void> putAside(const FilePath& file);

    FilePath m_folder;
    Access m_access;
    QJsonObject m_small;
    OnDisk m_smallOnDisk = OnDisk::Current;
    /// Data values that could not be stored (or, absent, not be removed).
    QMap<QByteArray, std::optional<QByteArray>> m_unsavedData;
    /// Files that nobody could read or decode; put aside before they are replaced.
    mutable QSet<QByteArray> m_damaged;
};

}  // namespace orvo
