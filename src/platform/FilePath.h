#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <compare>

namespace orvo {

/// An absolute path as the bytes the system knows it by. A name that is not UTF-8 survives unchanged;
/// `display()` is for people only. A value, with no trailing slash except for the root.
class FilePath {
public:
    FilePath() = default;
    explicit FilePath(QByteArray bytes) : m_bytes(std::move(bytes)) {
        while (m_bytes.size() > 1 && m_bytes.endsWith('/'))
            m_bytes.chop(1);
    }
    static FilePath fromString(const QString& path) { return FilePath(path.toUtf8()); }

    const QByteArray& bytes() const { return m_bytes; }
    bool isEmpty() const { return m_bytes.isEmpty(); }
    /// The last component; "/" for the root.
    QByteArray nameBytes() const {
        return m_bytes == "/" ? m_bytes : m_bytes.mid(m_bytes.lastIndexOf('/') + 1);
    }
    FilePath child(const QByteArray& name) const {
        return FilePath(m_bytes == "/" ? m_bytes + name : m_bytes + '/' + name);
    }
    FilePath parent() const {
        const auto slash = m_bytes.lastIndexOf('/');
        return FilePath(slash <= 0 ? QByteArray("/") : m_bytes.left(slash));
    }

    /// For people: bytes that are not UTF-8 are shown as U+FFFD.
    QString display() const { return QString::fromUtf8(m_bytes); }
    QString displayName() const { return QString::fromUtf8(nameBytes()); }

    auto operator<=>(const FilePath& other) const { return m_bytes.compare(other.m_bytes) <=> 0; }
    bool operator==(const FilePath& other) const { return m_bytes == other.m_bytes; }

private:
    QByteArray m_bytes;
};

}  // namespace orvo
