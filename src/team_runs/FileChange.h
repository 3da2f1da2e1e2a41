#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

class QJsonObject;

namespace orvo {

/// One difference between the baseline and a copy. It holds hashes, not contents: later checks compare
/// against them.
struct FileChange {
    enum class Kind { Added, Changed, Removed };

    /// Relative, "/"-separated, as bytes.
    QByteArray path;
    /// SHA-256 in 64 lower-case hexadecimal digits; absent where there is no such file.
    std::optional<QByteArray> before;
    std::optional<QByteArray> after;
    /// Permission bits; absent with the hash.
    std::optional<int> beforeMode;
    std::optional<int> afterMode;

    bool operator==(const FileChange&) const = default;

    Kind kind() const;
    /// For people.
    QString displayPath() const { return QString::fromUtf8(path); }
};

/// "Added", "Changed" or "Removed".
QString textOf(FileChange::Kind kind);

QJsonObject jsonOf(const FileChange& change);
std::optional<FileChange> changeFrom(const QJsonObject& object);

/// From a JSON array of {"path","kind","before","after","beforeMode","afterMode"}; absent values are null.
/// Nothing when the data is not such a list; "kind" is not needed.
std::optional<QList<FileChange>> decodeChanges(const QByteArray& json);

}  // namespace orvo
