#include "history/HistoryEntry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>

namespace orvo {
namespace {

// Dates are counted from 2001-01-01 00:00 UTC, which is this many seconds after the Unix epoch.
constexpr double referenceSeconds = 978'307'200;
// About 31,000 years: what lies beyond is no date of a session, and QDateTime counts it in 64-bit
// milliseconds.
constexpr double maximumSeconds = 1e12;

std::optional<QString> text(const QJsonObject& object, QLatin1String key) {
    const QJsonValue value = object.value(key);
    if (!value.isString()) return std::nullopt;
    return value.toString();
}

std::optional<QUuid> identifier(const QJsonObject& object) {
    const std::optional<QString> written = text(object, QLatin1String("id"));
    if (!written) return std::nullopt;
    // QUuid also reads other forms; only the plain 8-4-4-4-12 one comes out as it went in.
    const QUuid id = QUuid::fromString(*written);
    if (id.toString(QUuid::WithoutBraces).compare(*written, Qt::CaseInsensitive) != 0) return std::nullopt;
    return id;
}

std::optional<QDateTime> date(const QJsonObject& object, QLatin1String key) {
    const QJsonValue value = object.value(key);
    if (!value.isDouble() || std::abs(value.toDouble()) > maximumSeconds) return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(qRound64((value.toDouble() + referenceSeconds) * 1000), Qt::UTC);
}

std::optional<int> integer(const QJsonObject& object, QLatin1String key) {
    const QJsonValue value = object.value(key);
    // QJsonValue::toInt gives 0 for 1.5 and for what is too large.
    const double number = value.toDouble(0.5);
    if (number != std::trunc(number) || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

/// The exact bytes where they are given, because the text cannot tell a name that is not UTF-8.
std::optional<FilePath> directory(const QJsonObject& object) {
    const std::optional<QString> shown = text(object, QLatin1String("directory"));
    if (!shown) return std::nullopt;
    const QJsonValue bytes = object.value(QLatin1String("directoryBytes"));
    if (bytes.isUndefined()) return FilePath::fromString(*shown);
    const auto exact =
        QByteArray::fromBase64Encoding(bytes.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!bytes.isString() || !exact) return std::nullopt;
    return FilePath(*exact);
}

}  // namespace

QJsonObject toJson(const HistoryEntry& entry) {
    const double seconds = static_cast<double>(entry.started.toMSecsSinceEpoch()) / 1000 - referenceSeconds;
    QJsonObject object{
        {QStringLiteral("id"), entry.id.toString(QUuid::WithoutBraces).toUpper()},
        {QStringLiteral("provider"), entry.provider},
        {QStringLiteral("title"), entry.title},
        {QStringLiteral("directory"), entry.directory.display()},
        {QStringLiteral("started"), seconds},
        {QStringLiteral("exitCode"), entry.exitCode},
        {QStringLiteral("output"), entry.output},
    };
    if (entry.directory.display().toUtf8() != entry.directory.bytes()) {
        object.insert(QStringLiteral("directoryBytes"),
                      QString::fromLatin1(entry.directory.bytes().toBase64()));
    }
    return object;
}

std::optional<HistoryEntry> historyEntryFromJson(const QJsonObject& object) {
    const auto id = identifier(object);
    const auto provider = text(object, QLatin1String("provider"));
    const auto title = text(object, QLatin1String("title"));
    const auto folder = directory(object);
    const auto started = date(object, QLatin1String("started"));
    const auto exitCode = integer(object, QLatin1String("exitCode"));
    const auto output = text(object, QLatin1String("output"));
    if (!id || !provider || !title || !folder || !started || !exitCode || !output) return std::nullopt;
    return HistoryEntry{*id, *provider, *title, *folder, *started, *exitCode, *output};
}

QByteArray encodeEntry(const HistoryEntry& entry) {
    return QJsonDocument(toJson(entry)).toJson(QJsonDocument::Compact);
}

QByteArray encodeHistory(const QByteArrayList& encodedEntries) {
    return '[' + encodedEntries.join(',') + ']';
}

std::optional<QList<HistoryEntry>> decodeHistory(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray()) return std::nullopt;
    QList<HistoryEntry> entries;
    for (const QJsonValue item : document.array()) {
        // What is no object gives an empty one, which lacks every key.
        const std::optional<HistoryEntry> entry = historyEntryFromJson(item.toObject());
        if (!entry) return std::nullopt;
        entries.append(*entry);
    }
    return entries;
}

}  // namespace orvo
