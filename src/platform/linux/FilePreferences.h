#pragma once

#include "platform/FilePath.h"
#include "platform/Preferences.h"
#include "platform/SerialQueue.h"

#include <QJsonObject>
#include <QMap>
#include <QObject>
#include <QSet>

#include <atomic>
#include <memory>

namespace orvo {

/// Preferences as files in one folder, in the form of docs/formats/preferences.md: "preferences.json" for the
/// small values, "KEY.data" for each data value. Small values are read once, at creation; data values when
/// asked for. Every change is on the disk when the call returns (a data value that is to be stored soon:
/// shortly after), and a crash at any moment loses at most the change under way. A value that cannot be
/// stored is kept in memory for this run.
class FilePreferences final : public Preferences {
public:
    enum class Access {
        ReadWrite,
        /// Nothing on the disk changes; every write is an error and has no effect.
        ReadOnly,
    };

    /// `folder` need not exist; the first write creates it.
    FilePreferences(FilePath folder, Access access);
    /// Waits for what is being stored.
    ~FilePreferences() override;
    FilePreferences(const FilePreferences&) = delete;
    FilePreferences& operator=(const FilePreferences&) = delete;

protected:
    void hold() override { m_holding = true; }
    void storeHeld() override;
    std::optional<PreferenceValue> read(const char* name) const override;
    Result<void> write(const char* name, std::optional<PreferenceValue> value) override;
    void keepAside(const char* name) override;
    void writeSoon(const char* name, PreferenceValue value, Stored stored) override;

private:
    /// Counts the values of one key that were to be stored soon.
    using Turn = std::shared_ptr<std::atomic<int>>;

    enum class OnDisk { Current, Outdated };

    FilePath smallFile() const;
    FilePath dataFile(const QByteArray& name) const;
    std::optional<QByteArray> readData(const QByteArray& name) const;
    Result<void> saveSmall();
    Result<void> writeSmall(const QByteArray& name, const QJsonValue& value);
    Result<void> writeData(const QByteArray& name, const std::optional<QByteArray>& data);
    /// What must be so before a data file is replaced.
    Result<void> prepare(const FilePath& file);
    void postData(const QByteArray& name, const QByteArray& data, Stored stored);
    void finishWriting();
    Result<void> putAside(const FilePath& file);

    FilePath m_folder;
    Access m_access;
    QJsonObject m_small;
    OnDisk m_smallOnDisk = OnDisk::Current;
    bool m_holding = false;
    /// Data values that could not be stored (or, absent, not be removed).
    QMap<QByteArray, std::optional<QByteArray>> m_unsavedData;
    /// Files that nobody could read or decode; put aside before they are replaced.
    mutable QSet<QByteArray> m_damaged;
    QMap<QByteArray, Turn> m_turns;
    /// Made at the first value that is to be stored soon.
    std::shared_ptr<SerialQueue> m_writer;
    /// The context of what the writer reports.
    std::unique_ptr<QObject> m_reports;
};

}  // namespace orvo
